#include "drivers/common/sqliteplaces.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "kvshare/rtl/ascii.h"

namespace kvshare::drivers::sqlite {

namespace {

constexpr bool IsWordLetter(char c) {
  return IsLatinLetter(c) || IsDigit(c) || c == '_' || c == '$' ||
         static_cast<unsigned char>(c) >= 0x80;
}

constexpr char Upper(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c;
}

bool Is(std::string_view word, std::string_view upper) {
  return std::ranges::equal(word, upper, {}, Upper);
}

template <std::size_t N>
bool IsOneOf(std::string_view word, const std::array<std::string_view, N>& words) {
  return std::ranges::any_of(words, [word](std::string_view upper) { return Is(word, upper); });
}

struct Token {
  enum class Kind : std::uint8_t { Begin, Word, Operand, Symbol, RangeAnd, Assignment, End };
  Kind kind = Kind::Begin;
  std::string_view text;
  std::size_t at = 0;

  bool IsSymbol(std::string_view symbol) const { return kind == Kind::Symbol && text == symbol; }
};

// The end of what begins at `at`.
std::size_t EndOfQuoted(std::string_view text, std::size_t at) {
  const char close = text[at] == '[' ? ']' : text[at];
  return std::min(text.find(close, at + 1), text.size() - 1) + 1;
}
std::size_t EndOfWord(std::string_view text, std::size_t at) {
  while (at < text.size() && IsWordLetter(text[at])) ++at;
  return at;
}
std::size_t EndOfSymbol(std::string_view text, std::size_t at) {
  constexpr std::array<std::string_view, 9> kPairs = {
      "<=", ">=", "<>", "!=", "==", "<<", ">>", "||", "->"};
  return at + (std::ranges::find(kPairs, text.substr(at, 2)) != kPairs.end() ? 2 : 1);
}
std::size_t SkipBlanks(std::string_view text, std::size_t at) {
  const auto behind = [text, &at](std::string_view end) {
    const std::size_t found = text.find(end, at + 2);
    return found == std::string_view::npos ? text.size() : found + end.size();
  };
  for (; at < text.size();) {
    if (text.substr(at, 2) == "--") {
      at = behind("\n");
    } else if (text.substr(at, 2) == "/*") {
      at = behind("*/");
    } else if (std::string_view(" \t\r\n\f").find(text[at]) != std::string_view::npos) {
      ++at;
    } else {
      break;
    }
  }
  return at;
}

// Gives `take` each token of a text.
template <typename Take>
void ForEachToken(std::string_view text, Take take) {
  for (std::size_t at = SkipBlanks(text, 0); at < text.size();) {
    const char c = text[at];
    std::size_t end = at;
    Token::Kind kind = Token::Kind::Symbol;
    if (c == '\'' || c == '"' || c == '`' || c == '[') {
      kind = Token::Kind::Operand;
      end = EndOfQuoted(text, at);
    } else if (IsWordLetter(c)) {
      kind = IsDigit(c) ? Token::Kind::Operand : Token::Kind::Word;
      end = EndOfWord(text, at);
    } else {
      end = EndOfSymbol(text, at);
    }
    take(Token{kind, text.substr(at, end - at), at});
    at = SkipBlanks(text, end);
  }
}

class Scanner {
 public:
  std::vector<Place> Scan(const data::StatementParts& statement) {
    for (std::size_t i = 0; i < statement.texts.size(); ++i) {
      if (i != 0) AddPlace();
      ForEachToken(statement.texts[i], [this](const Token& token) { Add(token); });
    }
    Follow({Token::Kind::End, {}, 0});
    return std::move(places_);
  }

 private:
  // Between a pair of brackets, or outside of all.
  struct Level {
    bool list = false;        // of IN
    bool assigns = false;     // the items of SET
    bool itemBegins = false;  // and the next `=` is no comparison
    int openRanges = 0;       // BETWEEN without its AND
  };

  void Add(Token token) {
    Follow(token);
    if (token.kind == Token::Kind::Word) {
      AddWord(token);
    } else if (token.kind == Token::Kind::Symbol) {
      AddSymbol(token);
    }
    last_ = token;
  }

  void AddWord(Token& token) {
    constexpr std::array<std::string_view, 3> kQueries = {"SELECT", "WITH", "VALUES"};
    constexpr std::array<std::string_view, 3> kBehindSet = {"WHERE", "FROM", "RETURNING"};
    Level& level = levels_.back();
    if (Is(token.text, "BETWEEN")) {
      ++level.openRanges;
    } else if (Is(token.text, "AND") && level.openRanges > 0) {
      --level.openRanges;
      token.kind = Token::Kind::RangeAnd;
    } else if (Is(token.text, "SET")) {
      level.assigns = level.itemBegins = true;
    } else if (IsOneOf(token.text, kBehindSet)) {
      level.assigns = level.itemBegins = false;
    } else if (IsOneOf(token.text, kQueries)) {
      level.list = false;
    }
  }

