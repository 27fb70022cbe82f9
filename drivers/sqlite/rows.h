// The rows of a statement.
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "drivers/sqlite/handles.h"
#include "kvshare/data/contract/driver.h"

namespace kvshare::drivers::sqlite {

class Rows;

// The rows of a connection that are being read.
using OpenRows = std::vector<Rows*>;

// A column without a declared type (an expression) has decimals without a size where the first row
// has a number, and else what its value there is; without a row, or Null there, texts. A number
// among texts is given as its digits; a text among numbers is refused unless it is written as one.
class Rows : public data::Cursor {
 public:
  // `open` has it among them while it lives, and outlives it.
  Rows(sqlite3* database, Statement statement, OpenRows& open);
  ~Rows() override;

  // Moves this row and all further ones into memory and lets go of the file. What has been read of
  // it since somebody else changed it would keep this connection from writing.
  // False when there was nothing to let go of.
  bool Detach();

  const std::vector<data::Column>& Columns() const override { return columns_; }
  bool Next() override;
  bool IsNull(int column) const override;
  std::int64_t Integer(int column) const override;
  double Float(int column) const override;
  std::string_view Text(int column) const override;

 private:
  struct FreeValue {
    void operator()(sqlite3_value* value) const { sqlite3_value_free(value); }
  };
  using Value = std::unique_ptr<sqlite3_value, FreeValue>;

  bool Step();
  void Describe(int column, bool compound);
  void Keep();
  sqlite3_value* Current(int column) const;
  const data::Column& ColumnAt(int column) const {
    return columns_[static_cast<std::size_t>(column)];
  }
  std::string_view RealText(double value, int column) const;
  std::string_view DecimalText(sqlite3_value* value, int column) const;

  sqlite3* database_;
  Statement statement_;
  OpenRows& open_;
  bool detached_ = false;
  std::deque<std::vector<Value>> kept_;  // of a detached one, the current row in front
  std::vector<data::Column> columns_;
  bool ahead_;  // the first row has been stepped to, but not asked for
  bool done_;
  mutable std::vector<std::string> made_;  // texts of numbers, by column
};

}  // namespace kvshare::drivers::sqlite
