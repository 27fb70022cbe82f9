#include "kvshare/os/win32/drivetable.h"

#include <algorithm>

#include "kvshare/os/files.h"
#include "kvshare/os/paths.h"
#include "kvshare/os/win32/environment.h"
#include "kvshare/os/win32/handle.h"
#include "kvshare/os/win32/names.h"
#include "kvshare/os/win32/systemnames.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/filenames.h"
#include "kvshare/rtl/iniparser.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::os::win32 {

namespace {

struct KindRow {
  std::string_view name;
  DriveKind kind;
};
constexpr KindRow kKinds[] = {{"fixed", DriveKind::Fixed},
                              {"removable", DriveKind::Removable},
                              {"remote", DriveKind::Remote},
                              {"cdrom", DriveKind::CdRom},
                              {"ram", DriveKind::RamDisk}};

std::optional<DriveKind> KindNamed(std::string_view name) {
  for (const KindRow& row : kKinds) {
    if (SameText(row.name, name)) return row.kind;
  }
  return std::nullopt;
}

bool IsLetter(std::string_view name) {
  return name.size() == 2 && name[1] == ':' && UpCase(name[0]) >= 'A' && UpCase(name[0]) <= 'Z';
}

bool IsShare(std::string_view name) {
  if (!name.starts_with("\\\\") || name.find('/') != std::string_view::npos) return false;
  const std::size_t host = name.find('\\', 2);
  return host != std::string_view::npos && host > 2 && host + 1 < name.size() &&
         name.find('\\', host + 1) == std::string_view::npos;
}

std::string WithBackslashes(std::string_view name) {
  std::string path(name);
  std::ranges::replace(path, '/', '\\');
  return path;
}

std::string WithoutFinalBackslash(std::string path) {
  while (path.ends_with('\\')) path.pop_back();
  return path;
}

bool IsUtf8(std::string_view text) {
  try {
    Wide(text);
    return true;
  } catch (const EConvertError&) {
    return false;
  }
}

// One section while it is read.
struct Section {
  std::string_view name;
  std::optional<std::string_view> path, kind;
};

class TableParser {
 public:
  TableParser(std::string_view home, std::string_view systemRoot) {
    Put({"C:", RootOfDriveC(home), DriveKind::Fixed});
    Put({"Z:", std::string(systemRoot), DriveKind::Fixed});
  }

  DriveTable Parse(std::string_view bytes) {
    std::optional<Section> section;
    ini::Reader reader(bytes);
    for (ini::Line line; reader.Next(line);) {
      if (line.kind == ini::Line::Kind::Header) {
        if (section) Take(*section);
        section = Section{line.name, {}, {}};
      } else if (line.kind == ini::Line::Kind::Key && section) {
        auto& value = SameText(line.name, "Path") ? section->path : section->kind;
        const bool known = SameText(line.name, "Path") || SameText(line.name, "Kind");
        if (known && !value) value = ini::Unquote(line.value);
      }
    }
    if (section) Take(*section);
    return std::move(table_);
  }

 private:
  void Take(const Section& section) {
    const std::string_view name = section.name;
    const bool share = IsShare(name);
    if (!share && !IsLetter(name)) return Refuse(name, R"(is no drive (X: or \\host\share))");
    if (Seen(name)) return Refuse(name, "stands twice, the first one counts");
    seen_.emplace_back(name);
    const std::string path = PlainName(section.path.value_or(""));
    const bool absolute = !RootOf(path).empty() && path.find('\0') == std::string::npos;
    if (!absolute || !IsUtf8(path)) return Refuse(name, "has no absolute Path");
    const auto kind = KindNamed(section.kind.value_or(share ? "remote" : "fixed"));
    if (!kind) return Refuse(name, "has a Kind other than fixed, removable, remote, cdrom, ram");
    Put({share ? std::string(name) : UpperCase(name), WithoutFinalBackslash(path), *kind});
  }

  bool Seen(std::string_view name) const {
    return std::ranges::any_of(seen_, [name](std::string_view s) { return SameText(s, name); });
  }

  void Refuse(std::string_view name, std::string_view reason) {
    table_.errors.push_back("[" + Cp874ToUtf8Lossy(name) + "] " + std::string(reason));
  }

