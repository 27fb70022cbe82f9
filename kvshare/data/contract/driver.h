// What a database driver fulfils. A driver is a loadable library with one entry function; it stands
// between this contract and one server's own client library, and knows nothing else of the house
// but rtl.
//
// Every text that crosses the contract is UTF-8, except where bytes are said: the library converts
// to and from code page 874 on its side, once for all drivers, and refuses what the other cannot
// hold.
//
// A connection and its cursors belong to one thread. A cursor lives at most as long as its
// connection. Whatever fails throws DriverError; nothing else leaves a driver but std::bad_alloc.
#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "kvshare/export.h"

namespace kvshare::data {

// Changes with every change of this file that a driver can notice.
inline constexpr std::int32_t kDriverContract = 6;

// A failure in the server's own words.
class KVSHARE_API DriverError : public std::runtime_error {
 public:
  enum class Kind : std::uint8_t {
    Other,
    ConnectionLost,  // the server went away: the connection is of no use any more
    Busy,            // somebody else holds what is needed: the same may succeed later
    Conflict,        // the transaction was undone in favour of another one
  };

  // `code` is the server's own number of the failure; 0 where it has none.
  explicit DriverError(const std::string& serverText, Kind kind = Kind::Other, int code = 0)
      : std::runtime_error(serverText), kind_(kind), code_(code) {}
  ~DriverError() override;
  Kind What() const { return kind_; }
  int Code() const { return code_; }

 private:
  Kind kind_;
  int code_;
};

// How the values of a column are read. Exact decimals never pass through a float.
enum class ColumnKind : std::uint8_t {
  Text,       // Text: characters, with a greatest length where `size` is not 0
  Memo,       // Text: long characters
  Integer,    // Integer: 32 bits and less
  Largeint,   // Integer: 64 bits
  Boolean,    // Integer: 0 or 1
  Float,      // Float
  Decimal,    // Text: [-]digits[.digits], `decimals` of them
  Date,       // Text: yyyy-mm-dd
  Time,       // Text: hh:mm:ss[.fff]
  TimeStamp,  // Text: yyyy-mm-dd hh:mm:ss[.fff]
  Blob,       // Text: bytes, as they are
};

struct Column {
  std::string name;  // as the server gives it
  ColumnKind kind = ColumnKind::Text;
  // Characters of a text, digits of a decimal; 0 where the server says none. `decimals` then says
  // nothing either, and each value has as many as it has.
  std::int32_t size = 0;
  std::int32_t decimals = 0;
  bool required = false;  // may not be null, where the server tells
};

// The rows of a query, read once, front to back; the server's rows are not collected in memory
// where its client can stream them.
class KVSHARE_API Cursor {
 public:
  Cursor() = default;
  virtual ~Cursor() = default;
  Cursor(const Cursor&) = delete;
  Cursor& operator=(const Cursor&) = delete;

  virtual const std::vector<Column>& Columns() const = 0;

  // To the first or the next row; false behind the last.
  virtual bool Next() = 0;

  // The values of that row, columns from 0, in the form that the column's kind names; of a null,
  // and asked for in another form, they are unspecified. A value that does not have its column's
  // form throws DriverError, and the row and its other values stay. A view is valid until the next
  // call of Next or of anything on the connection.
  virtual bool IsNull(int column) const = 0;
  virtual std::int64_t Integer(int column) const = 0;
  virtual double Float(int column) const = 0;
  virtual std::string_view Text(int column) const = 0;
};

// A parameter's value: null, whole number, real, text, bytes, exact number, or a day or time. A
// driver binds each with the server's type for it: an amount beside an expression must be a number
// there, not a text that happens to have digits.
struct Bytes {
  std::string bytes;
  bool operator==(const Bytes&) const = default;
};
struct Decimal {
  std::string digits;  // [-]digits[.digits]
  bool operator==(const Decimal&) const = default;
};
struct Moment {
  ColumnKind kind = ColumnKind::TimeStamp;  // or Date, Time
  std::string text;                         // in the form of that kind
  bool operator==(const Moment&) const = default;
};
using ParameterValue =
    std::variant<std::monostate, std::int64_t, double, std::string, Bytes, Decimal, Moment>;

// A statement with places for parameters: what stands before, between and behind the places, and
// which parameter each place takes, counted from 0. One parameter may have several places.
struct StatementParts {
  std::vector<std::string> texts;  // one more than places
  std::vector<std::size_t> places;

  // How many values it takes.
  std::size_t Parameters() const {
    return places.empty() ? 0 : *std::max_element(places.begin(), places.end()) + 1;
  }
};

// How a server reads statements, where that decides what is a parameter and what is not. Everywhere
// '..' and ".." are quoted, `--` begins a comment up to the end of its line, and /* a longer one.
struct Lexis {
  bool backslashEscapes = false;       // \' inside '..'
  bool escapesInDoubleQuotes = false;  // \" inside ".."
  bool hashComments = false;           // # to the end of the line
  bool dashesNeedBlank = false;        // `--` is a comment only before a blank or the line's end
  bool codeComments = false;           // the server runs what stands in /*! .. */
  bool backticks = false;              // `..` is quoted
  bool brackets = false;               // [..] is quoted
  bool nestedComments = false;         // /* /* */ */
  bool dollarQuotes = false;           // $$..$$ and $tag$..$tag$
  bool escapeTexts = false;            // E'..' with backslashes
  bool alternativeQuotes = false;      // q'{..}'
  bool subscripts = false;             // a[1:n] is a slice up to the column n
  bool questionOperators = false;      // ?| ?& @? are operators, and ? beside `:name` is one
  bool blocks = false;  // behind the AS of EXECUTE BLOCK, and in CREATE, a `:name` is a variable

