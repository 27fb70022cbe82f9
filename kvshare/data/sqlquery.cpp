#include "kvshare/data/sqlquery.h"

#include <algorithm>

#include "kvshare/data/wiretexts.h"
#include "kvshare/rtl/cp874.h"
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
      const bool amount = column.decimals <= kCurrencyDecimals && column.size <= kCurrencyDigits;
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

void TSQLQuery::Lines::Put(int index, std::string_view text) {
  changing_();
  TStringList::Put(index, text);
}

int TSQLQuery::Lines::AddObject(std::string_view text, TObject* object) {
  changing_();
  return TStringList::AddObject(text, object);
}

void TSQLQuery::Lines::InsertObject(int index, std::string_view text, TObject* object) {
  changing_();
  TStringList::InsertObject(index, text, object);
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
  changing_();
  return TStringList::AddShared(text, object, identity);
}

void TSQLQuery::Row::AppendCharacters(std::string& out, int column) const {
  AppendCp874(out, cursor->Text(column));
}

TSQLQuery::TSQLQuery(TComponent* owner, std::string_view name)
    : TDataSet(owner, name), sql_([this] {
        Close();
        parsed_ = false;
      }) {}

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

void TSQLQuery::Parse() {
  if (parsed_) return;
  data::ParsedStatement statement = data::ParseStatement(sql_.Text());
  TParams params;
  places_.clear();
  for (const std::string& name : statement.names) {
    TParam* known = name.empty() ? nullptr : params.FindParam(name);
    if (known == nullptr) {
      const TParam* earlier = name.empty() ? nullptr : params_.FindParam(name);
      params.params_.push_back(earlier != nullptr ? *earlier : TParam(name));
      known = &params.params_.back();
    }
    places_.push_back(static_cast<std::size_t>(known - params.params_.data()));
  }
  params_ = std::move(params);
  parsedText_ = std::move(statement.text);
  parsed_ = true;
}

std::vector<data::ParameterValue> TSQLQuery::PlaceValues() const {
  std::vector<data::ParameterValue> values;
  values.reserve(places_.size());
  for (const std::size_t place : places_) values.push_back(params_.params_[place].WireValue());
  return values;
}

void TSQLQuery::CheckReady() const {
  if (connection_ == nullptr) DatabaseError("Missing SQLConnection property", this);
  const bool empty =
      std::ranges::all_of(sql_, [](const std::string& line) { return Trim(line).empty(); });
  if (empty) DatabaseError("Missing query, table name or procedure name", this);
}

std::unique_ptr<data::Cursor> TSQLQuery::Run() {
  CheckReady();
  Parse();
  return connection_->OpenCursor(data::StatementText(parsedText_, this), PlaceValues());
}

std::int64_t TSQLQuery::ExecSQL() {
  Close();
  CheckReady();
  Parse();
  if (places_.empty()) return connection_->ExecuteDirect(sql_.Text());
  Run();
  return -1;
}

void TSQLQuery::InternalOpen() {
  row_.cursor = Run();
  if (row_.cursor == nullptr) DatabaseError("Cursor not returned from Query", this);
  for (const data::Column& column : row_.cursor->Columns()) {
    AddField(row_, FieldDefOf(column, this));
  }
  fresh_ = true;
}

void TSQLQuery::InternalClose() noexcept {
  row_.there = false;
  row_.cursor.reset();
  rows_ = 0;
}

bool TSQLQuery::InternalFirst() {
  if (!fresh_) RunAgain();
  return InternalNext();
}

void TSQLQuery::RunAgain() {
  row_.there = false;
  row_.cursor.reset();  // before the statement runs again
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
