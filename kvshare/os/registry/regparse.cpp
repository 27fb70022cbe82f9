// The sections of a .reg file, as people and editors write them.
#include <algorithm>
#include <charconv>
#include <cstdio>

#include "kvshare/os/registry/regfile.h"
#include "kvshare/os/registry/registrystore.h"
#include "kvshare/os/registry/regtext.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::os {

namespace {

constexpr std::u16string_view kVersion5Line = u"Windows Registry Editor Version 5.00";
constexpr std::u16string_view kRegEdit4Line = u"REGEDIT4";

constexpr bool IsBlank(char16_t c) {
  return c == u' ' || c == u'\t';
}
constexpr bool IsLineEnd(char16_t c) {
  return c == u'\r' || c == u'\n';
}
constexpr int HexDigit(char16_t c) {
  if (c >= u'0' && c <= u'9') return c - u'0';
  if (c >= u'a' && c <= u'f') return c - u'a' + 10;
  if (c >= u'A' && c <= u'F') return c - u'A' + 10;
  return -1;
}

// A place in the file, which knows its line.
class Place {
 public:
  explicit Place(std::u16string_view text) : rest_(text) {}

  bool AtEnd() const { return rest_.empty(); }
  bool AtLineEnd() const { return AtEnd() || IsLineEnd(rest_.front()); }
  char16_t Here() const { return AtEnd() ? u'\0' : rest_.front(); }
  int Line() const { return line_; }

  char16_t Take() {
    const char16_t c = rest_.front();
    rest_.remove_prefix(1);
    if (c == u'\n' || (c == u'\r' && Here() != u'\n')) ++line_;
    return c;
  }
  bool Take(char16_t wanted) {
    if (AtEnd() || rest_.front() != wanted) return false;
    Take();
    return true;
  }
  void SkipBlanks() {
    while (!AtEnd() && IsBlank(rest_.front())) rest_.remove_prefix(1);
  }
  // To the line's end, which is left.
  std::u16string_view TakeLine() {
    const auto* end = std::ranges::find_if(rest_, IsLineEnd);
    const std::u16string_view line(rest_.data(), static_cast<std::size_t>(end - rest_.begin()));
    rest_.remove_prefix(line.size());
    return line;
  }
  // `word` in any letter case.
  bool TakeName(std::string_view word) {
    const std::u16string_view here = rest_.substr(0, word.size());
    const auto same = [](char16_t a, char b) {
      return a < 0x80 && LowCase(static_cast<char>(a)) == b;
    };
    if (!std::ranges::equal(here, word, same)) return false;
    rest_.remove_prefix(word.size());
    return true;
  }