  bool operator==(const Lexis&) const = default;
};

// A statement that is run many times with other values, and gives no rows (those that it gives are
// dropped). It lives at most as long as its connection is open.
class KVSHARE_API PreparedStatement {
 public:
  PreparedStatement() = default;
  virtual ~PreparedStatement() = default;
  PreparedStatement(const PreparedStatement&) = delete;
  PreparedStatement& operator=(const PreparedStatement&) = delete;

  // The rows that it found: an update that changes nothing of a row has found it all the same.
  virtual std::int64_t Run(std::span<const ParameterValue> parameters) = 0;
};

enum class Isolation : std::uint8_t { ReadCommitted, RepeatableRead, DirtyRead, Custom };

// A connection to a database; made closed. Destroying it disconnects, and rolls back.
class KVSHARE_API Connection {
 public:
  Connection() = default;
  virtual ~Connection() = default;
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  // Parameters in the connection file's names and order, the first of doubles counts, names without
  // regard to case: HostName (host:port), Database, User_Name, Password, RoleName, ServerCharSet...
  // A driver takes those that it knows; no message ever holds the password.
  virtual void Connect(const std::vector<std::pair<std::string, std::string>>& parameters) = 0;
  virtual void Disconnect() noexcept = 0;

  // One text to the server as it is, no parameters, no result rows. The rows that it changed; 0
  // where the server does not tell. Outside a transaction it commits itself.
  virtual std::int64_t Execute(std::string_view sql) = 0;

  // A statement that gives rows, as it is or with parameters, as many as it takes. nullptr where it
  // gave none (it has been executed).
  virtual std::unique_ptr<Cursor> Query(std::string_view sql) = 0;
  virtual std::unique_ptr<Cursor> Query(const StatementParts& statement,
                                        std::span<const ParameterValue> parameters) = 0;

  virtual std::unique_ptr<PreparedStatement> Prepare(const StatementParts& statement) = 0;

  // Of the server that is connected; before, of those that the driver is for.
  virtual Lexis StatementLexis() const { return {}; }

  // Begin while one is active is never called. Servers without transactions do nothing. A
  // transaction lasts until Commit or Rollback: where a statement commits (CREATE TABLE on some
  // servers, or the word itself), what follows is in a transaction again, and Rollback takes that
  // back. Commit of a lost connection throws, as kind ConnectionLost, however often it is called.
  virtual void Begin(Isolation isolation) = 0;
  virtual void Commit() = 0;
  virtual void Rollback() = 0;

  // How many times the active transaction, or the last one, has been committed before its Commit,
  // and how many times rolled back. What raises both numbers has ended it in one of the two ways or
  // in both, and nobody can tell: a procedure on the server, or a COMMIT whose answer was lost.
  virtual std::int64_t EarlyCommits() const { return 0; }
  virtual std::int64_t EarlyRollbacks() const { return 0; }

  // Whether a statement that fails makes the server refuse all others of its transaction.
  // Everywhere else such a statement has changed nothing, and the others stand.
  virtual bool FailureEndsTransaction() const { return false; }

  // A condition that holds for rows with exactly one value in `column`, as what stands before and
  // behind the place of that value: letter by letter and digit by digit also where the server's own
  // `=` sees no difference.
  struct Condition {
    std::string before;
    std::string behind;
  };
  virtual Condition Exactly(std::string_view column, ColumnKind kind) const;
  // A column's name between the server's quotation marks.
  virtual std::string Quoted(std::string_view name) const;

  // Names of tables and views, or of the system tables alone, in the server's order; as the server
  // spells them, not quoted.
  virtual std::vector<std::string> TableNames(bool system) = 0;

  // The columns of a table, named as a statement names it, into which the server puts something of
  // its own where an insert leaves them out: numbers, defaults, what it works out. Those that the
  // server does not tell are missing.
  virtual std::vector<std::string> FilledColumns(std::string_view /*table*/) { return {}; }

  // Whether an insert with `returning` and columns behind it gives these columns of the new row.
  virtual bool InsertReturns() const { return false; }

  // How long a statement waits for what another connection has locked before it fails as Busy;
  // 0: not at all. The default is 10 s.
  virtual void SetLockTimeout(std::int32_t milliseconds) = 0;

  // Whether calls wait for a server that may never answer. Abort, from another thread, then makes
  // the call that waits fail as ConnectionLost.
  virtual bool WaitsForServer() const { return false; }
  virtual void Abort() noexcept {}

  // "PostgreSQL 15.6", for a person.
  virtual std::string ServerVersion() = 0;
};

class KVSHARE_API Driver {
 public:
  Driver() = default;
  virtual ~Driver() = default;
  Driver(const Driver&) = delete;
  Driver& operator=(const Driver&) = delete;

  virtual std::unique_ptr<Connection> MakeConnection() = 0;

  // Whether the parameter Database names a file of this machine; the driver then gets the system's
  // name of it, whatever name the connection file has (C:\Data\shop.db).
  virtual bool DatabaseIsFile() const { return false; }
};

// The entry function of a driver's library, extern "C" under the name that the connection file has
// (getSQLDriverSQLITE). `contract` is the library's kDriverContract: a driver that was built for
// another one answers nullptr. The driver lives as long as its library is loaded.
using DriverEntry = Driver* (*)(std::int32_t contract);

}  // namespace kvshare::data
