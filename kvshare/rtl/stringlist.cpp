#include "kvshare/rtl/stringlist.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <utility>

#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::inline rtl {

namespace {

// 2^64 identities last longer than any program.
TStringId NewIdentity() {
  static std::atomic<std::uint64_t> last{0};
  return TStringId{last.fetch_add(1, std::memory_order_relaxed) + 1};
}

[[noreturn]] void ThrowBadIndex(int index) {
  throw EStringListError("List index out of bounds (" + std::to_string(index) + ")");
}

}  // namespace

TStringList::TStringList(const TStringList& other)
    : TStrings(other), Duplicates(other.Duplicates), caseSensitive_(other.caseSensitive_) {
  AddStrings(other);
  sorted_ = other.sorted_;
}

TStringList& TStringList::operator=(TStringList other) noexcept {
  std::swap(Duplicates, other.Duplicates);
  std::swap(sorted_, other.sorted_);
  std::swap(caseSensitive_, other.caseSensitive_);
  store_.swap(other.store_);
  items_.swap(other.items_);
  unused_.swap(other.unused_);
  return *this;
}

TStringList::Item& TStringList::At(int index) const {
  // A negative index becomes a very large one.
  if (static_cast<std::size_t>(index) >= items_.size()) ThrowBadIndex(index);
  return *items_[static_cast<std::size_t>(index)];
}

const std::string& TStringList::operator[](int index) const {
  return At(index).text;
}

TObject* TStringList::Objects(int index) const {
  return At(index).object;
}

TStringId TStringList::Identity(int index) const {
  return At(index).identity;
}

void TStringList::RefuseSorted() const {
  if (sorted_) throw EStringListError("Operation not allowed on sorted list");
}

void TStringList::Put(int index, std::string_view text) {
  RefuseSorted();
  Item& item = At(index);
  item.text = std::string(text);  // `text` may lie in the item
  item.identity = NewIdentity();
}

void TStringList::PutObject(int index, TObject* object) {
  At(index).object = object;
}

int TStringList::AddObject(std::string_view text, TObject* object) {
  return AddShared(text, object, NewIdentity());
}

int TStringList::AddShared(std::string_view text, TObject* object, TStringId identity) {
  std::size_t place = items_.size();
  if (sorted_) {
    bool found = false;
    place = static_cast<std::size_t>(LowerBound(text, found));
    if (found && Duplicates == TDuplicates::dupIgnore) return static_cast<int>(place);
    if (found && Duplicates == TDuplicates::dupError) {
      throw EStringListError("String list does not allow duplicates");
    }
  }
  InsertAt(place, {std::string(text), object, identity});
  return static_cast<int>(place);
}

void TStringList::InsertObject(int index, std::string_view text, TObject* object) {
  RefuseSorted();
  if (static_cast<std::size_t>(index) > items_.size()) ThrowBadIndex(index);
  InsertAt(static_cast<std::size_t>(index), {std::string(text), object, NewIdentity()});
}

void TStringList::InsertAt(std::size_t place, Item item) {
  if (unused_.empty()) {
    store_.push_back(std::move(item));
    unused_.push_back(&store_.back());
  } else {
    *unused_.back() = std::move(item);
  }
  items_.insert(items_.begin() + static_cast<std::ptrdiff_t>(place), unused_.back());
  unused_.pop_back();
}

void TStringList::Delete(int index) {
  Item& item = At(index);
  unused_.push_back(&item);
  item.text = {};
  items_.erase(items_.begin() + index);
}

void TStringList::Clear() {
  items_.clear();
  unused_.clear();
  store_.clear();
}

int TStringList::IndexOf(std::string_view text) const {
  if (sorted_) {
    bool found = false;
    const int place = LowerBound(text, found);
    return found ? place : -1;
  }
  const auto same = [&](const Item* item) { return TStringList::SameItem(item->text, text); };
  const auto it = std::ranges::find_if(items_, same);
  return it == items_.end() ? -1 : static_cast<int>(it - items_.begin());
}

bool TStringList::SameItem(std::string_view a, std::string_view b) const {
  return caseSensitive_ ? a == b : SameText(a, b);
}

int TStringList::Compare(std::string_view a, std::string_view b) const {
  return caseSensitive_ ? AnsiCompareStr(a, b) : AnsiCompareText(a, b);
}

int TStringList::LowerBound(std::string_view text, bool& found) const {
  found = false;
  // Texts that come in order, as they mostly do, go to the end without a search.
  if (items_.empty() || Compare(items_.back()->text, text) < 0) return Count();
  const auto less = [this](const Item* item, std::string_view key) {
    return Compare(item->text, key) < 0;
  };
  const auto it = std::lower_bound(items_.begin(), items_.end(), text, less);
  found = Compare((*it)->text, text) == 0;
  return static_cast<int>(it - items_.begin());
}

void TStringList::Sort() {
  // The items themselves change places: sorting pointers would jump about in memory.
  std::vector<Item> sorted;
  sorted.reserve(items_.size());
  for (Item* item : items_) sorted.push_back(std::move(*item));
  std::ranges::stable_sort(
      sorted, [this](const Item& a, const Item& b) { return Compare(a.text, b.text) < 0; });
  for (std::size_t i = 0; i < sorted.size(); ++i) *items_[i] = std::move(sorted[i]);
}

void TStringList::SetSorted(bool sorted) {
  if (sorted && !sorted_) Sort();
  sorted_ = sorted;
}

void TStringList::SetCaseSensitive(bool caseSensitive) {
  if (caseSensitive == caseSensitive_) return;
  caseSensitive_ = caseSensitive;
  if (sorted_) Sort();
}

}  // namespace kvshare::inline rtl
