// Batches of statements with a report.
#pragma once

#include <string>

#include "kvshare/data/sqlconnection.h"
#include "kvshare/export.h"
#include "kvshare/rtl/stringlist.h"

namespace kvshare {

// What became of a batch. Texts are code page 874.
struct KVSHARE_API TSQLBatchReport {
  bool Committed = false;
  // The connection was lost while the server committed: whether it did, nobody here can tell.
  bool InDoubt = false;
  // The statement that failed: its number and the line of the list on which it begins, both from 1.
  // 0 when the transaction could not begin or be committed.
  int Statement = 0;
  int Line = 0;
  std::string StatementText;
  std::string Message;  // the error's

  // For a person: "Statement 3 (line 7): MESSAGE" and a sentence on what was written, which is
  // nothing, unless the outcome is in doubt. "" for a committed batch. On servers that commit at
  // every CREATE, ALTER and DROP (MariaDB, MySQL) what stands before such a statement has been
  // written all the same.
  std::string Text() const;
};

// Runs a batch as RunExecSQLBatch does, but shows and logs nothing.
KVSHARE_API TSQLBatchReport RunSQLBatch(TSQLConnection& Connection, const TStrings& Lines);

}  // namespace kvshare
