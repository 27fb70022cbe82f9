// The rows of a statement: many at a time where all columns are short, else one by one.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "drivers/odbc/handles.h"
#include "kvshare/data/contract/driver.h"

namespace kvshare::odbc {

// How texts are read.
struct TextRules {
  bool utf8Bytes = false;  // the driver gives narrow texts in UTF-8; wide ones cost more
  bool trimCharacters = false;
  bool sqlite = false;    // any value may lie in any column: all are read as texts, and looked at
  bool compound = false;  // there: rows of several SELECTs
};

class Rows {
 public:
  // Of a statement that has been executed. Describes its columns and binds the short ones in
  // blocks.
  Rows(Handle statement, TextRules rules);
  ~Rows() { Close(); }
  Rows(const Rows&) = delete;
  Rows& operator=(const Rows&) = delete;

  const std::vector<data::Column>& Columns() const { return columns_; }
  bool Next();
  bool IsNull(int column) const { return At(column).sizes[row_] == SQL_NULL_DATA; }
  // Each throws DriverError for a value that is no such number; the text is valid until the next
  // row.
  std::int64_t Integer(int column) const;
  double Float(int column) const;
  std::string_view Text(int column) const;
  void Close() noexcept;

 private:
  struct Field {
    SQLSMALLINT type = 0;   // of the values as they are fetched
    std::size_t width = 0;  // bytes of one; 0: long, fetched in parts
    bool trimmed = false;
    std::vector<char> values;
    std::vector<SQLLEN> sizes;  // or SQL_NULL_DATA
    mutable std::string text;
  };

  const Field& At(int column) const { return fields_[static_cast<std::size_t>(column)]; }
  // What the driver says of a column, and how its values are fetched. SQLite's driver has no types
  // of its own to tell: there the declared type decides, and compound selects have none.
  void Describe(SQLUSMALLINT number, TextRules rules);
  void DescribeForSqlite(SQLUSMALLINT number, bool compound, data::Column& column);
  std::string Attribute(SQLUSMALLINT number, SQLUSMALLINT attribute) const;
  void Bind();
  // Several rows in one call; false at the end.
  bool FetchBlock();
  // A value of the current row that was not bound: whole, or in parts.
  void Get(std::size_t column);
  void GetLong(std::size_t column);
  std::string_view Raw(int column) const;
  std::string_view ShortText(int column) const;
  std::string_view Decimal(int column, std::string_view text) const;
  std::string_view Moment(int column, std::string_view text) const;

  Handle statement_;
  bool sqlite_;
  std::vector<data::Column> columns_;
  std::vector<Field> fields_;
  bool bound_ = true;
  std::size_t row_ = 0;  // in the block
  SQLULEN fetched_ = 0;  // rows of the block
};

}  // namespace kvshare::odbc
