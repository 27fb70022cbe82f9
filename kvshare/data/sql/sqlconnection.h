// A connection to a database server or file.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "kvshare/data/contract/driver.h"
#include "kvshare/data/contract/errors.h"
#include "kvshare/data/sql/statement.h"
#include "kvshare/export.h"
#include "kvshare/rtl/component.h"
#include "kvshare/rtl/stringlist.h"

namespace kvshare {

class TClientDataSet;
class TDataSetProvider;
class TSQLQuery;

namespace data {
class Resolver;
class ResolverTransaction;
}  // namespace data

enum class TTransIsolationLevel : std::uint8_t {
  xilREADCOMMITTED,
  xilREPEATABLEREAD,
  xilDIRTYREAD,
  xilCUSTOM,
};
using enum TTransIsolationLevel;

struct TTransactionDesc {
  std::uint32_t TransactionID = 0;
  std::uint32_t GlobalID = 0;
  TTransIsolationLevel IsolationLevel = TTransIsolationLevel::xilREADCOMMITTED;
  std::uint32_t CustomIsolation = 0;
};

// Texts are code page 874. A failure throws EDatabaseError, one that the server reports
// EServerError; `Name: ` stands in front where the connection has a name. No message holds a
// password of Params, one in a connection string neither.
class KVSHARE_API TSQLConnection : public TComponent {
 public:
  explicit TSQLConnection(TComponent* owner = nullptr, std::string_view name = "");
  ~TSQLConnection() override;  // rolls back and disconnects
  TSQLConnection(const TSQLConnection&) = delete;
  TSQLConnection& operator=(const TSQLConnection&) = delete;

  // A label; setting it disconnects.
  const std::string& ConnectionName() const { return connectionName_; }
  void SetConnectionName(std::string_view name);

  // Setting another one disconnects and empties LibraryName, VendorLib and GetDriverFunc.
  const std::string& DriverName() const { return driverName_; }
  void SetDriverName(std::string_view name);

  // The driver's library: a customary name of the platform's (dbexpmys.dll), ours (kvshare-mysql)
  // or a file; its entry function; and the server's client library. The customary name of that one,
  // and none, mean the client that the driver was linked with; another one is loaded first.
  std::string LibraryName;
  std::string GetDriverFunc;
  std::string VendorLib;

  // There is no login dialog: user and password come from Params either way.
  bool LoginPrompt = true;

  // `name=value`, in the connection file's names, for the driver; names ignore case, the first of
  // doubles counts. LockTimeout is the milliseconds that a statement waits for what another
  // connection has locked (10000; 0: not at all), AnswerTimeout those that any call waits for the
  // server's answer before the connection is given up as lost (3600000; 0: for ever).
  // `... TransIsolation` (ReadCommited, RepeatableRead, DirtyRead) is the isolation of xilCUSTOM.
  // Connecting refuses a BlobSize other than -1 and an AutoCommit other than True.
  TStringList Params;

  // Setting true connects, false rolls back, closes the queries and never fails. Errors:
  //   `Missing DriverName property`
  //   `DLL/Shared Library Name not Set`
  //   `Unable to Load %s`, then the files that were looked for
  //   `Unable to Find Procedure %s`, then the file that was loaded
  //   `SQL Server Error: %s`, the server's words
  bool Connected() const { return session_ != nullptr; }
  void SetConnected(bool connected) { connected ? Open() : Close(); }
  void Open();
  void Close() noexcept;

  // The following connect a closed connection.

  // `A transaction is already active`; `There is no active transaction`. The ids are not compared.
  // After the server undid a transaction by itself, statements and Commit are refused with
  // `The server undid the transaction` until Rollback; after the connection was lost, whoever
  // noticed it, with `SQL Server Error: The connection was lost` until Close.
  void StartTransaction(const TTransactionDesc& description);
  void Commit(const TTransactionDesc& description);
  void Rollback(const TTransactionDesc& description);
  bool InTransaction() const;

  // How many times the server has committed the active transaction, or the last one, before its
  // Commit: what statements before such a moment wrote is there to stay. CREATE TABLE and its
  // like do that on MariaDB and MySQL, the word COMMIT on all servers. And how many times it has
  // rolled it back: the word ROLLBACK does that. What raises both numbers has done one of them or
  // both, and nobody can tell: a procedure on the server, or a COMMIT whose answer was lost.
  std::int64_t EarlyCommits() const;
  std::int64_t EarlyRollbacks() const;

  // One statement, as it is, without parameters or rows. The rows that it changed, 0 where the
  // server does not tell. A zero byte or one that is no letter is refused and nothing is sent.
  std::int64_t ExecuteDirect(std::string_view sql);

  // Replaces the list by the names of tables and views in the driver's order, or by the system
  // tables alone, spelled as the server spells them. Names of tables and views stand between two of
  // the server's quotation marks; where one of the names has that mark inside, all stand between
  // two of another mark that none has. GetAllTableNames gives the names alone. A name with a letter
  // that code page 874 lacks is left out: no statement here can spell it.
  void GetTableNames(TStrings& list, bool systemTables);

  // "PostgreSQL 15.6".
  std::string ServerVersion();

 private:
  friend class TClientDataSet;
  friend class TDataSetProvider;
  friend class TSQLQuery;
  friend class data::Resolver;
  friend class data::ResolverTransaction;
  struct Session;

  // Runs what speaks to the driver, its errors as EServerError.
  template <typename Work>
  auto Guarded(Work work) const;
  // The same for a statement, after connecting, unless the transaction was undone.
  template <typename Work>
  auto OnServer(Work work);
  // `words` stand in front of the server's.
  [[noreturn]] void RefuseByServer(const data::DriverError& error,
                                   std::string_view words = {}) const;
  void CheckUsable();
  std::string WithoutPassword(std::string text) const;
  void RefuseUnknownManners() const;
  data::Isolation CustomIsolation() const;
  std::optional<std::int32_t> MillisecondsOf(std::string_view name) const;
  void ApplyLockTimeout();
  void WatchAnswers();

  // Statements are code page 874.
  std::unique_ptr<data::Cursor> OpenCursor(std::string_view sql);
  std::unique_ptr<data::Cursor> OpenCursor(const data::StatementParts& statement,
                                           std::span<const data::ParameterValue> parameters);
  const std::vector<data::Column>& ColumnsOf(const data::Cursor& cursor) const;
  bool NextRow(data::Cursor& cursor);
  void Release(std::unique_ptr<data::Cursor>& cursor) const noexcept;
  std::unique_ptr<data::PreparedStatement> Prepare(const data::StatementParts& statement);
  data::StatementParts WireParts(const data::StatementParts& statement) const;
  // Of the server; before the connection is open, of those that its driver is for.
  data::Lexis StatementLexis();
  std::int64_t Run(data::PreparedStatement& statement,
                   std::span<const data::ParameterValue> parameters);
  // What the driver says of an open connection (driver.h).
  bool FailureEndsTransaction() const;
  data::Connection::Condition Exactly(std::string_view column, data::ColumnKind kind) const;
  std::string Quoted(std::string_view name) const;
  std::vector<std::string> FilledColumns(std::string_view table);
  bool InsertReturns() const;

  struct DriverLexis {
    std::string library, entry, client;
    data::Lexis lexis = data::kUnknownServer;
  };

  std::string connectionName_;
  std::string driverName_;
  std::unique_ptr<Session> session_;
  DriverLexis driverLexis_;
  std::vector<TSQLQuery*> queries_;
};

}  // namespace kvshare
