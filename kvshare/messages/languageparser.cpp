// Reading of language resources.
#include <algorithm>
#include <charconv>
#include <cstdint>

#include "kvshare/messages/language.h"
#include "kvshare/messages/placeholders.h"
#include "kvshare/rtl/ascii.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/utf8mark.h"

namespace kvshare {

namespace {

// Why a line cannot be used.
struct Refusal {
  std::string reason;
};

constexpr bool IsNameLetter(char c) {
  return IsLatinLetter(c) || IsDigit(c) || c == '_';
}

// Takes a line apart from its left end.
class LineReader {
 public:
  explicit LineReader(std::string_view line) : rest_(line) {}

  // Whether nothing but a comment is left.
  bool AtEnd() {
    SkipBlanks();
    return rest_.empty() || rest_.front() == '#';
  }

  // Digits, as a number; one that is too great for an identifier becomes the greatest.
  std::uint32_t Number() {
    SkipBlanks();
    std::uint32_t value = 0;
    const char* end = rest_.data() + rest_.size();
    const auto [stop, error] = std::from_chars(rest_.data(), end, value);
    if (error == std::errc::invalid_argument) throw Refusal{"a line begins with an identifier"};
    rest_.remove_prefix(static_cast<std::size_t>(stop - rest_.data()));
    return error == std::errc() ? value : UINT32_MAX;
  }

  std::string_view Name() {
    SkipBlanks();
    std::size_t size = 0;
    while (size < rest_.size() && IsNameLetter(rest_[size])) ++size;
    const std::string_view name = rest_.substr(0, size);
    rest_.remove_prefix(size);
    return name;
  }

  void Expect(char c) {
    SkipBlanks();
    if (rest_.empty() || rest_.front() != c) throw Refusal{std::string("expected ") + c};
    rest_.remove_prefix(1);
  }

  // What stands between quotes, still UTF-8, escapes resolved.
  std::string Quoted() {
    Expect('"');
    std::string text;
    while (!rest_.empty()) {
      char c = Take();
      if (c == '"') return text;
      if (c == '\\') {
        c = Escaped();
      } else if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) {
        throw Refusal{"a control character in the text"};
      }
      text.push_back(c);
    }
    throw Refusal{"the text has no closing quote"};
  }

 private:
  void SkipBlanks() {
    const std::size_t start = rest_.find_first_not_of(" \t");
    rest_.remove_prefix(start == std::string_view::npos ? rest_.size() : start);
  }

  char Take() {
    const char c = rest_.front();
    rest_.remove_prefix(1);
    return c;
  }

  char Escaped() {
    switch (rest_.empty() ? '\0' : Take()) {
      case '"':
        return '"';
      case '\\':
        return '\\';
      case 'r':
        return '\r';
      case 'n':
        return '\n';
      default:
        throw Refusal{R"(a backslash stands only in \" \\ \r \n)"};
    }
  }

  std::string_view rest_;
};

std::string Describe(const TMessageRow& row) {
  return std::string(row.Name) + " (" + std::to_string(row.Id) + ")";
}

class Parser {
 public:
  TLanguage Read(std::string_view utf8) {
    utf8 = WithoutUtf8Mark(utf8);
    while (!utf8.empty() && language_.Warnings.size() < kLanguageLineWarnings) {
      const std::string_view line = utf8.substr(0, utf8.find('\n'));
      utf8.remove_prefix(std::min(line.size() + 1, utf8.size()));
      ++lineNumber_;
      TakeLine(line.ends_with('\r') ? line.substr(0, line.size() - 1) : line);
    }
    if (!utf8.empty()) Warn("too many lines that cannot be used; the rest is not read");
    WarnOfMissing();
    return std::move(language_);
  }

 private:
  void TakeLine(std::string_view line) {
    try {
      if (line.size() > kLanguageLineBytes) {
        throw Refusal{"longer than " + std::to_string(kLanguageLineBytes) + " bytes"};
      }
      LineReader reader(line);
      if (!reader.AtEnd()) TakeEntry(reader);
    } catch (const Refusal& refusal) {
      Warn(refusal.reason);
    } catch (const EConvertError& error) {
      Warn(error.Message());
    }
  }

  void TakeEntry(LineReader& reader) {
    const TMessageRow& row = RowOf(reader);
    const std::size_t place = row.Id - kFirstMessageId;
    hasLine_.at(place) = true;
    reader.Expect('=');
    std::string text = Utf8ToCp874(reader.Quoted());
    if (!reader.AtEnd()) throw Refusal{"something follows the text"};
    if (text.empty()) throw Refusal{"the text of " + Describe(row) + " is empty"};
    if (!SamePlaceholders(row.Text, text)) {
      throw Refusal{"the placeholders of " + Describe(row) + " differ from the Thai text's"};
    }
    if (row.Id == rstrThaiDayAbbrev && text.size() != row.Text.size()) {
      throw Refusal{"the text of " + Describe(row) + " has not two letters a day"};
    }
    std::optional<std::string>& slot = language_.Texts.at(place);
    if (slot) throw Refusal{Describe(row) + " stands twice; the first one counts"};
    slot = std::move(text);
  }

  // The message that a line names. The name may be left out, but not be another message's.
  static const TMessageRow& RowOf(LineReader& reader) {
    const std::uint32_t id = reader.Number();
    const auto* row = id <= UINT16_MAX ? FindMessageById(static_cast<Word>(id)) : nullptr;
    if (row == nullptr) throw Refusal{"no message has this identifier"};
    const std::string_view name = reader.Name();
    if (!name.empty() && name != row->Name) {
      throw Refusal{"identifier " + std::to_string(id) + " is " + std::string(row->Name) +
                    ", not " + std::string(name)};
    }
    return *row;
  }

  void WarnOfMissing() {
    lineNumber_ = 0;
    for (const TMessageRow& row : Messages()) {
      if (!hasLine_.at(row.Id - kFirstMessageId)) Warn("no line for " + Describe(row));
    }
  }

  void Warn(std::string text) { language_.Warnings.push_back({lineNumber_, std::move(text)}); }

  TLanguage language_;
  std::array<bool, kMessageIds> hasLine_{};
  int lineNumber_ = 0;
};

}  // namespace

TLanguage ParseLanguage(std::string_view utf8) {
  return Parser().Read(utf8);
}

const std::string* TLanguage::Find(TMessage message) const& {
  const std::size_t place = message - kFirstMessageId;  // wraps below the first
  return message >= kFirstMessageId && Texts[place] ? &*Texts[place] : nullptr;
}

int TLanguage::Count() const {
  return static_cast<int>(
      std::ranges::count_if(Texts, [](const auto& text) { return text.has_value(); }));
}

}  // namespace kvshare
