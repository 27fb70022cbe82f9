// Records of a dataset in memory: each is one block of bytes, so that a million of them cost little
// more than what is in them.
// Internal header.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kvshare/data/contract/driver.h"
#include "kvshare/data/records/fieldtypes.h"
#include "kvshare/data/records/recordreader.h"

namespace kvshare::data {

// How a value lies in memory: numbers as they are, all else as text.
enum class CellKind : std::uint8_t { Null, Integer, Real, Text };

// Which kind the values of a form have when they are not null.
constexpr CellKind CellKindOf(TFieldForm form) {
  switch (form) {
    case TFieldForm::None:
      return CellKind::Null;
    case TFieldForm::Integer:
    case TFieldForm::Boolean:
      return CellKind::Integer;
    case TFieldForm::Real:
      return CellKind::Real;
    case TFieldForm::Text:
    case TFieldForm::Decimal:
    case TFieldForm::Date:
    case TFieldForm::Time:
    case TFieldForm::Moment:
    case TFieldForm::Bytes:
      break;
  }
  return CellKind::Text;
}

// A value on its way; it does not own its text.
struct Cell {
  CellKind kind = CellKind::Null;
  std::int64_t integer = 0;
  double real = 0;
  std::string_view text;

  static Cell Of(std::int64_t value) { return {CellKind::Integer, value, 0, {}}; }
  static Cell Of(double value) { return {CellKind::Real, 0, value, {}}; }
  static Cell Of(std::string_view value) { return {CellKind::Text, 0, 0, value}; }
  // Two zeros are equal, a NaN is equal to itself.
  bool operator==(const Cell& other) const;
};

// A value with a text of its own.
class OwnedCell {
 public:
  OwnedCell() = default;
  explicit OwnedCell(const Cell& cell) : cell_(cell), text_(cell.text) { cell_.text = {}; }
  Cell View() const {
    Cell view = cell_;
    view.text = text_;
    return view;
  }

 private:
  Cell cell_;
  std::string text_;
};

// What `reader` has in a column of that form.
Cell CellOf(const TRecordReader& reader, int column, TFieldForm form);

// Puts such a value into a column of `out`, with its text in the form of which equal values have
// equal bytes: characters in code page 874, decimals without zeros at the end, moments without
// .000. `scratch` is for texts on the way.
class RecordBuffer;
void PutCell(RecordBuffer& out, int at, const TRecordReader& reader, int column, TFieldForm form,
             std::string& scratch);

// A value as it crosses the driver contract. Throws EConvertError for a byte that is no letter.
ParameterValue WireValueOf(const Cell& cell, TFieldForm form);

// Where the columns lie in a block: bits that tell what is null, bits that tell what was given a
// value, eight bytes a column (a number, or place and length of a text), the texts.
class RecordLayout {
 public:
  RecordLayout() = default;
  explicit RecordLayout(std::vector<TFieldForm> forms);

  int Columns() const { return static_cast<int>(forms_.size()); }
  TFieldForm Form(int column) const { return forms_[static_cast<std::size_t>(column)]; }
  CellKind Kind(int column) const { return kinds_[static_cast<std::size_t>(column)]; }
  std::size_t GivenAt() const { return (forms_.size() + 7) / 8; }
  std::size_t SlotsAt() const { return slotsAt_; }
  std::size_t TextsAt() const { return slotsAt_ + forms_.size() * kSlot; }

  static constexpr std::size_t kSlot = 8;

 private:
  std::vector<TFieldForm> forms_;
  std::vector<CellKind> kinds_;
  std::size_t slotsAt_ = 0;
};

// One record, as it was posted.
class Record {
 public:
  Record() = default;
  // Throws EDBClient for a record of 4 GB and more.
  Record(const RecordLayout& layout, const RecordBuffer& buffer);

  explicit operator bool() const { return block_ != nullptr; }
  // The layout has to be the one that the record was made with; the block does not know its size.
  Record Copy(const RecordLayout& layout) const;

