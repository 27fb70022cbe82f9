#include "kvshare/platform/verinfo.h"

#include <algorithm>
#include <memory>
#include <vector>

#include "kvshare/os/files.h"
#include "kvshare/os/folders.h"
#include "kvshare/os/process.h"
#include "kvshare/platform/fileinfo.h"
#include "kvshare/platform/storedvalues.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/filebytes.h"
#include "kvshare/rtl/filenames.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/formatdatetime.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare {

TKovraRegistry* MyKovraRegistry = nullptr;

namespace {

using os::Hive;

std::string Product() {
  return TKovraRegistry::ReadVersionInfo("ProductName", "Undefined ProductName");
}

std::string Version() {
  return TKovraRegistry::ReadVersionInfo("ProductVersion", "0.0");
}

// `Acme\Ledger v5.2`, below a folder or key that all programs share.
std::string ProgramIdentity() {
  const std::string company =
      TKovraRegistry::ReadVersionInfo("CompanyName", "Undefined CompanyName");
  return Format(R"(%s\%s v%s)", {company, Product(), Version()});
}

std::string Joined(std::string_view key, std::string_view sub) {
  std::string joined(key);
  return sub.empty() ? joined : joined.append("\\").append(sub);
}

void RequireFolder(std::string_view folder) {
  constexpr int kPathNotFound = 3;
  if (!os::ForceDirectories(folder)) {
    throw EInOutError("Unable to create directory", kPathNotFound);
  }
}

std::string CommandLine(std::string_view program, std::string_view parameters) {
  return Format("%s %s", {program, parameters});
}

}  // namespace

TKovraRegistry::TKovraRegistry() : rootKey_(Joined("Software", ProgramIdentity())) {}

std::string TKovraRegistry::ReadVersionInfo(std::string_view name, std::string_view defaultValue) {
  std::string value = GetNamedInfo(name);
  return Empty(value) ? std::string(defaultValue) : value;
}

std::string TKovraRegistry::KeyOf(std::string_view root, std::string_view section) const {
  return Joined(root.empty() ? std::string_view{rootKey_} : root, section);
}

std::string TKovraRegistry::ListKey(std::string_view root, std::string_view section,
                                    std::string_view name, std::string_view defaultSection) const {
  return Joined(KeyOf(root, section.empty() ? defaultSection : section), name);
}

std::string TKovraRegistry::ReadShareRegistryString(std::string_view root, std::string_view section,
                                                    std::string_view name,
                                                    std::string_view defaultValue) const {
  return StoredTextOr(Hive::LocalMachine, KeyOf(root, section), name, defaultValue);
}

void TKovraRegistry::WriteShareRegistryString(std::string_view root, std::string_view section,
                                              std::string_view name, std::string_view value) const {
  StoreText(Hive::LocalMachine, KeyOf(root, section), name, value);
}

std::string TKovraRegistry::ReadRegistryString(std::string_view root, std::string_view section,
                                               std::string_view name,
                                               std::string_view defaultValue) const {
  return StoredTextOr(Hive::CurrentUser, KeyOf(root, section), name, defaultValue);
}

void TKovraRegistry::WriteRegistryString(std::string_view root, std::string_view section,
                                         std::string_view name, std::string_view value) const {
  StoreText(Hive::CurrentUser, KeyOf(root, section), name, value);
}

std::string TKovraRegistry::StoreFolderBesideProgram(std::string_view valueName,
                                                     std::string_view name) const {
  std::string folder = Format("%s%s", {os::ProgramFolder(), name});
  WriteShareRegistryString("", "", valueName, folder);
  return folder;
}

std::string TKovraRegistry::SetReportPath() const {
  return StoreFolderBesideProgram("ReportPath", "Report");
}

std::string TKovraRegistry::SetDocumentPath() const {
  return StoreFolderBesideProgram("DocumentPath", "Document");
}

std::string TKovraRegistry::StoredFolder(std::string_view valueName,
                                         std::string (TKovraRegistry::*set)() const) const {
  std::string folder = ReadShareRegistryString("", "", valueName, "");
  if (folder.empty()) folder = (this->*set)();
  RequireFolder(folder);
  return IncludeTrailingBackslash(folder);
}

std::string TKovraRegistry::SetAliasPath() const {
  std::string folder = Joined(R"(C:\Program Files)", ProgramIdentity());
  WriteShareRegistryString("", "", "AliasPath", folder);
  return folder;
}

std::string TKovraRegistry::GetAliasPath() const {
  return StoredFolder("AliasPath", &TKovraRegistry::SetAliasPath);
}

std::string TKovraRegistry::GetReportPath() const {
  return StoredFolder("ReportPath", &TKovraRegistry::SetReportPath);
}

std::string TKovraRegistry::GetDocumentPath() const {
  return StoredFolder("DocumentPath", &TKovraRegistry::SetDocumentPath);
}

std::string TKovraRegistry::GetKovraAppDataPath() const {
  const std::string common = os::SpecialFolder(os::kCommonAppData);
  if (common.empty()) return os::ProgramFolder();
  return Format(R"(%s\QXN\%s v%s\)", {common, Product(), Version()});
}

bool TKovraRegistry::NeedAutoUpdate(std::string_view tableName, std::string_view fileName) const {
  const std::optional<TDateTime> written = os::FileAge(fileName);
  if (!written) return false;
  const std::string stamp = FormatDateTime("dd/mm/yyyy HH:nn:ss", *written);
  const std::string section = Format(R"(SYSTEMTABLE\%s)", {tableName});
  if (ReadRegistryString("", section, fileName, "") == stamp) return false;
  WriteRegistryString("", section, fileName, stamp);
  return true;
}

void TKovraRegistry::UpperCaseAll(TStrings& list) {
  for (int i = 0; i < list.Count(); ++i) list.Put(i, UpperCase(Trim(list[i])));
}

void TKovraRegistry::LowerCaseAll(TStrings& list) {
  for (int i = 0; i < list.Count(); ++i) list.Put(i, LowerCase(Trim(list[i])));
}

int TKovraRegistry::RunAndWait(std::string_view program, std::string_view parameters) {
  return os::Process(CommandLine(program, parameters), os::IsConsole).Wait();
}

void TKovraRegistry::RunNoWait(std::string_view program, std::string_view parameters) {
  const os::Process started(CommandLine(program, parameters), os::IsConsole);
}

void TKovraRegistry::BdeSetup() const {
  struct Driver {
    std::string_view key, language;
  };
  constexpr Driver kDrivers[] = {
      {R"(DRIVERS\PARADOX\INIT)", "thai"},
      {R"(DRIVERS\DBASE\INIT)", "DB874TH0"},
      {R"(SYSTEM\INIT)", "thai"},
  };
  constexpr std::string_view kEngine = R"(\SOFTWARE\Borland\Database Engine\Settings)";
  for (const Driver& driver : kDrivers) {
    WriteShareRegistryString(kEngine, driver.key, "LANGDRIVER", driver.language);
  }
}

bool TKovraRegistry::IsExcelInstall() const {
  // Classes of the user come before those of the machine.
  constexpr std::string_view kClass = R"(Software\Classes\Excel.Application\CLSID)";
  for (const Hive hive : {Hive::CurrentUser, Hive::LocalMachine}) {
    const std::string id = StoredTextOr(hive, kClass, "", "");
    constexpr std::size_t kGuidLength = 38;
    if (id.size() == kGuidLength && id.front() == '{' && id.back() == '}') return true;
  }
  return false;
}

bool TKovraRegistry::Empty(const Variant& value) {
  return VarIsNull(value) || Trim(VarToStr(value)).empty();
}

}  // namespace kvshare
