// The rows of a query, one at a time as they come from the wire.
#pragma once

#include <libpq-fe.h>

#include <string>
#include <string_view>
#include <vector>

#include "drivers/postgres/errors.h"
#include "kvshare/data/contract/driver.h"

namespace kvshare::postgres {

class Rows {
 public:
  // `first` is the first result of the query: a row, or the empty end of them.
  Rows(PGconn* connection, Result first, bool trimCharacters);

  const std::vector<data::Column>& Columns() const { return columns_; }
  // Throws DriverError for an error that the server sends in the middle of the rows.
  bool Next();
  bool IsNull(int column) const { return PQgetisnull(row_.get(), 0, column) != 0; }
  // Each throws DriverError for a value that is no such number; the text is valid until the next
  // row.
  std::int64_t Integer(int column) const;
  double Float(int column) const;
  std::string_view Text(int column) const;
  // Cancels what the server still sends and reads it away, so that the connection is free.
  void Close() noexcept;

 private:
  std::string_view Raw(int column) const;
  // The server's forms in those of the driver contract: moments without a zone, bytes from
  // hexadecimal.
  std::string_view Moment(int column, std::string_view text) const;
  std::string_view Unescaped(int column, std::string_view hex) const;
  [[noreturn]] void Refuse(int column, std::string_view text, const char* what) const;

  PGconn* connection_;
  Result row_;
  bool first_ = true;
  bool open_ = true;
  std::vector<data::Column> columns_;
  std::vector<bool> trimmed_;
  mutable std::vector<std::string> scratch_;  // a column each, for texts that are made
};

// Reads and drops what the connection still sends for its last command.
void Drain(PGconn* connection) noexcept;

}  // namespace kvshare::postgres
