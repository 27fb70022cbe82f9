// Masks of any bytes, with any values, lines and keys, each on a line of its own. A value reads
// back as itself, a key that does not fit changes nothing, and one that does changes its place
// alone.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "kvshare/data/contract/errors.h"
#include "kvshare/data/fields/editmask.h"
#include "kvshare/rtl/formatsettings.h"

namespace {

using kvshare::TEditMask;
using kvshare::TMaskedText;

void Require(bool holds) {
  if (!holds) std::abort();
}

std::string_view NextLine(std::string_view& rest) {
  const std::size_t end = rest.find('\n');
  const std::string_view line = rest.substr(0, end);
  rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  return line;
}

void CheckValue(const TMaskedText& text) {
  const std::string value = text.Value();
  TMaskedText again(text.Mask());
  Require(again.Load(value) && again.Value() == value);
}

void CheckLoaded(const TEditMask& mask, std::string_view value) {
  TMaskedText text(mask);
  if (!text.Load(value)) {
    Require(text.Shown() == mask.EmptyText());
    Require(mask.Format(value) == value);
    return;
  }
  CheckValue(text);
  const std::string shown = mask.Format(value);
  for (const char c : value) Require(c == ' ' || shown.find(c) != std::string::npos);
}

void CheckLine(const TEditMask& mask, std::string_view line) {
  TMaskedText text(mask);
  if (text.TakeLine(line)) {
    CheckValue(text);
  } else {
    Require(!text.Modified());
  }
  try {
    const std::string value = mask.ValueOfLine(line);
    Require(mask.IsEmpty() ? value == line : value == text.Value() && text.IsComplete());
  } catch (const kvshare::EDBEditError&) {
    Require(!mask.IsEmpty());
  }
}

// Where two shown texts differ: nowhere, or at the one place before `end`.
void CheckOneChange(std::string_view before, std::string_view after, std::size_t end) {
  Require(before.size() == after.size());
  for (std::size_t i = 0; i < before.size(); ++i) Require(before[i] == after[i] || i + 1 == end);
}

void CheckKeys(const TEditMask& mask, std::string_view keys) {
  TMaskedText text(mask);
  for (const char key : keys) {
    const std::string before = text.Shown();
    const std::size_t cursor = text.Cursor();
    if (key == '\b') {
      const bool fits = text.Backspace();
      CheckOneChange(before, text.Shown(), fits ? text.Cursor() + 1 : 0);
    } else if (text.Type(key)) {
      Require(text.Cursor() > cursor);
      CheckOneChange(before, text.Shown(), text.Cursor());
    } else {
      Require(text.Cursor() == cursor && text.Shown() == before);
    }
  }
  CheckValue(text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kvshare::FormatSettings = kvshare::TFormatSettings::UsEnglish();
  std::string_view rest(reinterpret_cast<const char*>(data), size);
  const TEditMask mask(NextLine(rest));
  CheckLoaded(mask, NextLine(rest));
  CheckLine(mask, NextLine(rest));
  CheckKeys(mask, rest);
  return 0;
}
