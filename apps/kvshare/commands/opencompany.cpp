#include "apps/kvshare/commands/opencompany.h"

#include "apps/kvshare/data/connections.h"
#include "apps/kvshare/terminal/usage.h"
#include "apps/posting/company.h"
#include "kvshare/database/dbxconf.h"
#include "kvshare/database/sqldialect.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/settings/globals.h"

namespace kvshare::app {

OpenCompany::OpenCompany(const std::string& connect) {
  OpenConnection(connection_, connect);
  const std::string alias = connection_.ConnectionName();
  KovraAliasName = alias;
  KovraAliasTradeName = GetdbxTradeName(alias);
  KovraLogDatabaseName = GetKovraShareDataPath() + "Log\\";
  KovraLogTableName = alias + ".log";
  WithoutBoxes([] { ReadSQLIntf(""); });
}

void RequireCompany(TSQLConnection& connection, const std::string& connect) {
  if (posting::IsCompany(connection)) return;
  throw Exception("there is no company in this database; `kvshare company create --connect " +
                  UsageText("--connect", connect) + "` makes one");
}

}  // namespace kvshare::app
