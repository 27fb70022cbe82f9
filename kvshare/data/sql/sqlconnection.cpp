#include "kvshare/data/sql/sqlconnection.h"

#include <algorithm>
#include <utility>

#include "kvshare/data/contract/answerwatch.h"
#include "kvshare/data/contract/driverlibrary.h"
#include "kvshare/data/contract/named.h"
#include "kvshare/data/contract/wiretexts.h"
#include "kvshare/data/sql/secrets.h"
#include "kvshare/data/sql/sqlquery.h"
#include "kvshare/os/paths.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare {

// The driver's library outlives what comes from it.
struct TSQLConnection::Session {
  enum class Transaction : std::uint8_t { None, Active, Undone };

  data::DriverLibrary library;
  std::unique_ptr<data::Connection> connection;
  Transaction transaction = Transaction::None;
  bool lost = false;
  std::unique_ptr<data::AnswerWatch> watch;
};

namespace {

using Pairs = std::vector<std::pair<std::string, std::string>>;

// A file of the interface as the system names it; what is no file's name stays.
std::string DatabaseFile(std::string_view name) {
  const bool special = name.empty() || name.starts_with(":") || name.starts_with("file:");
  return special ? Cp874ToUtf8(name) : os::NativePath(name);
}

Pairs WireParameters(const TStrings& params, bool databaseIsFile) {
  Pairs pairs;
  for (int i = 0; i < params.Count(); ++i) {
    const std::string_view name = params.Names(i);
    if (name.empty()) continue;
    const std::string_view value = params.ValueFromIndex(i);
    const bool file = databaseIsFile && SameText(name, "Database");
    pairs.emplace_back(Cp874ToUtf8(name), file ? DatabaseFile(value) : Cp874ToUtf8(value));
  }
  return pairs;
}

// What stands around names so that no name has it inside: the server's own mark where that can be.
// '\0' where every mark stands in some name.
char MarkAround(const std::vector<std::string>& names, std::string_view quotedByServer) {
  std::string marks = "\"`'|~^!#$%&*+-./:;=?@_";
  if (quotedByServer.front() == quotedByServer.back()) marks.insert(0, 1, quotedByServer.front());
  const auto isFree = [&names](char mark) {
    return std::ranges::none_of(
        names, [mark](const std::string& name) { return name.find(mark) != std::string::npos; });
  };
  const auto found = std::ranges::find_if(marks, isFree);
  return found == marks.end() ? '\0' : *found;
}

// Whoever takes the quotes off decides by the first name alone whether there are any, and takes an
// `alpha` for quoted: so all have them.
void PutBetweenMarks(TStrings& names, std::string_view quotedByServer) {
  const std::vector<std::string> plain(names.begin(), names.end());
  const char mark = MarkAround(plain, quotedByServer);
  if (mark == '\0') return;
  names.Clear();  // a sorted list takes names, but none at a place
  for (const std::string& name : plain) names.Add(mark + name + mark);
}

// The names that a statement of a program's can have: not those with a letter outside the code
// page.
std::vector<std::string> TextsOf(const std::vector<std::string>& names) {
  std::vector<std::string> texts;
  for (const std::string& name : names) {
    if (auto text = TryUtf8ToCp874(name)) texts.push_back(*std::move(text));
  }
  return texts;
}

}  // namespace

TSQLConnection::TSQLConnection(TComponent* owner, std::string_view name)
    : TComponent(owner, name) {}

TSQLConnection::~TSQLConnection() {
  Close();
  for (TSQLQuery* query : queries_) query->connection_ = nullptr;
}

void TSQLConnection::SetConnectionName(std::string_view name) {
  Close();
  connectionName_ = name;
}

void TSQLConnection::SetDriverName(std::string_view name) {
  if (driverName_ == name) return;
  Close();
  driverName_ = name;
  LibraryName.clear();
  VendorLib.clear();
  GetDriverFunc.clear();
}

std::string TSQLConnection::WithoutPassword(std::string text) const {
  return data::HideSecrets(text, data::SecretsOf(Params));
}

void TSQLConnection::RefuseByServer(const data::DriverError& error, std::string_view words) const {
  using Kind = data::DriverError::Kind;
  if (session_ && error.What() == Kind::ConnectionLost) session_->lost = true;
  if (error.What() == Kind::Conflict && session_ && InTransaction()) {
    session_->transaction = Session::Transaction::Undone;
  }
  const std::string text = WithoutPassword(data::ServerText(error.what()));
  throw EServerError(NamedMessage(std::string(words) + "SQL Server Error: " + text, this), error);
}

template <typename Work>
auto TSQLConnection::Guarded(Work work) const {
  data::AnswerWatch* watch = session_ ? session_->watch.get() : nullptr;
  try {
    const data::AnswerWatch::Call call(watch);
    return work();
  } catch (const data::DriverError& e) {
    if (watch == nullptr || !watch->HasAborted()) RefuseByServer(e);
    const auto limit = std::to_string(watch->Limit().count());
    RefuseByServer(data::DriverError("The server has not answered for " + limit + " milliseconds",
                                     data::DriverError::Kind::ConnectionLost));
  }
}

