// A client dataset and its server: fetching records, applying changes, deciding about what the
// server refused.
#include <algorithm>
#include <array>
#include <utility>

#include "kvshare/data/client/clientdataset.h"
#include "kvshare/data/client/clientrecords.h"
#include "kvshare/data/client/provider.h"
#include "kvshare/data/client/resolver.h"
#include "kvshare/data/contract/errors.h"
#include "kvshare/rtl/ascii.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare {

using data::Cell;
using data::CellKind;
using data::Record;
using data::RecordBuffer;
using data::Refusal;
using data::RowId;

EReconcileError::~EReconcileError() = default;

namespace {

// Of a column that the table does not have.
constexpr TProviderFlags kNowhere{.pfInUpdate = false, .pfInWhere = false, .pfInKey = false};

constexpr bool IsPlain(char c) {
  return IsLatinLetter(c) || IsDigit(c) || c == '_';
}

data::ColumnKind KindOf(TFieldForm form) {
  switch (form) {
    case TFieldForm::Text:
      return data::ColumnKind::Text;
    case TFieldForm::Decimal:
      return data::ColumnKind::Decimal;
    case TFieldForm::None:
    case TFieldForm::Integer:
    case TFieldForm::Real:
    case TFieldForm::Boolean:
    case TFieldForm::Date:
    case TFieldForm::Time:
    case TFieldForm::Moment:
    case TFieldForm::Bytes:
      break;
  }
  return data::ColumnKind::Integer;
}

bool Contains(const std::vector<std::string>& names, std::string_view name) {
  return std::ranges::any_of(names, [name](const auto& one) { return SameText(one, name); });
}

bool IsComparable(TFieldType type) {
  constexpr std::array kLongTexts = {ftMemo, ftFmtMemo, ftOraClob};
  return FormOf(type) != TFieldForm::Bytes &&
         std::ranges::find(kLongTexts, type) == kLongTexts.end();
}

}  // namespace

// --- Fetching

void TClientDataSet::DescribeByProvider() {
  const std::vector<std::string> filled = provider_->FilledColumns();
  provider_->OpenQuery();
  fieldDefs_.Clear();
  for (int i = 0; i < provider_->Query().FieldCount(); ++i) {
    TFieldDef def = provider_->Query().Fields(i).def_;
    def.Required = def.Required && !Contains(filled, def.Name);
    fieldDefs_.Add(def);
  }
}

void TClientDataSet::FetchFromProvider() {
  TSQLQuery& query = provider_->Query();
  data::RecordTable& table = records_->Table();
  const data::RecordLayout& layout = records_->Layout();
  RecordBuffer buffer;
  buffer.Resize(layout.Columns());
  std::string scratch;
  for (; !query.Eof(); query.Next()) {
    for (int i = 0; i < layout.Columns(); ++i) {
      data::PutCell(buffer, i, query.Fields(i).Record(), i, layout.Form(i), scratch);
    }
    table.Insert(Record(layout, buffer), false);
  }
  query.Close();
  records_->Order().Rebuild();
}

// --- Applying

data::UpdateTarget TClientDataSet::TargetOf(const TDataSetProvider& provider) const {
  const std::vector<std::string> filled = provider.FilledColumns();
  data::UpdateTarget target;
  target.table = provider.ResolvedTable();
  target.mode = provider.UpdateMode;
  // A plain name goes unquoted: servers fold its letter case as they did for the table's own.
  const auto columnName = [&](const std::string& name) {
    return std::ranges::all_of(name, IsPlain) ? name : provider.SQLConnection().Quoted(name);
  };
  for (int i = 0; i < records_->Layout().Columns(); ++i) {
    const TField& field = Fields(i);
    data::UpdateColumn column;
    column.name = columnName(field.FieldName());
    column.kind = KindOf(FormOf(field.DataType()));
    column.flags = field.FieldKind() == TFieldKind::fkData ? field.ProviderFlags : kNowhere;
    column.comparable = IsComparable(field.DataType());
    column.inTable = column.flags != kNowhere;
    column.filled = column.flags.pfInUpdate && Contains(filled, field.FieldName());
    if (column.flags.pfInKey) target.key.push_back(i);
    target.columns.push_back(std::move(column));
  }
  if (target.key.empty()) {
    target.key = ColumnsOf(provider.KeyFields.empty() ? primaryKey_ : provider.KeyFields);
  }
  return target;
}

int TClientDataSet::ApplyUpdates(int maxErrors) {
  CheckBrowseMode();
  if (ChangeCount() == 0) return 0;
  if (provider_ == nullptr) DatabaseError("Missing data provider or data packet", this);
  TSQLConnection& connection = provider_->SQLConnection();
  connection.Open();
  const auto recordOf = [this](const TDataSet& server, RowId row) { return RecordOf(server, row); };
  data::Resolver resolver(connection, records_->Table(), TargetOf(*provider_), recordOf);
  data::Applied applied = resolver.Apply(maxErrors);
  if (applied.written) {
    for (data::Written& written : applied.rows) TakeWritten(written);
    Restand();
  }
  if (OnReconcileError && !applied.refusals.empty()) {
    for (Refusal& refusal : applied.refusals) resolver.FetchServer(refusal);
    Reconcile(applied.refusals);
  }
  return static_cast<int>(applied.refusals.size());
}

