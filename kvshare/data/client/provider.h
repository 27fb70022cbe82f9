// Where a client dataset's records come from and its changes go.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "kvshare/data/records/fieldtypes.h"
#include "kvshare/data/sql/sqlconnection.h"
#include "kvshare/data/sql/sqlquery.h"
#include "kvshare/export.h"
#include "kvshare/rtl/component.h"

namespace kvshare {

// Which fields find the record that a change is meant for, by their values before the change. What
// somebody else has changed in one of them meanwhile is noticed.
enum class TUpdateMode : std::uint8_t {
  upWhereAll,      // all of them, but memos and blobs
  upWhereChanged,  // the key and the changed ones
  upWhereKeyOnly,  // the key: whoever writes last wins
};
using enum TUpdateMode;

// Texts are compared letter by letter, decimals digit by digit, moments by their milliseconds, also
// where the server's own `=` is laxer.
class KVSHARE_API TDataSetProvider : public TComponent {
 public:
  // The connection outlives the provider.
  explicit TDataSetProvider(TSQLConnection& connection, TComponent* owner = nullptr,
                            std::string_view name = "");
  ~TDataSetProvider() override;

  TSQLConnection& SQLConnection() const { return connection_; }

  // What the records are fetched with; without a statement all of TableName.
  TSQLQuery& Query() { return query_; }

  // Where the changes go. Empty: the only table of the query.
  std::string TableName;
  // Field names, `;` between them. Empty: the fields with pfInKey, else the client dataset's
  // primary key.
  std::string KeyFields;
  TUpdateMode UpdateMode = TUpdateMode::upWhereAll;

  // The name of the table. Throws EDatabaseError
  // `Unable to resolve records.  Table name not found.`.
  std::string ResolvedTable() const;

 private:
  friend class TClientDataSet;

  void OpenQuery();
  std::string KnownTable() const;  // "" where nobody knows it
  // Of the table, those that the server fills in where an insert leaves them out.
  std::vector<std::string> FilledColumns() const;

  TSQLConnection& connection_;
  TSQLQuery query_;
  std::string ownStatement_;  // the query's, where it was made here
};

}  // namespace kvshare
