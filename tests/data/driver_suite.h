// What every driver has to fulfil, whatever server stands behind it. A driver's test gives the
// connection and the server's type names:
//
//   INSTANTIATE_TEST_SUITE_P(Sqlite, DriverSuite, testing::Values(DriverCase{...}));
//
// The database is empty, or holds nothing that the tables below would touch: KV_*.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "kvshare/data/sql/sqlconnection.h"
#include "kvshare/data/sql/sqlquery.h"

namespace kvshare {

struct DriverCase {
  std::string name;  // of the case
  // Fills in driver, library, entry and parameters; what it needs (a file, a server) lives as long
  // as the connection's test.
  std::function<void(TSQLConnection&)> configure;

  // Column types. Characters are counted in `text`, which takes 40 of them.
  std::string integer = "INTEGER";
  std::string largeint = "BIGINT";
  std::string real = "DOUBLE PRECISION";
  std::string money = "DECIMAL(19,4)";
  std::string text = "VARCHAR(40)";
  std::string memo = "TEXT";
  std::string blob = "BLOB";
  std::string date = "DATE";
  std::string time = "TIME";
  std::string moment = "TIMESTAMP";
  std::string counter = "INTEGER PRIMARY KEY";  // a key that the server counts
  std::string quote = "\"";                     // around names

  std::string foreignLetter;  // an SQL expression for the letter U+4E2D

  bool ddlRollsBack = true;  // a CREATE TABLE is undone with its transaction
  bool streams = true;       // the server's client does not read all rows before the first
  bool keepsMilliseconds = true;
  // The greatest amount that a column of `money` can hold is Currency's own.
  bool wholeCurrency = true;
  bool tellsDecimals = true;  // of a declared decimal; else its values have as many as they have
  // Around an expression: at four decimals, a tie away from zero.
  std::string round = "ROUND(";
  std::string toFour = ", 4)";
  bool exactSums = true;      // else a program compares them at four decimals
  bool insertsReturn = true;  // what the server has filled in
  bool comparesDays = true;   // days and moments, wherever the parameter stands
};

void PrintTo(const DriverCase& test, std::ostream* out);

class DriverSuite : public testing::TestWithParam<DriverCase> {
 protected:
  void SetUp() override;
  void TearDown() override;

  // One more connection to the same database.
  std::unique_ptr<TSQLConnection> Another() const;

  void Run(std::string_view sql) { connection_->ExecuteDirect(sql); }
  std::string Quoted(std::string_view name) const;  // as the server wants it
  // Makes KV_TEST with the columns, `ID` in front.
  void CreateTable(const std::string& columns);
  // An open query.
  std::unique_ptr<TSQLQuery> Rows(std::string_view sql) const;
  std::string Single(std::string_view sql) const { return Rows(sql)->Fields(0).AsString(); }

  std::unique_ptr<TSQLConnection> connection_;
};

}  // namespace kvshare
