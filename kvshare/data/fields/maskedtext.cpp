// A text while it is typed through a mask.
#include <algorithm>
#include <utility>

#include "kvshare/data/contract/errors.h"
#include "kvshare/data/fields/editmask.h"

namespace kvshare {

namespace {

constexpr char kBlank = ' ';

std::string_view WithoutBlanksAtEnds(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kBlank);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlank) - first + 1);
}

}  // namespace

TMaskedText::TMaskedText(TEditMask mask)
    : mask_(std::move(mask)), typed_(mask_.Places().size()), loaded_(typed_) {}

void TMaskedText::SetCursor(std::size_t place) {
  cursor_ = std::min(place, typed_.size());
}

bool TMaskedText::Load(std::string_view value) {
  const std::optional<Typed> typed = mask_.SavesLiterals() ? ByPosition(value) : InOrder(value);
  typed_ = typed.value_or(Typed(typed_.size()));
  loaded_ = typed_;
  cursor_ = 0;
  return typed.has_value();
}

void TMaskedText::Restore() {
  typed_ = loaded_;
  cursor_ = 0;
}

std::string TMaskedText::Text(const Typed& typed, char open) const {
  std::string text(typed.size(), '\0');
  for (std::size_t i = 0; i < text.size(); ++i) {
    const TMaskPlace& place = mask_.Places()[i];
    text[i] = place.IsLiteral() ? place.literal : typed[i].value_or(open);
  }
  return text;
}

std::string TMaskedText::Value() const {
  Typed typed = typed_;
  if (mask_.OpensInFront()) {
    for (Group group = GroupFrom(0); group.begin < typed.size(); group = GroupFrom(group.end)) {
      MoveOpenToFront(typed, group);
    }
  }
  std::string value;
  value.reserve(typed.size());
  for (std::size_t i = 0; i < typed.size(); ++i) {
    const TMaskPlace& place = mask_.Places()[i];
    if (!place.IsLiteral()) {
      value.push_back(typed[i].value_or(kBlank));
    } else if (mask_.SavesLiterals()) {
      value.push_back(place.literal);
    }
  }
  return value;
}

bool TMaskedText::IsComplete() const {
  for (std::size_t i = 0; i < typed_.size(); ++i) {
    if (mask_.Places()[i].required && !typed_[i]) return false;
  }
  return true;
}

void TMaskedText::Check() const {
  if (Modified() && !IsComplete()) throw EDBEditError();
}

// --- Keys

bool TMaskedText::Type(char key) {
  const auto places = mask_.Places();
  if (cursor_ == places.size()) return false;
  if (places[cursor_].IsLiteral() && places[cursor_].literal == key) {
    ++cursor_;
    return true;
  }
  const Group group = GroupFrom(cursor_);
  if (group.begin == places.size()) return false;
  const TMaskPlace& place = places[group.begin];
  if (place.Takes(key)) {
    typed_[group.begin] = place.InCase(key);
  } else if (key == kBlank && !place.required) {
    typed_[group.begin].reset();
  } else if (group.end < places.size() && places[group.end].literal == key) {
    cursor_ = group.end + 1;
    return true;
  } else {
    return false;
  }
  cursor_ = group.begin + 1;
  return true;
}

bool TMaskedText::Backspace() {
  std::size_t place = cursor_;
  while (place > 0 && mask_.Places()[place - 1].IsLiteral()) --place;
  if (place == 0) return false;
  cursor_ = place - 1;
  typed_[cursor_].reset();
  return true;
}

bool TMaskedText::Delete() {
  const std::size_t place = PlaceFrom(cursor_);
  if (place == typed_.size()) return false;
  typed_[place].reset();
  return true;
}

bool TMaskedText::TakeLine(std::string_view line) {
  std::optional<Typed> typed;
  if (line.size() == typed_.size()) typed = ByPosition(line);
  if (!typed) typed = BySeparators(WithoutBlanksAtEnds(line));
  if (typed) {
    PadPairs(*typed);
  } else {
    typed = InOrder(WithoutBlanksAtEnds(line));
  }
  if (!typed) return false;
  for (std::size_t i = 0; i < typed->size(); ++i) {
    std::optional<char>& c = (*typed)[i];
    if (c) c = mask_.Places()[i].InCase(*c);
  }
  typed_ = *std::move(typed);
  cursor_ = typed_.size();
  return true;
}

// --- Whole texts

std::size_t TMaskedText::PlaceFrom(std::size_t place) const {
  while (place < typed_.size() && mask_.Places()[place].IsLiteral()) ++place;
  return place;
}

TMaskedText::Group TMaskedText::GroupFrom(std::size_t place) const {
  const std::size_t begin = PlaceFrom(place);
  std::size_t end = begin;
  while (end < typed_.size() && !mask_.Places()[end].IsLiteral()) ++end;
  return {begin, end};
}

std::string TMaskedText::LiteralsFrom(std::size_t place) const {
  std::string literals;
  for (; place < typed_.size() && mask_.Places()[place].IsLiteral(); ++place) {
    literals.push_back(mask_.Places()[place].literal);
  }
  return literals;
}