  void Put(Drive drive) {
    const auto before = [](const Drive& a, const Drive& b) {
      const bool aShare = a.name.starts_with('\\');
      const bool bShare = b.name.starts_with('\\');
      return aShare != bShare ? bShare : !aShare && a.name < b.name;
    };
    std::vector<Drive>& drives = table_.drives;
    const auto same = [&drive](const Drive& d) { return SameText(d.name, drive.name); };
    if (const auto it = std::ranges::find_if(drives, same); it != drives.end()) {
      *it = std::move(drive);
    } else {
      drives.insert(std::ranges::upper_bound(drives, drive, before), std::move(drive));
    }
  }

  DriveTable table_;
  std::vector<std::string_view> seen_;
};

// The system's letters.

constexpr int kLetters = 26;

bool SystemHasLetter(int number) {  // 0 is A:
  return (GetLogicalDrives() >> number & 1U) != 0;
}

Drive SystemDrive(int number) {
  const std::string name = {static_cast<char>('A' + number), ':'};
  const std::wstring root = Wide(name + '\\');
  return {name, name, static_cast<DriveKind>(GetDriveTypeW(root.c_str()))};
}

DriveTable SystemTable() {
  DriveTable table;
  for (int number = 0; number < kLetters; ++number) {
    if (SystemHasLetter(number)) table.drives.push_back(SystemDrive(number));
  }
  return table;
}

std::optional<std::string> SystemRoot(std::string_view drive) {
  if (IsLetter(drive)) {
    const std::string name = UpperCase(drive);
    return SystemHasLetter(name[0] - 'A') ? std::optional(name) : std::nullopt;
  }
  const std::string share = WithBackslashes(drive);
  const bool plain = share.find('\0') == std::string::npos && !IsDeviceName(share);
  if (!IsShare(share) || !plain) return std::nullopt;
  try {
    return Cp874ToUtf8(share);
  } catch (const EConvertError&) {
    return std::nullopt;
  }
}

// The home folder's drives.

bool IsThere(const std::string& path) {
  return GetFileAttributesW(CallName(path).c_str()) != INVALID_FILE_ATTRIBUTES;
}

DriveTable HomeTable(const std::string& home) {
  constexpr std::size_t kMostBytes = std::size_t{1} << 20;
  const std::string file = home + R"(\drives.ini)";
  std::string bytes;
  std::string error;
  try {
    if (IsThere(file)) bytes = ReadNativeFile(file, kMostBytes);
  } catch (const EInOutError& e) {
    error = "drives.ini: " + Cp874ToUtf8Lossy(e.Message());
  }
  const std::string full = FullNativeName(home);
  DriveTable table = ParseDriveTable(bytes, home, RootOf(full));
  if (!error.empty()) table.errors.push_back(std::move(error));
  return table;
}

}  // namespace

const Drive* DriveTable::Find(std::string_view name) const {
  const std::string wanted = WithBackslashes(name);
  const auto same = [&wanted](const Drive& drive) { return SameText(drive.name, wanted); };
  const auto it = std::ranges::find_if(drives, same);
  return it != drives.end() ? &*it : nullptr;
}

DriveTable ParseDriveTable(std::string_view bytes, std::string_view home,
                           std::string_view systemRoot) {
  return TableParser(home, systemRoot).Parse(bytes);
}

std::string RootOfDriveC(std::string_view home) {
  return WithoutFinalBackslash(std::string(home)) + R"(\drive_c)";
}

bool DrivesAreTheSystems() {
  return Variable("KVSHARE_HOME").empty();
}

DriveTable CurrentDriveTable() {
  return DrivesAreTheSystems() ? SystemTable() : HomeTable(HomeFolder());
}

std::string_view DriveOf(std::string_view name) {
  const std::string_view drive = ExtractFileDrive(name);
  if (!drive.starts_with('\\')) return drive;
  const std::size_t host = drive.find_first_of("\\/", 2);  // `/` separates too
  if (host == std::string_view::npos) return drive;
  return drive.substr(0, drive.find_first_of("\\/", host + 1));
}

std::optional<std::string> RootOfDrive(std::string_view drive) {
  if (DrivesAreTheSystems()) return SystemRoot(drive);
  const DriveTable table = CurrentDriveTable();
  const Drive* found = table.Find(drive);
  return found != nullptr ? std::optional(found->root) : std::nullopt;
}

}  // namespace kvshare::os::win32
