// A home with the connections of a shop, for tests of the commands that use its database.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/apps/tempfile.h"
#include "tests/support.h"

namespace kvshare::app {

class Shop : public ::testing::Test {
 protected:
  Shop() {
    home_.Make("ProgramData/QXN/Share/DConnect.ini",
               "[dbConnect]\r\nSHOP=SQLITE\r\nFARAWAY=MYSQL\r\n"
               "[SHOP]\r\nLibraryName=kvshare-sqlite\r\nGetDriverFunc=getSQLDriverSQLITE\r\n"
               "Database=C:\\shop.db\r\nCreateDatabase=True\r\n"
               "[FARAWAY]\r\nLibraryName=kvshare-none\r\nUser_Name=som\r\npassword=secret1\r\n"
               "MasterPWD=secret2\r\nDatabase=Server=x;Pwd={secret3;secret4};Port=1\r\n");
  }

  static Outcome Run(std::vector<std::string> arguments, std::string_view input = "") {
    return Kvshare(std::move(arguments), input);
  }
  static Outcome Sql(std::string sql) { return Run({"sql", "--connect", "SHOP", std::move(sql)}); }
  static Outcome Batch(std::string_view text) {
    return Run({"sql", "--connect", "SHOP", "--batch", "-"}, text);
  }

  const TemporaryHome home_;
};

}  // namespace kvshare::app