 private:
  std::u16string_view rest_;
  int line_ = 1;
};

std::u16string_view WithoutFinalBlanks(std::u16string_view text) {
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

class Parser {
 public:
  explicit Parser(std::u16string_view text) : at_(text) {}

  std::vector<RegSection> Parse() {
    TakeFirstLine();
    for (; !at_.AtEnd();) {
      at_.SkipBlanks();
      start_ = at_.Line();
      if (at_.Here() == u';') at_.TakeLine();
      if (at_.AtLineEnd()) {
        if (!at_.AtEnd()) at_.Take();
      } else {
        TakeEntry();
      }
    }
    return std::move(sections_);
  }

 private:
  [[noreturn]] void Fail(std::string_view reason) const { reg::ThrowAtLine(start_, reason); }

  void TakeFirstLine() {
    while (!at_.AtEnd() && (IsBlank(at_.Here()) || at_.AtLineEnd())) at_.Take();
    start_ = at_.Line();
    const std::u16string_view line = WithoutFinalBlanks(at_.TakeLine());
    version5_ = line == kVersion5Line;
    if (!version5_ && line != kRegEdit4Line) {
      Fail("a settings file begins with `Windows Registry Editor Version 5.00` or `REGEDIT4`");
    }
  }

  void TakeEntry() {
    switch (at_.Here()) {
      case u'[':
        return TakeKey();
      case u'"':
      case u'@':
        return TakeValue();
      default:
        Fail("neither a key nor a value nor a comment");
    }
  }

  void TakeKey() {
    std::u16string_view line = at_.TakeLine();
    const std::size_t end = line.rfind(u']');
    if (end == std::u16string_view::npos) Fail("the `]` behind the key is missing");
    const std::u16string_view behind = WithoutFinalBlanks(line.substr(end + 1));
    if (!behind.empty() && behind[behind.find_first_not_of(u" \t")] != u';') {
      Fail("there is more behind the key");
    }
    line = line.substr(1, end - 1);
    RegSection section;
    section.deleted = line.starts_with(u'-');
    const std::string bytes = Bytes(line.substr(section.deleted ? 1 : 0));
    const std::string_view name = bytes;
    const std::size_t hiveEnd = std::min(name.find('\\'), name.size());
    if (!FindHive(name.substr(0, hiveEnd), section.hive)) {
      Fail("only keys of HKEY_CURRENT_USER and HKEY_LOCAL_MACHINE can be kept");
    }
    auto path = store::CleanPath("", name.substr(hiveEnd));
    if (!path) Fail("the key's name is too long");
    section.key = std::move(*path);
    if (section.deleted && section.key.empty()) Fail("a whole hive cannot be deleted");
    sections_.push_back(std::move(section));
  }

  void TakeValue() {
    if (sections_.empty()) Fail("the value has no key above it");
    RegChange change;
    if (!at_.Take(u'@')) change.value.name = TakeQuoted();
    if (change.value.name.size() > store::kLongestValueName) Fail("the value's name is too long");
    at_.SkipBlanks();
    if (!at_.Take(u'=')) Fail("the `=` behind the value's name is missing");
    at_.SkipBlanks();
    TakeData(change);
    at_.SkipBlanks();
    if (at_.Here() == u';') at_.TakeLine();
    if (!at_.AtLineEnd()) Fail("there is more behind the value");
    // As registry editors do, which ignore what stands under a key that is deleted.
    if (!sections_.back().deleted) sections_.back().changes.push_back(std::move(change));
  }

  void TakeData(RegChange& change) {
    RegistryValue& value = change.value;
    if (at_.Take(u'-')) {
      change.deleted = true;
    } else if (at_.Here() == u'"') {
      value.data = TakeQuoted();
    } else if (at_.TakeName("dword:")) {
      value.kind = ValueKind::Integer;
      value.data = TakeInteger();
    } else if (at_.TakeName("hex")) {
      value.kind = TakeKind();
      value.data = TakeBytes();
      Normalise(value);
    } else {
      Fail("no text, dword:, hex: or hex(n): behind the `=`");
    }
  }

  std::string TakeQuoted() {
    std::string text;
    at_.Take();
    for (;;) {
      if (at_.AtEnd()) Fail("the closing quote is missing");
      const char16_t c = at_.Take();
      if (c == u'"') return text;
      text += c == u'\\' ? TakeEscaped() : Byte(c);
    }
  }

  char TakeEscaped() {
    if (at_.Take(u'r')) return '\r';
    if (at_.Take(u'n')) return '\n';
    if (at_.Here() != u'\\' && at_.Here() != u'"') {
      Fail(R"(a `\` in a text is written `\\`)");
    }
    return Byte(at_.Take());
  }

  std::string TakeInteger() {
    std::uint32_t number = 0;
    int digits = 0;
    for (; HexDigit(at_.Here()) >= 0; ++digits) {
      number = number << 4 | static_cast<std::uint32_t>(HexDigit(at_.Take()));
    }
    if (digits == 0 || digits > 8) Fail("a dword has one to eight digits 0-9, a-f");
    return store::IntegerBytes(number);
  }

  // Behind `hex`: `:` or `(n):`.
  ValueKind TakeKind() {
    if (at_.Take(u':')) return ValueKind::Binary;
    std::uint32_t kind = 0;
    int digits = 0;
    bool good = at_.Take(u'(');
    for (; HexDigit(at_.Here()) >= 0; ++digits) {
      kind = kind << 4 | static_cast<std::uint32_t>(HexDigit(at_.Take()));
    }
    good = good && digits > 0 && digits <= 8 && at_.Take(u')') && at_.Take(u':');
    if (!good || kind > 0xFF) Fail("hex(n): needs a kind from 0 to ff");
    return static_cast<ValueKind>(kind);
  }

  std::string TakeBytes() {
    std::string bytes;
    SkipBlanksAndLineJoins();
    if (HexDigit(at_.Here()) < 0) return bytes;
    do {
      SkipBlanksAndLineJoins();
      int byte = HexDigit(at_.Here());
      if (byte < 0) Fail("a byte of two digits 0-9, a-f is missing");
      at_.Take();
      if (HexDigit(at_.Here()) >= 0) byte = byte << 4 | HexDigit(at_.Take());
      bytes += static_cast<char>(byte);
      SkipBlanksAndLineJoins();
    } while (at_.Take(u','));
    return bytes;
  }

  void SkipBlanksAndLineJoins() {
    for (at_.SkipBlanks(); at_.Take(u'\\'); at_.SkipBlanks()) {
      at_.SkipBlanks();
      if (at_.AtEnd() || !at_.AtLineEnd()) Fail("no line goes on behind the `\\`");
      if (at_.Take() == u'\r') at_.Take(u'\n');
    }
  }

  // Texts of every kind become bytes of code page 874, one text loses its end mark.
  void Normalise(RegistryValue& value) const {
    const bool oneText = value.kind == ValueKind::Text || value.kind == ValueKind::ExpandText;
    if (version5_ && (oneText || value.kind == ValueKind::MultiText)) {
      if (value.data.size() % 2 != 0) Fail("the text ends within a letter");
      std::u16string letters;
      for (std::size_t i = 0; i < value.data.size(); i += 2) {
        const auto low = static_cast<unsigned char>(value.data[i]);
        const auto high = static_cast<unsigned char>(value.data[i + 1]);
        letters += static_cast<char16_t>(high << 8 | low);
      }
      value.data = Bytes(letters);
    }
    if (oneText && value.data.ends_with('\0')) value.data.pop_back();
  }

  char Byte(char16_t letter) const {
    if (const auto byte = reg::ByteOf(letter)) return *byte;
    char reason[64];
    std::snprintf(reason, sizeof reason, "the letter U+%04X is not in code page 874",
                  static_cast<unsigned>(letter));
    reg::ThrowAtLine(at_.Line(), reason);
  }

  std::string Bytes(std::u16string_view letters) const {
    std::string bytes(letters.size(), '\0');
    std::ranges::transform(letters, bytes.begin(), [this](char16_t c) { return Byte(c); });
    return bytes;
  }

  Place at_;
  int start_ = 1;  // the line of the entry that is being read
  bool version5_ = false;
  std::vector<RegSection> sections_;
};

}  // namespace

std::vector<RegSection> ParseRegFile(std::string_view bytes) {
  const std::u16string text = reg::Decode(bytes);
  return Parser(text).Parse();
}

}  // namespace kvshare::os
