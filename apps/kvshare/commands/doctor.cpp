#include "apps/kvshare/commands/doctor.h"

#include <algorithm>
#include <filesystem>

#include "apps/kvshare/system/process.h"
#include "kvshare/database/dbxconf.h"
#include "kvshare/messages/language.h"
#include "kvshare/os/drives.h"
#include "kvshare/os/files.h"
#include "kvshare/os/folders.h"
#include "kvshare/os/paths.h"
#include "kvshare/os/registry/registry.h"
#include "kvshare/os/sharedlibrary.h"
#include "kvshare/platform/verinfo.h"
#include "kvshare/platform/win32.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/environment.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/filebytes.h"
#include "kvshare/settings/globals.h"
#include "kvshare/settings/numberformats.h"
#include "kvshare/settings/programsettings.h"
#include "kvshare/ui/backend.h"
#include "kvshare/ui/paper.h"
#include "kvshare/ui/printer.h"

namespace kvshare::app {

namespace {

namespace fs = std::filesystem;

using Findings = std::vector<Finding>;

// The folder, or the nearest one above it that exists: the one in which it would be created.
fs::path NearestFolder(fs::path folder) {
  std::error_code ignored;
  while (!folder.empty() && folder.has_relative_path() && !fs::exists(folder, ignored)) {
    folder = folder.parent_path();
  }
  return folder;
}

std::string WriteTrouble(const fs::path& folder) {
  const fs::path nearest = NearestFolder(folder);
  std::error_code ignored;
  if (!fs::is_directory(nearest, ignored)) return nearest.string() + " is no folder: move it away";
  if (MayWriteInto(nearest)) return {};
  return "this user may not write in " + nearest.string() + ": change its owner or permissions";
}

void AddHome(Findings& findings) {
  try {
    const std::string home = os::HomeFolder();
    const bool whole = home.starts_with('/');
    findings.push_back({"home", home,
                        whole ? WriteTrouble(home)
                              : "set KVSHARE_HOME to a name that begins with /: this one means "
                                "another folder wherever a program starts"});
  } catch (const Exception&) {
    findings.push_back({"home", "none", "set KVSHARE_HOME to a folder of this user"});
  }
}

std::string_view KindName(os::DriveKind kind) {
  constexpr std::string_view kNames[] = {"unknown", "missing", "removable", "fixed",
                                         "remote",  "CD-ROM",  "RAM disk"};
  return kNames[static_cast<std::size_t>(kind)];
}

void AddDrives(Findings& findings) {
  for (const os::Drive& drive : os::Drives()) {
    const std::string root = drive.root.empty() ? "/" : drive.root;
    // C: is created with the first folder that is made on it.
    const bool missing = drive.name != "C:" && os::KindOfDrive(drive.name) == os::DriveKind::NoRoot;
    findings.push_back({"drive " + Cp874ToUtf8Lossy(drive.name),
                        root + " (" + std::string(KindName(drive.kind)) + ")",
                        missing ? "create or mount " + root + ", or change drives.ini" : ""});
  }
  for (const std::string& error : os::DriveTableErrors()) {
    findings.push_back({"drives.ini", error, "correct drives.ini in the home folder"});
  }
}

void AddRegistry(Findings& findings) {
  const std::string trouble = os::RegistryTrouble();
  std::error_code ignored;
  const bool exists = fs::exists(os::RegistryFile(), ignored);
  findings.push_back({"registry", os::RegistryFile() + (exists ? "" : " (not created yet)"),
                      trouble.empty() ? "" : trouble + "; docs/settings.md tells what to do"});
}

void AddIdentity(Findings& findings) {
  const auto add = [&findings](std::string_view topic, const std::string& value,
                               std::string_view mend = "") {
    findings.push_back({std::string(topic), Cp874ToUtf8Lossy(value), std::string(mend)});
  };
  add("program", os::ProgramFile());
  add("root key", TKovraRegistry().RootKey());
  const std::string computer = TKovraWin32::MyComputerName();
  add("computer", computer,
      computer == "<<Undefined>>"
          ? "set KVSHARE_COMPUTER to a name of at most 15 letters: the host name is longer"
          : "");
  const std::string login = TKovraWin32::MyLoginName();
  add("user", login,
      login == "<<Not Login>>"
          ? "set KVSHARE_USER to a name of at most 20 letters: the login name is longer or missing"
          : "");
  const std::string address = TKovraWin32::MyIpAddress();
  add("address", address.empty() ? "none" : address,
      address.empty() ? "give the host name an IPv4 address, in /etc/hosts or by the name server"
                      : "");
}

void AddEra(Findings& findings) {
  const std::string chosen(Environment("KVSHARE_ERA"));
  const bool known = chosen.empty() || chosen == "543" || chosen == "0";
  const std::string source = known && !chosen.empty() ? "KVSHARE_ERA" : "locale";
  const bool buddhist = TKovraWin32::SysYearOffset() != 0;
  findings.push_back({"era", (buddhist ? "Buddhist, 543 (" : "Christian, 0 (") + source + ")",
                      known ? "" : "KVSHARE_ERA is '" + chosen + "': set it to 543 or to 0"});
}

void AddLanguage(Findings& findings) {
  const std::string chosen(Environment("KVSHARE_LANGUAGE"));
  std::string mend;
  if (!chosen.empty()) {
    const std::vector<TLanguageWarning> warnings = SetLanguage(chosen);
    if (!warnings.empty()) mend = "KVSHARE_LANGUAGE=" + chosen + ": " + warnings.front().Text;
  }
  findings.push_back({"language", CurrentLanguage(), mend});
}

void AddNumbers(Findings& findings) {
  struct Row {
    std::string_view topic, setting;
    const Word& digits;
    const std::string& mask;
  };
  const Row kRows[] = {
      {"quantities", "QtyDigit", QtyDigit, dsplQtyEditMask},
      {"unit prices", "UPrcDigit", UPrcDigit, dsplUPrcEditMask},
      {"amounts", "BahtDigit", BahtDigit, dsplBahtEditMask},
      {"weights", "WeightDigit", WeightDigit, dsplWeightEditMask},
      {"percentages", "", PercentDigit, dsplPercentEditMask},
  };
  std::string trouble;
  const TKovraRegistry store;
  try {
    ReadNumberSettings(store);
  } catch (const EConvertError& e) {
    trouble = Cp874ToUtf8Lossy(e.Message());
    BuildNumberFormats();
  }
  for (const Row& row : kRows) {
    const std::string stored = Cp874ToUtf8Lossy(
        store.ReadRegistryString("", "Default", row.setting, std::to_string(row.digits)));
    const bool bad = !trouble.empty() && trouble.starts_with("'" + stored + "'");
    findings.push_back(
        {std::string(row.topic), std::to_string(row.digits) + " decimals, " + row.mask,
         bad ? "setting Default\\" + std::string(row.setting) + ": " + trouble : ""});
  }
}

void AddFolder(Findings& findings, std::string_view topic, const std::string& folder,
               bool written) {
  std::string mend;
  try {
    if (written) mend = WriteTrouble(os::NativePath(folder));
  } catch (const Exception& e) {
    mend = Cp874ToUtf8Lossy(e.Message()) + ": store another folder or add its drive to drives.ini";
  }
  findings.push_back({std::string(topic), Cp874ToUtf8Lossy(folder), std::move(mend)});
}

void AddFolders(Findings& findings) {
  const TKovraRegistry store;
  AddFolder(findings, "windows folder", os::WindowsFolder(), false);
  AddFolder(findings, "temporary folder", os::TempFolderName(), true);
  AddFolder(findings, "user data", TKovraWin32::GetUserAppDataPath(), true);
  AddFolder(findings, "common data", store.GetKovraAppDataPath(), true);
  constexpr std::string_view kStored[] = {"AliasPath", "ReportPath", "DocumentPath"};
  for (const std::string_view name : kStored) {
    const std::string folder = store.ReadShareRegistryString("", "", name, "");
    if (!folder.empty()) AddFolder(findings, name, folder, true);
  }
}

// A file that the suite keeps beside itself, from a sample of the installation.
void AddSampledFile(Findings& findings, std::string_view topic, const std::string& name) {
  const std::string file = os::NativePath(name);
  findings.push_back({std::string(topic), file,
                      FileExists(name) ? ""
                                       : "there is no such file: copy the sample " +
                                             std::string(topic) + " there, and change it"});
}

void AddDatabases(Findings& findings) {
  AddSampledFile(findings, "SqlIntf.ini", GetKovraProgramPath() + "SqlIntf.ini");
  AddSampledFile(findings, "DConnect.ini", GetDbxConnectFileName());
  for (const std::string_view driver : {"sqlite", "mysql", "postgres", "firebird", "odbc"}) {
    const os::SharedLibrary library("kvshare-" + std::string(driver));
    findings.push_back({"driver " + std::string(driver), library.Loaded() ? library.File() : "none",
                        library.Loaded() ? ""
                                         : library.ErrorText() + ": install the library's drivers, "
                                                                 "and the server's client"});
  }
}

void AddCompanion(Findings& findings) {
  const os::SharedLibrary library("KovraWin.DLL");
  findings.push_back({"dialogs", library.Loaded() ? library.File() : "none",
                      library.Loaded() ? ""
                                       : library.ErrorText() +
                                             ": install the companion library, or the shop's own"});
}

std::string PrinterTrouble(const std::vector<std::string>& printers, const std::string& usual) {
  if (printers.empty()) {
    return "add a printer to the print spooler, or print into folders: docs/system.md tells how";
  }
  if (usual.empty()) return "choose a default printer, or set KVSHARE_PRINTER";
  if (std::ranges::find(printers, usual) != printers.end()) return {};
  std::string known;
  for (const std::string& name : printers) known.append(known.empty() ? "" : ", ").append(name);
  return "there is no such printer: set KVSHARE_PRINTER to one of " + Cp874ToUtf8Lossy(known);
}

void AddPrinters(Findings& findings, TSpooler& spooler) {
  const std::vector<std::string> printers = spooler.Printers();
  const std::string trouble = spooler.Trouble();
  // A spooler that is silent is not asked again, and a printer that was chosen needs no question.
  const bool known = trouble.empty() || !Environment("KVSHARE_PRINTER").empty();
  const std::string usual = known ? spooler.DefaultPrinter() : "";
  findings.push_back({"printer", usual.empty() ? "none" : Cp874ToUtf8Lossy(usual),
                      trouble.empty() ? PrinterTrouble(printers, usual)
                                      : Cp874ToUtf8Lossy(trouble) + ": start the spooler (cups)"});
}

void AddFonts(Findings& findings) {
  try {
    Paper().PdfPrinter("fonts.pdf", kSheetA4)->Canvas().TextOut(0, 0, "ก"_th);
    findings.push_back({"fonts", "with Thai letters", ""});
  } catch (const EPrinter& e) {
    findings.push_back({"fonts", "none", e.Message() + ": install fonts-tlwg-garuda-ttf"});
  }
}

void AddPaper(Findings& findings) {
  try {
    TSpooler& spooler = Paper().Spooler();
    findings.push_back({"paper library", "kvshare-paper", ""});
    AddFonts(findings);
    AddPrinters(findings, spooler);
  } catch (const EOSError& e) {
    findings.push_back({"paper library", "none",
                        Cp874ToUtf8Lossy(e.Message()) +
                            ": printers and files of pages need it and what it draws with"});
  }
}

// Looked for and not started: that would need a display.
void AddDesktop(Findings& findings) {
  if (os::SharedLibrary("kvshare-desktop").Loaded()) {
    findings.push_back({"desktop library", "kvshare-desktop", ""});
  } else {
    findings.push_back({"desktop library", "none", "windows need it and its toolkit"});
  }
}

}  // namespace

std::vector<Finding> Examine() {
  Findings findings;
  AddHome(findings);
  if (!findings.front().mend.empty() && findings.front().value == "none") return findings;
  AddDrives(findings);
  AddRegistry(findings);
  AddIdentity(findings);
  AddEra(findings);
  AddLanguage(findings);
  AddNumbers(findings);
  AddFolders(findings);
  AddDatabases(findings);
  AddCompanion(findings);
  AddPaper(findings);
  AddDesktop(findings);
  return findings;
}

}  // namespace kvshare::app
