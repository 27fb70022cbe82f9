// One record of a table, found by its key, with fields that show and take texts as the suite's
// screens do.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "kvshare/data/client/clientdataset.h"
#include "kvshare/data/client/provider.h"
#include "kvshare/data/sql/sqlconnection.h"

namespace kvshare::app {

// A field's name and a text for it, as a user types it; code page 874.
struct TypedValue {
  std::string field;
  std::string text;
};
using TypedValues = std::vector<TypedValue>;

// Throws what the fields and the server throw, and Exception where said.
class TableRecord {
 public:
  // The connection is open and outlives the record. Throws Exception for a text that is no name of
  // a table: letters, digits, `_`, `$`, and `.` behind a schema's name.
  TableRecord(TSQLConnection& connection, std::string_view table, TypedValues key);

  TClientDataSet& Set() { return set_; }
  std::string Title() const;  // ITEM CODE=A1
  bool IsKey(const TField& field) const;

  // Fetches it, the key's values as parameters. Throws Exception where there is none, or more than
  // one.
  void Fetch();
  // Begins a new one, which has the key's values.
  void Append();

 private:
  void SelectWhere(const std::string& condition);
  void Attach();
  void PutKey();
  std::string KeyCondition() const;
  void BindKey();

  TypedValues key_;
  TDataSetProvider provider_;
  TClientDataSet set_;
};

// The value as the user sees it: dates in the era in force, amounts with the digits of his settings
// where these are enough, `(nothing)` for Null. One line, and no byte that steers a terminal.
std::string ShownValue(TField& field, const Variant& value);

// Whether the field has a text that can be typed.
bool IsTypable(const TField& field);

// Stores a line that was typed for the field; without anything Null. Throws Exception for a field
// that cannot be typed and for a text that would be cut.
void StoreLine(TField& field, std::string_view line);

}  // namespace kvshare::app
