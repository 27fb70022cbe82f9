#include "apps/kvshare/data/connections.h"

#include <stdexcept>

#include "apps/kvshare/terminal/usage.h"
#include "kvshare/database/dbxconf.h"
#include "kvshare/database/sqlfunc.h"
#include "kvshare/os/paths.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/filebytes.h"
#include "kvshare/ui/backend.h"

namespace kvshare::app {

void AddConnect(Command command, std::string& name) {
  command.AddOption("--connect", name, "A connection of the connection file")
      .TypeName("NAME")
      .Required();
}

void WithoutBoxes(const std::function<void()>& work) {
  THeadlessInterface boxes;
  std::string shown;
  const auto collect = [&] {
    for (const auto& message : boxes.messages) {
      shown.append(shown.empty() ? "" : "\n").append(message.text);
    }
    std::erase(shown, '\r');  // a terminal's lines end in LF
  };
  try {
    const TUseInterface use(boxes);
    work();
    collect();
  } catch (const Exception&) {
    collect();  // what was shown is the cause of what was thrown
    if (shown.empty()) throw;
  }
  if (!shown.empty()) throw Exception(shown);
}

void RequireConnectionFile() {
  const std::string name = GetDbxConnectFileName();
  const std::string file = os::NativePath(name);
  if (!FileExists(name)) {
    throw std::runtime_error("there is no connection file " + file +
                             ": copy the sample DConnect.ini there, and change it");
  }
  try {
    Cp874ToUtf8(ReadFileBytes(name));
  } catch (const EConvertError& e) {
    throw std::runtime_error(file + ": " + e.what() +
                             "; save it in code page 874 (windows-874), as `iconv -f utf-8 -t "
                             "cp874` makes it of UTF-8");
  }
}

void RequireConnection(const std::string& alias) {
  RequireConnectionFile();
  if (Isdbx(alias)) return;
  TStringList names;
  GetConnectNames(names);
  std::string known;
  for (const std::string& name : names) known.append(known.empty() ? "" : ", ").append(name);
  throw std::runtime_error("no connection '" + Cp874ToUtf8Lossy(alias) + "' in " +
                           os::NativePath(GetDbxConnectFileName()) + ", which has " +
                           (known.empty() ? "none" : Cp874ToUtf8Lossy(known)));
}

void OpenConnection(TSQLConnection& connection, const std::string& name) {
  const std::string alias = UsageText("--connect", name);
  RequireConnection(alias);
  WithoutBoxes([&] { ConnectDBMS(connection, alias, true); });
}

}  // namespace kvshare::app
