#include "drivers/common/placeholders.h"

#include <cstddef>

namespace kvshare::drivers {
namespace {

bool IsNamePart(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
         static_cast<unsigned char>(c) >= 0x80;
}

// Each of these gives the position behind what begins at `at`; the text's end when it never ends.
std::size_t BehindQuoted(std::string_view sql, std::size_t at, char quote, bool backslashEscapes) {
  for (++at; at < sql.size(); ++at) {
    if (backslashEscapes && sql[at] == '\\') {
      ++at;
    } else if (sql[at] == quote) {
      return at + 1;  // a doubled quote begins the next literal: the same in the end
    }
  }
  return sql.size();
}

std::size_t BehindLine(std::string_view sql, std::size_t at) {
  const std::size_t end = sql.find_first_of("\r\n", at);
  return end == std::string_view::npos ? sql.size() : end;
}

std::size_t BehindBlockComment(std::string_view sql, std::size_t at) {
  int depth = 0;
  while (at < sql.size()) {
    if (sql.substr(at, 2) == "/*") {
      ++depth;
      at += 2;
    } else if (sql.substr(at, 2) == "*/") {
      at += 2;
      if (--depth == 0) return at;
    } else {
      ++at;
    }
  }
  return sql.size();
}

// $$..$$ and $tag$..$tag$; the dollar alone where it begins neither.
std::size_t BehindDollar(std::string_view sql, std::size_t at) {
  if (at > 0 && (IsNamePart(sql[at - 1]) || sql[at - 1] == '$')) return at + 1;
  std::size_t end = at + 1;
  while (end < sql.size() && IsNamePart(sql[end])) ++end;
  const bool digitFirst = end > at + 1 && sql[at + 1] >= '0' && sql[at + 1] <= '9';
  if (end == sql.size() || sql[end] != '$' || digitFirst) return at + 1;
  const std::string_view tag = sql.substr(at, end + 1 - at);
  const std::size_t close = sql.find(tag, end + 1);
  return close == std::string_view::npos ? sql.size() : close + tag.size();
}

bool IsEscapeLiteral(std::string_view sql, std::size_t quote) {
  if (quote == 0 || (sql[quote - 1] != 'E' && sql[quote - 1] != 'e')) return false;
  return quote == 1 || !IsNamePart(sql[quote - 2]);
}

// Behind the literal, name, comment or single character at `at`.
std::size_t BehindToken(std::string_view sql, std::size_t at) {
  switch (sql[at]) {
    case '\'':
      return BehindQuoted(sql, at, '\'', IsEscapeLiteral(sql, at));
    case '"':
      return BehindQuoted(sql, at, '"', false);
    case '-':
      return sql.substr(at, 2) == "--" ? BehindLine(sql, at) : at + 1;
    case '/':
      return sql.substr(at, 2) == "/*" ? BehindBlockComment(sql, at) : at + 1;
    case '$':
      return BehindDollar(sql, at);
    default:
      return at + 1;
  }
}

}  // namespace

std::string NumberedPlaceholders(std::string_view sql) {
  std::string out;
  out.reserve(sql.size() + 16);
  int count = 0;
  for (std::size_t at = 0; at < sql.size();) {
    if (sql[at] == '?') {
      out += '$';
      out += std::to_string(++count);
      ++at;
      continue;
    }
    const std::size_t end = BehindToken(sql, at);
    out += sql.substr(at, end - at);
    at = end;
  }
  return out;
}

}  // namespace kvshare::drivers