void TSQLConnection::CheckUsable() {
  if (session_->lost) {
    RefuseByServer(
        data::DriverError("The connection was lost", data::DriverError::Kind::ConnectionLost));
  }
  if (session_->transaction == Session::Transaction::Undone) {
    DatabaseError("The server undid the transaction", this);
  }
}

template <typename Work>
auto TSQLConnection::OnServer(Work work) {
  Open();
  CheckUsable();
  return Guarded([&] { return work(*session_->connection); });
}

void TSQLConnection::Open() {
  if (Connected()) return;
  if (driverName_.empty()) DatabaseError("Missing DriverName property", this);
  RefuseUnknownManners();
  try {
    std::unique_ptr<Session> session;
    Guarded([&] {
      session = std::make_unique<Session>(Session{
          data::DriverLibrary(LibraryName, GetDriverFunc, VendorLib), nullptr, {}, false, nullptr});
      data::Driver& driver = session->library.Driver();
      session->connection = driver.MakeConnection();
      session->connection->Connect(WireParameters(Params, driver.DatabaseIsFile()));
    });
    session_ = std::move(session);
    WatchAnswers();
    ApplyLockTimeout();
  } catch (const EServerError&) {
    session_.reset();
    throw;
  } catch (const Exception& e) {
    session_.reset();
    DatabaseError(WithoutPassword(e.Message()), this);
  }
}

// Manners that a connection file may ask for and no driver has: silence would mean something else.
void TSQLConnection::RefuseUnknownManners() const {
  const std::string_view blobSize = Params.Values("BlobSize");
  if (!blobSize.empty() && blobSize != "-1") {
    DatabaseError("The parameter BlobSize cannot be " + std::string(blobSize) +
                      ": blobs are read whole, which is -1",
                  this);
  }
  const std::string_view autoCommit = Params.Values("AutoCommit");
  if (!autoCommit.empty() && !SameText(autoCommit, "True")) {
    DatabaseError("The parameter AutoCommit cannot be " + std::string(autoCommit) +
                      ": a statement outside transactions commits itself, which is True",
                  this);
  }
  CustomIsolation();
}

// Of xilCUSTOM, by a parameter whose name begins with a driver's.
data::Isolation TSQLConnection::CustomIsolation() const {
  using data::Isolation;
  constexpr std::string_view kName = "TransIsolation";
  for (int i = 0; i < Params.Count(); ++i) {
    const std::string_view name = Params.Names(i);
    const bool known =
        name.size() >= kName.size() && SameText(name.substr(name.size() - kName.size()), kName);
    const std::string_view value = Params.ValueFromIndex(i);
    if (!known || value.empty()) continue;
    if (SameText(value, "ReadCommited") || SameText(value, "ReadCommitted")) {
      return Isolation::ReadCommitted;
    }
    if (SameText(value, "RepeatableRead")) return Isolation::RepeatableRead;
    if (SameText(value, "DirtyRead")) return Isolation::DirtyRead;
    DatabaseError("The parameter " + std::string(name) + " cannot be " + std::string(value), this);
  }
  return Isolation::Custom;
}

std::optional<std::int32_t> TSQLConnection::MillisecondsOf(std::string_view name) const {
  const std::string_view text = Params.Values(name);
  if (text.empty()) return std::nullopt;
  const std::int32_t milliseconds = StrToInt(text);
  if (milliseconds >= 0) return milliseconds;
  throw EConvertError("'" + std::string(text) + "' is no " + std::string(name));
}

void TSQLConnection::ApplyLockTimeout() {
  const auto milliseconds = MillisecondsOf("LockTimeout");
  if (!milliseconds) return;
  Guarded([&] { session_->connection->SetLockTimeout(*milliseconds); });
}

void TSQLConnection::WatchAnswers() {
  constexpr std::int32_t kHour = 3'600'000;
  const std::chrono::milliseconds limit(MillisecondsOf("AnswerTimeout").value_or(kHour));
  if (limit.count() == 0 || !session_->connection->WaitsForServer()) return;
  session_->watch = std::make_unique<data::AnswerWatch>(*session_->connection, limit);
}

void TSQLConnection::Close() noexcept {
  if (!Connected()) return;
  for (TSQLQuery* query : queries_) query->Close();
  {
    const data::AnswerWatch::Call call(session_->watch.get());
    session_->connection->Disconnect();
  }
  session_.reset();
}

bool TSQLConnection::InTransaction() const {
  return session_ && session_->transaction != Session::Transaction::None;
}

void TSQLConnection::StartTransaction(const TTransactionDesc& description) {
  Open();
  if (InTransaction()) DatabaseError("A transaction is already active", this);
  const auto isolation = description.IsolationLevel == TTransIsolationLevel::xilCUSTOM
                             ? CustomIsolation()
                             : static_cast<data::Isolation>(description.IsolationLevel);
  OnServer([&](data::Connection& connection) { connection.Begin(isolation); });
  session_->transaction = Session::Transaction::Active;
}

