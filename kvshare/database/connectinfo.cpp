#include "kvshare/database/connectinfo.h"

#include "kvshare/data/client/clientdataset.h"
#include "kvshare/database/dbxconf.h"
#include "kvshare/database/sqldialect.h"
#include "kvshare/messages/catalogue.h"
#include "kvshare/os/files.h"
#include "kvshare/os/folders.h"
#include "kvshare/platform/fileinfo.h"
#include "kvshare/platform/uguid.h"
#include "kvshare/platform/verinfo.h"
#include "kvshare/platform/win32.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/filebytes.h"
#include "kvshare/rtl/filenames.h"
#include "kvshare/rtl/format.h"
#include "kvshare/settings/globals.h"
#include "kvshare/text/strings.h"
#include "kvshare/ui/messages.h"

namespace kvshare {

namespace {

constexpr std::string_view kGuidSection = "Default";
constexpr std::string_view kGuidValue = "UserGuid";

struct ListedFolder {
  std::string_view field;
  std::string& global;
};

void ReadWorkstation() {
  KovraCurrentGuid = MyKovraRegistry->ReadRegistryString("", kGuidSection, kGuidValue, "");
  if (!KovraCurrentGuid.empty()) return;
  KovraCurrentGuid = GetGuid();
  MyKovraRegistry->WriteRegistryString("", kGuidSection, kGuidValue, KovraCurrentGuid);
}

void SplitLogPath() {
  const std::string path = KovraLogDatabaseName;
  KovraLogTableName = ExtractFileName(path);
  KovraLogDatabaseName = ExtractFilePath(path);
}

// ExePath ends in a backslash of its own: the suite's programs know the folder with two.
std::string DocumentFolder(std::string_view listed) {
  std::string folder =
      TKovraString::Empty(listed) ? Format("%s\\Document", {ExePath}) : std::string(listed);
  folder = Format("%s%s", {IncludeTrailingBackslash(folder), KovraAliasName});
  if (!os::DirectoryExists(folder)) os::ForceDirectories(folder);
  return IncludeTrailingBackslash(folder);
}

// What is the same for every company, by its connection.
void ReadConnection() {
  const std::string& alias = KovraAliasName;
  KovraAliasTradeName = GetdbxTradeName(alias);
  KovraLoginName = GetdbxUserName(alias);
  KovraLoginPassword = GetdbxPassword(alias);
  KovraDbFileName = GetdbxFileName(alias);
  KovraGenkeyServer = GetGenKeyServer(alias);
  KovraGenkeyEnable = NeedGenKey(alias);
  KovraComputerName = TKovraWin32::MyComputerName();
  KovraWindowsUserName = TKovraWin32::MyLoginName();
  KovraProductName = GetNamedInfo("ProductName");
  KovraDataBaseIni = Format("%s%s%s", {ExePath, "Structure\\", "DataBase.ini"});
  ReadSQLIntf("");
  os::ForceDirectories(KovraLogDatabaseName);
}

// False where the connection is not in the connection file.
bool ReadListed(const TClientDataSet& list) {
  const auto text = [&list](std::string_view field) { return list.FieldByName(field).AsString(); };
  KovraDataBaseName = text("Alias_Name");
  KovraAliasName = text("Alias_Alias");
  if (!Isdbx(KovraAliasName)) return false;
  const ListedFolder folders[] = {
      {"Alias_LogFile", KovraLogDatabaseName}, {"Alias_PosB_Dir", KovraPosDataDir},
      {"Alias_PosH_Dir", KovraPackPosDDir},    {"Alias_Pack_Dir", KovraPackDir},
      {"Alias_Rpt_Dir", KovraReportDir},
  };
  for (const ListedFolder& folder : folders) folder.global = text(folder.field);
  KovraDocumentDir = DocumentFolder(text("Alias_Doc_Dir"));
  SplitLogPath();
  ReadConnection();
  return true;
}

bool ReadFromList(const std::string& listFile, std::string_view name) {
  TClientDataSet list;
  list.LoadFromFile(listFile);
  for (list.First(); !list.Eof(); list.Next()) {
    if (list.FieldByName("Alias_Name").AsString() == name) return ReadListed(list);
  }
  return false;
}

void ReadBesideProgram(std::string_view name) {
  const std::string folder = os::ProgramFolder();
  const std::string program = ChangeFileExt(ExtractFileName(os::ProgramFile()), "");
  KovraLogDatabaseName = Format("%s%s.Log", {folder, program});
  for (std::string* dir :
       {&KovraPosDataDir, &KovraPackPosDDir, &KovraPackDir, &KovraReportDir, &KovraDocumentDir}) {
    *dir = folder;
  }
  SplitLogPath();
  KovraDataBaseName = name;
  KovraAliasName = name;
  ReadConnection();
}

void TellNotFound(std::string_view name, const std::string& listFile) {
  std::string text;
  for (const TMessage line : {rstrEDbmsNotFound, rstrEDbmsFileName, rstrEDbmsEditHint1,
                              rstrEDbmsEditHint2, rstrEDbmsEditHint3}) {
    if (!text.empty()) text += "\r\n";
    text += LoadStr(line);
  }
  MessageDlg(Format(text, {name, listFile}), TMsgDlgType::mtError, {TMsgDlgBtn::mbOK}, 0);
}

}  // namespace

std::string GetCompanyListFileName() {
  return MyKovraRegistry->GetKovraAppDataPath() + "BConnect.TXT";
}

void ReadDbmsConnectInfo(std::string_view name) {
  const std::string company(name);  // it may lie in one of the globals
  ReadWorkstation();
  const std::string listFile = GetCompanyListFileName();
  if (!FileExists(listFile)) return ReadBesideProgram(company);
  if (!ReadFromList(listFile, company)) TellNotFound(company, listFile);
}

void ClearDBMSConnectInfo() {
  for (std::int32_t* number : {&KovraUserKey, &KovraUserLevel, &KovraUserPosn}) *number = 0;
  std::string* const texts[] = {&KovraDataBaseName,   &KovraAliasName,       &KovraLoginName,
                                &KovraLoginPassword,  &KovraLogDatabaseName, &KovraLogTableName,
                                &KovraAliasTradeName, &KovraPosDataDir,      &KovraPackPosDDir,
                                &KovraPackDir,        &KovraReportDir,       &KovraDocumentDir,
                                &KovraComputerName,   &KovraWindowsUserName, &KovraDbFileName,
                                &KovraProductName,    &KovraDataBaseIni};
  for (std::string* text : texts) text->clear();
}

}  // namespace kvshare
