// What every list of texts can do, by means of the few things that each list does its own way.
#include <algorithm>
#include <cstddef>
#include <string>

#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/filebytes.h"
#include "kvshare/rtl/lines.h"
#include "kvshare/rtl/stringlist.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::inline rtl {

namespace {

// Length of the name, npos without a `=`.
std::size_t NameLength(std::string_view item) {
  return item.find('=');
}

bool Separates(char c) {
  return static_cast<unsigned char>(c) <= 32;
}

bool NeedsQuotes(std::string_view item) {
  return std::ranges::any_of(item, [](char c) { return Separates(c) || c == '"' || c == ','; });
}

void AppendQuoted(std::string& out, std::string_view item) {
  out += '"';
  for (const char c : item) {
    if (c == '"') out += c;
    out += c;
  }
  out += '"';
}

void SkipBlanks(std::string_view& rest) {
  while (!rest.empty() && Separates(rest.front())) rest.remove_prefix(1);
}

// After an opening quote: the text up to the closing one, or to the end.
std::string TakeQuoted(std::string_view& rest) {
  std::string item;
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find('"'), rest.size());
    item.append(rest, 0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    if (!rest.starts_with('"')) break;
    item += '"';
    rest.remove_prefix(1);
  }
  return item;
}

std::string TakeItem(std::string_view& rest) {
  if (rest.starts_with('"')) {
    rest.remove_prefix(1);
    return TakeQuoted(rest);
  }
  std::size_t end = 0;
  while (end < rest.size() && rest[end] != ',' && !Separates(rest[end])) ++end;
  std::string item(rest.substr(0, end));
  rest.remove_prefix(end);
  return item;
}

std::string FileMessage(std::string_view verb, std::string_view fileName, const Exception& cause) {
  std::string message = "Cannot ";
  message.append(verb).append(" file \"").append(fileName).append("\". ").append(cause.Message());
  return message;
}

}  // namespace

TObject::~TObject() = default;

void TStrings::AddStrings(const TStrings& other) {
  if (this == &other) {  // whose items would move while they are read, where it is sorted
    TStringList own;
    own.AddStrings(other);
    return AddStrings(own);
  }
  const int count = other.Count();
  for (int i = 0; i < count; ++i) AddShared(other[i], other.Objects(i), other.Identity(i));
}

void TStrings::Assign(const TStrings& other) {
  if (this == &other) return;
  Clear();
  AddStrings(other);
}

int TStrings::IndexOf(std::string_view text) const {
  const int count = Count();
  for (int i = 0; i < count; ++i) {
    if (SameItem((*this)[i], text)) return i;
  }
  return -1;
}

int TStrings::IndexOfName(std::string_view name) const {
  if (NameLength(name) != std::string_view::npos) return -1;  // no name holds a `=`
  const int count = Count();
  for (int i = 0; i < count; ++i) {
    const std::string_view item = (*this)[i];
    const bool split = item.size() > name.size() && item[name.size()] == '=';
    if (split && SameText(item.substr(0, name.size()), name)) return i;
  }
  return -1;
}

std::string_view TStrings::Names(int index) const {
  const std::string_view item = (*this)[index];
  const std::size_t length = NameLength(item);
  return length == std::string_view::npos ? std::string_view() : item.substr(0, length);
}

std::string_view TStrings::ValueFromIndex(int index) const {
  const std::string_view item = (*this)[index];
  const std::size_t start = Names(index).size() + 1;
  return item.substr(std::min(start, item.size()));
}

std::string_view TStrings::Values(std::string_view name) const {
  const int index = IndexOfName(name);
  return index < 0 ? std::string_view() : ValueFromIndex(index);
}

void TStrings::SetValue(std::string_view name, std::string_view value) {
  const int index = IndexOfName(name);
  if (value.empty()) {
    if (index >= 0) Delete(index);
    return;
  }
  std::string item;
  item.reserve(name.size() + 1 + value.size());
  item.append(name).append("=").append(value);
  if (index < 0) {
    Add(item);
  } else {
    Put(index, item);
  }
}

std::string TStrings::Text() const {
  const int count = Count();
  std::size_t size = 0;
  for (int i = 0; i < count; ++i) size += (*this)[i].size() + 2;
  std::string out;
  out.reserve(size);
  for (int i = 0; i < count; ++i) out.append((*this)[i]).append("\r\n");
  return out;
}

void TStrings::SetText(std::string_view text) {
  const std::string own(text.substr(0, text.find('\0')));  // `text` may lie in an item
  Clear();
  for (std::string_view rest = own; !rest.empty();) Add(TakeLine(rest));
}

std::string TStrings::CommaText() const {
  const int count = Count();
  if (count == 1 && (*this)[0].empty()) return "\"\"";
  std::size_t size = 0;
  for (int i = 0; i < count; ++i) size += (*this)[i].size() + 3;
  std::string out;
  out.reserve(size);
  for (int i = 0; i < count; ++i) {
    const std::string& item = (*this)[i];
    if (i > 0) out += ',';
    if (NeedsQuotes(item)) {
      AppendQuoted(out, item);
    } else {
      out += item;
    }
  }
  return out;
}

void TStrings::SetCommaText(std::string_view text) {
  const std::string own(text);  // `text` may lie in an item
  Clear();
  std::string_view rest = own;
  SkipBlanks(rest);
  bool afterComma = false;
  while (!rest.empty() || afterComma) {
    Add(TakeItem(rest));
    SkipBlanks(rest);
    afterComma = rest.starts_with(',');
    if (afterComma) rest.remove_prefix(1);
    SkipBlanks(rest);
  }
}

void TStrings::LoadFromFile(std::string_view fileName) {
  std::string bytes;
  try {
    bytes = ReadFileBytes(fileName);
  } catch (const EInOutError& e) {
    throw EFOpenError(FileMessage("open", fileName, e));
  }
  SetText(bytes);
}

void TStrings::SaveToFile(std::string_view fileName) const {
  try {
    WriteFileBytes(fileName, Text());
  } catch (const EInOutError& e) {
    throw EFCreateError(FileMessage("create", fileName, e));
  }
}

}  // namespace kvshare::inline rtl
