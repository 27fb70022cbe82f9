#include "tests/company/company.h"

#include <cstdlib>
#include <fstream>

#include "kvshare/database/dbxconf.h"
#include "kvshare/database/sqldialect.h"
#include "kvshare/database/sqlfunc.h"
#include "kvshare/rtl/filebytes.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/inifile.h"
#include "kvshare/settings/globals.h"
#include "kvshare/start/package.h"

namespace kvshare {
namespace {

struct ServerRow {
  const char* server;
  const char* sample;  // the section of the sample file that it takes
  const char* trade;
  const char* library;  // another driver than the section's
  const char* entry;
};

constexpr ServerRow kServers[] = {
    {"sqlite", "SampleSQLite", "SQLITE", nullptr, nullptr},
    {"mariadb", "SampleMariaDB", "MYSQL", nullptr, nullptr},
    {"postgres", "SamplePostgreSQL", "POSTGRESQL", nullptr, nullptr},
    {"firebird", "SampleFirebird", "FIREBIRD", nullptr, nullptr},
    {"odbc-mariadb", "SampleMariaDB", "MYSQL", "kvshare-odbc", "getSQLDriverODBC"},
    {"odbc-postgres", "SamplePostgreSQL", "POSTGRESQL", "kvshare-odbc", "getSQLDriverODBC"},
    {"odbc-sqlite", "SampleSQLite", "SQLITE", "kvshare-odbc", "getSQLDriverODBC"},
};

const ServerRow& Server() {
  for (const ServerRow& row : kServers) {
    if (row.server == ServerName()) return row;
  }
  throw std::runtime_error("no server " + ServerName());
}

void TakeParameters(TIniFile& file) {
  const char* name = std::getenv("KVSHARE_SERVER_PARAMETERS");
  if (name == nullptr) {
    file.WriteString(kAlias, "Database", "C:\\ledger.db");
    file.WriteString(kAlias, "CreateDatabase", "True");
    return;
  }
  std::ifstream lines(name);
  for (std::string line; std::getline(lines, line);) {
    const std::size_t equals = line.find('=');
    file.WriteString(kAlias, line.substr(0, equals), line.substr(equals + 1));
  }
}

void WriteConnection(const TemporaryHome& home) {
  home.Make("Program Files/QXN/Share/SqlIntf.ini", ReadFileBytes(KVSHARE_SAMPLES "/SqlIntf.ini"));
  home.Make("ProgramData/QXN/Share/DConnect.ini", ReadFileBytes(KVSHARE_SAMPLES "/DConnect.ini"));
  TIniFile file(GetDbxConnectFileName());
  file.WriteString("dbConnect", kAlias, Server().trade);
  TStringList sample;
  file.ReadSectionValues(Server().sample, sample);
  for (int i = 0; i < sample.Count(); ++i) {
    file.WriteString(kAlias, sample.Names(i), sample.ValueFromIndex(i));
  }
  if (Server().library != nullptr) {
    file.WriteString(kAlias, "LibraryName", Server().library);
    file.WriteString(kAlias, "GetDriverFunc", Server().entry);
  }
  TakeParameters(file);
}

}  // namespace

std::string ServerName() {
  const char* server = std::getenv("KVSHARE_SERVER");
  return server == nullptr ? "sqlite" : server;
}

bool OnMariaDB() {
  return ServerName().ends_with("mariadb");
}

bool OnSqlite() {
  return ServerName() == "sqlite";
}

ServerCompany::ServerCompany() {
  Initialize();
  WriteConnection(home_);
  KovraAliasName = kAlias;
  KovraAliasTradeName = GetdbxTradeName(kAlias);
  KovraLogDatabaseName = "C:\\Log\\";
  KovraLogTableName = "event.log";
  ReadSQLIntf("");
  connection_ = Connected();
}

ServerCompany::~ServerCompany() {
  connection_.reset();
  Finalize();
}

void ServerCompany::SetParameter(std::string_view name, std::string_view value) {
  TIniFile(GetDbxConnectFileName()).WriteString(kAlias, name, value);
}

std::unique_ptr<TSQLConnection> ServerCompany::Connected() const {
  auto connection = std::make_unique<TSQLConnection>();
  ConnectDBMS(*connection, kAlias, true);
  return connection;
}

void ServerCompany::MakeTable(std::string_view name, std::string_view columns) {
  DropTable(name);
  Run(Format("CREATE TABLE %s (%s)", {name, columns}));
}

void ServerCompany::DropTable(std::string_view name) {
  if (ExistTable(*connection_, name)) Run(Format("DROP TABLE %s", {name}));
}

std::string ServerCompany::Ask(std::string_view sql) const {
  TSQLQuery query;
  query.SetSQLConnection(connection_.get());
  query.SQL().Add(sql);
  query.Open();
  return query.Eof() ? "(none)" : query.Fields(0).AsString();
}

bool ServerCompany::Holds(std::string_view condition) const {
  return Ask(Format("SELECT COUNT(*) FROM T WHERE %s", {condition})) != "0";
}

std::vector<std::string> ServerCompany::Boxes() {
  std::vector<std::string> texts;
  for (const auto& message : boxes_.messages) texts.push_back(message.text);
  boxes_.messages.clear();
  return texts;
}

}  // namespace kvshare
