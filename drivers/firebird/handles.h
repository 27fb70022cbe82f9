// Owners of the client's handles.
#pragma once

#include <ibase.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "drivers/firebird/status.h"
#include "kvshare/data/contract/driver.h"

namespace kvshare::firebird {

// A transaction; destroying an active one rolls back.
class Transaction {
 public:
  Transaction() = default;
  // Waits for locks for this time, rounded up to seconds; 0: not at all.
  Transaction(isc_db_handle& database, data::Isolation isolation, std::int32_t lockMilliseconds);
  ~Transaction() { Abandon(); }
  Transaction(Transaction&& other) noexcept : handle_(std::exchange(other.handle_, 0)) {}
  Transaction& operator=(Transaction&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }

  bool Active() const { return handle_ != 0; }
  isc_tr_handle* Handle() { return &handle_; }
  // Commit and Rollback throw DriverError and leave the transaction active where they fail, which
  // Abandon then ends without a word.
  void Commit();
  void Rollback();
  void Abandon() noexcept;

 private:
  isc_tr_handle handle_ = 0;
};

// A description of columns or parameters, with room for their values.
class Descriptor {
 public:
  // For `room` columns; where the server needs more, Needed says how many.
  explicit Descriptor(ISC_SHORT room);
  XSQLDA* Get() { return reinterpret_cast<XSQLDA*>(memory_.get()); }
  const XSQLDA* Get() const { return reinterpret_cast<const XSQLDA*>(memory_.get()); }
  ISC_SHORT Needed() const { return Get()->sqld; }
  XSQLVAR& operator[](std::size_t i) { return Get()->sqlvar[i]; }
  const XSQLVAR& operator[](std::size_t i) const { return Get()->sqlvar[i]; }

  // Points variable `i` at `bytes` of zeroed memory and at a null indicator.
  void Allocate(std::size_t i, std::size_t bytes);

 private:
  std::unique_ptr<std::byte[]> memory_;
  std::vector<std::unique_ptr<std::byte[]>> values_;
  std::vector<ISC_SHORT> nulls_;
};

// A prepared statement. Firebird prepares inside a transaction, executes in any.
class Statement {
 public:
  // Throws DriverError with the place of a syntax error in its text.
  Statement(isc_db_handle& database, Transaction& transaction, std::string_view sql, int dialect);
  ~Statement() { Free(); }
  Statement(Statement&& other) noexcept
      : handle_(std::exchange(other.handle_, 0)), columns_(std::move(other.columns_)) {}
  Statement& operator=(Statement&&) = delete;

  isc_stmt_handle* Handle() { return &handle_; }
  // Whether executing it opens rows; a statement with RETURNING gives its one row at once.
  bool IsSelect();
  Descriptor& Columns() { return columns_; }
  // Inserted, updated and deleted together, by the last execution.
  std::int64_t RowsChanged();
  void Free() noexcept;

 private:
  isc_stmt_handle handle_ = 0;
  Descriptor columns_;
};

// All bytes of a blob, and a new blob of these bytes; `text` marks it as text in UTF-8. A blob
// belongs to the transaction in which it was written.
std::string ReadBlob(isc_db_handle& database, Transaction& transaction, ISC_QUAD id);
ISC_QUAD WriteBlob(isc_db_handle& database, Transaction& transaction, std::string_view bytes,
                   bool text);

constexpr int kUtf8 = 4;    // the server's number of the character set
constexpr int kOctets = 1;  // bytes that are no text

}  // namespace kvshare::firebird
