#include "kvshare/platform/fileinfo.h"

#include "kvshare/os/folders.h"
#include "kvshare/os/version/versionresource.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/filebytes.h"
#include "kvshare/rtl/format.h"
#include "kvshare/ui/messages.h"

namespace kvshare {

TStringList* NamedInfoList = nullptr;

namespace {

// None for a file without a resource and for one that is not there.
std::optional<os::VersionResource> ReadResource(std::string_view fileName) {
  return os::ParseVersionResource(os::VersionBlockOfFile(fileName));
}

// What `read` gives; a file that cannot be read shows a message and has no resource.
template <typename Read>
std::optional<os::VersionResource> ReadOrTell(std::string_view fileName, Read read) {
  try {
    return read();
  } catch (const Exception& e) {
    MessageDlg(Format("Cannot get version information for file %s\r\n%s", {fileName, e.Message()}),
               TMsgDlgType::mtError, {TMsgDlgBtn::mbOK}, 0);
    return std::nullopt;
  }
}

// The file of a running program stays what it was, whatever takes its name: it is read once. A
// reading that failed is tried again.
const std::optional<os::VersionResource>& ResourceOfThisProgram() {
  static const std::optional<os::VersionResource> resource = ReadResource(os::ProgramFile());
  return resource;
}

std::string InfoOfThisProgram(std::string_view name) {
  const auto resource = ReadOrTell(os::ProgramFile(), ResourceOfThisProgram);
  return std::string(resource ? resource->Value(resource->MainLanguage(), name)
                              : std::string_view());
}

std::string NamedEntry(std::string_view name, std::string_view value) {
  return Format("%s=%s", {name, value});
}

}  // namespace

std::unique_ptr<TStringList> MakeNamedInfoList() {
  constexpr std::string_view kCompany = "CompanyName";
  auto list = std::make_unique<TStringList>();
  list->Add(NamedEntry(kCompany, InfoOfThisProgram(kCompany)));
  return list;
}

std::string GetThisResourceFileVersion(std::string_view fileName) {
  const auto resource = ReadOrTell(fileName, [fileName] { return ReadResource(fileName); });
  if (!resource) return {};
  const os::VersionNumber& v = resource->fileVersion;
  return Format("%d.%d.%d.%d", {v[0], v[1], v[2], v[3]});
}

std::string GetThisResourceProductVersion(std::string_view fileName) {
  try {
    if (!FileExists(fileName)) return {};
    const auto resource = ReadResource(fileName);
    if (!resource) return {};
    const os::VersionNumber& v = resource->productVersion;
    return Format("%.2d.%2.2d%2.2d%2.2d", {v[0], v[1], v[2], v[3]});
  } catch (const Exception& e) {
    return "Cannot get version information " + e.Message();
  }
}

std::string GetNamedInfo(std::string_view name) {
  if (NamedInfoList != nullptr) {
    const std::string_view known = NamedInfoList->Values(name);
    if (!known.empty()) return std::string(known);
  }
  std::string value = InfoOfThisProgram(name);
  if (NamedInfoList != nullptr && !value.empty()) NamedInfoList->Add(NamedEntry(name, value));
  return value;
}

}  // namespace kvshare
