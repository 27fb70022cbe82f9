#include "apps/receipts/csvhead.h"

#include "apps/receipts/usertexts.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::receipts {

namespace {

constexpr std::string_view kSeparators = ",;\t";
constexpr std::string_view kLineEnds = "\r\n";
constexpr std::size_t kLongestHead = std::size_t{1} << 20;

// The bytes of the first line, without its end; npos where it does not end.
std::size_t LineLength(std::string_view text) {
  bool quoted = false;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] == '"') quoted = !quoted;
    if (!quoted && kLineEnds.find(text[at]) != std::string_view::npos) return at;
  }
  return std::string_view::npos;
}

std::string SeparatorsOf(std::string_view line) {
  std::string found;
  bool quoted = false;
  for (const char c : line) {
    if (c == '"') quoted = !quoted;
    const bool separates = !quoted && kSeparators.find(c) != std::string_view::npos;
    if (separates && found.find(c) == std::string::npos) found += c;
  }
  return found;
}

}  // namespace

std::optional<CsvHead> ReadCsvHead(std::string_view start, bool final) {
  const std::size_t begin = start.find_first_not_of("\r\n \t");
  const std::string_view text = begin == std::string_view::npos ? "" : start.substr(begin);
  const std::size_t length = LineLength(text);
  const bool ends = length != std::string_view::npos || final || start.size() >= kLongestHead;
  if (!ends) return std::nullopt;
  const std::string_view line = text.substr(0, length);
  if (line.size() == 5 && SameText(line.substr(0, 4), "sep=")) return CsvHead{line[4], true, {}};
  const std::string found = SeparatorsOf(line);
  if (found.size() > 1) {
    return CsvHead{found.front(), false,
                   SayUtf8("the header has more than one of comma, semicolon and tab: name the "
                           "separator with --separator")};
  }
  return CsvHead{found.empty() ? ',' : found.front(), false, {}};
}

}  // namespace kvshare::receipts
