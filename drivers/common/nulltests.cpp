#include "drivers/common/nulltests.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace kvshare::drivers {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";
// What a condition can stand behind.
constexpr std::string_view kBeforeConditions[] = {"OR",     "WHERE", "NOT",  "WHEN", "HAVING",
                                                  "SELECT", "ON",    "THEN", "ELSE"};

constexpr char Upper(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c;
}

constexpr bool IsInWord(char c) {
  const char upper = Upper(c);
  return (upper >= 'A' && upper <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '$' ||
         static_cast<unsigned char>(c) >= 0x80;
}

bool IsWord(std::string_view word, std::string_view upper) {
  return std::ranges::equal(word, upper, {}, Upper);
}

std::string_view TakeWord(std::string_view& text) {
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
  const auto size =
      static_cast<std::size_t>(std::ranges::find_if_not(text, IsInWord) - text.begin());
  const std::string_view word = text.substr(0, size);
  text.remove_prefix(size);
  return word;
}

std::string_view TakeLastWord(std::string_view& text) {
  std::size_t begin = text.size();
  while (begin > 0 && IsInWord(text[begin - 1])) --begin;
  const std::string_view word = text.substr(begin);
  text.remove_suffix(word.size());
  return word;
}

bool BeginsNullTest(std::string_view behind) {
  if (!IsWord(TakeWord(behind), "IS")) return false;
  std::string_view word = TakeWord(behind);
  if (IsWord(word, "NOT")) word = TakeWord(behind);
  return IsWord(word, "NULL");
}

// Whether an AND behind this text joins conditions, and does not belong to a BETWEEN.
bool AndJoins(std::string_view text) {
  bool between = false;
  while (!text.empty()) {
    const std::string_view word = TakeWord(text);
    if (IsWord(word, "BETWEEN")) between = true;
    if (IsWord(word, "AND")) between = false;
    if (!word.empty() || text.empty()) continue;
    constexpr std::string_view kPlain = "?.,+*";
    if (between && kPlain.find(text.front()) == std::string_view::npos) return false;
    text.remove_prefix(1);
  }
  return !between;
}

std::string TextBefore(const data::StatementParts& statement, std::size_t place) {
  std::string text = statement.texts.front();
  for (std::size_t i = 1; i <= place; ++i) text.append("?").append(statement.texts[i]);
  return text;
}

bool EndsBeforeCondition(std::string_view before) {
  before.remove_suffix(before.size() - (before.find_last_not_of(kBlanks) + 1));
  if (before.empty()) return false;
  const std::size_t line = before.rfind('\n') + 1;  // 0 where there is none
  if (before.find("--", line) != std::string_view::npos) return false;
  if (before.back() == '(' || before.back() == ',') return true;
  const std::string_view word = TakeLastWord(before);
  if (IsWord(word, "AND")) return AndJoins(before);
  return std::ranges::any_of(kBeforeConditions,
                             [word](std::string_view known) { return IsWord(word, known); });
}

}  // namespace

bool IsNullTest(const data::StatementParts& statement, std::size_t place) {
  return BeginsNullTest(statement.texts[place + 1]) &&
         EndsBeforeCondition(TextBefore(statement, place));
}

}  // namespace kvshare::drivers
