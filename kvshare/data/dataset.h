// Rows of a query or of a table in memory, one of which is the current record.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kvshare/data/field.h"
#include "kvshare/export.h"
#include "kvshare/rtl/component.h"

namespace kvshare {

enum class TDataSetState : std::uint8_t {
  dsInactive,
  dsBrowse,
  dsEdit,
  dsInsert,
  dsSetKey,
  dsCalcFields,
};

// Errors are EDatabaseErrors, `Name: ` in front where the dataset has a name. On a closed set a
// move, Edit, Insert, Append, Delete and Post throw
// `Cannot perform this operation on a closed dataset`.
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
  // Does nothing when it is closed; a pending edit is dropped.
  void Close();

  // Bof: after Open and First, until a move away. Eof: after a move past the last record. An empty
  // set is both, its fields are Null, and moves do nothing.
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
  virtual bool Locate(std::string_view keyFields, const Variant& keyValues);

  virtual void Edit();  // does nothing in dsEdit and dsInsert
  virtual void Insert();
  virtual void Append();
  virtual void Delete();
  virtual void Post();    // elsewhere: `Dataset not in edit or insert mode`
  virtual void Cancel();  // elsewhere: does nothing

  // A closed set without fields of its own has none. Throws EListError for a bad index.
  int FieldCount() const { return static_cast<int>(fields_.size()); }
  TField& Fields(int index) const;

  // By name, letter case ignored: nullptr; `Field '%s' not found`.
  TField* FindField(std::string_view name) const;
  TField& FieldByName(std::string_view name) const;

 protected:
  // What a kind of dataset supplies. InternalOpen makes the fields; the moves go to the first, next
  // record and so on, and tell whether there is one.
  virtual void InternalOpen() = 0;
  virtual void InternalClose() noexcept = 0;
  virtual bool InternalFirst() = 0;
  virtual bool InternalNext() = 0;
  virtual bool InternalPrior();
  virtual bool InternalLast();

  // While the set is being opened; `record` lives as long as the set.
  void AddField(const TRecordReader& record, TFieldDef def);

  void CheckActive() const;
  void SetState(TDataSetState state) { state_ = state; }
  void SetPlace(bool bof, bool eof, bool empty);

 private:
  void CheckEditable() const;
  void RefuseUniDirectional() const;

  TDataSetState state_ = TDataSetState::dsInactive;
  bool bof_ = true;
  bool eof_ = true;
  bool empty_ = true;
  std::vector<std::unique_ptr<TField>> fields_;
};

}  // namespace kvshare
