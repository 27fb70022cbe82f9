// A company as a command works in it.
#pragma once

#include <string>

#include "apps/kvshare/commands/startedlibrary.h"
#include "kvshare/data/sql/sqlconnection.h"

namespace kvshare::app {

// A connection's database with the globals of a company: its server's dialect and its log. Throws
// Exception where it cannot be opened.
class OpenCompany {
 public:
  explicit OpenCompany(const std::string& connect);

  TSQLConnection& Connection() { return connection_; }

 private:
  StartedLibrary library_;
  TSQLConnection connection_;  // closed before the library ends
};

// Throws Exception, with the command that makes one, where the database has no company.
void RequireCompany(TSQLConnection& connection, const std::string& connect);

}  // namespace kvshare::app
