// Writes the changes of a client dataset into a server's table, and notices who was there first.
//
// Every UPDATE and DELETE names in its WHERE the values that the record had when it was read: the
// number of rows that it reaches tells that the record is still as it was (1), that somebody has
// changed or deleted it (0), or that its keys do not tell it from others (more). All changes are
// one transaction. Where a refused statement would end that transaction on the server, each change
// has a savepoint of its own. A change that reached several records has already written into them:
// the attempt is undone and begins again without it.
// Internal header.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "kvshare/data/client/clientrecords.h"
#include "kvshare/data/client/provider.h"
#include "kvshare/data/client/updatesql.h"
#include "kvshare/data/records/recordtable.h"
#include "kvshare/data/records/updates.h"

namespace kvshare::data {

// A change that the server refused.
struct Refusal {
  RowId row = kNoRow;
  TUpdateKind kind = TUpdateKind::ukModify;
  std::string message;
  int code = 1;         // the server's, else 1
  bool last = false;    // the one that the work was stopped at
  std::string context;  // why the server's record cannot be read
  Record server;        // what the server has now; empty where that is nothing, or not known
};

// A change that the server took.
struct Written {
  RowId row = kNoRow;
  Record stored;  // with what the server has filled in; empty where that is nothing
};

struct Applied {
  bool written = false;
  std::vector<Written> rows;
  std::vector<Refusal> refusals;
};

class Resolver {
 public:
  // What a query is on, as a record of the table's; what it does not have stays the row's.
  using RecordReader = std::function<Record(const TDataSet& server, RowId row)>;

  Resolver(TSQLConnection& connection, const RecordTable& table, UpdateTarget target,
           RecordReader recordOf);
  ~Resolver();
  Resolver(const Resolver&) = delete;
  Resolver& operator=(const Resolver&) = delete;

  // All changes in the order of the log, in one transaction. Throws EServerError where the
  // connection is lost or cannot commit; nothing is written then, as far as anybody can tell.
  Applied Apply(int maxErrors);

  // What the server has now of a refused record. One that cannot be read, for a letter outside the
  // code page say, gets a context instead, and is no reason to leave the others undecided.
  void FetchServer(Refusal& refusal);

 private:
  // What ends an attempt before its time.
  enum class End : std::uint8_t {
    Done,     // all changes tried
    TooMany,  // more were refused than allowed
    Undone,   // the server has undone the transaction
    Again,    // one change reached several records, and has to be left out
  };
  struct Attempt {
    End end = End::Done;
    std::vector<Written> rows;
    std::vector<Refusal> refusals;
  };

  Attempt Try(int maxErrors, ResolverTransaction& transaction);
  // Whether the change is written; else the attempt tells why not.
  bool TryChange(RowId row, Attempt& attempt);
  Written Write(RowId row);
  bool MakeStatement(RowId row);
  void RunStatement(RowId row);
  // The record that the query gives, empty where it gives none.
  Record RecordOfStatement(RowId row);
  PreparedStatement& Prepared();
  Refusal RefusalOf(RowId row, const Exception& error) const;

  TSQLConnection& connection_;
  const RecordTable& table_;
  UpdateTarget target_;
  RecordReader recordOf_;
  UpdateSql sql_;
  std::unordered_map<std::string, std::unique_ptr<PreparedStatement>> prepared_;
  std::unordered_set<RowId> ambiguous_;  // changes that reach several records
};

}  // namespace kvshare::data
