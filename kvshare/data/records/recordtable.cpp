#include "kvshare/data/records/recordtable.h"

#include <algorithm>
#include <utility>

#include "kvshare/rtl/exceptions.h"

namespace kvshare::data {

namespace {

constexpr int kKeyViolation = 9729;

}  // namespace

RecordTable::RecordTable(RecordLayout layout, std::vector<int> key)
    : layout_(std::move(layout)), key_(std::move(key)) {}

std::uint32_t RecordTable::HashOfKey(const Record& record) const {
  std::uint32_t hash = 0;
  for (const int column : key_) hash = HashOf(record.At(layout_, column), hash);
  return hash;
}

bool RecordTable::SameKey(const Record& a, const Record& b) const {
  return std::ranges::all_of(
      key_, [&](int column) { return a.At(layout_, column) == b.At(layout_, column); });
}

RowId RecordTable::FindKey(std::span<const Cell> values) const {
  std::uint32_t hash = 0;
  for (const Cell& value : values) hash = HashOf(value, hash);
  return index_.Find(hash, [&](RowId row) {
    for (std::size_t i = 0; i < key_.size(); ++i) {
      if (rows_[row].record.At(layout_, key_[i]) != values[i]) return false;
    }
    return true;
  });
}

bool RecordTable::HasKey(const Record& record) const {
  return std::ranges::any_of(
      key_, [&](int column) { return record.At(layout_, column).kind != CellKind::Null; });
}

void RecordTable::Reindex(RowId row, const Record* before, const Record* after) {
  if (key_.empty()) return;
  if (before != nullptr && !HasKey(*before)) before = nullptr;
  if (after != nullptr && !HasKey(*after)) after = nullptr;
  if (before != nullptr && after != nullptr && SameKey(*before, *after)) return;
  if (after != nullptr) {
    const std::uint32_t hash = HashOfKey(*after);
    const RowId other =
        index_.Find(hash, [&](RowId at) { return SameKey(rows_[at].record, *after); });
    if (other != kNoRow) throw EDBClient("Key violation.", kKeyViolation);
    index_.Insert(hash, row);
  }
  if (before != nullptr) index_.Remove(HashOfKey(*before), row);
}

// The rows by the keys of their images; `image` gives nullptr for a row without one.
template <typename Image>
UniqueIndex RecordTable::IndexOf(Image image) const {
  UniqueIndex index;
  for (RowId row = 0; row < Rows() && !key_.empty(); ++row) {
    const Record* record = image(row);
    if (record == nullptr || !HasKey(*record)) continue;
    const std::uint32_t hash = HashOfKey(*record);
    const RowId other = index.Find(hash, [&](RowId at) { return SameKey(*image(at), *record); });
    if (other != kNoRow) throw EDBClient("Key violation.", kKeyViolation);
    index.Insert(hash, row);
  }
  return index;
}

void RecordTable::Clear() {
  rows_.clear();
  log_.clear();
  history_.clear();
  changes_ = 0;
  index_.Clear();
}

void RecordTable::SetKey(std::vector<int> key) {
  key_.swap(key);
  try {
    index_ = IndexOf([this](RowId row) { return IsThere(row) ? &rows_[row].record : nullptr; });
  } catch (...) {
    key_.swap(key);
    throw;
  }
}

const Record* RecordTable::Original(RowId row) const {
  const std::uint32_t entry = rows_[row].entry;
  if (entry == 0) return &rows_[row].record;
  const Record& before = log_[entry - 1].before;
  return before ? &before : nullptr;
}

TUpdateStatus RecordTable::Status(RowId row) const {
  if (rows_[row].entry == 0) return TUpdateStatus::usUnmodified;
  if (rows_[row].deleted) return TUpdateStatus::usDeleted;
  return Original(row) == nullptr ? TUpdateStatus::usInserted : TUpdateStatus::usModified;
}

void RecordTable::Touch(RowId row, Record before) {
  std::uint32_t& entry = rows_[row].entry;
  if (entry == 0) {
    log_.push_back({row, std::move(before), 0});
    entry = static_cast<std::uint32_t>(log_.size());
    ++changes_;
  }
  log_[entry - 1].touched = ++touches_;
  history_.push_back({row, touches_});
  constexpr std::size_t kFew = 64;
  if (history_.size() <= 2 * static_cast<std::size_t>(changes_) + kFew) return;
  std::erase_if(history_, [this](const Touched& change) { return !IsLatest(change); });
}

bool RecordTable::IsLatest(const Touched& change) const {
  const std::uint32_t entry = rows_[change.row].entry;
  return entry != 0 && log_[entry - 1].touched == change.touched;
}

void RecordTable::LogLast(RowId row) {
  if (rows_[row].entry != 0) Touch(row, Record());
}

// Takes the row's entry out, and closes the gaps of the log when they are the most of it.
void RecordTable::Forget(RowId row) {
  log_[std::exchange(rows_[row].entry, 0) - 1] = Entry();
  --changes_;
  constexpr std::size_t kFew = 64;
  const auto alive = static_cast<std::size_t>(changes_);
  if (log_.size() <= 2 * alive + kFew) return;
  std::erase_if(log_, [](const Entry& entry) { return entry.row == kNoRow; });
  for (std::size_t i = 0; i < log_.size(); ++i) {
    rows_[log_[i].row].entry = static_cast<std::uint32_t>(i + 1);
  }
}

RowId RecordTable::Insert(Record record, bool logged) {
  const RowId row = Rows();
  if (row == kNoRow) throw EDBClient("Too many records", 0);
  Reindex(row, nullptr, &record);
  rows_.push_back({std::move(record)});
  if (logged) Touch(row, Record());
  return row;
}

void RecordTable::Modify(RowId row, Record record, bool logged) {
  Reindex(row, &rows_[row].record, &record);
  Record before = std::exchange(rows_[row].record, std::move(record));
  if (logged) Touch(row, std::move(before));
}

void RecordTable::Remove(RowId row) {
  rows_[row].record = Record();
  rows_[row].deleted = true;
}

void RecordTable::Delete(RowId row, bool logged) {
  const bool inserted = Status(row) == TUpdateStatus::usInserted;
  Reindex(row, &rows_[row].record, nullptr);
  if (logged && !inserted) {
    Touch(row, rows_[row].entry == 0 ? rows_[row].record.Copy(layout_) : Record());
    rows_[row].deleted = true;
    return;
  }
  if (rows_[row].entry != 0) Forget(row);
  Remove(row);
}

RowId RecordTable::NewestChange() {
  while (!history_.empty() && !IsLatest(history_.back())) history_.pop_back();
  return history_.empty() ? kNoRow : history_.back().row;
}

std::vector<RowId> RecordTable::ByLastChange() const {
  std::vector<RowId> rows;
  for (const Touched& change : history_) {
    if (IsLatest(change)) rows.push_back(change.row);
  }
  return rows;
}

void RecordTable::Revert(RowId row) {
  Row& changed = rows_[row];
  if (changed.entry == 0) return;
  Record& before = log_[changed.entry - 1].before;
  Reindex(row, changed.deleted ? nullptr : &changed.record, before ? &before : nullptr);
  if (before) {
    changed.record = std::move(before);
    changed.deleted = false;
  } else {
    Remove(row);
  }
  Forget(row);
}

// Keys may have been passed on from record to record: only together they fit again.
void RecordTable::RevertAll() {
  index_ = IndexOf([this](RowId row) {
    return IsThere(row) || rows_[row].entry != 0 ? Original(row) : nullptr;
  });
  for (Entry& entry : log_) {
    if (entry.row == kNoRow) continue;
    Row& row = rows_[entry.row];
    row.entry = 0;
    row.deleted = !entry.before;
    row.record = std::move(entry.before);
  }
  log_.clear();
  history_.clear();
  changes_ = 0;
}

void RecordTable::Accept(RowId row) {
  if (rows_[row].entry == 0) return;
  if (rows_[row].deleted) Remove(row);
  Forget(row);
}

void RecordTable::AcceptAll() {
  for (const Entry& entry : log_) {
    if (entry.row == kNoRow) continue;
    rows_[entry.row].entry = 0;
    if (rows_[entry.row].deleted) Remove(entry.row);
  }
  log_.clear();
  history_.clear();
  changes_ = 0;
}

void RecordTable::Rebase(RowId row, Record base) {
  Row& changed = rows_[row];
  Reindex(row, changed.deleted ? nullptr : &changed.record, &base);
  changed.record = std::move(base);
  changed.deleted = false;
  if (changed.entry != 0) Forget(row);
}

void RecordTable::SetOriginal(RowId row, Record original) {
  Touch(row, Record());
  log_[rows_[row].entry - 1].before = std::move(original);
}

void RecordTable::LogInserted(RowId row) {
  Touch(row, Record());
}

}  // namespace kvshare::data
