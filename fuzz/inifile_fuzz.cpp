// Any file: what was written reads back, every other value stays, and lists agree with single
// reads. The input is a section, a key and a value, a line each, and the file.
#include "kvshare/rtl/inifile.h"

#include <cstdint>
#include <cstdlib>
#include <fstream>

#include "kvshare/rtl/iniparser.h"
#include "kvshare/rtl/lines.h"
#include "kvshare/rtl/strutils.h"
#include "tests/support.h"

namespace {

using namespace kvshare;

void Require(bool held) {
  if (!held) std::abort();
}

bool SameValue(std::string_view a, std::string_view b, std::string_view section,
               std::string_view key) {
  return ini::FindValue(a, section, key) == ini::FindValue(b, section, key);
}

// Every key of `before` but the named one has the same value in `after`.
void OthersStay(std::string_view before, std::string_view after, std::string_view section,
                std::string_view key) {
  ini::Reader reader(before);
  ini::Line line;
  std::string_view current;
  bool inSection = false;
  for (int lines = 0; lines < 64 && reader.Next(line); ++lines) {  // each is a search of the file
    if (line.kind == ini::Line::Kind::Header) current = line.name;
    inSection |= line.kind == ini::Line::Kind::Header;
    if (line.kind != ini::Line::Kind::Key || !inSection) continue;
    if (SameText(current, section) && SameText(line.name, key)) continue;
    Require(SameValue(before, after, current, line.name));
  }
}

void Edits(std::string_view file, std::string_view section, std::string_view key,
           std::string_view value) {
  if (!ini::CanHold(section, key, value)) return;
  std::string bytes(file);
  ini::SetValue(bytes, section, key, value);
  Require(ini::FindValue(bytes, section, key) == value);
  OthersStay(file, bytes, section, key);

  const std::string written = bytes;
  Require(ini::DeleteKey(bytes, section, key) && bytes.size() < written.size());
  OthersStay(written, bytes, section, key);
  Require(ini::EraseSection(bytes, section) || bytes.empty());
}

void Lists(std::string_view file) {
  static const TemporaryFolder folder;
  static TIniFile ini(folder.File("fuzz.ini"));
  std::ofstream(ini.FileName(), std::ios::binary) << file;

  TStringList sections;
  TStringList keys;
  TStringList lines;
  ini.ReadSections(sections);
  for (int i = 0; i < std::min(sections.Count(), 4); ++i) {
    const std::string& section = sections[i];
    ini.ReadSection(section, keys);
    ini.ReadSectionValues(section, lines);
    Require(ini.SectionExists(section) && keys.Count() == lines.Count());
    for (int k = 0; k < std::min(keys.Count(), 4); ++k) {
      Require(lines[k] == keys[k] + "=" + ini.ReadString(section, keys[k], "?"));
      Require(ini.ValueExists(section, keys[k]));
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string input(data, data + size);
  std::string_view rest = input;
  std::string_view names[3];
  for (std::string_view& name : names) name = rest.empty() ? rest : TakeLine(rest);
  Edits(rest, names[0], names[1], names[2]);
  Lists(rest);
  return 0;
}
