#include "kvshare/database/sqlreplication.h"

#include <chrono>
#include <optional>

#include "kvshare/database/sqlfunc.h"
#include "kvshare/database/sqltransaction.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/formatdatetime.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare {

namespace {

constexpr int kRow = 1;

std::string Written(std::int64_t number) {
  return Format("0%16.16d", {number});
}

std::string Stamp() {
  return FormatDateTime("yyyymmddhhnnsszzz", Now());
}

std::string ReadCounterSQL() {
  return Format("SELECT SYN_LASTSEND FROM KOVRASYNC WHERE SYN_KEY= %d", {kRow});
}

std::string InsertSQL(std::string_view number) {
  return Format(
      "INSERT INTO KOVRASYNC ( SYN_KEY, SYN_TABLENAME, SYN_LASTSEND, SYN_LASTUPD) Values (%d, "
      "'%s', '%s', '%s')",
      {kRow, "BSYNCKCONTROL", number, Stamp()});
}

std::string UpdateSQL(std::string_view number) {
  return Format("UPDATE KOVRASYNC SET SYN_LASTSEND = '%s', SYN_LASTUPD = '%S' WHERE SYN_KEY = %d",
                {number, Stamp(), kRow});
}

// Some servers fill a CHAR column with blanks to its width, which are no part of what was stored.
std::string WithoutPadding(std::string text) {
  text.resize(text.find_last_not_of(' ') + 1);  // npos + 1 is 0
  return text;
}

// The first column of the first row; nothing without a row, or when the query failed.
std::optional<std::string> FirstText(TSQLConnection& connection, std::string_view sql,
                                     bool showError) {
  TSQLQuery query;
  query.SetSQLConnection(&connection);
  RunSQL(query, sql, showError);
  if (query.IsEmpty()) return std::nullopt;
  return WithoutPadding(query.Fields(0).AsString());
}

std::string StoreNext(TSQLConnection& connection, std::int64_t number) {
  std::string written = Written(number);
  RunExecSQL(connection, number == 1 ? InsertSQL(written) : UpdateSQL(written), true);
  return written;
}

std::int64_t After(std::int64_t number) {
  if (number == INT64_MAX) throw EIntOverflow();
  return number + 1;
}

// The stored counter as it stands, padding included: Replace looks for this very text. Throws where
// it cannot be read.
std::optional<std::string> StoredCounter(TSQLConnection& connection) {
  TSQLQuery query;
  query.SetSQLConnection(&connection);
  query.SQL().Add(ReadCounterSQL());
  query.Open();
  if (query.IsEmpty()) return std::nullopt;
  return query.Fields(0).AsString();
}

// Puts the number in place of what was read; false when somebody else was there first.
bool Replace(TSQLConnection& connection, const std::optional<std::string>& stored,
             std::string_view written) {
  if (stored) {
    const std::string sql = UpdateSQL(written) + " AND SYN_LASTSEND = " + QuotedStr(*stored);
    return connection.ExecuteDirect(sql) == 1;
  }
  connection.ExecuteDirect(InsertSQL(written));
  return true;
}

// One attempt; nothing when somebody else was there first. `first` tells of an attempt to insert.
std::optional<std::string> TryTake(TSQLConnection& connection, bool& first) {
  StatementTransaction transaction(connection);
  const auto stored = StoredCounter(connection);
  first = !stored;
  std::string written = Written(stored ? After(StrToInt64(WithoutPadding(*stored))) : 1);
  if (!Replace(connection, stored, written)) return std::nullopt;
  transaction.Commit();
  return written;
}

}  // namespace

std::string SQLNextRpl(TSQLConnection& Connection) {
  const auto stored = FirstText(Connection, ReadCounterSQL(), true);
  return StoreNext(Connection, stored ? After(StrToInt64(*stored)) : 1);
}

std::string UpdateNextRpl(TSQLConnection& Connection, std::int64_t Value) {
  const auto text = FirstText(Connection, ReadCounterSQL(), true);
  if (!text) return StoreNext(Connection, 1);
  const std::int64_t stored = StrToInt64(*text);
  return StoreNext(Connection, Value > stored ? Value : After(stored));
}

std::string TakeNextRpl(TSQLConnection& Connection) {
  using Clock = std::chrono::steady_clock;
  constexpr auto kPatience = std::chrono::seconds(60);
  const auto deadline = Clock::now() + kPatience;
  while (true) {
    bool first = false;
    try {
      if (auto number = TryTake(Connection, first)) return *number;
      if (Clock::now() < deadline) continue;
    } catch (const EServerError& e) {
      const bool again = e.Busy() || e.Conflict() || (first && StoredCounter(Connection));
      if (!again || Clock::now() >= deadline) throw;
      continue;
    }
    DatabaseError("The send number could not be stored", &Connection);
  }
}

std::string SQLReadRpl(TSQLConnection& Connection) {
  return FirstText(Connection, ReadCounterSQL(), false).value_or(Written(0));
}

std::string SQLReadRpldate(TSQLConnection& Connection) {
  const std::string sql = Format("SELECT SYN_LASTUPD FROM KOVRASYNC WHERE SYN_KEY= %d", {kRow});
  return FirstText(Connection, sql, true).value_or("");
}

std::string OriginID(TSQLConnection& Connection) {
  return FirstText(Connection, "SELECT VER_GUID FROM KOVRAVERSION WHERE VER_KEY = 1", true)
      .value_or("");
}

std::string DataID(TSQLConnection& Connection) {
  return FirstText(Connection, "SELECT VER_DATA_ID FROM KOVRAVERSION WHERE VER_KEY = 1", true)
      .value_or("");
}

TDateTime ServerDateTime(TSQLConnection& Connection, std::string_view SQL) {
  if (SQL.empty()) return Now();
  TSQLQuery query;
  query.SetSQLConnection(&Connection);
  RunSQL(query, SQL, true);
  return query.FieldByName("CURRENTDATETIME").AsDateTime();
}

TDateTime ServerDate(TSQLConnection& Connection, std::string_view SQL) {
  return DateOf(ServerDateTime(Connection, SQL));
}

TDateTime ServerTime(TSQLConnection& Connection, std::string_view SQL) {
  return TimeOf(ServerDateTime(Connection, SQL));
}

}  // namespace kvshare
