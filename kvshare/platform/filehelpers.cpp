#include "kvshare/platform/filehelpers.h"

#include <algorithm>
#include <limits>
#include <optional>

#include "kvshare/os/drives.h"
#include "kvshare/os/files.h"
#include "kvshare/os/filesearch.h"
#include "kvshare/os/paths.h"
#include "kvshare/os/tree.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/filebytes.h"
#include "kvshare/rtl/filenames.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare {

namespace {

constexpr std::string_view kAllFiles = "*.*";

// Names are joined by plain concatenation; "" is the current folder.
std::string AsFolder(std::string_view folder) {
  const bool joins = folder.empty() || folder.ends_with('\\') || folder.ends_with('/');
  return joins ? std::string(folder) : IncludeTrailingBackslash(folder);
}

// Nothing for a folder that no name can have: one that is missing holds nothing either.
std::optional<os::TreeScope> Scope(std::string_view folder, std::string_view mask, bool recurse) {
  try {
    return os::TreeScope{os::NativePath(AsFolder(folder)), std::string(mask), recurse};
  } catch (const EInOutError&) {
    return std::nullopt;
  }
}

bool FolderExists(std::string_view folder) {
  return folder.empty() || os::DirectoryExists(folder);
}

std::string WithoutFirst(std::string_view text, std::string_view part) {
  std::string rest(text);
  if (!part.empty()) rest.erase(rest.find(part), part.size());
  return rest;
}

}  // namespace

void GetFileName(std::string_view mask, int attributes, TStrings& list) {
  os::FileSearch search(mask, attributes);  // first: the mask may be one of the list
  list.Clear();
  while (search.Next()) list.Add(search.Name());
}

void GetFileNames(std::string_view folder, TStrings& list, std::string_view mask, bool recurse) {
  const auto scope = Scope(folder, mask, recurse);
  if (!scope) return;
  std::string name = AsFolder(folder);
  const std::size_t folderSize = name.size();
  os::ListTree(*scope, [&](const os::TreeEntry& entry) {
    name.resize(folderSize);
    list.Add(name += entry.listed);
  });
}

int CountFileName(std::string_view folder, std::string_view mask, bool recurse) {
  const auto scope = Scope(folder, mask, recurse);
  if (!scope) return 0;
  constexpr int kMost = std::numeric_limits<int>::max();
  return static_cast<int>(std::min(os::CountTree(*scope), std::uint64_t{kMost}));
}

void CopyDir(std::string_view source, std::string_view target, std::string_view mask,
             bool recurse) {
  if (!os::ForceDirectories(target)) {
    constexpr int kPathNotFound = 3;
    throw EInOutError("Unable to create directory", kPathNotFound);
  }
  if (const auto scope = Scope(source, mask, recurse)) {
    os::CopyTree(*scope, os::NativePath(AsFolder(target)));
  }
}

void CopyAllFiles(std::string_view source, std::string_view target) {
  CopyDir(source, target, kAllFiles, false);
}

void DeleteDir(std::string_view folder, std::string_view mask, bool recurse) {
  const auto scope = Scope(folder, mask, recurse);
  if (scope && FolderExists(folder)) os::DeleteTree(*scope);
}

void DeleteDirContent(std::string_view folder) {
  DeleteDir(folder, kAllFiles, false);
}

bool RemoveEmptyDir(std::string_view folder, bool recurse) {
  const auto scope = Scope(folder, kAllFiles, recurse);
  if (!scope || !FolderExists(folder)) return true;
  return os::RemoveEmptyTree(scope->folder, recurse);
}

std::string ExtractFileNameOnly(std::string_view path) {
  const std::string_view name = ExtractFileName(path);
  return WithoutFirst(name, ExtractFileExt(name));
}

std::string FileNameWoExt(std::string_view path) {
  return WithoutFirst(path, ExtractFileExt(path));
}

std::string ParentPath(std::string_view path) {
  const std::string_view folder = path.substr(0, path.rfind('\\') + 1);  // npos + 1 is 0
  const std::string_view above = ExcludeTrailingBackslash(folder);
  return std::string(path.substr(0, above.rfind('\\') + 1));
}

std::string KovraExpandFileName(std::string_view base, std::string_view name) {
  if (!ExtractFileDrive(name).empty()) return std::string(name);
  try {
    std::string full = os::ExpandFileName(name);
    if (FileExists(full)) return full;
  } catch (const EConvertError&) {
    // The current folder has letters that no name here can have: neither has a file in it.
  } catch (const EInOutError&) {
    // The current folder is gone.
  }
  return Format("%s%s", {base, name});
}

std::string TrimGuid(std::string_view path) {
  constexpr std::size_t kBetweenBraces = 37;
  const std::size_t open = path.find('{');
  const std::size_t close = path.find('}');
  const bool isFolder = open != std::string_view::npos && open > 0 && path[open - 1] == '\\';
  const bool isGuid =
      isFolder && close != std::string_view::npos && close > open && close - open == kBetweenBraces;
  return isGuid ? std::string(path.substr(0, open)) : IncludeTrailingBackslash(path);
}

bool DriveReady(char letter) {
  const char upper = UpCase(letter);
  if (upper < 'A' || upper > 'Z') throw EConvertError("Not a valid drive ID");
  return os::DiskSize(upper - 'A' + 1) != -1;
}

int GetDriveTypeE(std::string_view path) {
  if (!ExtractFileDrive(path).empty()) return static_cast<int>(os::KindOfDrive(path));
  try {
    return static_cast<int>(os::KindOfDrive(os::CurrentFolder()));
  } catch (const Exception&) {
    return static_cast<int>(os::DriveKind::Unknown);  // a current folder without a name here
  }
}

bool IsLocalHardDisk(std::string_view path) {
  return GetDriveTypeE(path) == static_cast<int>(os::DriveKind::Fixed);
}

bool IsWriteableDisk(std::string_view path) {
  switch (static_cast<os::DriveKind>(GetDriveTypeE(path))) {
    case os::DriveKind::Fixed:
    case os::DriveKind::Removable:
    case os::DriveKind::Remote:
    case os::DriveKind::RamDisk:
      return true;
    default:
      return false;
  }
}

std::int32_t KovraGetFileSize(std::string_view fileName) {
  if (!FileExists(fileName)) return 0;
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(os::FileSize(fileName)));
}

TDateTime GetFileDateTime(std::string_view fileName) {
  return os::FileAge(fileName).value_or(Now());
}

}  // namespace kvshare
