// A company's database for tests of the SQL helpers: a connection file with the alias SHOP, an
// empty SQLite file, an event log, and message boxes that are kept.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "kvshare/data/sql/sqlquery.h"
#include "kvshare/database/dbxconf.h"
#include "kvshare/database/sqlfunc.h"
#include "kvshare/os/paths.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/settings/globals.h"
#include "kvshare/start/package.h"
#include "kvshare/ui/backend.h"
#include "tests/data/sqlite.h"
#include "tests/support.h"

namespace kvshare {

class Company : public testing::Test {
 protected:
  Company() {
    Initialize();
    namespace fs = std::filesystem;
    const fs::path file = os::NativePath(GetDbxConnectFileName());
    fs::create_directories(file.parent_path());
    fs::create_directories(os::NativePath("C:\\Data"));
    std::ofstream(file) << "[dbConnect]\nSHOP=SQLITE\nGONE=SQLITE\n"
                           "[SHOP]\nLibraryName=kvshare-sqlite\nGetDriverFunc=getSQLDriverSQLITE\n"
                           "VendorLib=\nDatabase=C:\\Data\\shop.db\nCreateDatabase=True\n"
                           "[GONE]\nLibraryName=kvshare-sqlite\nGetDriverFunc=getSQLDriverSQLITE\n"
                           "VendorLib=sqlite3.dll\nDatabase=C:\\Data\\gone.db\n";
    UseSqlite(connection_, "C:\\Data\\shop.db");
  }
  ~Company() override { Finalize(); }

  // The texts of the boxes since the last call.
  std::vector<std::string> Boxes() {
    std::vector<std::string> texts;
    for (const auto& message : boxes_.messages) texts.push_back(message.text);
    boxes_.messages.clear();
    return texts;
  }
  void Run(std::string_view sql) { connection_.ExecuteDirect(sql); }
  std::string Single(std::string_view sql) {
    TSQLQuery query;
    query.SetSQLConnection(&connection_);
    query.SQL().Add(sql);
    query.Open();
    return query.Fields(0).AsString();
  }
  static TStringList Lines(std::initializer_list<std::string_view> lines) {
    TStringList list;
    for (const std::string_view line : lines) list.Add(line);
    return list;
  }

  TemporaryHome home_;
  THeadlessInterface boxes_;
  TUseInterface use_{boxes_};
  TSQLConnection connection_;
};

}  // namespace kvshare
