#include "kvshare/os/drives.h"

#include <sys/stat.h>
#include <sys/statvfs.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <ctime>
#include <limits>
#include <optional>

#include "kvshare/os/paths.h"
#include "kvshare/os/posix/descriptor.h"
#include "kvshare/os/posix/drivetable.h"
#include "kvshare/os/posix/readwhole.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/filenames.h"
#include "kvshare/rtl/iniparser.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::os {

namespace posix {

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

// One section while it is read.
struct Section {
  std::string_view name;
  std::optional<std::string_view> path, kind;
};

class TableParser {
 public:
  explicit TableParser(std::string_view home) {
    if (!home.empty()) Put({"C:", std::string(home) + "/drive_c", DriveKind::Fixed});
    Put({"Z:", "", DriveKind::Fixed});
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
    const std::string_view path = section.path.value_or("");
    if (!path.starts_with('/') || path.find('\0') != std::string_view::npos) {
      return Refuse(name, "has no absolute Path");
    }
    const auto kind = KindNamed(section.kind.value_or(share ? "remote" : "fixed"));
    if (!kind) return Refuse(name, "has a Kind other than fixed, removable, remote, cdrom, ram");
    std::string root(path);
    while (root.ends_with('/')) root.pop_back();
    Put({share ? std::string(name) : UpperCase(name), std::move(root), *kind});
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

// A table and the file that it was read from, as it was then.
struct CachedTable {
  std::string home;
  struct stat file = {};
  bool exists = false;
  DriveTable table;

  bool StillHolds(std::string_view nowHome, bool nowExists, const struct stat& now) const {
    const auto same = [](const timespec& a, const timespec& b) {
      return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
    };
    if (home != nowHome || exists != nowExists) return false;
    if (!exists) return true;
    return IdentityOf(file) == IdentityOf(now) && file.st_size == now.st_size &&
           same(file.st_mtim, now.st_mtim) && same(file.st_ctim, now.st_ctim);
  }
};

// The clock of files moves in steps: a file that changed just now may change again within one.
bool ChangedJustNow(const struct stat& file) {
  timespec now = {};
  ::clock_gettime(CLOCK_REALTIME, &now);
  return now.tv_sec - file.st_ctim.tv_sec <= 1;
}

std::shared_ptr<const CachedTable> Load(const std::string& home) {
  auto loaded = std::make_shared<CachedTable>();
  loaded->home = home;
  const std::string path = home + "/drives.ini";
  loaded->exists = !home.empty() && ::stat(path.c_str(), &loaded->file) == 0;
  std::string bytes;
  std::string error;
  try {
    if (loaded->exists) bytes = ReadWhole(path);
  } catch (const EInOutError& e) {
    error = "drives.ini: " + Cp874ToUtf8Lossy(e.Message());
  }
  loaded->table = ParseDriveTable(bytes, home);
  if (!error.empty()) loaded->table.errors.push_back(std::move(error));
  return loaded;
}

// Shared by all threads and never changed: a thread-local table would keep the library loaded after
// dlclose.
std::atomic<std::shared_ptr<const CachedTable>>& LastTable() {
  static std::atomic<std::shared_ptr<const CachedTable>> last;
  return last;
}

std::string HomeOrNone() {
  try {
    return HomeFolder();
  } catch (const EInOutError&) {
    return {};  // Z: needs none
  }
}

}  // namespace

const Drive* DriveTable::Find(std::string_view name) const {
  std::string wanted(name);
  std::ranges::replace(wanted, '/', '\\');
  const auto same = [&wanted](const Drive& drive) { return SameText(drive.name, wanted); };
  const auto it = std::ranges::find_if(drives, same);
  return it != drives.end() ? &*it : nullptr;
}

DriveTable ParseDriveTable(std::string_view bytes, std::string_view home) {
  return TableParser(home).Parse(bytes);
}

std::shared_ptr<const DriveTable> CurrentDriveTable() {
  const std::string home = HomeOrNone();
  struct stat now = {};
  const bool exists = !home.empty() && ::stat((home + "/drives.ini").c_str(), &now) == 0;
  std::shared_ptr<const CachedTable> cached = LastTable().load();
  if (!cached || !cached->StillHolds(home, exists, now)) {
    cached = Load(home);
    const bool settled = !cached->exists || !ChangedJustNow(cached->file);
    LastTable().store(settled ? cached : nullptr);
  }
  return {cached, &cached->table};
}

std::string_view DriveOf(std::string_view name) {
  const std::string_view drive = ExtractFileDrive(name);
  if (!drive.starts_with('\\')) return drive;
  const std::size_t host = drive.find_first_of("\\/", 2);  // `/` separates too
  if (host == std::string_view::npos) return drive;
  return drive.substr(0, drive.find_first_of("\\/", host + 1));
}

}  // namespace posix

std::vector<Drive> Drives() {
  return posix::CurrentDriveTable()->drives;
}

std::vector<std::string> DriveTableErrors() {
  return posix::CurrentDriveTable()->errors;
}

namespace {

// The folder of a drive. C: is made with its first folder, and is until then what it is made in.
std::string FolderOfDrive(const Drive& drive) {
  std::string folder = drive.root;
  if (!folder.empty() && folder == posix::HomeOrNone() + "/drive_c") {
    struct stat facts = {};
    while (::lstat((folder + "/").c_str(), &facts) != 0 && errno == ENOENT) {
      folder.erase(folder.rfind('/'));
    }
  }
  return folder + "/";
}

}  // namespace

DriveKind KindOfDrive(std::string_view name) {
  const auto table = posix::CurrentDriveTable();
  const Drive* drive = table->Find(posix::DriveOf(name));
  if (drive == nullptr) return DriveKind::NoRoot;
  struct stat facts = {};
  const bool exists = ::stat(FolderOfDrive(*drive).c_str(), &facts) == 0 && S_ISDIR(facts.st_mode);
  return exists ? drive->kind : DriveKind::NoRoot;
}

std::int64_t DiskSize(int drive) {
  constexpr int kLetters = 26;
  std::string root = ".";
  if (drive != 0) {
    if (drive < 0 || drive > kLetters) return -1;
    const char name[] = {static_cast<char>('A' + drive - 1), ':', '\0'};
    const auto table = posix::CurrentDriveTable();
    const Drive* found = table->Find(name);
    if (found == nullptr) return -1;
    root = FolderOfDrive(*found);
  }
  struct statvfs facts = {};
  if (::statvfs(root.c_str(), &facts) != 0) return -1;
  std::uint64_t bytes = 0;
  const bool fits = !__builtin_mul_overflow(facts.f_blocks, facts.f_frsize, &bytes) &&
                    bytes <= std::uint64_t{std::numeric_limits<std::int64_t>::max()};
  return fits ? static_cast<std::int64_t>(bytes) : std::numeric_limits<std::int64_t>::max();
}

}  // namespace kvshare::os
