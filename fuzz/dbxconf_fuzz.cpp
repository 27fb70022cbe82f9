// A connection file of any bytes: every answer about every alias that it names, and about the
// input's first line, keeps its rules.
#include "kvshare/database/dbxconf.h"

#include <cstdint>
#include <cstdlib>
#include <fstream>

#include "kvshare/os/files.h"
#include "kvshare/os/paths.h"
#include "kvshare/rtl/lines.h"
#include "kvshare/rtl/strutils.h"
#include "tests/support.h"

namespace {

using namespace kvshare;

void Require(bool holds) {
  if (!holds) std::abort();
}

void CheckAlias(const std::string& alias) {
  const std::string tradeName = GetdbxTradeName(alias);
  Require(UpperCase(tradeName) == tradeName);

  const std::string file = GetdbxFileName(alias);
  const std::string driver = UpperCase(GetdbxDriverName(alias));
  const bool server = driver == "INTERBASE" || driver == "FIREBIRD";
  Require(UpperCase(file) == file && (file.empty() || IsdbxAccess(alias) || server));
  if (alias.empty()) Require(file.empty() && !Isdbx(alias));

  TStringList params;
  GetdbxParams(alias, params);
  for (const std::string& line : params) Require(line.find('=') != std::string::npos);
  Require(GetdbxUserName(alias) == params.Values("User_Name"));
  Require(GetdbxPassword(alias) == params.Values("Password"));
  Require(!GetGenKeyServer(alias).empty());
  Require(!NeedGenKey(alias) || SameText(params.Values("KeyGenEnable"), "TRUE"));
  for (const auto read : {GetdbxDriverFunc, GetdbxLibraryName, GetdbxVendorLib}) {
    Require(read(alias).size() <= 2047);
  }
  GetGenKeyPort(alias);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const TemporaryHome home;
  static const bool made = os::ForceDirectories(GetKovraShareDataPath());
  Require(made);
  const std::string input(data, data + size);
  std::ofstream(os::NativePath(GetDbxConnectFileName()), std::ios::binary) << input;

  std::string_view rest = input;
  if (!rest.empty()) CheckAlias(std::string(TakeLine(rest)));
  TStringList names;
  GetConnectNames(names);
  for (int i = 0; i < names.Count() && i < 4; ++i) CheckAlias(names[i]);
  return 0;
}
