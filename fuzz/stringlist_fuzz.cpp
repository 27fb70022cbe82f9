// Texts and comma texts read back as they were written; a sorted list finds what it holds.
#include "kvshare/rtl/stringlist.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "kvshare/rtl/strutils.h"

namespace {

using namespace kvshare;

void Require(bool held) {
  if (!held) std::abort();
}

bool SameItems(const TStrings& a, const TStrings& b) {
  return a.Count() == b.Count() && std::equal(a.begin(), a.end(), b.begin());
}

void CommaTextReadsBack(const TStrings& list) {
  TStringList again;
  again.SetCommaText(list.CommaText());
  Require(SameItems(list, again));
}

void TextReadsBack(const TStrings& list) {
  TStringList again;
  again.SetText(list.Text());
  Require(SameItems(list, again));
}

// Items of any bytes, but the one that separates them here.
TStringList Split(std::string_view text) {
  TStringList list;
  std::size_t start = 0;
  while (start <= text.size()) {
    const std::size_t end = std::min(text.find('|', start), text.size());
    list.Add(text.substr(start, end - start));
    start = end + 1;
  }
  return list;
}

void SortedFinds(const TStrings& list) {
  TStringList sorted;
  sorted.SetSorted(true);
  sorted.Assign(list);
  for (const std::string& item : list) Require(SameText(sorted[sorted.IndexOf(item)], item));
  for (int i = 1; i < sorted.Count(); ++i) Require(CompareText(sorted[i - 1], sorted[i]) < 0);
}

void NamesHoldValues(TStrings& list) {
  const std::string name = UpperCase(list.Names(0));
  const std::string value = "=" + list[0];
  list.SetValue(name, value);
  Require(list.Values(LowerCase(name)) == value);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(data, data + size);
  TStringList list;
  list.SetText(text);
  TextReadsBack(list);
  CommaTextReadsBack(list);
  list.SetCommaText(text);
  CommaTextReadsBack(list);
  list = Split(text);
  CommaTextReadsBack(list);
  SortedFinds(list);
  NamesHoldValues(list);
  return 0;
}
