// The rows of a statement, as the client fetches them.
#pragma once

#include <ibase.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "drivers/firebird/handles.h"
#include "kvshare/data/contract/driver.h"

namespace kvshare::firebird {

class Rows {
 public:
  // Of a select that has been executed in `transaction`; in one of its own, which it then ends,
  // where `own` is one.
  Rows(isc_db_handle& database, Transaction& transaction, std::optional<Transaction> own,
       Statement statement, bool trimCharacters);
  // Of a statement whose execution gave its one row: what `statement` holds.
  Rows(isc_db_handle& database, Transaction& transaction, Statement statement, bool trimCharacters);

  const std::vector<data::Column>& Columns() const { return columns_; }
  // Makes the texts of the row at once: dates, decimals and blobs come in forms of the client's.
  bool Next();
  bool IsNull(int column) const;
  std::int64_t Integer(int column) const;
  double Float(int column) const;
  std::string_view Text(int column) const { return texts_[static_cast<std::size_t>(column)]; }
  void Close() noexcept;

 private:
  const XSQLVAR& Variable(int column) const {
    return statement_.Columns()[static_cast<std::size_t>(column)];
  }
  void MakeTexts();
  void MakeText(std::size_t column);

  isc_db_handle* database_;
  Transaction* transaction_;
  std::optional<Transaction> own_;
  mutable Statement statement_;
  bool single_ = false;  // one row, which the execution gave
  bool ended_ = false;
  std::vector<data::Column> columns_;
  std::vector<bool> trimmed_;
  std::vector<std::string_view> texts_;
  std::vector<std::string> made_;
};

// Gives every column room for a value.
void PrepareColumns(Descriptor& columns);

}  // namespace kvshare::firebird
