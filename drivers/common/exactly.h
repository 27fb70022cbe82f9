// Conditions that hold for exactly one value, and quoted names, for servers that need more than `=`
// and `"`.
#pragma once

#include <string>
#include <string_view>

#include "kvshare/data/contract/driver.h"

namespace kvshare::drivers {

// What stands behind the `=`, around the place of a value; and around the column too, where both
// sides need it.
struct ExactForm {
  const char* before;
  const char* behind;
  bool bothSides = false;
};
struct ExactForms {
  ExactForm text;
  ExactForm decimal;
};
inline constexpr ExactForms kPlainForms{{"", ""}, {"", ""}};
// Collations take letters of either case, and often blanks at the end, for the same; a text beside
// a decimal makes both of them reals.
inline constexpr ExactForms kMariaDbForms{{"", " COLLATE utf8mb4_nopad_bin"},
                                          {"CAST(", " AS DECIMAL(65,30))"}};
inline constexpr ExactForms kMySqlForms{{"", " COLLATE utf8mb4_bin"},
                                        {"CAST(", " AS DECIMAL(65,30))"}};
// What the server has computed and stored may differ from the amount that is read past the 15th
// digit. The function is one of our own connections alone.
inline constexpr ExactForms kSqliteForms{{"", " COLLATE BINARY"}, {"kvshare_decimal(", ")", true}};
inline constexpr ExactForms kPlainSqliteForms{{"", " COLLATE BINARY"},
                                              {"printf('%.15g', ", ")", true}};

data::Connection::Condition ExactlyBy(const ExactForms& forms, std::string_view column,
                                      data::ColumnKind kind);

// The name between two marks; a mark inside it stands twice.
std::string QuotedBy(char mark, std::string_view name);

}  // namespace kvshare::drivers