  void AddSymbol(Token& token) {
    Level& level = levels_.back();
    if (token.text == "(") {
      const bool list = last_.kind == Token::Kind::Word && Is(last_.text, "IN");
      levels_.push_back({list});
    } else if (token.text == ")") {
      if (levels_.size() > 1) levels_.pop_back();
    } else if (token.text == ",") {
      level.itemBegins = level.assigns;
    } else if (token.text == "=" && level.itemBegins) {
      level.itemBegins = false;
      token.kind = Token::Kind::Assignment;
    }
  }

  void AddPlace() {
    Follow({Token::Kind::Operand, {}, 0});
    places_.push_back({KindBehind(last_), last_.at});
    mirrors_ = places_.back().kind == PlaceKind::Other && BeginsOperand(last_);
    open_ = true;
    last_ = {Token::Kind::Operand, {}, 0};
  }

  PlaceKind KindBehind(const Token& token) const {
    constexpr std::array<std::string_view, 2> kAtLeast = {">=", "<"};
    constexpr std::array<std::string_view, 2> kAbove = {">", "<="};
    constexpr std::array<std::string_view, 2> kEqual = {"=", "=="};
    constexpr std::array<std::string_view, 2> kUnequal = {"<>", "!="};
    using enum PlaceKind;
    switch (token.kind) {
      case Token::Kind::Assignment:
        return Stored;
      case Token::Kind::RangeAnd:
        return Above;
      case Token::Kind::Word:
        return Is(token.text, "BETWEEN") ? AtLeast : Other;
      case Token::Kind::Symbol:
        break;
      case Token::Kind::Begin:
      case Token::Kind::Operand:
      case Token::Kind::End:
        return Other;
    }
    if (IsOneOf(token.text, kAtLeast)) return AtLeast;
    if (IsOneOf(token.text, kAbove)) return Above;
    if (IsOneOf(token.text, kEqual)) return Equal;
    if (IsOneOf(token.text, kUnequal)) return Unequal;
    const bool separates = token.text == "(" || token.text == ",";
    return separates && levels_.back().list ? Listed : Other;
  }

  // Whether nothing before the place binds closer than a comparison behind it.
  static bool BeginsOperand(const Token& token) {
    constexpr std::array<std::string_view, 7> kWords = {"WHERE", "AND",  "OR",    "NOT",
                                                        "ON",    "WHEN", "HAVING"};
    return token.kind == Token::Kind::Word ? IsOneOf(token.text, kWords) : token.IsSymbol("(");
  }

  // What stands behind the last place.
  void Follow(const Token& token) {
    if (!std::exchange(open_, false)) return;
    PlaceKind& kind = places_.back().kind;
    const bool ends = token.kind == Token::Kind::End || token.IsSymbol(")") ||
                      token.IsSymbol(",") || token.IsSymbol(";");
    const bool joins = token.kind == Token::Kind::Word && !Is(token.text, "COLLATE");
    switch (kind) {
      case PlaceKind::Equal:
      case PlaceKind::Unequal:
        if (!ends && !joins) kind = PlaceKind::Other;
        break;
      case PlaceKind::Listed:
        if (!ends) kind = PlaceKind::Other;
        break;
      case PlaceKind::Other:
        if (!mirrors_) break;
        if (token.IsSymbol("<=") || token.IsSymbol(">")) kind = PlaceKind::AtLeast;
        if (token.IsSymbol("<") || token.IsSymbol(">=")) kind = PlaceKind::Above;
        break;
      case PlaceKind::Stored:
      case PlaceKind::AtLeast:
      case PlaceKind::Above:
        break;
    }
  }

  std::vector<Place> places_;
  std::vector<Level> levels_ = std::vector<Level>(1);
  Token last_;
  bool open_ = false;     // a place stands directly before
  bool mirrors_ = false;  // and may be the left side of a comparison
};

}  // namespace

std::vector<Place> PlacesOf(const data::StatementParts& statement) {
  return Scanner().Scan(statement);
}

bool IsCompound(std::string_view sql) {
  constexpr std::array<std::string_view, 3> kJoints = {"UNION", "INTERSECT", "EXCEPT"};
  bool compound = false;
  ForEachToken(sql, [&](const Token& token) {
    compound = compound || (token.kind == Token::Kind::Word && IsOneOf(token.text, kJoints));
  });
  return compound;
}

}  // namespace kvshare::drivers::sqlite
