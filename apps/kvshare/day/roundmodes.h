// Rounding modes as a command line names them.
#pragma once

#include <optional>
#include <string_view>

#include "kvshare/money/money.h"

namespace kvshare::app {

// The two code lists that settings and database columns use.
enum class CodeList : std::uint8_t { Full, Price };

// The mode of a name in any letter case or of a code; nothing for another text. A code that its
// list lacks is mrNoRound, as the library reads it.
std::optional<TKovraMoneyRound> ParseRoundMode(std::string_view text, CodeList list);

// Whether the text is a code that its list lacks.
bool IsUnlistedCode(std::string_view text, CodeList list);

// The mode of an option's value, by name or full-list code; refuses the usage for any other.
TKovraMoneyRound UsageRoundMode(std::string_view option, std::string_view text);

}  // namespace kvshare::app
