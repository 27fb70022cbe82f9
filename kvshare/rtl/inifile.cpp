#include "kvshare/rtl/inifile.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/filebytes.h"
#include "kvshare/rtl/iniparser.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::inline rtl {

namespace {

constexpr std::size_t kLongestValue = 2047;

std::string LoadForReading(std::string_view fileName) {
  try {
    return ReadFileBytes(fileName);
  } catch (const EInOutError&) {
    return {};
  }
}

[[noreturn]] void ThrowUnableToWrite(std::string_view fileName) {
  throw EIniFileException(std::string("Unable to write to ").append(fileName));
}

// Only a file that is missing may be made anew: one that cannot be read would lose its contents.
std::string LoadForWriting(std::string_view fileName) {
  try {
    return ReadFileBytes(fileName);
  } catch (const EInOutError& e) {
    constexpr int kFileNotFound = 2;
    if (e.ErrorCode() != kFileNotFound) ThrowUnableToWrite(fileName);
    return {};
  }
}

void Save(std::string_view fileName, std::string_view bytes) {
  try {
    WriteFileBytes(fileName, bytes);
  } catch (const EInOutError&) {
    ThrowUnableToWrite(fileName);
  }
}

// The buffer through which the platform hands over lists: texts each with a zero byte behind it,
// one more zero byte behind the last. The text that passes its end is cut, the next ones are lost.
class ListBuffer {
 public:
  // Cuts `text` to what fits; false when nothing does.
  bool Take(std::string_view& text) {
    if (used_ >= kRoom) return false;
    text = text.substr(0, kRoom - used_);
    used_ += text.size() + 1;
    return true;
  }

 private:
  static constexpr std::size_t kRoom = 16384 - 2;
  std::size_t used_ = 0;
};

struct Entry {
  std::string_view name, value;
};

std::vector<Entry> EntriesOf(std::string_view bytes, std::string_view section) {
  constexpr std::size_t kUsual = 16;
  std::vector<Entry> entries;
  ini::Reader reader(bytes);
  if (!reader.Enter(section)) return entries;
  entries.reserve(kUsual);
  ini::Line line;
  while (reader.NextInSection(line)) {
    if (line.kind == ini::Line::Kind::Key) entries.push_back({line.name, line.value});
  }
  return entries;
}

// By name, the first of equal names first.
class SortedEntries {
 public:
  explicit SortedEntries(std::vector<Entry> entries) : entries_(std::move(entries)) {
    std::ranges::stable_sort(entries_, Less, &Entry::name);
  }

  // "" for a name that is not there.
  std::string_view ValueOf(std::string_view name) const {
    const auto it = std::ranges::lower_bound(entries_, name, Less, &Entry::name);
    return it != entries_.end() && SameText(it->name, name) ? ini::Unquote(it->value) : "";
  }

 private:
  static bool Less(std::string_view a, std::string_view b) { return CompareText(a, b) < 0; }

  std::vector<Entry> entries_;
};

}  // namespace

TIniContents::TIniContents(std::string_view fileName) : bytes_(LoadForReading(fileName)) {}

std::string TIniContents::ReadString(std::string_view section, std::string_view key,
                                     std::string_view fallback) const {
  const std::optional<std::string_view> found = ini::FindValue(bytes_, section, key);
  const std::string_view value =
      found ? *found : fallback.substr(0, fallback.find_last_not_of(' ') + 1);
  return std::string(value.substr(0, kLongestValue));
}

int TIniContents::ReadInteger(std::string_view section, std::string_view key, int fallback) const {
  return StrToIntDef(ReadString(section, key, ""), fallback);  // which reads 0x as `$` by itself
}

bool TIniContents::ReadBool(std::string_view section, std::string_view key, bool fallback) const {
  return ReadInteger(section, key, fallback ? 1 : 0) != 0;
}

void TIniContents::ReadSections(TStrings& sections) const {
  sections.Clear();
  ListBuffer buffer;
  ini::Reader reader(bytes_);
  ini::Line line;
  while (reader.Next(line)) {
    if (line.kind != ini::Line::Kind::Header) continue;
    if (!buffer.Take(line.name)) return;
    sections.Add(line.name);
  }
}

void TIniContents::ReadSection(std::string_view section, TStrings& keys) const {
  const std::vector<Entry> entries = EntriesOf(bytes_, section);  // first: it may be one of `keys`
  keys.Clear();
  ListBuffer buffer;
  for (Entry entry : entries) {
    if (!buffer.Take(entry.name)) return;
    keys.Add(entry.name);
  }
}

void TIniContents::ReadSectionValues(std::string_view section, TStrings& lines) const {
  std::vector<Entry> entries = EntriesOf(bytes_, section);
  const SortedEntries sorted(entries);
  lines.Clear();
  ListBuffer buffer;
  for (Entry& entry : entries) {
    if (!buffer.Take(entry.name)) return;
    // Of a name that is cut, as the last may be, there may be no value.
    const std::string_view value = sorted.ValueOf(entry.name).substr(0, kLongestValue);
    std::string line;
    line.reserve(entry.name.size() + 1 + value.size());
    lines.Add(line.append(entry.name).append("=").append(value));
  }
}

bool TIniContents::SectionExists(std::string_view section) const {
  return ini::Reader(bytes_).Enter(section);
}

bool TIniContents::ValueExists(std::string_view section, std::string_view key) const {
  return ini::FindValue(bytes_, section, key).has_value();
}

std::string TIniFile::ReadString(std::string_view section, std::string_view key,
                                 std::string_view fallback) const {
  return TIniContents(fileName_).ReadString(section, key, fallback);
}

int TIniFile::ReadInteger(std::string_view section, std::string_view key, int fallback) const {
  return TIniContents(fileName_).ReadInteger(section, key, fallback);
}

bool TIniFile::ReadBool(std::string_view section, std::string_view key, bool fallback) const {
  return TIniContents(fileName_).ReadBool(section, key, fallback);
}

void TIniFile::ReadSections(TStrings& sections) const {
  TIniContents(fileName_).ReadSections(sections);
}

void TIniFile::ReadSection(std::string_view section, TStrings& keys) const {
  TIniContents(fileName_).ReadSection(section, keys);
}

void TIniFile::ReadSectionValues(std::string_view section, TStrings& lines) const {
  TIniContents(fileName_).ReadSectionValues(section, lines);
}

bool TIniFile::SectionExists(std::string_view section) const {
  return TIniContents(fileName_).SectionExists(section);
}

bool TIniFile::ValueExists(std::string_view section, std::string_view key) const {
  return TIniContents(fileName_).ValueExists(section, key);
}

void TIniFile::WriteString(std::string_view section, std::string_view key, std::string_view value) {
  if (!ini::CanHold(section, key, value)) ThrowUnableToWrite(fileName_);
  std::string bytes = LoadForWriting(fileName_);
  ini::SetValue(bytes, section, key, value);
  Save(fileName_, bytes);
}

void TIniFile::WriteInteger(std::string_view section, std::string_view key, int value) {
  WriteString(section, key, IntToStr(value));
}

void TIniFile::WriteBool(std::string_view section, std::string_view key, bool value) {
  WriteString(section, key, value ? "1" : "0");
}

void TIniFile::DeleteKey(std::string_view section, std::string_view key) {
  std::string bytes = LoadForWriting(fileName_);
  if (ini::DeleteKey(bytes, section, key)) Save(fileName_, bytes);
}

void TIniFile::EraseSection(std::string_view section) {
  std::string bytes = LoadForWriting(fileName_);
  if (ini::EraseSection(bytes, section)) Save(fileName_, bytes);
}

}  // namespace kvshare::inline rtl
