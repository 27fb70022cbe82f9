// Statements: taking the places out and putting them in again gives the statement, by the rules of
// every server and of none.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "kvshare/data/sql/statement.h"

using kvshare::data::Lexis;

// One bit for each flag, in their order.
static Lexis LexisOf(unsigned bits) {
  const auto next = [&bits] {
    const bool set = (bits & 1) != 0;
    bits >>= 1;
    return set;
  };
  return {.backslashEscapes = next(),
          .escapesInDoubleQuotes = next(),
          .hashComments = next(),
          .dashesNeedBlank = next(),
          .codeComments = next(),
          .backticks = next(),
          .brackets = next(),
          .nestedComments = next(),
          .dollarQuotes = next(),
          .escapeTexts = next(),
          .alternativeQuotes = next(),
          .subscripts = next(),
          .questionOperators = next(),
          .blocks = next()};
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  const std::string sql(reinterpret_cast<const char*>(data + 2), size - 2);
  const auto parsed = kvshare::data::ParseStatement(sql, LexisOf(data[0] + 256U * data[1]));
  if (parsed.texts.size() != parsed.names.size() + 1) std::abort();
  std::string again = parsed.texts.front();
  for (std::size_t i = 0; i < parsed.names.size(); ++i) {
    again += parsed.names[i].empty() ? "?" : ":" + parsed.names[i];
    again += parsed.texts[i + 1];
  }
  if (again != sql) std::abort();
  return 0;
}
