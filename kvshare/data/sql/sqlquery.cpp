#include "kvshare/data/sql/sqlquery.h"

#include <algorithm>
#include <utility>

#include "kvshare/data/contract/wiretexts.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare {

namespace {

constexpr int kMostStringBytes = 8192;

TFieldType TypeOf(const data::Column& column) {
  using data::ColumnKind;
  constexpr int kCurrencyDecimals = 4;
  constexpr int kCurrencyDigits = 18;  // that every amount of so many has
  switch (column.kind) {
    case ColumnKind::Text:
      return column.size > kMostStringBytes ? TFieldType::ftMemo : TFieldType::ftString;
    case ColumnKind::Memo:
      return TFieldType::ftMemo;
    case ColumnKind::Integer:
      return TFieldType::ftInteger;
    case ColumnKind::Largeint:
      return TFieldType::ftLargeint;
    case ColumnKind::Boolean:
      return TFieldType::ftBoolean;
    case ColumnKind::Float:
      return TFieldType::ftFloat;
    case ColumnKind::Decimal: {
      const bool known = column.size != 0;  // else any value may have any number of digits
      const bool amount =
          known && column.decimals <= kCurrencyDecimals && column.size <= kCurrencyDigits;
      return amount ? TFieldType::ftBCD : TFieldType::ftFMTBcd;
    }
    case ColumnKind::Date:
      return TFieldType::ftDate;
    case ColumnKind::Time:
      return TFieldType::ftTime;
    case ColumnKind::TimeStamp:
      return TFieldType::ftTimeStamp;
    case ColumnKind::Blob:
      return TFieldType::ftBlob;
  }
  return TFieldType::ftUnknown;
}

int SizeOf(const data::Column& column, TFieldType type) {
  if (type == TFieldType::ftBCD || type == TFieldType::ftFMTBcd) return column.decimals;
  if (type != TFieldType::ftString) return 0;
  return column.size == 0 ? kMostStringBytes : column.size;
}

TFieldDef FieldDefOf(const data::Column& column, const TComponent* query) {
  TFieldDef def;
  try {
    def.Name = Utf8ToCp874(column.name);
  } catch (const EConvertError& e) {
    DatabaseError("Column '" + data::ServerText(column.name) + "': " + e.Message(), query);
  }
  def.DataType = TypeOf(column);
  def.Size = SizeOf(column, def.DataType);
  def.Precision = column.kind == data::ColumnKind::Decimal ? column.size : 0;
  def.Required = column.required;
  return def;
}

}  // namespace

// A text may be the query's own, a field's name say, which is gone once the query has closed.
void TSQLQuery::Lines::Put(int index, std::string_view text) {
  const std::string own{text};
  changing_();
  TStringList::Put(index, own);
}

int TSQLQuery::Lines::AddObject(std::string_view text, TObject* object) {
  const std::string own{text};
  changing_();
  return TStringList::AddObject(own, object);
}

void TSQLQuery::Lines::InsertObject(int index, std::string_view text, TObject* object) {
  const std::string own{text};
  changing_();
  TStringList::InsertObject(index, own, object);
}

void TSQLQuery::Lines::Delete(int index) {
  changing_();
  TStringList::Delete(index);
}

void TSQLQuery::Lines::Clear() {
  changing_();
  TStringList::Clear();
}

int TSQLQuery::Lines::AddShared(std::string_view text, TObject* object, TStringId identity) {
  const std::string own{text};
  changing_();
  return TStringList::AddShared(own, object, identity);
}

template <typename Read>
auto TSQLQuery::Row::Guarded(int column, Read read) const {
  try {
    return read(*cursor);
  } catch (const data::DriverError& e) {
    query_.RefuseField(column, e);
  }
}

bool TSQLQuery::Row::IsNull(int column) const {
  return !there || Guarded(column, [column](const auto& from) { return from.IsNull(column); });
}

std::int64_t TSQLQuery::Row::Integer(int column) const {
  return Guarded(column, [column](const auto& from) { return from.Integer(column); });
}

double TSQLQuery::Row::Float(int column) const {
  return Guarded(column, [column](const auto& from) { return from.Float(column); });
}

std::string_view TSQLQuery::Row::Text(int column) const {
  return Guarded(column, [column](const auto& from) { return from.Text(column); });
}

void TSQLQuery::Row::AppendCharacters(std::string& out, int column) const {
  AppendCp874(out, Text(column));
}

void TSQLQuery::RefuseField(int column, const data::DriverError& error) const {
  connection_->RefuseByServer(error, "Field '" + Fields(column).FieldName() + "': ");
}

TSQLQuery::TSQLQuery(TComponent* owner, std::string_view name)
    : TDataSet(owner, name),
      sql_([this] {
        Close();
        parsed_ = false;
      }),
      row_(*this) {}

TSQLQuery::~TSQLQuery() {
  Close();
  SetSQLConnection(nullptr);
}

void TSQLQuery::SetSQLConnection(TSQLConnection* connection) {
  if (connection_ == connection) return;
  Close();
  if (connection_ != nullptr) std::erase(connection_->queries_, this);
  connection_ = connection;
  if (connection_ != nullptr) connection_->queries_.push_back(this);
}

