// Texts that a call of the system writes into a buffer of ours.
// Internal header.
#pragma once

#include <algorithm>
#include <string>

#include "kvshare/os/win32/handle.h"

namespace kvshare::os::win32 {

// `call` takes a buffer and its size and gives the length of the text without its zero byte; where
// the buffer is too small it gives that size or more, and is called again with a larger one. ""
// when it gives 0, its failure, and for a text longer than any name of the system.
template <typename Call>
std::wstring TextOfCall(Call call) {
  constexpr DWORD kLongest = 1U << 16;
  for (DWORD size = MAX_PATH; size <= kLongest;) {
    std::wstring text(size, L'\0');
    const DWORD length = call(text.data(), size);
    if (length < size) {
      text.resize(length);
      return text;
    }
    size = std::max(2 * size, length);
  }
  return {};
}

}  // namespace kvshare::os::win32
