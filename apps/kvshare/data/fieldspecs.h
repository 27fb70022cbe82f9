// Fields of a dataset as a command line names them: NAME:TYPE[:SIZE[:DECIMALS]][:required].
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "kvshare/data/records/fieldtypes.h"

namespace kvshare::app {

// Commas between them; code page 874. SIZE is the bytes of a text or the digits of a decimal,
// 0 where the text does not say them. Throws EConvertError with what is wrong.
std::vector<TFieldDef> ParseFieldSpecs(std::string_view specs);

// One field as ParseFieldSpecs reads it, as long as its name has no `:` and no `,`.
std::string FieldSpec(const TFieldDef& field);

// The types, for a message: "string, fixedchar, ...".
std::string FieldSpecTypes();

}  // namespace kvshare::app
