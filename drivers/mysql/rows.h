// The rows of a query as they come from the wire.
#pragma once

#include <mysql.h>

#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "drivers/mysql/columns.h"
#include "kvshare/data/contract/driver.h"

namespace kvshare::mysql {

// Owners of the client's results and statements.
struct FreeResult {
  void operator()(MYSQL_RES* result) const { mysql_free_result(result); }
};
using Result = std::unique_ptr<MYSQL_RES, FreeResult>;

struct CloseStatement {
  void operator()(MYSQL_STMT* statement) const { mysql_stmt_close(statement); }
};
using Statement = std::unique_ptr<MYSQL_STMT, CloseStatement>;

// The values of a row, each as the client gives it: a text, nullptr for a null.
class Rows {
 public:
  const std::vector<data::Column>& Columns() const { return columns_; }
  bool IsNull(int column) const { return cells_[Index(column)] == nullptr; }
  // A BIT column is a number too. Throws DriverError for a text that is no whole number.
  std::int64_t Integer(int column) const;
  // Moments in the form of the driver contract; valid until the next row.
  std::string_view Text(int column) const;

 protected:
  explicit Rows(MYSQL_RES* result);
  static std::size_t Index(int column) { return static_cast<std::size_t>(column); }
  std::string_view Raw(int column) const { return {cells_[Index(column)], sizes_[Index(column)]}; }

  // Of the current row, in the client's memory.
  char** cells_ = nullptr;
  unsigned long* sizes_ = nullptr;

 private:
  std::string_view Moment(int column) const;

  std::vector<data::Column> columns_;
  std::vector<bool> bits_;
  mutable std::vector<std::string> scratch_;
};

// Of a statement without parameters, streamed: the connection is busy until the last row or Close.
class TextRows : public Rows {
 public:
  TextRows(MYSQL* connection, Result result)
      : Rows(result.get()), connection_(connection), result_(std::move(result)) {}
  bool Next();
  double Float(int column) const;
  void Close() noexcept;

 private:
  MYSQL* connection_;
  Result result_;
};

// Of a prepared statement that has been executed. Short columns are fetched into buffers of their
// declared width, long ones in a second call with the length that the first one told.
class StatementRows : public Rows {
 public:
  StatementRows(Statement statement, Result description);
  bool Next();
  double Float(int column) const;
  void Close() noexcept;

 private:
  void Bind();
  void FetchLong(std::size_t column);

  Statement statement_;
  std::vector<std::vector<char>> buffers_;
  std::vector<MYSQL_BIND> binds_;
  std::vector<char*> pointers_;
  std::vector<unsigned long> lengths_;
  std::unique_ptr<my_bool[]> nulls_;
};

// Sends the parameters of a prepared statement and executes it.
void ExecuteWith(MYSQL_STMT* statement, std::span<const data::ParameterValue> parameters);

// Reads and drops whatever else the last statement has given; the rows that it changed.
std::int64_t DrainResults(MYSQL* connection);

}  // namespace kvshare::mysql
