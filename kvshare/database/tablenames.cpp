#include "kvshare/database/tablenames.h"

#include <string>
#include <string_view>
#include <vector>

#include "kvshare/rtl/strutils.h"
#include "kvshare/text/strings.h"

namespace kvshare {

namespace {

// Text between the n-th and the next `quote` of a name.
std::string Unquoted(std::string_view name, std::string_view quote, int n) {
  const int from = TKovraString::BStrPos(quote, name, n) + 1;
  const int to = TKovraString::BStrPos(quote, name, n + 1);
  return std::string(Copy(name, from, to - from));
}

// Which occurrence of the quote stands before a name; 0 when the names have no quotes.
int QuoteBeforeName(std::string_view first) {
  if (first.empty() || first.front() != first.back()) return 0;
  const char quote = first.front();
  if (quote >= 'A' && quote <= 'Z') return 0;
  const int count = TKovraString::CountDelimeter(first, quote);
  return count % 2 == 0 ? count - 1 : 0;
}

}  // namespace

void StripTableNames(TStrings& names) {
  if (names.Count() == 0) return;
  const int n = QuoteBeforeName(names[0]);
  if (n == 0) return;
  const std::string quote = names[0].substr(0, 1);
  std::vector<std::string> plain;
  for (const std::string& name : names) plain.push_back(Unquoted(name, quote, n));
  names.Clear();  // a sorted list takes names, but none at a place
  for (const std::string& name : plain) names.Add(name);
}

}  // namespace kvshare
