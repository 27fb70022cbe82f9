// A field's value as the commands print it, whatever the process's formats are.
#pragma once

#include <string>
#include <string_view>

#include "kvshare/data/fields/field.h"

namespace kvshare::app {

// Appends the value in code page 874; nothing for Null.
//   decimals   with a point and as many decimals as their column has: 12.5000
//   reals      15 digits, without zeros at the end: 0.1, 1e+22
//   Booleans   true, false
//   dates      yyyy-mm-dd, hh:mm:ss, yyyy-mm-ddThh:mm:ss; .fff behind them where it is not zero
//   bytes      hexadecimal
//   the rest   as it is
// Throws EDatabaseError for a letter that code page 874 lacks.
void AppendField(std::string& out, const TField& field);

// Stores what AppendField has written, and "" as Null in everything but texts and bytes. Throws an
// Exception for a text that is no such value, and for one that the field would cut.
void StoreField(TField& field, std::string_view text);

}  // namespace kvshare::app
