#include "apps/kvshare/data/sqltext.h"

#include <algorithm>
#include <iterator>

#include "apps/kvshare/terminal/legible.h"
#include "kvshare/rtl/ascii.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::app {

namespace {

constexpr std::string_view kQueries[] = {"SELECT",  "VALUES", "TABLE",  "SHOW",
                                         "EXPLAIN", "DESC",   "PRAGMA", "DESCRIBE"};
constexpr std::string_view kCalls[] = {"CALL", "EXEC", "EXECUTE"};
constexpr std::string_view kChanges[] = {"INSERT", "UPDATE", "DELETE", "MERGE", "REPLACE"};
// What can follow the named queries of a WITH.
constexpr std::string_view kMainWords[] = {"SELECT", "VALUES", "TABLE", "INSERT",
                                           "UPDATE", "DELETE", "MERGE", "REPLACE"};

template <std::size_t N>
bool IsOneOf(std::string_view word, const std::string_view (&words)[N]) {
  return std::ranges::any_of(words, [word](std::string_view one) { return SameText(word, one); });
}

constexpr bool InWord(char c) {
  return IsLatinLetter(c) || IsDigit(c) || c == '_' || static_cast<unsigned char>(c) >= 0x80;
}

// Whether `\` takes the meaning from a quote behind it. Servers differ: where it matters, both
// readings are asked.
enum class Backslash : bool { IsALetter, Escapes };

// Where a walk over SQL text stands. Texts and remarks may run over several lines.
class Place {
 public:
  explicit Place(Backslash backslash) : backslash_(backslash) {}

  bool InCode() const { return open_ == '\0'; }
  bool InText() const { return open_ == '\'' || open_ == '"' || open_ == '`'; }

  // Reads the letter or the mark at the start of `rest`; its length.
  std::size_t Step(std::string_view rest) {
    const char c = rest.front();
    if (InText()) return StepInText(rest);
    if (open_ == '-') {
      if (c == '\n') open_ = '\0';
      return 1;
    }
    if (open_ == '*') {
      if (!rest.starts_with("*/")) return 1;
      open_ = '\0';
      return 2;
    }
    if (c == '\'' || c == '"' || c == '`') open_ = c;
    const bool block = rest.starts_with("/*");
    if (!block && !rest.starts_with("--")) return 1;
    open_ = rest[1];
    return 2;
  }

 private:
  std::size_t StepInText(std::string_view rest) {
    if (rest.front() == '\\' && backslash_ == Backslash::Escapes && rest.size() > 1) return 2;
    if (rest.front() == open_) open_ = '\0';  // a doubled quote opens the next text at once
    return 1;
  }

  Backslash backslash_;
  char open_ = '\0';  // the quote, `-` in a remark up to the line's end, `*` in one up to `*/`
};

// The words outside texts, remarks and parentheses, one after the other.
class Words {
 public:
  Words(std::string_view sql, Backslash backslash) : rest_(sql), place_(backslash) {}

  // "" at the end. A `,` is a word too.
  std::string_view Next() {
    while (!rest_.empty()) {
      const bool code = place_.InCode();
      if (code && depth_ == 0 && InWord(rest_.front())) return TakeWord();
      const char c = rest_.front();
      rest_.remove_prefix(std::min(place_.Step(rest_), rest_.size()));
      if (!code || !place_.InCode()) continue;
      if (c == '(') ++depth_;
      if (c == ')' && depth_ > 0) --depth_;
      if (c == ',' && depth_ == 0) return ",";
    }
    return {};
  }

 private:
  std::string_view TakeWord() {
    std::size_t size = 1;
    while (size < rest_.size() && InWord(rest_[size])) ++size;
    const std::string_view word = rest_.substr(0, size);
    rest_.remove_prefix(size);
    return word;
  }

