// What each reader of dates makes of a text, and why.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kvshare/rtl/datetime.h"

namespace kvshare::app {

// The reason where a reader's rule is not known here; tests look for it.
inline constexpr std::string_view kUnexplained = "by a rule that is not explained here";

// The answer of one reader. Texts are code page 874.
struct Reading {
  std::string_view reader;  // `era 543`, `era 0`, `loose`, `stamp`: as `date parse` has them
  std::optional<TDateTime> moment;  // none: refused
  std::string why;                  // how the text was read, or the rule that refused it
  std::vector<std::string> warnings;
};

// Asks the readers of typed dates, and the reader of stamps where the text could be one. Whether a
// text is read, and as which date, the readers themselves tell; `today` decides what `loose` makes
// of a year and what lies far ahead.
std::vector<Reading> ExplainDate(std::string_view text, TDateTime today);

}  // namespace kvshare::app
