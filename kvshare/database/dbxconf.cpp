#include "kvshare/database/dbxconf.h"

#include <algorithm>
#include <iterator>

#include "kvshare/os/folders.h"
#include "kvshare/rtl/inifile.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare {

namespace {

constexpr std::string_view kConnections = "dbConnect";
constexpr std::string_view kUserName = "User_Name";
constexpr std::string_view kPassword = "Password";
constexpr std::string_view kEncryptedLogin[] = {"EncryptUser", "DecryptUser", "EncryptPwd",
                                                "DecryptPwd"};
constexpr std::string_view kDesktopDrivers[] = {"ADO", "OPENODBCACCESS", "DBXMSJETACCESS"};
constexpr std::string_view kServerFileDrivers[] = {"INTERBASE", "FIREBIRD"};

std::string SuiteFolder(int systemFolder) {
  const std::string folder = os::SpecialFolder(systemFolder);
  return folder.empty() ? os::ProgramFolder() : folder + R"(\QXN\Share\)";
}

TIniContents ReadConnections() {
  return TIniContents(GetDbxConnectFileName());
}

std::string ReadKey(std::string_view alias, std::string_view key, std::string_view fallback) {
  return ReadConnections().ReadString(alias, key, fallback);
}

template <std::size_t N>
bool IsOneOf(const std::string_view (&names)[N], std::string_view name) {
  return std::ranges::find(names, name) != std::end(names);
}

std::string UpperDriverName(const TIniContents& file, std::string_view alias) {
  return UpperCase(file.ReadString(alias, "DriverName", ""));
}

bool HasEncryptedLoginOnly(const TStrings& section) {
  const auto has = [&section](std::string_view name) { return section.IndexOfName(name) >= 0; };
  return !has(kUserName) && !has(kPassword) && std::ranges::all_of(kEncryptedLogin, has);
}

std::string ReadLogin(std::string_view alias, std::string_view key) {
  TStringList section;
  ReadConnections().ReadSectionValues(alias, section);
  if (HasEncryptedLoginOnly(section)) return {};
  return std::string(section.Values(key));
}

// The path in a connection string of the desktop engine, which is in upper case.
std::string_view PathInConnectionString(std::string_view text) {
  constexpr int kMost = 100;
  constexpr std::string_view kExtension = ".MDB";
  int marker = Pos("DATA SOURCE", text);
  if (marker == 0) marker = Pos("DBQ", text);
  if (marker == 0) return text;
  text = Copy(text, marker, kMost);
  const std::size_t extension = text.find(kExtension);
  if (extension != std::string_view::npos) text = text.substr(0, extension + kExtension.size());
  return Copy(text, Pos("=", text) + 1, kMost);
}

}  // namespace

std::string GetKovraShareDataPath() {
  return SuiteFolder(os::kCommonAppData);
}

std::string GetKovraProgramPath() {
  return SuiteFolder(os::kProgramFiles);
}

std::string GetDbxConnectFileName() {
  return GetKovraShareDataPath() + "DConnect.ini";
}

void GetConnectNames(TStrings& names) {
  ReadConnections().ReadSection(kConnections, names);
}

bool Isdbx(std::string_view alias) {
  constexpr std::string_view kMissing = "UNDEFINE";
  return !alias.empty() && ReadKey(kConnections, alias, kMissing) != kMissing;
}

std::string GetdbxTradeName(std::string_view alias) {
  const TIniContents file = ReadConnections();
  std::string name = file.ReadString(alias, "TradeName", "");
  if (name.empty()) name = file.ReadString(kConnections, alias, "MYSQL");
  return UpperCase(name);
}

std::string GetdbxDriverName(std::string_view alias) {
  return ReadKey(alias, "DriverName", "");
}

std::string GetdbxDriverFunc(std::string_view alias) {
  return ReadKey(alias, "GetDriverFunc", "getSQLDriverMYSQL");
}

std::string GetdbxLibraryName(std::string_view alias) {
  return ReadKey(alias, "LibraryName", "dbexpmys.dll");
}

std::string GetdbxVendorLib(std::string_view alias) {
  return ReadKey(alias, "VendorLib", "LIBMYSQL.dll");
}

void GetdbxParams(std::string_view alias, TStrings& params) {
  ReadConnections().ReadSectionValues(alias, params);
}

std::string GetdbxUserName(std::string_view alias) {
  return ReadLogin(alias, kUserName);
}

std::string GetdbxPassword(std::string_view alias) {
  return ReadLogin(alias, kPassword);
}

bool IsdbxAccess(std::string_view alias) {
  return IsOneOf(kDesktopDrivers, UpperDriverName(ReadConnections(), alias));
}

std::string GetdbxFileName(std::string_view alias) {
  if (alias.empty()) return {};
  const TIniContents file = ReadConnections();
  const std::string driver = UpperDriverName(file, alias);
  const bool isDesktop = IsOneOf(kDesktopDrivers, driver);
  if (!isDesktop && !IsOneOf(kServerFileDrivers, driver)) return {};
  const std::string database = UpperCase(file.ReadString(alias, "Database", ""));
  return isDesktop ? std::string(PathInConnectionString(database)) : database;
}

bool NeedGenKey(std::string_view alias) {
  return SameText(ReadKey(alias, "KeyGenEnable", ""), "TRUE");
}

std::string GetGenKeyServer(std::string_view alias) {
  constexpr std::string_view kThisComputer = "127.0.0.1";
  const std::string host = ReadKey(alias, "KeyGenServer", kThisComputer);
  return host.empty() ? std::string(kThisComputer) : host;
}

int GetGenKeyPort(std::string_view alias) {
  constexpr int kDefaultPort = 10023;
  return ReadConnections().ReadInteger(alias, "KeyGenPort", kDefaultPort);
}

}  // namespace kvshare
