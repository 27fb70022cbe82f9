#include "kvshare/data/sql/statement.h"

#include <algorithm>

#include "kvshare/rtl/ascii.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::data {

namespace {

constexpr std::string_view kBlanks = " \t\r\n\f\v";

constexpr bool BeginsName(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' ||
         static_cast<unsigned char>(c) >= 0x80;
}

constexpr bool ContinuesName(char c) {
  return BeginsName(c) || IsDigit(c);
}

// The servers' own names have more letters than parameters' names.
constexpr bool IsInWord(char c) {
  return ContinuesName(c) || c == '$';
}

constexpr bool IsBlank(char c) {
  return kBlanks.find(c) != std::string_view::npos;
}

constexpr char CharAt(std::string_view sql, std::size_t at) {
  return at < sql.size() ? sql[at] : '\0';
}

// Behind the next `end`; the end of the statement where there is none.
std::size_t Behind(std::string_view sql, std::size_t at, std::string_view end) {
  const std::size_t found = sql.find(end, std::min(at, sql.size()));
  return found == std::string_view::npos ? sql.size() : found + end.size();
}

// --- Comments

bool IsLineComment(std::string_view sql, std::size_t at, const Lexis& lexis) {
  if (sql[at] == '#') return lexis.hashComments;
  if (!sql.substr(at).starts_with("--")) return false;
  const auto next = static_cast<unsigned char>(CharAt(sql, at + 2));
  constexpr unsigned char kLastControl = 0x7F;
  return !lexis.dashesNeedBlank || next <= ' ' || next == kLastControl;
}

bool IsBlockComment(std::string_view sql, std::size_t at, const Lexis& lexis) {
  if (!sql.substr(at).starts_with("/*")) return false;
  const std::string_view inside = sql.substr(at + 2);
  return !lexis.codeComments || !(inside.starts_with('!') || inside.starts_with("M!"));
}

std::size_t BehindNestedComment(std::string_view sql, std::size_t at) {
  int depth = 0;
  while (at < sql.size()) {
    const std::string_view two = sql.substr(at, 2);
    const bool mark = two == "/*" || two == "*/";
    if (mark) depth += two == "/*" ? 1 : -1;
    at += mark ? 2 : 1;
    if (depth == 0) return at;
  }
  return sql.size();
}

std::size_t SkipComment(std::string_view sql, std::size_t at, const Lexis& lexis) {
  if (IsLineComment(sql, at, lexis)) return Behind(sql, at, "\n");
  if (!IsBlockComment(sql, at, lexis)) return at;
  return lexis.nestedComments ? BehindNestedComment(sql, at) : Behind(sql, at + 2, "*/");
}

// --- Quoted texts and names

std::size_t BehindQuote(std::string_view sql, std::size_t at, char quote, bool backslashEscapes) {
  for (++at; at < sql.size(); ++at) {
    if (backslashEscapes && sql[at] == '\\') {
      ++at;
    } else if (sql[at] == quote) {
      if (CharAt(sql, at + 1) != quote) return at + 1;
      ++at;
    }
  }
  return sql.size();
}

// Whether the quoted text has that letter in front of it, and not the end of a word: E'..'.
bool HasPrefix(std::string_view sql, std::size_t quote, char letter) {
  if (quote == 0 || UpCase(sql[quote - 1]) != letter) return false;
  return quote == 1 || !IsInWord(sql[quote - 2]);
}

// E'..', which goes on in a '..' of the next line.
std::size_t BehindEscapeText(std::string_view sql, std::size_t at) {
  for (;;) {
    at = BehindQuote(sql, at, '\'', true);
    const std::size_t next = std::min(sql.find_first_not_of(kBlanks, at), sql.size());
    const bool newLine = sql.substr(at, next - at).find('\n') != std::string_view::npos;
    if (!newLine || CharAt(sql, next) != '\'') return at;
    at = next;
  }
}

// q'{..}', with any letter in place of the braces.
std::size_t BehindAlternativeText(std::string_view sql, std::size_t at) {
  constexpr std::string_view kOpening = "([{<";
  constexpr std::string_view kClosing = ")]}>";
  const char opening = CharAt(sql, at + 1);
  const std::size_t pair = kOpening.find(opening);
  const char closing = pair == std::string_view::npos ? opening : kClosing[pair];
  const char end[] = {closing, '\''};
  return Behind(sql, at + 2, {end, 2});
}

std::size_t BehindText(std::string_view sql, std::size_t at, const Lexis& lexis) {
  if (lexis.escapeTexts && HasPrefix(sql, at, 'E')) return BehindEscapeText(sql, at);
  if (lexis.alternativeQuotes && HasPrefix(sql, at, 'Q')) return BehindAlternativeText(sql, at);
  return BehindQuote(sql, at, '\'', lexis.backslashEscapes);
}

// $$..$$ and $tag$..$tag$; a dollar inside a name, or before a number, begins neither.
std::size_t SkipDollarQuote(std::string_view sql, std::size_t at) {
  if (at > 0 && IsInWord(sql[at - 1])) return at;
  std::size_t end = at + 1;
  while (ContinuesName(CharAt(sql, end))) ++end;
  if (CharAt(sql, end) != '$' || IsDigit(sql[at + 1])) return at;
  return Behind(sql, end + 1, sql.substr(at, end + 1 - at));
}

std::size_t SkipText(std::string_view sql, std::size_t at, const Lexis& lexis) {
  switch (sql[at]) {
    case '\'':
      return BehindText(sql, at, lexis);
    case '"':
      return BehindQuote(sql, at, '"', lexis.escapesInDoubleQuotes);
    case '`':
      return lexis.backticks ? BehindQuote(sql, at, '`', false) : at;
    case '[':
      return lexis.brackets ? BehindQuote(sql, at, ']', false) : at;
    case '$':
      return lexis.dollarQuotes ? SkipDollarQuote(sql, at) : at;
    default:
      return at;
  }
}

// --- Words

std::size_t SkipBlanks(std::string_view sql, std::size_t at, const Lexis& lexis) {
  while (at < sql.size()) {
    const std::size_t end = IsBlank(sql[at]) ? at + 1 : SkipComment(sql, at, lexis);
    if (end == at) break;
    at = end;
  }
  return at;
}

std::size_t EndOfWord(std::string_view sql, std::size_t begin, const Lexis& lexis) {
  constexpr std::string_view kMarks = "(),;";
  std::size_t at = begin;
  while (at < sql.size()) {
    const bool joined = at == begin || sql[at - 1] == '.';
    if (const std::size_t end = SkipText(sql, at, lexis); end > at) {
      if (!joined) return at;
      if (CharAt(sql, end) != '.') return end;
      at = end;
      continue;
    }
    const bool mark = kMarks.find(sql[at]) != std::string_view::npos;
    if (mark || IsBlank(sql[at]) || SkipComment(sql, at, lexis) > at) break;
    ++at;
  }
  return at == begin ? std::min(begin + 1, sql.size()) : at;
}

// --- Places

// Where the body of a procedure or block begins: its `:name` are variables.
std::size_t EndOfPlaces(std::string_view sql, const Lexis& lexis) {
  if (!lexis.blocks) return sql.size();
  std::size_t at = 0;
  const std::string_view verb = TakeWord(sql, at, lexis);
  for (const std::string_view definition : {"CREATE", "RECREATE", "ALTER"}) {
    if (SameText(verb, definition)) return 0;
  }
  if (!SameText(verb, "EXECUTE") || !SameText(TakeWord(sql, at, lexis), "BLOCK")) return sql.size();
  int depth = 0;
  for (std::string_view word = TakeWord(sql, at, lexis); !word.empty();
       word = TakeWord(sql, at, lexis)) {
    if (depth == 0 && SameText(word, "AS")) return at;
    depth += word == "(" ? 1 : word == ")" ? -1 : 0;
  }
  return sql.size();
}

// ?| and ?& and @?, which are operators only; `?||` joins a value with another.
bool IsOperator(std::string_view sql, std::size_t question) {
  const char next = CharAt(sql, question + 1);
  if (next == '&' || (next == '|' && CharAt(sql, question + 2) != '|')) return true;
  return question > 0 && sql[question - 1] == '@';
}

class Parser {
 public:
  Parser(std::string_view sql, const Lexis& lexis, bool questions)
      : sql_(sql), lexis_(lexis), questions_(questions), endOfPlaces_(EndOfPlaces(sql, lexis)) {}

