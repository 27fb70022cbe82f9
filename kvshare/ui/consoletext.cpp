#include "kvshare/ui/consoletext.h"

#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/lines.h"

namespace kvshare {

namespace {

char Harmless(char c) {
  constexpr char kNoLetter = '\xFF';
  const auto byte = static_cast<unsigned char>(c);
  return byte < 0x20 || byte == 0x7F ? kNoLetter : c;
}

// How many bytes of a text fill at most `width` columns.
std::size_t BytesThatFit(std::string_view text, std::size_t width) {
  std::size_t columns = 0;
  std::size_t at = 0;
  for (; at < text.size(); ++at) {
    if (!IsCombiningCp874(static_cast<unsigned char>(text[at])) && ++columns > width) break;
  }
  return at;
}

}  // namespace

void AppendLines(std::string& out, std::string_view text) {
  while (!text.empty()) {
    const std::string_view line = TakeLine(text);
    for (const char c : line) out += c == '\t' ? c : Harmless(c);
    const bool hasEnd = text.data() != line.data() + line.size();
    if (hasEnd) out += '\n';
  }
}

std::string OneLine(std::string_view text) {
  std::string line;
  line.reserve(text.size());
  while (!text.empty()) {
    for (const char c : TakeLine(text)) line += c == '\t' ? ' ' : Harmless(c);
    if (!text.empty()) line += ' ';
  }
  return line;
}

std::vector<std::string> CellLines(std::string_view text, std::size_t width) {
  std::vector<std::string> lines;
  do {
    const std::string line = OneLine(TakeLine(text));
    std::string_view rest = line;
    do {
      const std::size_t fitting = BytesThatFit(rest, width);
      lines.emplace_back(rest.substr(0, fitting));
      rest.remove_prefix(fitting);
    } while (!rest.empty());
  } while (!text.empty());
  return lines;
}

}  // namespace kvshare
