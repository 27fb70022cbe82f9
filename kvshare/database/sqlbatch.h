// Batches of statements with a report.
#pragma once

#include <string>
#include <vector>

#include "kvshare/data/sql/sqlconnection.h"
#include "kvshare/export.h"
#include "kvshare/rtl/stringlist.h"

namespace kvshare {

// Statements of a batch that follow each other, by their numbers from 1.
struct TSQLStatements {
  int First = 0;
  int Last = 0;
  bool operator==(const TSQLStatements&) const = default;
};

// What became of a batch. Texts are code page 874.
struct KVSHARE_API TSQLBatchReport {
  bool Committed = false;
  // The connection was lost while the server committed, or a procedure ended the transaction:
  // whether what Written lacks was committed, nobody here can tell.
  bool InDoubt = false;
  // Of a batch that failed: the statements that had been committed before, in their order and not
  // next to each other. A server does so by itself (MariaDB and MySQL at every CREATE, ALTER and
  // DROP) or because the batch holds a COMMIT. All others were taken back.
  std::vector<TSQLStatements> Written;
  // The statement that failed: its number and the line of the list on which it begins, both from 1.
  // 0 when the transaction could not begin or be committed.
  int Statement = 0;
  int Line = 0;
  std::string StatementText;
  std::string Message;  // the error's

  // For a person: "Statement 3 (line 7): MESSAGE" and a sentence on what was written: nothing, or
  // what Written says, as far as it is known. "" for a committed batch.
  std::string Text() const;
};

// Runs a batch as RunExecSQLBatch does, but shows and logs nothing.
KVSHARE_API TSQLBatchReport RunSQLBatch(TSQLConnection& Connection, const TStrings& Lines);

}  // namespace kvshare
