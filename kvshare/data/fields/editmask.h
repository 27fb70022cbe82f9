// Edit masks: what may be typed at each place of a text, and a text while it is typed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "kvshare/export.h"

namespace kvshare {

// One place of a masked text: a byte that stands there, or what may be typed.
struct KVSHARE_API TMaskPlace {
  enum class Kind : std::uint8_t { Literal, Digit, DigitOrSign, Letter, LetterOrDigit, Any };
  enum class Case : std::uint8_t { AsTyped, Upper, Lower };

  Kind kind = Kind::Literal;
  char literal = '\0';
  bool separator = false;  // the literal parts the numbers of a date or time
  bool required = false;
  Case letterCase = Case::AsTyped;

  bool IsLiteral() const { return kind == Kind::Literal; }
  // Whether the byte may stand here. A blank may where any character may.
  bool Takes(char c) const;
  // The byte in the letter case that the mask asks for; Thai letters have none.
  char InCase(char c) const;
};

// A mask is `text;save;blank`, as in `00/00/0000;1;_`.
//
//   0 9 #     a digit; one that may be missing; a digit or sign that may be missing
//   L l       a letter; one that may be missing
//   A a, C c  a letter or digit (also a Thai digit); any character
//   > < <>    letters behind become upper case, lower case, stay as typed
//   !         open places stand in front of what is typed, not behind
//   / :       DateSeparator and TimeSeparator of FormatSettings as the mask is read; '\0': nothing
//   \         what follows stands there as it is; at the end of the mask nothing
//   _         a blank; every other byte stands for itself
//
// Thai letters are letters, and so are vowels and tone marks above and below, each as a place of
// its own.
//
// `save` 0 leaves the literals out of the value; all else, and nothing, keeps them. `blank` is
// what an open place shows, `_` where it is missing. Without `text` there is no mask.
class KVSHARE_API TEditMask {
 public:
  TEditMask() = default;
  explicit TEditMask(std::string_view mask);

  bool IsEmpty() const { return places_.empty(); }  // no mask: any text may be typed
  bool SavesLiterals() const { return savesLiterals_; }
  bool OpensInFront() const { return opensInFront_; }
  char BlankChar() const { return blankChar_; }
  std::span<const TMaskPlace> Places() const { return places_; }

  // What is shown before anything is typed: `__/__/____`.
  std::string EmptyText() const;

  // A value as it is shown where it is not edited, open places as blanks. One that does not fit the
  // mask is shown as it is.
  std::string Format(std::string_view value) const;

  // The value of a line that a user has typed (TMaskedText::TakeLine); the line itself without a
  // mask. Throws EDBEditError `Invalid input value.  Use escape key to abandon changes` where it
  // does not fit or leaves a required place open.
  std::string ValueOfLine(std::string_view line) const;

 private:
  void ReadText(std::string_view text);
  void AddLiteral(char c, bool separator);

  std::vector<TMaskPlace> places_;
  bool savesLiterals_ = true;
  bool opensInFront_ = false;
  char blankChar_ = '_';
};

// A text that is being typed through a mask. A place is open until something stands there. A key
// that does not fit is ignored; one that fits takes its place alone, so that nothing typed before
// is moved or lost.
class KVSHARE_API TMaskedText {
 public:
  explicit TMaskedText(TEditMask mask);

  const TEditMask& Mask() const { return mask_; }

  // Starts with a value: literals in it where the mask saves them, blanks for open places. A
  // shorter one leaves the last places open, or the first with `!`. One that does not fit leaves
  // all places open and gives false: it can only be edited without the mask.
  bool Load(std::string_view value);
  void Restore();  // what was loaded, as Esc does
  // Whether what stands there is not what was loaded.
  bool Modified() const { return typed_ != loaded_; }

  // As it is shown: literals, what was typed, the blank character at open places.
  std::string Shown() const { return Text(typed_, mask_.BlankChar()); }
  // What the field gets: open places are blanks, in front of each group of places with `!`.
  std::string Value() const;

  // Before which place the next key goes, 0 .. the number of places; clamped.
  std::size_t Cursor() const { return cursor_; }
  void SetCursor(std::size_t place);

  // The user's keys. Each gives whether it fits; one that does not changes nothing.
  //
  // A character goes to the first place at or behind the cursor that no literal has, over what
  // stands there. The literal at the cursor, or the next one where the character does not fit
  // before it, takes the cursor behind itself. A blank opens a place that may stay open.
  bool Type(char key);
  bool Backspace();  // opens the place before the cursor
  bool Delete();     // opens the place at the cursor

  // A line in the place of all that was typed; one that does not fit changes nothing and gives
  // false. It has all literals of the mask or none. With them each group between two literals may
  // be shorter than its places, and a single digit of a day, month, hour or minute gets its zero:
  // `5/3/2567` is `05/03/2567`. Without them the places are filled from the first, from the last
  // with `!`. Blanks at the ends of the line and of a group count for nothing.
  bool TakeLine(std::string_view line);

  // Whether no required place is open.
  bool IsComplete() const;
  // Throws EDBEditError `Invalid input value.  Use escape key to abandon changes` for a modified
  // text that is not complete.
  void Check() const;

 private:
  using Typed = std::vector<std::optional<char>>;  // one a place, nothing at literals

  // Places [begin, end) between two literals.
  struct Group {
    std::size_t begin;
    std::size_t end;
  };

  std::optional<Typed> ByPosition(std::string_view text) const;
  std::optional<Typed> InOrder(std::string_view text) const;
  std::optional<Typed> BySeparators(std::string_view line) const;
  bool PutGroup(Typed& typed, Group group, std::string_view piece) const;
  bool IsPairOfDate(Group group) const;
  void PadPairs(Typed& typed) const;
  void MoveOpenToFront(Typed& typed, Group group) const;

  Group GroupFrom(std::size_t place) const;
  std::string LiteralsFrom(std::size_t place) const;
  std::size_t PlaceFrom(std::size_t place) const;
  std::string Text(const Typed& typed, char open) const;

  TEditMask mask_;
  Typed typed_;
  Typed loaded_;
  std::size_t cursor_ = 0;
};

}  // namespace kvshare
