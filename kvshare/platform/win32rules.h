// The rules of win32.cpp that a test can only reach apart from the machine.
// Internal header.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kvshare {

// Whether a counter that wraps has gone on by at least that much.
constexpr bool TicksElapsed(std::uint32_t start, std::uint32_t now, std::uint32_t milliseconds) {
  return now - start >= milliseconds;
}

// 543 for the Thai Buddhist calendar and where the locale does not tell, else 0.
constexpr int YearOffsetOf(std::string_view calendarType) {
  constexpr std::string_view kThaiBuddhist = "7";
  return calendarType.empty() || calendarType == kThaiBuddhist ? 543 : 0;
}

// A folder that came with its zero byte through a buffer of that size; "" for one that did not fit.
inline std::string ThroughBuffer(std::string folder, std::size_t bufferSize) {
  if (folder.size() >= bufferSize) folder.clear();
  return folder;
}

}  // namespace kvshare