  std::string_view rest_;
  Place place_;
  int depth_ = 0;
};

// A remark at the start of `text` with its end; "" where none stands there, or one without an end.
std::string_view RemarkAt(std::string_view text) {
  const bool block = text.starts_with("/*");
  if (!block && !text.starts_with("--") && !text.starts_with('#')) return {};
  const std::size_t end = text.find(block ? "*/" : "\n", block ? 2 : 0);
  if (end == std::string_view::npos) return block ? std::string_view{} : text;
  return text.substr(0, end + (block ? 2 : 1));
}

// From its first letter behind blanks, remarks and opening parentheses.
std::string_view FromFirstWord(std::string_view sql) {
  for (;;) {
    sql = TrimLeft(sql);
    const std::string_view remark = RemarkAt(sql);
    if (remark.empty() && !sql.starts_with('(')) return sql;
    sql.remove_prefix(std::max<std::size_t>(remark.size(), 1));
  }
}

// The word behind the named queries: the first one of its kind that is not itself a name.
std::string_view MainWordOfWith(std::string_view sql) {
  Words words(sql, Backslash::IsALetter);
  words.Next();  // WITH
  bool name = true;
  for (std::string_view word = words.Next(); !word.empty(); word = words.Next()) {
    const bool wasName = name;
    name = word == "," || (wasName && SameText(word, "RECURSIVE"));
    if (!wasName && IsOneOf(word, kMainWords)) return word;
  }
  return "SELECT";
}

bool HasReturning(std::string_view sql, Backslash backslash) {
  Words words(sql, backslash);
  for (std::string_view word = words.Next(); !word.empty(); word = words.Next()) {
    if (SameText(word, "RETURNING")) return true;
  }
  return false;
}

// Nothing but blanks, `;` and remarks that end.
bool IsRemark(std::string_view text) {
  for (;;) {
    while (!text.empty() && (text.front() == ';' || Trim(text.substr(0, 1)).empty())) {
      text.remove_prefix(1);
    }
    if (text.empty()) return true;
    const std::string_view remark = RemarkAt(text);
    if (remark.empty()) return false;
    text.remove_prefix(remark.size());
  }
}

// A line that MariaDB takes for a remark as well: it wants a blank behind the dashes.
bool IsRemarkLine(std::string_view line) {
  const std::string_view text = Trim(line);
  return text.starts_with("--") && (text.size() == 2 || Trim(text.substr(2, 1)).empty());
}

// One statement's text read line by line, in both readings of `\`.
class StatementText {
 public:
  // `advice` is for whoever has more than one statement in a line.
  explicit StatementText(std::string_view advice) : advice_(advice) {}

  bool InCode() const { return InBoth(&Place::InCode); }

  // The loss at the line's first `;`, which ends the statement; else the line is read.
  std::optional<std::string> Read(std::string_view line) {
    const std::size_t end = std::min(line.find(';'), line.size());
    for (Place* place : {&plain_, &escaping_}) {
      for (std::string_view rest = line.substr(0, end); !rest.empty();) {
        rest.remove_prefix(std::min(place->Step(rest), rest.size()));
      }
    }
    if (end == line.size()) {
      for (Place* place : {&plain_, &escaping_}) place->Step("\n");
      return std::nullopt;
    }
    const std::string_view lost = line.substr(end + 1);
    const bool inText = InBoth(&Place::InText);
    const bool inRemark = !inText && !plain_.InCode() && !escaping_.InCode();
    plain_ = Place(Backslash::IsALetter);
    escaping_ = Place(Backslash::Escapes);
    if (inText) {
      return "the `;` in the quoted text would end the statement: write it by its code, as "
             "CHAR(59), on PostgreSQL CHR(59), on Firebird ASCII_CHAR(59)";
    }
    if (inRemark) return "the `;` in the remark would end the statement: take it out";
    if (IsRemark(lost)) return std::nullopt;
    return "what stands behind the first `;` would not be run: " + std::string(advice_) + ": " +
           Legible(std::string(Trim(lost)));
  }

 private:
  bool InBoth(bool (Place::*is)() const) const { return (plain_.*is)() && (escaping_.*is)(); }

  std::string_view advice_;
  Place plain_{Backslash::IsALetter};
  Place escaping_{Backslash::Escapes};
};

}  // namespace

SqlKind KindOfSql(std::string_view sql) {
  const std::string_view text = FromFirstWord(sql);
  std::string_view word = Words(text, Backslash::IsALetter).Next();
  if (SameText(word, "WITH")) word = MainWordOfWith(text);
  if (IsOneOf(word, kQueries)) return SqlKind::Query;
  if (IsOneOf(word, kCalls)) return SqlKind::ChangeWithRows;
  if (!IsOneOf(word, kChanges)) return SqlKind::Other;
  const bool rows =
      HasReturning(text, Backslash::IsALetter) || HasReturning(text, Backslash::Escapes);
  return rows ? SqlKind::ChangeWithRows : SqlKind::Change;
}

std::optional<std::string> LossInStatement(std::string_view sql) {
  return StatementText("give one statement, or several as a --batch").Read(sql);
}

std::optional<std::string> PrepareBatch(TStrings& lines) {
  StatementText statement("begin each statement on a line of its own");
  for (int i = 0; i < lines.Count(); ++i) {
    if (statement.InCode() && IsRemarkLine(lines[i])) {
      lines.Put(i, "");
      continue;
    }
    if (const auto loss = statement.Read(lines[i])) {
      return "line " + std::to_string(i + 1) + ": " + *loss;
    }
  }
  return std::nullopt;
}

}  // namespace kvshare::app
