#include "kvshare/rtl/strutils.h"

#include <algorithm>
#include <cstddef>

#include "kvshare/rtl/bytepattern.h"

namespace kvshare::inline rtl {

namespace {

bool IsEdge(char c) {
  return static_cast<unsigned char>(c) <= 32;
}

std::string Mapped(std::string_view text, char (*map)(char)) {
  std::string out(text);
  std::ranges::transform(out, out.begin(), map);
  return out;
}

}  // namespace

std::string_view TrimLeft(std::string_view text) {
  while (!text.empty() && IsEdge(text.front())) text.remove_prefix(1);
  return text;
}

std::string_view TrimRight(std::string_view text) {
  while (!text.empty() && IsEdge(text.back())) text.remove_suffix(1);
  return text;
}

std::string_view Trim(std::string_view text) {
  return TrimLeft(TrimRight(text));
}

std::string UpperCase(std::string_view text) {
  return Mapped(text, UpCase);
}

std::string LowerCase(std::string_view text) {
  return Mapped(text, LowCase);
}

std::string AnsiUpperCase(std::string_view text) {
  return UpperCase(text);
}

std::string AnsiLowerCase(std::string_view text) {
  return LowerCase(text);
}

int Pos(std::string_view sub, std::string_view text) {
  if (sub.empty()) return 0;
  return static_cast<int>(BytePattern(sub).FindIn(text) + 1);  // kNowhere + 1 is 0
}

std::string_view Copy(std::string_view text, int index, int count) {
  const auto start = static_cast<std::size_t>(std::max(index, 1)) - 1;
  if (count <= 0 || start >= text.size()) return {};
  return text.substr(start, static_cast<std::size_t>(count));
}

void Delete(std::string& text, int index, int count) {
  if (index < 1 || count <= 0) return;
  const auto start = static_cast<std::size_t>(index) - 1;
  if (start < text.size()) text.erase(start, static_cast<std::size_t>(count));
}

void Insert(std::string_view part, std::string& text, int index) {
  const auto start = static_cast<std::size_t>(std::max(index, 1)) - 1;
  text.insert(std::min(start, text.size()), part);
}

int CompareText(std::string_view a, std::string_view b) {
  const std::size_t common = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < common; ++i) {
    if (a[i] == b[i]) continue;
    const auto x = static_cast<unsigned char>(UpCase(a[i]));
    const auto y = static_cast<unsigned char>(UpCase(b[i]));
    if (x != y) return x < y ? -1 : 1;
  }
  if (a.size() == b.size()) return 0;
  return a.size() < b.size() ? -1 : 1;
}

bool SameText(std::string_view a, std::string_view b) {
  return a.size() == b.size() && CompareText(a, b) == 0;
}

int AnsiCompareText(std::string_view a, std::string_view b) {
  return CompareText(a, b);
}

int AnsiCompareStr(std::string_view a, std::string_view b) {
  return a.compare(b);  // std::char_traits<char> orders unsigned bytes
}

std::string StringReplace(std::string_view text, std::string_view old, std::string_view with,
                          TReplaceFlags flags) {
  if (old.empty()) return std::string(text);
  using Letters = BytePattern::Letters;
  const BytePattern pattern(old, flags.IgnoreCase ? Letters::IgnoringCase : Letters::AsTheyAre);
  std::string out;
  out.reserve(text.size());
  for (std::string_view rest = text;;) {
    const std::size_t at = pattern.FindIn(rest);
    if (at == BytePattern::kNowhere) return out.append(rest);
    out.append(rest, 0, at).append(with);
    rest.remove_prefix(at + old.size());
    if (!flags.ReplaceAll) return out.append(rest);
  }
}

std::string QuotedStr(std::string_view text) {
  std::string out;
  out.reserve(text.size() + 2);
  out += '\'';
  for (const char c : text) {
    if (c == '\'') out += c;
    out += c;
  }
  out += '\'';
  return out;
}

std::string AdjustLineBreaks(std::string_view text) {
  std::string out;
  out.reserve(text.size() + text.size() / 16);
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c != '\r' && c != '\n') {
      out += c;
      continue;
    }
    out += "\r\n";
    if (c == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ++i;
  }
  return out;
}

std::string StringOfChar(char c, int count) {
  std::string out;
  if (count > 0) out.assign(static_cast<std::size_t>(count), c);
  return out;
}

}  // namespace kvshare::inline rtl
