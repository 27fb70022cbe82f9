#include "kvshare/rtl/iniparser.h"

#include <algorithm>

#include "kvshare/rtl/lines.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::ini {

namespace {

constexpr auto npos = std::string_view::npos;

std::string_view Strip(std::string_view text, std::string_view bytes) {
  text.remove_prefix(std::min(text.find_first_not_of(bytes), text.size()));
  return text.substr(0, text.find_last_not_of(bytes) + 1);  // npos + 1 is 0
}

constexpr std::string_view kBlank = " ";
constexpr std::string_view kBlankOrTab = " \t";

// `text` without its line end.
Line Parse(std::string_view text) {
  Line line;
  const std::size_t first = text.find_first_not_of(kBlank);
  if (first == npos || text[first] == ';') return line;
  const std::size_t close = text[first] == '[' ? text.find(']', first) : npos;
  if (close != npos) {
    line.kind = Line::Kind::Header;
    line.name = Strip(text.substr(first + 1, close - first - 1), kBlank);
    return line;
  }
  const std::size_t equals = text.find('=', first);
  if (equals == npos) return line;
  line.kind = Line::Kind::Key;
  line.name = Strip(text.substr(0, equals), kBlankOrTab);
  line.value = Strip(text.substr(equals + 1), kBlankOrTab);
  return line;
}

bool IsKey(const Line& line, std::string_view key) {
  return line.kind == Line::Kind::Key && SameText(line.name, key);
}

std::string WrittenValue(std::string_view value) {
  if (Unquote(Strip(value, kBlankOrTab)) == value) return std::string(value);
  return std::string("\"").append(value).append("\"");
}

std::string WrittenKey(std::string_view key, std::string_view value) {
  return std::string(key).append("=").append(WrittenValue(value));
}

bool HasLineBreak(std::string_view text) {
  return text.find_first_of("\r\n") != npos;
}

// Whether the last line lacks its end.
bool EndsOpen(std::string_view bytes) {
  return !bytes.empty() && !HasLineBreak(bytes.substr(bytes.size() - 1));
}

// How the file ends its lines.
std::string LineEnd(std::string_view bytes) {
  const std::size_t at = bytes.find_first_of("\r\n");
  if (at == npos || bytes.substr(at).starts_with("\r\n")) return "\r\n";
  return {bytes[at]};
}

void AddSection(std::string& bytes, std::string_view section, std::string_view line) {
  const std::string end = LineEnd(bytes);
  if (EndsOpen(bytes)) bytes += end;
  if (!bytes.empty() && !bytes.ends_with(end + end)) bytes += end;
  bytes.append("[").append(section).append("]").append(end).append(line).append(end);
}

void InsertLine(std::string& bytes, std::size_t at, std::string_view line) {
  const std::string end = LineEnd(bytes);
  std::string added = EndsOpen(std::string_view{bytes}.substr(0, at)) ? end : std::string();
  bytes.insert(at, added.append(line).append(end));
}

}  // namespace

bool Reader::Next(Line& line) {
  if (rest_.empty()) return false;
  const std::string_view before = rest_;
  line = Parse(TakeLine(rest_));
  line.whole = before.substr(0, before.size() - rest_.size());
  return true;
}

bool Reader::NextInSection(Line& line) {
  return Next(line) && line.kind != Line::Kind::Header;
}

// A file is mostly lines that are no headers: only those with a `[` are looked at.
bool Reader::SkipToHeader() {
  for (std::size_t at = rest_.find('['); at != npos; at = rest_.find('[', at + 1)) {
    const std::size_t before = rest_.substr(0, at).find_last_not_of(kBlank);
    if (before != npos && !HasLineBreak(rest_.substr(before, 1))) continue;
    rest_.remove_prefix(at);
    return true;
  }
  return false;
}

bool Reader::Enter(std::string_view section) {
  Line line;
  while (SkipToHeader() && Next(line)) {
    if (line.kind == Line::Kind::Header && SameText(line.name, section)) return true;
  }
  rest_ = {};
  return false;
}

std::string_view Unquote(std::string_view value) {
  const bool quoted = value.size() >= 2 && value.front() == value.back() &&
                      (value.front() == '"' || value.front() == '\'');
  return quoted ? value.substr(1, value.size() - 2) : value;
}

std::optional<std::string_view> FindValue(std::string_view bytes, std::string_view section,
                                          std::string_view key) {
  Reader reader(bytes);
  if (!reader.Enter(section)) return std::nullopt;
  Line line;
  while (reader.NextInSection(line)) {
    if (IsKey(line, key)) return Unquote(line.value);
  }
  return std::nullopt;
}

bool CanHold(std::string_view section, std::string_view key, std::string_view value) {
  if (HasLineBreak(section) || HasLineBreak(key) || HasLineBreak(value)) return false;
  const std::string headerText = std::string("[").append(section).append("]");
  const std::string keyText = WrittenKey(key, value);
  const Line header = Parse(headerText);
  const Line line = Parse(keyText);
  return header.kind == Line::Kind::Header && header.name == section &&
         line.kind == Line::Kind::Key && line.name == key;
}

void SetValue(std::string& bytes, std::string_view section, std::string_view key,
              std::string_view value) {
  Reader reader(bytes);
  if (!reader.Enter(section)) {
    AddSection(bytes, section, WrittenKey(key, value));
    return;
  }
  std::size_t end = bytes.size() - reader.Left();
  Line line;
  while (reader.NextInSection(line)) {
    if (IsKey(line, key)) {
      const auto at = static_cast<std::size_t>(line.value.data() - bytes.data());
      bytes.replace(at, line.value.size(), WrittenValue(value));
      return;
    }
    if (!Trim(line.whole).empty()) end = bytes.size() - reader.Left();
  }
  InsertLine(bytes, end, WrittenKey(key, value));
}

bool DeleteKey(std::string& bytes, std::string_view section, std::string_view key) {
  Reader reader(bytes);
  if (!reader.Enter(section)) return false;
  Line line;
  while (reader.NextInSection(line)) {
    if (!IsKey(line, key)) continue;
    bytes.erase(bytes.size() - reader.Left() - line.whole.size(), line.whole.size());
    return true;
  }
  return false;
}

bool EraseSection(std::string& bytes, std::string_view section) {
  Reader reader(bytes);
  Line line;
  do {
    if (!reader.Next(line)) return false;
  } while (line.kind != Line::Kind::Header || !SameText(line.name, section));
  const std::size_t start = bytes.size() - reader.Left() - line.whole.size();
  std::size_t end = bytes.size() - reader.Left();
  while (reader.NextInSection(line)) end = bytes.size() - reader.Left();
  bytes.erase(start, end - start);
  return true;
}

}  // namespace kvshare::ini
