#include "kvshare/database/sqlfunc.h"

#include "kvshare/database/dblog.h"
#include "kvshare/database/dbxconf.h"
#include "kvshare/database/sqlbatch.h"
#include "kvshare/database/sqlsplit.h"
#include "kvshare/database/sqltransaction.h"
#include "kvshare/database/tablenames.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/strutils.h"
#include "kvshare/text/strings.h"
#include "kvshare/ui/messages.h"

namespace kvshare {

std::int32_t KovraTranactionId = 0;
std::string KovraSQLEMessage;

namespace {

void ShowSQLError(std::string_view message) {
  MessageDlg(message, TMsgDlgType::mtError, {TMsgDlgBtn::mbOK}, 0);
}

void ShowStatementError(std::string_view message, std::string_view statement) {
  ShowSQLError(Format("พบข้อผิดพลาด\r\n%s\r\nขณะทำคำสั่ง\r\n%s"_th, {message, statement}));
}

// The name lies outside the connection, which changes.
void Configure(TSQLConnection& connection, const std::string& name) {
  connection.SetConnectionName(name);
  connection.SetDriverName(GetdbxTradeName(name));
  // After the driver's name, which empties them.
  connection.GetDriverFunc = GetdbxDriverFunc(name);
  connection.LibraryName = GetdbxLibraryName(name);
  connection.VendorLib = GetdbxVendorLib(name);
  connection.LoginPrompt = false;
  GetdbxParams(name, connection.Params);
}

// Runs one statement in a transaction of its own. `shown` is what the error box calls it.
bool RunStatement(TSQLConnection& connection, std::string_view statement, std::string_view shown,
                  bool showError) {
  try {
    StatementTransaction transaction(connection);
    connection.ExecuteDirect(statement);
    transaction.Commit();
    return true;
  } catch (const Exception& e) {
    if (showError) ShowStatementError(e.Message(), shown);
    return false;
  }
}

void OpenQuery(TSQLQuery& query, bool showError) {
  try {
    query.Open();
  } catch (const Exception& e) {
    if (showError) ShowSQLError(e.Message());
  }
}

}  // namespace

bool CanConnectDBMS(TSQLConnection& Connection, std::string_view Name) {
  const std::string name(Name);
  if (!Isdbx(name)) return false;
  bool connected = false;
  try {
    Configure(Connection, name);
    Connection.SetConnected(true);
    connected = true;
  } catch (const Exception& e) {
    ShowSQLError(e.Message());
  }
  Connection.SetConnected(false);
  return connected;
}

void ConnectDBMS(TSQLConnection& Connection, std::string_view Name, bool ShowError) {
  const std::string name(Name);
  Connection.SetConnected(false);
  if (TKovraString::Empty(name)) return;
  try {
    Configure(Connection, name);
    Connection.SetConnected(true);
  } catch (const Exception& e) {
    if (ShowError) ShowSQLError(e.Message());
  }
}

void DisConnectDBMS(TSQLConnection& Connection) {
  Connection.SetConnected(false);
}

void RunSQL(TSQLQuery& Query, std::string_view SQL, bool ShowError) {
  const std::string text(SQL);  // it may lie in the query
  Query.Close();
  Query.SQL().Clear();
  Query.SQL().Add(text);
  OpenQuery(Query, ShowError);
}

void RunSQLList(TSQLQuery& Query, const TStrings& Lines, bool ShowError) {
  Query.Close();
  Query.SQL().Assign(Lines);
  OpenQuery(Query, ShowError);
}

bool RunExecSQL(TSQLConnection& Connection, std::string_view SQL, bool ShowError) {
  const std::string_view trimmed = Trim(SQL);
  if (trimmed.empty()) return false;
  return RunStatement(Connection, BeforeSemicolon(trimmed), SQL, ShowError);
}

bool RunExecSQLList(TSQLConnection& Connection, const TStrings& Lines, bool ShowError) {
  if (Lines.Count() == 0) return false;
  return RunStatement(Connection, OneSqlStatement(Lines), Lines.Text(), ShowError);
}

bool RunMultipleExecSQLList(TSQLConnection& Connection, const TStrings& Lines, bool ShowError) {
  bool all = true;
  TStringList statement;
  const auto run = [&] {
    if (statement.Count() == 0) return;
    all = RunExecSQLList(Connection, statement, ShowError) && all;
    statement.Clear();
  };
  for (const std::string& text : Lines) {
    const SqlLine line(text);
    if (line.skipped) continue;
    statement.Add(line.text);
    if (line.ends) run();
  }
  run();
  return all;
}

bool RunExecSQLBatch(TSQLConnection& Connection, const TStrings& Lines, bool ShowError) {
  constexpr std::string_view kModule = "<SqlFunc>";
  constexpr std::string_view kRoutine = "<ExecSQLBatch>";
  const TSQLBatchReport report = RunSQLBatch(Connection, Lines);
  if (report.Committed) return true;
  TKovraDbLog::WriteLogFile(nullptr, kModule, kRoutine, "<>", report.Message);
  TKovraDbLog::WriteLogFile(nullptr, kModule, kRoutine, "<>", Lines);
  if (ShowError) ShowStatementError(report.Message, Lines.Text());
  return false;
}

bool AnyData(TSQLConnection& Connection, std::string_view SQL) {
  return CountData(Connection, SQL) > 0;
}

std::int32_t CountData(TSQLConnection& Connection, std::string_view SQL) {
  TSQLQuery query;
  query.SetSQLConnection(&Connection);
  RunSQL(query, SQL, true);
  return query.FieldByName("RECORDCOUNT").AsInteger();
}

std::string StringData(TSQLConnection& Connection, std::string_view SQL) {
  TSQLQuery query;
  query.SetSQLConnection(&Connection);
  RunSQL(query, SQL, true);
  return query.FieldByName("MYDATA").AsString();
}

bool ExistFieldName(TSQLConnection& Connection, std::string_view SQL, std::string_view FieldName) {
  TSQLQuery query;
  query.SetSQLConnection(&Connection);
  RunSQL(query, SQL, true);
  return query.FindField(FieldName) != nullptr;
}

bool ExistTable(TSQLConnection& Connection, std::string_view TableName) {
  TStringList names;
  GetAllTableNames(Connection, names);
  return names.IndexOf(TableName) >= 0;
}

bool ExistTableBySQL(TSQLConnection& Connection, std::string_view TableName,
                     std::string_view FieldName) {
  TSQLQuery query;
  query.SetSQLConnection(&Connection);
  RunSQL(query, Format("SELECT %s FROM %s WHERE %s=-1", {FieldName, TableName, FieldName}), false);
  return query.Active();
}

void GetAllTableNames(TSQLConnection& Connection, TStrings& List) {
  List.Clear();
  Connection.GetTableNames(List, false);
  StripTableNames(List);
}

bool InEdit(const TDataSet& DataSet) {
  return DataSet.State() == TDataSetState::dsEdit || DataSet.State() == TDataSetState::dsInsert;
}

void EditDataSet(TDataSet& DataSet) {
  if (!InEdit(DataSet)) DataSet.Edit();
}

std::string SQLOrderBy(std::string_view FieldName, std::int32_t Direction) {
  return "ORDER BY " + std::string(FieldName) + (Direction == 0 ? " ASC" : " DESC");
}

}  // namespace kvshare
