// The statements that write a client dataset's changes into a table.
// Internal header.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "kvshare/data/client/provider.h"
#include "kvshare/data/contract/driver.h"
#include "kvshare/data/fields/field.h"
#include "kvshare/data/records/record.h"

namespace kvshare::data {

// A column as statements name and compare it.
struct UpdateColumn {
  std::string name;
  ColumnKind kind = ColumnKind::Text;
  TProviderFlags flags;
  bool comparable = true;       // no memo, no blob
  bool inTable = true;          // not worked out by the query or the program
  bool filled = false;          // by the server, where an insert leaves it out
  Connection::Condition equal;  // that it has a value, in code page 874
};

// Where the changes go and how their records are found.
struct UpdateTarget {
  std::string table;
  std::vector<UpdateColumn> columns;  // of the records, in their order
  std::vector<int> key;
  TUpdateMode mode = TUpdateMode::upWhereAll;
  bool insertReturns = false;  // the server knows `returning`
};

// One statement at a time, with the values for its places. Throw EConvertError for a text with a
// byte that is no letter.
class UpdateSql {
 public:
  UpdateSql(const RecordLayout& layout, const UpdateTarget& target)
      : layout_(layout), target_(target) {}

  // What the last one made; code page 874.
  const StatementParts& Parts() const { return parts_; }
  std::span<const ParameterValue> Values() const { return values_; }
  // The same with `?` in each place.
  std::string Text() const;

  void Insert(const Record& record);
  // Whether that insert gives what the server has filled in, as a query gives a record.
  bool Returns() const { return returns_; }
  // False where nothing that may be written has changed: there is no statement then.
  bool Update(const Record& before, const Record& now);
  void Delete(const Record& before);
  // The columns of the record as the server has them, by its key; false without a key.
  bool Select(const Record& record);

 private:
  void Begin(std::string_view words);
  void Add(std::string_view text) { parts_.texts.back() += text; }
  void AddPlace(ParameterValue value);
  void AddPlace(const Cell& cell, TFieldForm form) { AddPlace(WireValueOf(cell, form)); }
  void AddReturned(const Record& record);
  bool IsKey(int column) const;
  bool Changed(int column, const Record& before, const Record& now) const;
  // Which columns find the record.
  bool Finds(int column, const Record* before, const Record* now) const;
  void Where(const Record& before, const Record* now);
  void Condition(int column, const Cell& value, bool exactly);
  void MomentCondition(const UpdateColumn& column, const Cell& value, TFieldForm form);

  const RecordLayout& layout_;
  const UpdateTarget& target_;
  StatementParts parts_;
  std::vector<ParameterValue> values_;
  bool returns_ = false;
};

}  // namespace kvshare::data
