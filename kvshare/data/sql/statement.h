// Statements as a server reads them: what is quoted, what is a comment, which places take a value.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "kvshare/data/contract/driver.h"
#include "kvshare/export.h"

namespace kvshare::data {

// What a server reads that nobody knows yet.
inline constexpr Lexis kUnknownServer{.backticks = true};

// Where a quoted text or a comment that starts at `at` ends: the end of the statement where it is
// never closed, `at` itself where none starts.
std::size_t SkipQuoted(std::string_view sql, std::size_t at, const Lexis& lexis);

// The next word at or behind `at`, which moves behind it; "" at the end. Blanks and comments are
// skipped. `(`, `)`, `,` and `;` are words of their own, and so is a quoted text or name, unless a
// dot joins it with others: shop."Odd name".
std::string_view TakeWord(std::string_view sql, std::size_t& at, const Lexis& lexis);

// A statement with its `:name` and `?` places taken out. A name is letters, digits and `_`, a first
// digit excepted. No places are `::`, a `?` before a digit, and what the server reads as a quoted
// text, a comment, a slice, a variable or an operator. Where `?` can be an operator, it is one in
// each statement that has a `:name`.
struct ParsedStatement {
  std::vector<std::string> texts;  // before, between and behind the places
  std::vector<std::string> names;  // of the places, in order; "" for `?`
};
KVSHARE_API ParsedStatement ParseStatement(std::string_view sql, const Lexis& lexis);

}  // namespace kvshare::data
