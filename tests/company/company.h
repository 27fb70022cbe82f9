// A company on the server that this program runs beside (tests/servers/with-server), or on SQLite
// where there is none: a connection of the sample file with the server's host and password put in,
// the sample dialects, an event log, and message boxes that are kept.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "kvshare/data/sql/sqlquery.h"
#include "kvshare/ui/backend.h"
#include "tests/support.h"

namespace kvshare {

inline constexpr const char* kAlias = "LEDGER";

// "sqlite" where no server was started.
std::string ServerName();
bool OnMariaDB();  // which commits by itself at every CREATE and DROP
bool OnSqlite();

class ServerCompany : public testing::Test {
 protected:
  ServerCompany();
  ~ServerCompany() override;

  // Another parameter of the connection, for the connections that are opened after it.
  void SetParameter(std::string_view name, std::string_view value);

  std::unique_ptr<TSQLConnection> Connected() const;
  void Run(std::string_view sql) { connection_->ExecuteDirect(sql); }
  // A new empty table; one of that name that an earlier test left goes first.
  void MakeTable(std::string_view name, std::string_view columns);
  void DropTable(std::string_view name);
  // The first column of the first row; "(none)" without a row.
  std::string Ask(std::string_view sql) const;
  bool Holds(std::string_view condition) const;  // of the rows of T, for one at least

  // The texts of the boxes since the last call.
  std::vector<std::string> Boxes();

  TemporaryHome home_;
  THeadlessInterface boxes_;
  TUseInterface use_{boxes_};
  std::unique_ptr<TSQLConnection> connection_;
};

}  // namespace kvshare
