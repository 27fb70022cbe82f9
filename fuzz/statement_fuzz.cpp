// Statements: taking the places out and putting them in again gives the statement, by the rules of
// every server.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "kvshare/data/sqlparams.h"

using kvshare::data::Lexis;

static Lexis LexisOf(std::uint8_t bits) {
  return {.backslashEscapes = (bits & 1) != 0,
          .hashComments = (bits & 2) != 0,
          .dashesNeedBlank = (bits & 2) != 0,
          .backticks = (bits & 4) != 0,
          .brackets = (bits & 8) != 0,
          .nestedComments = (bits & 16) != 0,
          .dollarQuotes = (bits & 32) != 0,
          .escapeTexts = (bits & 32) != 0,
          .alternativeQuotes = (bits & 64) != 0,
          .subscripts = (bits & 32) != 0,
          .blocks = (bits & 128) != 0};
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string sql(reinterpret_cast<const char*>(data + 1), size - 1);
  const auto parsed = kvshare::data::ParseStatement(sql, LexisOf(data[0]));
  if (parsed.texts.size() != parsed.names.size() + 1) std::abort();
  std::string again = parsed.texts.front();
  for (std::size_t i = 0; i < parsed.names.size(); ++i) {
    again += parsed.names[i].empty() ? "?" : ":" + parsed.names[i];
    again += parsed.texts[i + 1];
  }
  if (again != sql) std::abort();
  return 0;
}
