#include "kvshare/os/mask.h"

#include <algorithm>
#include <cstddef>
#include <string>

#include "kvshare/os/filesearch.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::os {

Mask::Mask(std::string_view mask) : tokens_(Translate(mask)), all_(mask == "*" || mask == "*.*") {}

// The wildcards as the platform's searches translate them before they look: a `*` before a point
// may not take the last point of a name, a point before a wildcard may stand for the end. Points at
// the end of a mask count for nothing but that.
std::vector<Mask::Token> Mask::Translate(std::string_view mask) {
  const std::size_t size = mask.find_last_not_of('.') + 1;
  std::vector<Token> tokens;
  tokens.reserve(size);
  for (std::size_t i = 0; i < size; ++i) {
    const char next = i + 1 < mask.size() ? mask[i + 1] : '\0';
    switch (mask[i]) {
      case '*':
        tokens.push_back({next == '.' ? Kind::AnyButLast : Kind::Any, 0});
        break;
      case '?':
        tokens.push_back({Kind::OneOrEnd, 0});
        break;
      case '.':
        tokens.push_back({next == '*' || next == '?' ? Kind::PointOrEnd : Kind::Letter, '.'});
        break;
      default:
        tokens.push_back({Kind::Letter, UpCase(mask[i])});
    }
  }
  return tokens;
}

// Walks the name once with the set of all places that the mask may have reached: no mask makes it
// slow.
bool Mask::Matches(std::string_view name) const {
  if (all_) return true;
  const std::size_t end = tokens_.size();
  const std::size_t lastPoint = name.rfind('.');
  Places reached(end + 1, kNo);
  Places next(end + 1, kNo);
  reached[0] = kYes;
  for (std::size_t i = 0; i < name.size(); ++i) {
    std::ranges::fill(next, kNo);
    const char letter = UpCase(name[i]);
    for (std::size_t t = 0; t < end; ++t) {
      if (reached[t] == kYes) Take(t, letter, i == lastPoint, reached, next);
    }
    std::swap(reached, next);
  }
  for (std::size_t t = 0; t < end; ++t) {
    if (reached[t] == kYes && tokens_[t].kind != Kind::Letter) reached[t + 1] = kYes;
  }
  return end != 0 && reached[end] == kYes;
}

// One letter of the name at one place of the mask: `next` is reached with it, `reached` without.
void Mask::Take(std::size_t place, char letter, bool lastPoint, Places& reached,
                Places& next) const {
  const Token token = tokens_[place];
  const bool isPoint = letter == '.';
  switch (token.kind) {
    case Kind::Letter:
      if (letter == token.letter) next[place + 1] = kYes;
      break;
    case Kind::Any:
    case Kind::AnyButLast:
      reached[place + 1] = kYes;
      if (token.kind == Kind::Any || !lastPoint) next[place] = kYes;
      break;
    case Kind::OneOrEnd:
      (isPoint ? reached : next)[place + 1] = kYes;
      break;
    case Kind::PointOrEnd:
      if (isPoint) next[place + 1] = kYes;
      break;
  }
}

bool MatchesMask(std::string_view name, std::string_view mask) {
  return Mask(mask).Matches(name);
}

}  // namespace kvshare::os