TParams& TSQLQuery::Params() {
  Parse();
  return params_;
}

namespace {

using ParamList = std::vector<std::unique_ptr<TParam>>;

// The parameter of that name with the value that it had, or a new one.
std::unique_ptr<TParam> TakeOut(ParamList& known, const std::string& name) {
  const auto found = std::ranges::find_if(known, [&name](const auto& param) {
    return param != nullptr && SameText(param->Name(), name);
  });
  return found == known.end() ? std::make_unique<TParam>(name) : std::move(*found);
}

bool IsUnnamed(const std::unique_ptr<TParam>& param) {
  return param != nullptr && param->Name().empty();
}

bool IsGivenUnnamed(const std::unique_ptr<TParam>& param) {
  return IsUnnamed(param) && param->IsGiven();
}

}  // namespace

// A statement is parsed again where the server turns out to read it in another way than was thought
// before the connection was open.
void TSQLQuery::Parse() {
  const data::Lexis lexis =
      connection_ == nullptr ? data::kUnknownServer : connection_->StatementLexis();
  if (parsed_ && parsedBy_ == lexis) return;
  data::ParsedStatement statement = data::ParseStatement(sql_.Text(), lexis);
  ParamList before = std::exchange(params_.params_, {});
  if (!parsed_) std::erase_if(before, IsUnnamed);  // of another statement they mean something else
  const auto questions = std::ranges::count_if(before, IsUnnamed);
  parts_ = {std::move(statement.texts), {}};
  for (const std::string& name : statement.names) {
    ParamList& params = params_.params_;
    auto known = params.end();
    if (!name.empty()) {
      known = std::ranges::find_if(
          params, [&name](const auto& param) { return SameText(param->Name(), name); });
    }
    parts_.places.push_back(static_cast<std::size_t>(known - params.begin()));
    if (known == params.end()) params.push_back(TakeOut(before, name));
  }
  parsedBy_ = lexis;
  if (std::exchange(parsed_, true)) RefuseLost(before, questions);
}

// A value for which there is no place, or for a `?` that may be another one now.
void TSQLQuery::RefuseLost(const std::vector<std::unique_ptr<TParam>>& left,
                           std::ptrdiff_t questions) const {
  const auto refuse = [this](std::string_view name) {
    DatabaseError(
        Format("Parameter '%s' not found: the server reads the statement otherwise", {name}), this);
  };
  for (const std::unique_ptr<TParam>& param : left) {
    if (param != nullptr && param->IsGiven()) refuse(IsUnnamed(param) ? "?" : param->Name());
  }
  const bool same = std::ranges::count_if(params_.params_, IsUnnamed) == questions;
  if (!same && std::ranges::any_of(params_.params_, IsGivenUnnamed)) refuse("?");
}

bool TSQLQuery::AnyGiven() const {
  return std::ranges::any_of(params_.params_, [](const auto& param) { return param->IsGiven(); });
}

void TSQLQuery::CheckReady() const {
  if (connection_ == nullptr) DatabaseError("Missing SQLConnection property", this);
  const bool empty =
      std::ranges::all_of(sql_, [](const std::string& line) { return Trim(line).empty(); });
  if (empty) DatabaseError("Missing query, table name or procedure name", this);
}

std::unique_ptr<data::Cursor> TSQLQuery::Run() {
  CheckReady();
  connection_->Open();
  Parse();
  if (!AnyGiven()) return connection_->OpenCursor(sql_.Text());
  std::vector<data::ParameterValue> values;
  values.reserve(params_.params_.size());
  for (const auto& param : params_.params_) values.push_back(param->WireValue());
  return connection_->OpenCursor(parts_, values);
}

std::int64_t TSQLQuery::ExecSQL() {
  Close();
  CheckReady();
  connection_->Open();
  Parse();
  if (!AnyGiven()) return connection_->ExecuteDirect(sql_.Text());
  Run();
  return -1;
}

void TSQLQuery::InternalOpen() {
  row_.cursor = Run();
  if (row_.cursor == nullptr) DatabaseError("Cursor not returned from Query", this);
  for (const data::Column& column : connection_->ColumnsOf(*row_.cursor)) {
    AddField(row_, FieldDefOf(column, this));
  }
  fresh_ = true;
}

void TSQLQuery::ReleaseRows() noexcept {
  if (row_.cursor) connection_->Release(row_.cursor);
}

void TSQLQuery::InternalClose() noexcept {
  row_.there = false;
  ReleaseRows();
  rows_ = 0;
}

bool TSQLQuery::InternalFirst() {
  if (!fresh_) RunAgain();
  return InternalNext();
}

void TSQLQuery::RunAgain() {
  row_.there = false;
  ReleaseRows();  // before the statement runs again
  rows_ = 0;
  try {
    row_.cursor = Run();
    if (row_.cursor == nullptr) DatabaseError("Cursor not returned from Query", this);
  } catch (...) {
    Close();
    throw;
  }
}

bool TSQLQuery::InternalNext() {
  fresh_ = false;
  row_.there = false;
  row_.there = connection_->NextRow(*row_.cursor);
  if (row_.there) ++rows_;
  return row_.there;
}

}  // namespace kvshare