// With what the server has filled in. A key that another record has in memory, one that is to be
// written still, is no reason to forget what was written.
void TClientDataSet::TakeWritten(data::Written& written) {
  data::RecordTable& table = records_->Table();
  if (written.stored) {
    try {
      return table.Rebase(written.row, Recalculated(std::move(written.stored)));
    } catch (const EDBClient&) {  // NOLINT(bugprone-empty-catch): see above
    }
  }
  table.Accept(written.row);
}

// What the server has of a record, and of columns that its table does not have what the record has.
// Its types may differ from the types of the fields that a program has declared.
Record TClientDataSet::RecordOf(const TDataSet& server, std::uint32_t row) const {
  const data::RecordTable& table = records_->Table();
  const Record* original = table.Original(row);
  RecordBuffer buffer;
  buffer.Resize(records_->Layout().Columns());
  buffer.Load(records_->Layout(), original != nullptr ? *original : table.At(row));
  std::string scratch;
  for (int i = 0; i < records_->Layout().Columns(); ++i) {
    TField& field = Fields(i);
    const TField* theirs = server.FindField(field.FieldName());
    if (theirs == nullptr) continue;
    if (theirs->form_ == field.form_) {
      data::PutCell(buffer, i, theirs->Record(), theirs->column_, field.form_, scratch);
    } else {
      buffer.Put(i, field.Converted(theirs->Value()).View());
    }
  }
  return {records_->Layout(), buffer};
}

// --- Deciding

// What was decided before an error stands.
void TClientDataSet::Reconcile(std::vector<Refusal>& refusals) {
  try {
    DecideAboutAll(refusals);
  } catch (...) {
    Restand();
    throw;
  }
  Restand();
}

void TClientDataSet::DecideAboutAll(std::vector<Refusal>& refusals) {
  int previous = 0;
  for (Refusal& refusal : refusals) {
    if (Decide(refusal, previous) == TReconcileAction::raAbort) return;
    previous = refusal.code;
  }
}

// Shows the record that was refused while the handler is asked, and holds the set there.
class TClientDataSet::RefusedRecord {
 public:
  RefusedRecord(TClientDataSet& set, const Refusal& refusal) : set_(set) {
    set_.records_->ShowRefused(refusal.row, refusal.kind, refusal.server);
    set_.SetState(set_.records_->IsEditing() ? TDataSetState::dsEdit : TDataSetState::dsBrowse);
    set_.Hold("Changes are being reconciled");
  }
  ~RefusedRecord() {
    set_.Hold(nullptr);
    set_.SetState(TDataSetState::dsBrowse);
    set_.SetModified(false);
    set_.records_->HideRefused();
  }
  RefusedRecord(const RefusedRecord&) = delete;
  RefusedRecord& operator=(const RefusedRecord&) = delete;

 private:
  TClientDataSet& set_;
};

// What cannot be done is asked about once more, with the reason. An answer that has failed already
// leaves the change as it is.
TReconcileAction TClientDataSet::Decide(Refusal& refusal, int previousError) {
  const RefusedRecord shown(*this, refusal);
  std::vector<TReconcileAction> failed;
  EReconcileError error(refusal.message, refusal.context, refusal.code, previousError);
  for (;;) {
    TReconcileAction action = refusal.last ? TReconcileAction::raAbort : TReconcileAction::raSkip;
    OnReconcileError(*this, error, refusal.kind, action);
    if (std::ranges::find(failed, action) != failed.end()) return TReconcileAction::raSkip;
    try {
      ActOn(refusal, action);
      return action;
    } catch (const EDBClient& e) {
      failed.push_back(action);
      error = EReconcileError(e.Message(), refusal.message, e.ErrorCode(), refusal.code);
    }
  }
}

// Does all of the action or nothing.
void TClientDataSet::ActOn(Refusal& refusal, TReconcileAction action) {
  data::RecordTable& table = records_->Table();
  switch (action) {
    case TReconcileAction::raCancel:
      table.Revert(refusal.row);
      return;
    case TReconcileAction::raCorrect:
      if (!records_->IsEditing()) return;
      table.Modify(refusal.row, Recalculated(Record(records_->Layout(), records_->Buffer())), true);
      return;
    case TReconcileAction::raMerge:
      if (!refusal.server) return;
      if (refusal.kind != TUpdateKind::ukDelete) {
        table.Modify(refusal.row, Recalculated(Merged(refusal)), true);
      }
      table.SetOriginal(refusal.row, std::move(refusal.server));
      return;
    case TReconcileAction::raRefresh:
      if (!refusal.server) return;
      table.Rebase(refusal.row, Recalculated(refusal.server.Copy(records_->Layout())));
      return;
    case TReconcileAction::raSkip:
    case TReconcileAction::raAbort:
      return;
  }
}

Record TClientDataSet::Recalculated(Record record) {
  return KeepsCalculations() ? records_->Recalculated(record) : std::move(record);
}

// The server's values, and on top of them those that the user has changed or typed.
Record TClientDataSet::Merged(const Refusal& refusal) const {
  const data::RecordTable& table = records_->Table();
  const data::RecordLayout& layout = records_->Layout();
  const Record* original = table.Original(refusal.row);
  const Record& now = table.At(refusal.row);
  RecordBuffer buffer;
  buffer.Resize(layout.Columns());
  buffer.Load(layout, refusal.server);
  for (int i = 0; i < layout.Columns(); ++i) {
    const Cell value = now.At(layout, i);
    const bool changed =
        original != nullptr ? value != original->At(layout, i) : value.kind != CellKind::Null;
    if (changed) buffer.Put(i, value);
  }
  return {layout, buffer};
}

}  // namespace kvshare