// A failed Commit leaves the transaction to Rollback, which a program calls then.
void TSQLConnection::Commit(const TTransactionDesc& /*description*/) {
  if (!InTransaction()) DatabaseError("There is no active transaction", this);
  OnServer([](data::Connection& connection) { connection.Commit(); });
  session_->transaction = Session::Transaction::None;
}

void TSQLConnection::Rollback(const TTransactionDesc& /*description*/) {
  if (!InTransaction()) DatabaseError("There is no active transaction", this);
  session_->transaction = Session::Transaction::None;
  Guarded([&] { session_->connection->Rollback(); });
}

std::int64_t TSQLConnection::EarlyCommits() const {
  return session_ ? Guarded([&] { return session_->connection->EarlyCommits(); }) : 0;
}

std::int64_t TSQLConnection::EarlyRollbacks() const {
  return session_ ? session_->connection->EarlyRollbacks() : 0;
}

std::int64_t TSQLConnection::ExecuteDirect(std::string_view sql) {
  const std::string text = data::StatementText(sql, this);
  return OnServer([&](data::Connection& connection) { return connection.Execute(text); });
}

void TSQLConnection::GetTableNames(TStrings& list, bool systemTables) {
  list.Clear();
  const auto names =
      OnServer([&](data::Connection& connection) { return connection.TableNames(systemTables); });
  for (const std::string& name : TextsOf(names)) list.Add(name);
  if (!systemTables) PutBetweenMarks(list, Quoted("x"));
}

std::string TSQLConnection::ServerVersion() {
  return data::ServerText(
      OnServer([](data::Connection& connection) { return connection.ServerVersion(); }));
}

std::unique_ptr<data::Cursor> TSQLConnection::OpenCursor(std::string_view sql) {
  const std::string text = data::StatementText(sql, this);
  return OnServer([&](data::Connection& connection) { return connection.Query(text); });
}

std::unique_ptr<data::Cursor> TSQLConnection::OpenCursor(
    const data::StatementParts& statement, std::span<const data::ParameterValue> parameters) {
  const data::StatementParts parts = WireParts(statement);
  return OnServer(
      [&](data::Connection& connection) { return connection.Query(parts, parameters); });
}

std::unique_ptr<data::PreparedStatement> TSQLConnection::Prepare(
    const data::StatementParts& statement) {
  const data::StatementParts parts = WireParts(statement);
  return OnServer([&](data::Connection& connection) { return connection.Prepare(parts); });
}

data::StatementParts TSQLConnection::WireParts(const data::StatementParts& statement) const {
  data::StatementParts parts{{}, statement.places};
  parts.texts.reserve(statement.texts.size());
  for (const std::string& text : statement.texts)
    parts.texts.push_back(data::StatementText(text, this));
  return parts;
}

// Open reports a driver that cannot be loaded.
data::Lexis TSQLConnection::StatementLexis() {
  if (session_) return Guarded([&] { return session_->connection->StatementLexis(); });
  DriverLexis& known = driverLexis_;
  if (known.library == LibraryName && known.entry == GetDriverFunc && known.client == VendorLib) {
    return known.lexis;
  }
  known = {LibraryName, GetDriverFunc, VendorLib, data::kUnknownServer};
  try {
    Guarded([&] {
      const data::DriverLibrary library(LibraryName, GetDriverFunc, VendorLib);
      known.lexis = library.Driver().MakeConnection()->StatementLexis();
    });
  } catch (const Exception&) {
    known.lexis = data::kUnknownServer;
  }
  return known.lexis;
}

std::int64_t TSQLConnection::Run(data::PreparedStatement& statement,
                                 std::span<const data::ParameterValue> parameters) {
  return OnServer([&](data::Connection& /*its own*/) { return statement.Run(parameters); });
}

bool TSQLConnection::FailureEndsTransaction() const {
  return Guarded([&] { return session_->connection->FailureEndsTransaction(); });
}

data::Connection::Condition TSQLConnection::Exactly(std::string_view column,
                                                    data::ColumnKind kind) const {
  return Guarded([&] { return session_->connection->Exactly(column, kind); });
}

std::string TSQLConnection::Quoted(std::string_view name) const {
  return Guarded([&] { return session_->connection->Quoted(name); });
}

std::vector<std::string> TSQLConnection::FilledColumns(std::string_view table) {
  const std::string text = data::StatementText(table, this);
  return TextsOf(
      OnServer([&](data::Connection& connection) { return connection.FilledColumns(text); }));
}

bool TSQLConnection::InsertReturns() const {
  return Guarded([&] { return session_->connection->InsertReturns(); });
}

const std::vector<data::Column>& TSQLConnection::ColumnsOf(const data::Cursor& cursor) const {
  return *Guarded([&] { return &cursor.Columns(); });
}

void TSQLConnection::Release(std::unique_ptr<data::Cursor>& cursor) const noexcept {
  const data::AnswerWatch::Call call(session_ ? session_->watch.get() : nullptr);
  cursor.reset();
}

bool TSQLConnection::NextRow(data::Cursor& cursor) {
  return Guarded([&] { return cursor.Next(); });
}

}  // namespace kvshare