// A blank between other characters is one of them where any may stand; elsewhere it opens its
// place.
bool TMaskedText::PutGroup(Typed& typed, Group group, std::string_view piece) const {
  if (piece.size() > group.end - group.begin) return false;
  const std::size_t first = piece.find_first_not_of(kBlank);
  const std::size_t last = piece.find_last_not_of(kBlank);
  const std::size_t begin = mask_.OpensInFront() ? group.end - piece.size() : group.begin;
  for (std::size_t i = 0; i < piece.size(); ++i) {
    const TMaskPlace& place = mask_.Places()[begin + i];
    const bool between = first < i && i < last;
    if (piece[i] == kBlank && (place.kind != TMaskPlace::Kind::Any || !between)) continue;
    if (!place.Takes(piece[i])) return false;
    typed[begin + i] = piece[i];
  }
  return true;
}

// Every byte of the text at its place, literals included.
std::optional<TMaskedText::Typed> TMaskedText::ByPosition(std::string_view text) const {
  Typed typed(typed_.size());
  const std::size_t length = text.find_last_not_of(kBlank) + 1;
  if (length == 0) return typed;
  if (length > typed.size()) return std::nullopt;
  text = text.substr(0, typed.size());
  std::string whole = Text(typed, kBlank);
  whole.replace(mask_.OpensInFront() ? whole.size() - text.size() : 0, text.size(), text);
  for (std::size_t i = 0; i < whole.size(); ++i) {
    const TMaskPlace& place = mask_.Places()[i];
    if (place.IsLiteral() && whole[i] != place.literal) return std::nullopt;
  }
  for (Group group = GroupFrom(0); group.begin < whole.size(); group = GroupFrom(group.end)) {
    const std::string piece = whole.substr(group.begin, group.end - group.begin);
    if (!PutGroup(typed, group, piece)) return std::nullopt;
  }
  return typed;
}

// The bytes of the text one after the other, without literals.
std::optional<TMaskedText::Typed> TMaskedText::InOrder(std::string_view text) const {
  const auto places = mask_.Places();
  const auto room = static_cast<std::size_t>(
      std::ranges::count_if(places, [](const TMaskPlace& place) { return !place.IsLiteral(); }));
  if (text.find_last_not_of(kBlank) + 1 > room) return std::nullopt;
  std::string whole(text.substr(0, room));
  whole.insert(mask_.OpensInFront() ? 0 : whole.size(), room - whole.size(), kBlank);
  Typed typed(places.size());
  std::size_t at = 0;
  for (Group group = GroupFrom(0); group.begin < places.size(); group = GroupFrom(group.end)) {
    const std::size_t count = group.end - group.begin;
    if (!PutGroup(typed, group, whole.substr(at, count))) return std::nullopt;
    at += count;
  }
  return typed;
}

// All literals are there, and what lies between two of them is a group.
std::optional<TMaskedText::Typed> TMaskedText::BySeparators(std::string_view line) const {
  Typed typed(typed_.size());
  for (std::size_t place = 0; place < typed.size();) {
    const std::string literals = LiteralsFrom(place);
    if (!line.starts_with(literals)) return std::nullopt;
    line.remove_prefix(literals.size());
    const Group group = GroupFrom(place);
    const std::string next = LiteralsFrom(group.end);
    const std::size_t end = next.empty() ? line.size() : line.find(next);
    if (end == std::string_view::npos) return std::nullopt;
    if (!PutGroup(typed, group, WithoutBlanksAtEnds(line.substr(0, end)))) return std::nullopt;
    line.remove_prefix(end);
    place = group.end;
  }
  return line.empty() ? std::optional(std::move(typed)) : std::nullopt;
}

// Two digits beside the separator of a date or time: a number, to which a zero in front adds
// nothing. A year in four digits is no such part: 67 may be 2567 or 1967.
bool TMaskedText::IsPairOfDate(Group group) const {
  const auto places = mask_.Places();
  const bool digits = group.end - group.begin == 2 &&
                      places[group.begin].kind == TMaskPlace::Kind::Digit &&
                      places[group.begin + 1].kind == TMaskPlace::Kind::Digit;
  const bool before = group.begin > 0 && places[group.begin - 1].separator;
  const bool behind = group.end < places.size() && places[group.end].separator;
  return digits && (before || behind);
}

void TMaskedText::PadPairs(Typed& typed) const {
  for (Group group = GroupFrom(0); group.begin < typed.size(); group = GroupFrom(group.end)) {
    if (!IsPairOfDate(group)) continue;
    std::optional<char>& tens = typed[group.begin];
    std::optional<char>& ones = typed[group.begin + 1];
    if (tens.has_value() == ones.has_value()) continue;
    if (tens) ones = tens;
    tens = '0';
  }
}

void TMaskedText::MoveOpenToFront(Typed& typed, Group group) const {
  const auto places = mask_.Places();
  std::size_t end = group.end;
  while (end > group.begin && typed[end - 1].value_or(kBlank) == kBlank) --end;
  const std::size_t by = group.end - end;
  for (std::size_t i = group.begin; i < end; ++i) {
    const char c = typed[i].value_or(kBlank);
    if (c != kBlank && !places[i + by].Takes(c)) return;
  }
  const auto at = [&typed](std::size_t place) {
    return typed.begin() + static_cast<std::ptrdiff_t>(place);
  };
  std::rotate(at(group.begin), at(end), at(group.end));
}

}  // namespace kvshare
