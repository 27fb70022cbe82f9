#include "kvshare/rtl/filenames.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "kvshare/rtl/strutils.h"

namespace kvshare::inline rtl {

namespace {

constexpr auto npos = std::string_view::npos;

// Where the name proper begins: behind the last `\` or `:`.
std::size_t NameStart(std::string_view name) {
  return name.find_last_of("\\:") + 1;  // npos + 1 is 0
}

std::size_t ExtensionStart(std::string_view name) {
  const std::size_t point = name.rfind('.');
  return point != npos && point >= NameStart(name) ? point : name.size();
}

bool HasDrive(std::string_view name) {
  return name.size() >= 2 && name[1] == ':';
}

bool StartsWithBackslash(std::string_view name) {
  return !name.empty() && name.front() == '\\';
}

// Adds the parts of `path` to the parts of a full name; `..` takes the last one away.
void AddParts(std::vector<std::string_view>& parts, std::string_view path) {
  while (!path.empty()) {
    const std::size_t end = std::min(path.find('\\'), path.size());
    const std::string_view part = path.substr(0, end);
    if (part == "..") {
      if (!parts.empty()) parts.pop_back();
    } else if (!part.empty() && part != ".") {
      parts.push_back(part);
    }
    path.remove_prefix(std::min(end + 1, path.size()));
  }
}

std::string Joined(std::string_view root, const std::vector<std::string_view>& parts) {
  std::string out(root);
  for (const std::string_view part : parts) out.append("\\").append(part);
  if (parts.empty() && HasDrive(root)) out += '\\';
  return out;
}

}  // namespace

std::string_view ExtractFilePath(std::string_view name) {
  return name.substr(0, NameStart(name));
}

std::string_view ExtractFileName(std::string_view name) {
  return name.substr(NameStart(name));
}

std::string_view ExtractFileExt(std::string_view name) {
  return name.substr(ExtensionStart(name));
}

std::string_view ExtractFileDrive(std::string_view name) {
  if (HasDrive(name)) return name.substr(0, 2);
  if (!name.starts_with("\\\\")) return {};
  const std::size_t host = name.find('\\', 2);
  const std::size_t share = host == npos ? npos : name.find('\\', host + 1);
  const bool hostAlone = share == npos && host == name.size() - 1;
  return name.substr(0, hostAlone ? host : share);
}

std::string ChangeFileExt(std::string_view name, std::string_view extension) {
  return std::string(name.substr(0, ExtensionStart(name))).append(extension);
}

std::string IncludeTrailingBackslash(std::string_view path) {
  std::string out(path);
  if (!path.ends_with('\\')) out += '\\';
  return out;
}

std::string_view ExcludeTrailingBackslash(std::string_view path) {
  if (path.ends_with('\\')) path.remove_suffix(1);
  return path;
}

std::string ExpandFileName(std::string_view name, std::string_view currentFolder) {
  if (name.empty()) return {};
  std::string path(name);
  std::string folder(currentFolder);
  std::ranges::replace(path, '/', '\\');
  std::ranges::replace(folder, '/', '\\');

  const std::string_view ownDrive = ExtractFileDrive(path);
  const std::string_view folderDrive = ExtractFileDrive(folder);
  const std::string_view rest = std::string_view{path}.substr(ownDrive.size());
  const bool sameDrive = ownDrive.empty() || SameText(ownDrive, folderDrive);
  const bool relative = !StartsWithBackslash(rest) && !ownDrive.starts_with('\\');

  std::vector<std::string_view> parts;
  if (relative && sameDrive) AddParts(parts, std::string_view{folder}.substr(folderDrive.size()));
  AddParts(parts, rest);
  std::string full = Joined(ownDrive.empty() ? folderDrive : ownDrive, parts);
  return rest.ends_with('\\') ? IncludeTrailingBackslash(full) : full;
}

}  // namespace kvshare::inline rtl
