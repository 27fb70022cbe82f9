#include "apps/kvshare/day/roundmodes.h"

#include <charconv>
#include <string>

#include "apps/kvshare/terminal/usage.h"

namespace kvshare::app {

namespace {

// Codes are stored as a Word and typed as plain digits.
std::optional<Word> ParseCode(std::string_view text) {
  Word code = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), code);
  if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  return code;
}

}  // namespace

std::optional<TKovraMoneyRound> ParseRoundMode(std::string_view text, CodeList list) {
  if (const auto code = ParseCode(text)) {
    return list == CodeList::Price ? TKovraMoney::PrRoundType(*code)
                                   : TKovraMoney::RoundType(*code);
  }
  if (const TRoundModeInfo* info = FindRoundMode(text)) return info->Mode;
  return std::nullopt;
}

bool IsUnlistedCode(std::string_view text, CodeList list) {
  const auto code = ParseCode(text);
  return code && *code >= (list == CodeList::Price ? kPriceRoundCodes : kRoundModes);
}

TKovraMoneyRound UsageRoundMode(std::string_view option, std::string_view text) {
  const auto mode = ParseRoundMode(text, CodeList::Full);
  if (!mode || IsUnlistedCode(text, CodeList::Full)) {
    RefuseUsage(option, "'" + std::string(text) +
                            "' is no rounding mode; `kvshare round --list` shows them");
  }
  return *mode;
}

}  // namespace kvshare::app