  bool IsNull(int column) const { return Bit(static_cast<std::size_t>(column)); }
  // Whether the column was given a value, a null too, since the record was made.
  bool IsGiven(const RecordLayout& layout, int column) const {
    return Bit(layout.GivenAt() * 8 + static_cast<std::size_t>(column));
  }
  // Of a column that is not null, by its kind; another kind's reader gives bits without a meaning.
  // The text is valid as long as the record.
  std::int64_t Integer(const RecordLayout& layout, int column) const {
    return Slot<std::int64_t>(layout, column);
  }
  double Real(const RecordLayout& layout, int column) const { return Slot<double>(layout, column); }
  std::string_view Text(const RecordLayout& layout, int column) const {
    const auto place = Slot<TextPlace>(layout, column);
    return {reinterpret_cast<const char*>(block_.get()) + place.at, place.size};
  }
  Cell At(const RecordLayout& layout, int column) const;

 private:
  struct TextPlace {
    std::uint32_t at;
    std::uint32_t size;
  };

  bool Bit(std::size_t at) const {
    return (std::to_integer<unsigned>(block_[at / 8]) >> (at % 8) & 1U) != 0;
  }
  template <typename T>
  T Slot(const RecordLayout& layout, int column) const {
    static_assert(sizeof(T) == RecordLayout::kSlot);
    T value;
    std::memcpy(&value, SlotAddress(layout, column), sizeof value);
    return value;
  }
  const std::byte* SlotAddress(const RecordLayout& layout, int column) const {
    return block_.get() + layout.SlotsAt() + static_cast<std::size_t>(column) * RecordLayout::kSlot;
  }
  std::size_t Size(const RecordLayout& layout) const;

  std::unique_ptr<std::byte[]> block_;
};

// A record that is being edited. Its texts keep their room from one edit to the next.
class RecordBuffer {
 public:
  void Resize(int columns) { values_.resize(static_cast<std::size_t>(columns)); }
  void Clear();  // all null, nothing assigned or given
  // Copies all values; none counts as assigned then.
  void Load(const RecordLayout& layout, const Record& record);

  // Copies the cell's text. Every put counts as assigned, of an equal value too.
  void Put(int column, const Cell& cell);
  Cell At(int column) const;
  CellKind Kind(int column) const { return Value(column).kind; }
  std::string_view Text(int column) const { return Value(column).text; }

  // Whether a value, a null too, was put since Clear or Load.
  bool Assigned(int column) const { return Value(column).assigned; }
  // The same, or in a record that was loaded when that was made.
  bool Given(int column) const { return Value(column).given; }

 private:
  struct Slot {
    CellKind kind = CellKind::Null;
    bool assigned = false;
    bool given = false;
    std::int64_t integer = 0;
    double real = 0;
    std::string text;
  };
  const Slot& Value(int column) const { return values_[static_cast<std::size_t>(column)]; }

  std::vector<Slot> values_;
};

// Reads a record or a buffer; without either everything is null.
class RecordView : public TRecordReader {
 public:
  explicit RecordView(const RecordLayout& layout) : layout_(&layout) {}
  RecordView(const RecordLayout& layout, const Record& record)
      : layout_(&layout), record_(&record) {}

  void Show(const Record* record) {
    record_ = record;
    buffer_ = nullptr;
  }
  void Show(const RecordBuffer& buffer) { buffer_ = &buffer; }

  bool IsNull(int column) const override {
    if (buffer_ != nullptr) return buffer_->Kind(column) == CellKind::Null;
    return record_ == nullptr || record_->IsNull(column);
  }
  std::int64_t Integer(int column) const override {
    return buffer_ != nullptr ? buffer_->At(column).integer : record_->Integer(*layout_, column);
  }
  double Float(int column) const override {
    return buffer_ != nullptr ? buffer_->At(column).real : record_->Real(*layout_, column);
  }
  std::string_view Text(int column) const override {
    return buffer_ != nullptr ? buffer_->Text(column) : record_->Text(*layout_, column);
  }
  void AppendCharacters(std::string& out, int column) const override { out += Text(column); }

 private:
  const RecordLayout* layout_;
  const Record* record_ = nullptr;
  const RecordBuffer* buffer_ = nullptr;
};

// One value as a reader: what a field reads while it is being checked.
class CellReader : public TRecordReader {
 public:
  explicit CellReader(const Cell& cell) : cell_(cell) {}
  bool IsNull(int) const override { return cell_.kind == CellKind::Null; }
  std::int64_t Integer(int) const override { return cell_.integer; }
  double Float(int) const override { return cell_.real; }
  std::string_view Text(int) const override { return cell_.text; }
  void AppendCharacters(std::string& out, int) const override { out += cell_.text; }

 private:
  Cell cell_;
};

}  // namespace kvshare::data
