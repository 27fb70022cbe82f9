// Rows of a query or of a table in memory, one of which is the current record.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "kvshare/data/fields/field.h"
#include "kvshare/export.h"
#include "kvshare/rtl/component.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare {

enum class TDataSetState : std::uint8_t {
  dsInactive,
  dsBrowse,
  dsEdit,
  dsInsert,
  dsSetKey,
  dsCalcFields,
};
using enum TDataSetState;

// What becomes of a failed Post: its error reaches the caller, EAbort `Operation aborted` does, or
// it is tried again.
enum class TDataAction : std::uint8_t { daFail, daAbort, daRetry };
using enum TDataAction;

using TDataSetNotifyEvent = std::function<void(TDataSet&)>;
using TDataSetErrorEvent = std::function<void(TDataSet&, EDatabaseError&, TDataAction&)>;

struct TLocateOptions {
  bool loCaseInsensitive = false;
  bool loPartialKey = false;  // texts need only begin as the values do
};

// Errors are EDatabaseErrors, `Name: ` in front where the dataset has a name. On a closed set a
// move, Edit, Insert, Append, Delete and Post throw
// `Cannot perform this operation on a closed dataset`.
//
// A move, Insert, Append and Delete first post a record that is being edited, when it was Modified,
// or else cancel the editing.
class KVSHARE_API TDataSet : public TComponent {
 public:
  explicit TDataSet(TComponent* owner = nullptr, std::string_view name = "");
  ~TDataSet() override;
  TDataSet(const TDataSet&) = delete;
  TDataSet& operator=(const TDataSet&) = delete;

  TDataSetState State() const { return state_; }
  bool Active() const { return state_ != TDataSetState::dsInactive; }
  void SetActive(bool active) { active ? Open() : Close(); }

  // Does nothing when it is open. Stands on the first record then; a failed one leaves the set
  // closed, without fields.
  void Open();
  // Does nothing when it is closed. A pending edit is dropped.
  void Close();

  // Bof is true after Open and First until the set moves away; Eof after a move past the last
  // record. In an empty set both are true, all fields are Null, and moves do nothing.
  bool Bof() const { return bof_; }
  bool Eof() const { return eof_; }
  bool IsEmpty() const { return empty_; }
  virtual int RecordCount() const = 0;

  // Whether the set can only be read from front to back. Prior, Last and Locate then throw
  // `Operation not allowed on a unidirectional dataset`.
  virtual bool IsUniDirectional() const { return false; }
  // Edit, Insert, Append and Delete throw `Cannot modify a read-only dataset` where it is false.
  virtual bool CanModify() const { return false; }

  void First();
  void Next();
  void Prior();
  void Last();

  // Moves to the first record, in the order of the set, whose fields (`CODE;DAY`) have these
  // values. Returns false and stays on the current record when no record matches. Throws
  // `Field '%s' not found`, and `Invalid value for field '%s'` for a value that does not fit the
  // field's type.
  virtual bool Locate(std::string_view keyFields, std::span<const Variant> values,
                      TLocateOptions options = {});
  bool Locate(std::string_view keyField, const Variant& value, TLocateOptions options = {}) {
    return Locate(keyField, std::span(&value, 1), options);
  }

  void Edit();  // does nothing in dsEdit and dsInsert; in an empty set it calls Insert
  // Insert puts the new record before the current one, Append behind the last one; an order of the
  // set decides where it is seen once it is posted.
  void Insert();
  void Append();
  // Calls Cancel while a record is being inserted. Throws
  // `Cannot perform this operation on an empty dataset`.
  void Delete();
  // Calls BeforePost, checks required fields (the first that is Null throws
  // `Field '%s' must have a value`), stores the record and calls AfterPost. An EDatabaseError of
  // the check or of the storing goes to OnPostError; an exception thrown there replaces
  // it. A failure leaves state and values as they were. In any other state Post throws
  // `Dataset not in edit or insert mode`.
  void Post();
  void Cancel();  // does nothing unless a record is being edited or inserted

  // Whether a value was stored since Edit, Insert or Append.
  bool Modified() const { return modified_; }

  TDataSetNotifyEvent BeforeInsert, AfterInsert, BeforeEdit, AfterEdit, BeforePost, AfterPost;
  TDataSetNotifyEvent BeforeCancel, AfterCancel, BeforeDelete, AfterDelete, AfterScroll;
  TDataSetNotifyEvent OnNewRecord;   // what it stores does not count as Modified
  TDataSetNotifyEvent OnCalcFields;  // stores the calculated fields, and no others
  TDataSetErrorEvent OnPostError;

  // 0 for a closed set without persistent fields. Fields throws EListError for a bad index.
  int FieldCount() const { return static_cast<int>(fields_.size()); }
  TField& Fields(int index) const;

  // By name, ignoring letter case. For an unknown name FindField returns nullptr, and FieldByName
  // throws `Field '%s' not found`.
  TField* FindField(std::string_view name) const;
  TField& FieldByName(std::string_view name) const;

 protected:
  // Overridden by each kind of dataset. InternalOpen makes the fields. Each move returns whether
  // there is a record to move to.
  virtual void InternalOpen() = 0;
  virtual void InternalClose() noexcept = 0;
  virtual bool InternalFirst() = 0;
  virtual bool InternalNext() = 0;
  virtual bool InternalPrior();
  virtual bool InternalLast();

  // Throws for a current record that can be neither edited nor deleted.
  virtual void CheckRecordEditable() const {}
  // Overridden by sets that can be modified. InternalPost and InternalDelete do all of their work,
  // or throw and change nothing. InternalDelete moves to the next record, or to the previous one at
  // the end. InternalPost, InternalCancel and InternalDelete return whether a record is in view.
  virtual void InternalEdit();
  virtual void InternalInsert(bool append);
  virtual bool InternalPost();
  virtual bool InternalCancel();
  virtual bool InternalDelete();

  // What a field stores, after all checks.
  virtual void StoreCell(TField& field, int column, const data::Cell& value);
  // A field's column in another image of the current record; nullptr where it has no value there.
  virtual const TRecordReader* Image(TFieldImage image, const TField& field, int column) const;

  // While the set is being opened; `record` lives as long as the set. The field reads the column of
  // its own index unless another is given.
  TField& AddField(const TRecordReader& record, TFieldDef def);
  TField& AddField(const TRecordReader& record, int column, TFieldDef def);

  void CheckActive() const;
  void CheckNotHeld() const;
  // Ends a pending edit as a move does.
  void CheckBrowseMode();
  void SetState(TDataSetState state) { state_ = state; }
  // While a set is held, moves and the ends of editing are refused with `why`; nullptr: it is not.
  void Hold(const char* why) { held_ = why; }
  void SetModified(bool modified) { modified_ = modified; }
  void SetPlace(bool bof, bool eof, bool empty);
  void Scrolled() {
    if (AfterScroll) AfterScroll(*this);
  }

 private:
  friend class TField;

  bool IsEditing() const {
    return state_ == TDataSetState::dsEdit || state_ == TDataSetState::dsInsert;
  }
  void CheckStorable(const TField& field) const;
  void CheckEditable() const;
  void CheckRequired() const;
  void RefuseUniDirectional() const;
  void Begin(bool append);
  bool PostRecord();
  void Tell(const TDataSetNotifyEvent& event) {
    if (event) event(*this);
  }

  TDataSetState state_ = TDataSetState::dsInactive;
  bool bof_ = true;
  bool eof_ = true;
  bool empty_ = true;
  bool modified_ = false;
  const char* held_ = nullptr;
  std::vector<std::unique_ptr<TField>> fields_;
};

}  // namespace kvshare