  ParsedStatement Parse() {
    for (std::size_t at = 0; at < sql_.size();) at = Step(at);
    parsed_.texts.emplace_back(sql_.substr(text_));
    return std::move(parsed_);
  }

 private:
  std::size_t Step(std::size_t at) {
    if (const std::size_t end = SkipQuoted(sql_, at, lexis_); end > at) return end;
    if (const std::size_t end = SkipPlace(at); end > at) {
      parsed_.texts.emplace_back(sql_.substr(text_, at - text_));
      parsed_.names.emplace_back(sql_.substr(at + 1, end - at - 1));
      text_ = end;
      return end;
    }
    if (sql_[at] == '[') ++brackets_;
    if (sql_[at] == ']') --brackets_;
    return at + (sql_.substr(at, 2) == "::" ? 2 : 1);
  }

  std::size_t SkipPlace(std::size_t at) const {
    if (at >= endOfPlaces_) return at;
    if (sql_[at] == '?') return IsQuestion(at) ? at + 1 : at;
    if (sql_[at] != ':' || !BeginsName(CharAt(sql_, at + 1)) || EndsSlice(at)) return at;
    std::size_t end = at + 2;
    while (ContinuesName(CharAt(sql_, end))) ++end;
    return end;
  }

  bool IsQuestion(std::size_t at) const {
    if (!questions_ || IsDigit(CharAt(sql_, at + 1))) return false;
    return !lexis_.questionOperators || !IsOperator(sql_, at);
  }

