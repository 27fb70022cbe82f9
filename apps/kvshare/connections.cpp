#include "apps/kvshare/connections.h"

#include "apps/kvshare/commands.h"
#include "kvshare/database/dbxconf.h"
#include "kvshare/database/sqlfunc.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/ui/backend.h"

namespace kvshare::app {

void AddConnect(CLI::App& command, std::string& name) {
  command.add_option("--connect", name, "A connection of the connection file")
      ->type_name("NAME")
      ->required();
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

void OpenConnection(TSQLConnection& connection, const std::string& name) {
  const std::string alias = UsageText("--connect", name);
  if (!Isdbx(alias)) {
    throw Exception("no connection '" + alias + "' in " + GetDbxConnectFileName());
  }
  WithoutBoxes([&] { ConnectDBMS(connection, alias, true); });
}

}  // namespace kvshare::app
