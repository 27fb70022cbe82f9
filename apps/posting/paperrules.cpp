#include "apps/posting/paperrules.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "kvshare/rtl/format.h"

namespace kvshare::posting {

namespace {

constexpr std::string_view kLine = "line", kDocument = "document";
constexpr std::string_view kNet = "net", kGross = "gross";
constexpr std::string_view kNone = "-";

std::vector<std::string_view> WordsOf(std::string_view text) {
  std::vector<std::string_view> words;
  while (!text.empty()) {
    const std::size_t blank = std::min(text.find(' '), text.size());
    words.push_back(text.substr(0, blank));
    text.remove_prefix(std::min(blank + 1, text.size()));
  }
  return words;
}

}  // namespace

std::string TextOfRules(const receipts::Rules& rules) {
  return Format("%s %s %s %s %s",
                {RoundModeInfo(rules.lineMode).Name, RoundModeInfo(rules.vatMode).Name,
                 rules.vatPerLine ? kLine : kDocument, rules.priceIncludesVat ? kGross : kNet,
                 rules.cashStep ? RoundModeInfo(*rules.cashStep).Name : kNone});
}

std::optional<receipts::Rules> RulesOfText(std::string_view text) {
  const std::vector<std::string_view> words = WordsOf(text);
  if (words.size() != 5) return std::nullopt;
  const TRoundModeInfo* line = FindRoundMode(words[0]);
  const TRoundModeInfo* vat = FindRoundMode(words[1]);
  const TRoundModeInfo* cash = FindRoundMode(words[4]);
  const bool known = (words[2] == kLine || words[2] == kDocument) &&
                     (words[3] == kNet || words[3] == kGross) &&
                     (cash != nullptr || words[4] == kNone);
  if (line == nullptr || vat == nullptr || !known) return std::nullopt;
  receipts::Rules rules{line->Mode, vat->Mode, std::nullopt, words[2] == kLine, words[3] == kGross};
  if (cash != nullptr) rules.cashStep = cash->Mode;
  return rules;
}

}  // namespace kvshare::posting
