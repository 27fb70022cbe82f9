// Lists of texts, each with an optional object. Index 0 first.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "kvshare/export.h"

namespace kvshare::inline rtl {

// What a list can carry beside a text. The list never owns it.
class KVSHARE_API TObject {
 public:
  TObject() = default;
  TObject(const TObject&) = default;
  TObject& operator=(const TObject&) = default;
  virtual ~TObject();
};

// Which text an item holds, apart from what it says: a text added to a list gets an identity of its
// own, which moves with the item, is copied by Assign and AddStrings, and is never given again.
// Replacing the text gives the item a new one.
enum class TStringId : std::uint64_t {};

enum class TDuplicates : std::uint8_t { dupIgnore, dupAccept, dupError };
using enum TDuplicates;

// The interface of every list of texts. Names and values: an item `NAME=value` splits at its first
// `=`; nothing is trimmed. A bad index throws EStringListError `List index out of bounds (%d)`.
class KVSHARE_API TStrings : public TObject {
 public:
  // Walks the texts: for (const std::string& line : list).
  class Iterator {
   public:
    using iterator_category = std::forward_iterator_tag;
    using difference_type = int;
    using value_type = std::string;
    using pointer = const std::string*;
    using reference = const std::string&;

    Iterator() = default;
    Iterator(const TStrings* list, int index) : list_(list), index_(index) {}
    const std::string& operator*() const { return (*list_)[index_]; }
    const std::string* operator->() const { return &**this; }
    Iterator& operator++() {
      ++index_;
      return *this;
    }
    Iterator operator++(int) {
      Iterator before = *this;
      ++index_;
      return before;
    }
    bool operator==(const Iterator& other) const { return index_ == other.index_; }

   private:
    const TStrings* list_ = nullptr;
    int index_ = 0;
  };
  Iterator begin() const { return {this, 0}; }
  Iterator end() const { return {this, Count()}; }

  virtual int Count() const = 0;
  virtual const std::string& operator[](int index) const = 0;
  virtual TObject* Objects(int index) const = 0;
  virtual TStringId Identity(int index) const = 0;

  virtual void Put(int index, std::string_view text) = 0;
  virtual void PutObject(int index, TObject* object) = 0;

  // At the end (a sorted list: in its place). Returns the index.
  int Add(std::string_view text) { return AddObject(text, nullptr); }
  virtual int AddObject(std::string_view text, TObject* object) = 0;
  void Append(std::string_view text) { Add(text); }

  // `index` 0 .. Count().
  void Insert(int index, std::string_view text) { InsertObject(index, text, nullptr); }
  virtual void InsertObject(int index, std::string_view text, TObject* object) = 0;

  virtual void Delete(int index) = 0;
  virtual void Clear() = 0;

  // Texts, objects and identities of another list; Assign clears first. Assigning a list to itself
  // changes nothing.
  void AddStrings(const TStrings& other);
  void Assign(const TStrings& other);

  // The first index, or -1.
  virtual int IndexOf(std::string_view text) const;
  int IndexOfName(std::string_view name) const;  // ignores case; items without `=` never match

  std::string_view Names(int index) const;               // '' without `=`
  std::string_view ValueFromIndex(int index) const;      // from byte Length(Names(index)) + 2
  std::string_view Values(std::string_view name) const;  // '' when absent
  // Replaces or appends `name=value`; an empty value deletes the item.
  void SetValue(std::string_view name, std::string_view value);

  // Every item followed by CR LF. Reading: CR LF, CR and LF each end a line; NUL ends the input.
  std::string Text() const;
  void SetText(std::string_view text);

  // Joined by `,`, an item with a byte <= 32, `"` or `,` in quotes, so that every list reads back
  // as it was. Reading: `,` and bytes <= 32 separate outside quotes; an opening quote without a
  // closing one takes the rest.
  std::string CommaText() const;
  void SetCommaText(std::string_view text);

  // The whole file as Text. Throws EFOpenError `Cannot open file "%s". %s`, EFCreateError
  // `Cannot create file "%s". %s`. Saving leaves the earlier file whole when it fails.
  void LoadFromFile(std::string_view fileName);
  void SaveToFile(std::string_view fileName) const;

 protected:
  // Adds a text that keeps the identity it has elsewhere.
  virtual int AddShared(std::string_view text, TObject* object, TStringId identity) = 0;
  virtual bool SameItem(std::string_view a, std::string_view b) const = 0;
};

// A copy has the texts, objects, identities and properties of the original.
class KVSHARE_API TStringList : public TStrings {
 public:
  TStringList() = default;
  TStringList(const TStringList& other);
  TStringList(TStringList&& other) noexcept = default;
  TStringList& operator=(TStringList other) noexcept;
  ~TStringList() override = default;

  int Count() const override { return static_cast<int>(items_.size()); }
  const std::string& operator[](int index) const override;
  TObject* Objects(int index) const override;
  TStringId Identity(int index) const override;

  // A sorted list throws EStringListError `Operation not allowed on sorted list` from Put and
  // Insert.
  void Put(int index, std::string_view text) override;
  void PutObject(int index, TObject* object) override;
  int AddObject(std::string_view text, TObject* object) override;
  void InsertObject(int index, std::string_view text, TObject* object) override;
  void Delete(int index) override;
  void Clear() override;
  int IndexOf(std::string_view text) const override;  // binary search when sorted

  // Comparison: AnsiCompareText, or bytes where CaseSensitive. Equal texts keep their order.
  void Sort();
  bool Sorted() const { return sorted_; }
  void SetSorted(bool sorted);  // true sorts now and keeps the order
  bool CaseSensitive() const { return caseSensitive_; }
  void SetCaseSensitive(bool caseSensitive);  // a sorted list is sorted again

  // What Add does in a sorted list with a text that it has: dupIgnore gives the present index,
  // dupError throws EStringListError `String list does not allow duplicates`.
  TDuplicates Duplicates = TDuplicates::dupIgnore;

 protected:
  int AddShared(std::string_view text, TObject* object, TStringId identity) override;
  bool SameItem(std::string_view a, std::string_view b) const override;

 private:
  struct Item {
    std::string text;
    TObject* object;
    TStringId identity;
  };
  // The first place whose item is not less than `text`; `found` where it is equal.
  int LowerBound(std::string_view text, bool& found) const;
  int Compare(std::string_view a, std::string_view b) const;
  Item& At(int index) const;
  void RefuseSorted() const;
  void InsertAt(std::size_t place, Item item);

  // Items stay where they are, so that an insert moves pointers alone: a sorted list of many
  // thousand texts is built item by item.
  std::deque<Item> store_;
  std::vector<Item*> items_;   // in the list's order
  std::vector<Item*> unused_;  // places in the store that deleted items have left
  bool sorted_ = false;
  bool caseSensitive_ = false;
};

}  // namespace kvshare::inline rtl
