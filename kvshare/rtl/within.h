// Arguments that lie in what a routine is about to change.
// Internal header.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace kvshare {

// Whether the bytes of `text` are bytes of `out`, which moves them when it grows: such a text is
// copied before anything is appended.
inline bool LiesIn(std::string_view text, const std::string& out) {
  const std::less<const char*> before;
  return !text.empty() && !before(text.data(), out.data()) &&
         before(text.data(), out.data() + out.size());
}

}  // namespace kvshare
