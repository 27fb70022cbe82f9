// Records in memory with a log of what was changed, to be sent to a server later (provider.h).
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "kvshare/data/fields/dataset.h"
#include "kvshare/data/records/updates.h"
#include "kvshare/export.h"

namespace kvshare {

namespace data {
class ClientRecords;
struct PacketShape;
class Record;
struct Refusal;
struct Written;
class Resolver;
struct UpdateTarget;
}  // namespace data

class TClientDataSet;
class TDataSetProvider;

using TReconcileErrorEvent =
    std::function<void(TClientDataSet&, EReconcileError&, TUpdateKind, TReconcileAction&)>;

// The fields that CreateDataSet makes: those that records keep. One of the kind fkInternalCalc is
// filled by OnCalcFields, while the record is edited and at last when it is posted, and goes to no
// server.
class KVSHARE_API TFieldDefs {
 public:
  void Add(std::string_view name, TFieldType type, int size = 0, bool required = false);
  void Add(TFieldDef def) { defs_.push_back(std::move(def)); }
  void Clear() { defs_.clear(); }
  int Count() const { return static_cast<int>(defs_.size()); }
  const TFieldDef& operator[](int index) const { return defs_[static_cast<std::size_t>(index)]; }
  const std::vector<TFieldDef>& All() const { return defs_; }

 private:
  std::vector<TFieldDef> defs_;
};

// A field that shows a value of another set: `LookupResultField` of the first record there whose
// `LookupKeyFields` equal this record's `KeyFields`. Null where no record matches.
struct TLookup {
  std::string KeyFields;
  TClientDataSet* LookupDataSet = nullptr;  // outlives the field
  std::string LookupKeyFields;
  std::string LookupResultField;
};

// A change is logged unless LogChanges is off; the log has one entry a record, with its values
// before the first change. OldValue is the value before the change (Null of an inserted record),
// NewValue the present one. While OnReconcileError runs NewValue is Unassigned in fields without a
// change, and CurValue has the server's values where they are no longer the old ones; elsewhere it
// is Unassigned.
//
// Engine errors are EDBClient: `Key violation.` (9729), `Field value required.` (9732), and
// EDatabaseError `No fields defined.  Cannot create dataset`,
// `Missing data provider or data packet`.
class KVSHARE_API TClientDataSet : public TDataSet {
 public:
  explicit TClientDataSet(TComponent* owner = nullptr, std::string_view name = "");
  ~TClientDataSet() override;

  // --- Fields, before it is opened

  TFieldDefs& FieldDefs() { return fieldDefs_; }
  const TFieldDefs& FieldDefs() const { return fieldDefs_; }
  // Beside the fields of FieldDefs or of the provider, at every opening. EDatabaseError
  // `Invalid field size`, as CreateDataSet.
  void AddCalculated(std::string_view name, TFieldType type, int size = 0);
  void AddLookup(std::string_view name, TFieldType type, int size, TLookup lookup);

  // Opens, empty and logging, with the fields of FieldDefs. EDatabaseError `Field name missing`,
  // `Duplicate field name '%s'`, `Invalid field size` for a size that HasValidSize refuses, and
  // `Field '%s' is not kept with the record` for one of the kinds fkCalculated and fkLookup.
  void CreateDataSet();
  // Drops all records and the log. The fields stay, with their handlers and masks.
  void EmptyDataSet();

  // --- Files (docs/datasets.md)

  // The set becomes what an XML data packet has: fields, records, log, primary key and order; it is
  // open then. A set that is open is closed first, a pending edit dropped. On an error the set is
  // as it was: EDBClient `Mismatch in datapacket.` with the line and the reason behind it,
  // `Key violation.`, EInOutError, and `Field '%s' not found` for the fields of IndexFieldNames.
  void LoadFromFile(std::string_view fileName);
  void SetXMLData(std::string_view packet);
  // The records as they were posted, with the log; without calculated and lookup fields. The file
  // is there whole, or the earlier one stays: EInOutError. EDBClient for a value that a packet
  // cannot hold: what a server has that is no value of its type, a moment past the year 9999, NaN;
  // a field of a type without values. EDatabaseError for fields as CreateDataSet refuses them.
  void SaveToFile(std::string_view fileName) const;
  std::string XMLData() const;

  bool ReadOnly = false;
  bool CanModify() const override { return !ReadOnly; }
  int RecordCount() const override;

  // --- Order and keys

  // Field names, `;` between them: records are in that order, equal ones in the order of their
  // appending; without a name in the order of the data packet, or else as they lie. The current
  // record stays.
  const std::string& IndexFieldNames() const { return indexFieldNames_; }
  void SetIndexFieldNames(std::string_view names);
  // The fields that no two records may have in common. Kept when the set is closed; a data packet
  // brings its own.
  const std::string& PrimaryKey() const { return primaryKey_; }
  void SetPrimaryKey(std::string_view names);

