#include "kvshare/rtl/inifile.h"

#include <map>
#include <optional>
#include <utility>

#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/files.h"
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

struct TextLess {
  bool operator()(std::string_view a, std::string_view b) const { return CompareText(a, b) < 0; }
};
using ValueOfKey = std::map<std::string_view, std::string_view, TextLess>;

void ListKeys(std::string_view bytes, std::string_view section, TStrings& keys) {
  keys.Clear();
  ini::Reader reader(bytes);
  if (!reader.Enter(section)) return;
  ListBuffer buffer;
  ini::Line line;
  while (reader.NextInSection(line)) {
    if (line.kind != ini::Line::Kind::Key) continue;
    if (!buffer.Take(line.name)) return;
    keys.Add(line.name);
  }
}

ValueOfKey FirstValues(std::string_view bytes, std::string_view section) {
  ValueOfKey values;
  ini::Reader reader(bytes);
  if (!reader.Enter(section)) return values;
  ini::Line line;
  while (reader.NextInSection(line)) {
    if (line.kind == ini::Line::Kind::Key) values.emplace(line.name, ini::Unquote(line.value));
  }
  return values;
}

}  // namespace

std::string TIniFile::ReadString(std::string_view section, std::string_view key,
                                 std::string_view fallback) const {
  const std::string bytes = LoadForReading(fileName_);
  const std::optional<std::string_view> found = ini::FindValue(bytes, section, key);
  const std::string_view value =
      found ? *found : fallback.substr(0, fallback.find_last_not_of(' ') + 1);
  return std::string(value.substr(0, kLongestValue));
}

int TIniFile::ReadInteger(std::string_view section, std::string_view key, int fallback) const {
  return StrToIntDef(ReadString(section, key, ""), fallback);  // which reads 0x as `$` by itself
}

bool TIniFile::ReadBool(std::string_view section, std::string_view key, bool fallback) const {
  return ReadInteger(section, key, fallback ? 1 : 0) != 0;
}

void TIniFile::ReadSections(TStrings& sections) const {
  const std::string bytes = LoadForReading(fileName_);
  sections.Clear();
  ListBuffer buffer;
  ini::Reader reader(bytes);
  ini::Line line;
  while (reader.Next(line)) {
    if (line.kind != ini::Line::Kind::Header) continue;
    if (!buffer.Take(line.name)) return;
    sections.Add(line.name);
  }
}

void TIniFile::ReadSection(std::string_view section, TStrings& keys) const {
  ListKeys(LoadForReading(fileName_), section, keys);
}

void TIniFile::ReadSectionValues(std::string_view section, TStrings& lines) const {
  const std::string bytes = LoadForReading(fileName_);
  TStringList keys;
  ListKeys(bytes, section, keys);
  const ValueOfKey values = FirstValues(bytes, section);
  lines.Clear();
  for (const std::string& key : keys) {
    const auto it = values.find(key);  // the last key may be cut
    const std::string_view value = it == values.end() ? std::string_view() : it->second;
    lines.Add(std::string(key).append("=").append(value, 0, kLongestValue));
  }
}

bool TIniFile::SectionExists(std::string_view section) const {
  const std::string bytes = LoadForReading(fileName_);
  return ini::Reader(bytes).Enter(section);
}

bool TIniFile::ValueExists(std::string_view section, std::string_view key) const {
  const std::string bytes = LoadForReading(fileName_);
  return ini::FindValue(bytes, section, key).has_value();
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