  // a[1:n] ends with the column n, a[:n] is the element with the parameter's number.
  bool EndsSlice(std::size_t colon) const {
    constexpr std::string_view kEndsOfOperands = ")]'\"";
    if (!lexis_.subscripts || brackets_ <= 0) return false;
    const char before = sql_[colon - 1];
    return IsInWord(before) || kEndsOfOperands.find(before) != std::string_view::npos;
  }

  std::string_view sql_;
  const Lexis& lexis_;
  bool questions_;  // take values
  std::size_t endOfPlaces_;
  int brackets_ = 0;
  std::size_t text_ = 0;  // where the text behind the last place begins
  ParsedStatement parsed_;
};

}  // namespace

std::size_t SkipQuoted(std::string_view sql, std::size_t at, const Lexis& lexis) {
  const std::size_t end = SkipText(sql, at, lexis);
  return end > at ? end : SkipComment(sql, at, lexis);
}

std::string_view TakeWord(std::string_view sql, std::size_t& at, const Lexis& lexis) {
  const std::size_t begin = SkipBlanks(sql, at, lexis);
  at = EndOfWord(sql, begin, lexis);
  return sql.substr(begin, at - begin);
}

ParsedStatement ParseStatement(std::string_view sql, const Lexis& lexis) {
  ParsedStatement parsed = Parser(sql, lexis, true).Parse();
  const auto named = [](const std::string& name) { return !name.empty(); };
  if (!lexis.questionOperators || std::ranges::none_of(parsed.names, named)) return parsed;
  return Parser(sql, lexis, false).Parse();
}

}  // namespace kvshare::data