  bool Locate(std::string_view keyFields, std::span<const Variant> values,
              TLocateOptions options = {}) override;
  using TDataSet::Locate;
  // By the fields of the order, or of the primary key where there is no order.
  bool FindKey(std::span<const Variant> values);
  bool FindKey(const Variant& value) { return FindKey(std::span(&value, 1)); }
  // The value of `resultField` in the record that Locate would go to; Null where no record matches.
  Variant Lookup(std::string_view keyFields, std::span<const Variant> values,
                 std::string_view resultField) const;

  // --- Changes

  bool LogChanges = true;
  int ChangeCount() const;
  TUpdateStatus UpdateStatus() const;
  const TUpdateStatusSet& StatusFilter() const { return statusFilter_; }
  void SetStatusFilter(const TUpdateStatusSet& filter);

  // The current record, or the newest change, as before its change; a record that is being inserted
  // is given up. The latter is false without a change; with `followChange` the set goes to the
  // record.
  void RevertRecord();
  bool UndoLastChange(bool followChange);
  void CancelUpdates();   // all back
  void MergeChangeLog();  // all kept as they are

  // --- The server

  // Opening then fetches the records from it, with its fields. It outlives the set.
  TDataSetProvider* Provider() const { return provider_; }
  void SetProvider(TDataSetProvider* provider) { provider_ = provider; }

  // Sends the changes in the order of the log, in one transaction, and stops once more than
  // `maxErrors` were refused (-1: never); with more than these nothing is written. Inside a
  // transaction of the program it ends none: nothing written then means that it is as before.
  // Returns how many were refused. What was written leaves the log, everything else stays.
  //
  // Then OnReconcileError decides about each refused change. The set stands on its record,
  // NewValues may be stored, and moves, Post, Cancel and Close throw
  // `Changes are being reconciled`. Without a handler all stays as it is. An action that cannot be
  // done, as the key of its record is another one's by now (`Key violation.`), leaves the change as
  // raSkip does, and the handler is asked once more, with the reason as the message. A record of
  // the server that cannot be read has no CurValues; Context tells why.
  //
  // A lost connection and a failed commit throw EServerError; the log is as it was. Throws
  // EDatabaseError `Missing data provider or data packet`, and what the provider's table and key
  // throw.
  int ApplyUpdates(int maxErrors);
  TReconcileErrorEvent OnReconcileError;

 protected:
  void InternalOpen() override;
  void InternalClose() noexcept override;
  bool InternalFirst() override;
  bool InternalNext() override;
  bool InternalPrior() override;
  bool InternalLast() override;
  void CheckRecordEditable() const override;
  void InternalEdit() override;
  void InternalInsert(bool append) override;
  bool InternalPost() override;
  bool InternalCancel() override;
  bool InternalDelete() override;
  void StoreCell(TField& field, int column, const data::Cell& value) override;
  const TRecordReader* Image(TFieldImage image, const TField& field, int column) const override;

 private:
  class RefusedRecord;

  std::unique_ptr<data::ClientRecords> NewRecords(const std::vector<TFieldDef>& fields);
  void Arrange(data::ClientRecords& records, const std::vector<TFieldDef>& fields,
               std::string_view primaryKey, std::string_view defaultOrder) const;
  void CheckNames(const std::vector<TFieldDef>& fields) const;
  void MakeRecords();
  void CheckRequiredInPacket() const;
  std::vector<int> ColumnsOf(std::string_view names) const { return ColumnsIn(stored_, names); }
  std::vector<int> ColumnsIn(const std::vector<TFieldDef>& fields, std::string_view names) const;
  std::size_t Find(std::string_view keyFields, std::span<const Variant> values,
                   TLocateOptions options) const;
  void Restand();
  void Revert(std::uint32_t row);
  void Calculate();
  void FillLookups();

  // Fetching and applying (clientupdates.cpp).
  void DescribeByProvider();
  void FetchFromProvider();
  data::UpdateTarget TargetOf(const TDataSetProvider& provider) const;
  data::Record RecordOf(const TDataSet& server, std::uint32_t row) const;
  void Reconcile(std::vector<data::Refusal>& refusals);
  void TakeWritten(data::Written& written);
  void DecideAboutAll(std::vector<data::Refusal>& refusals);
  TReconcileAction Decide(data::Refusal& refusal, int previousError);
  void ActOn(data::Refusal& refusal, TReconcileAction action);
  data::Record Merged(const data::Refusal& refusal) const;
  bool KeepsCalculations() const;
  data::Record Recalculated(data::Record record);

  TFieldDefs fieldDefs_;
  struct Derived {
    TFieldDef def;
    TLookup lookup;
  };
  void AddDerived(Derived derived);
  std::vector<Derived> derived_;
  std::string indexFieldNames_;
  std::string primaryKey_;
  std::string defaultOrder_;  // of the data packet
  TUpdateStatusSet statusFilter_;
  TDataSetProvider* provider_ = nullptr;
  std::vector<TFieldDef> stored_;  // the fields of the open set that are no calculated ones
  std::unique_ptr<data::ClientRecords> records_;
  std::unique_ptr<data::ClientRecords> loaded_;  // what the next opening finds
  std::unique_ptr<data::PacketShape> shape_;
};

}  // namespace kvshare
