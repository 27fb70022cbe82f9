// Command lines of any bytes: arguments that are quoted by the platform's rules come back as they
// were, and what was split, quoted and split again is the same.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "kvshare/os/commandline.h"

namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

// Each backslash run before a quote or the end is doubled, each quote gets one more.
void AppendQuoted(std::string& line, std::string_view argument) {
  line += " \"";
  std::size_t slashes = 0;
  for (const char c : argument) {
    if (c == '"') line.append(slashes + 1, '\\');
    slashes = c == '\\' ? slashes + 1 : 0;
    line += c;
  }
  line.append(slashes, '\\');
  line += '"';
}

void CheckRoundTrip(const std::vector<std::string>& arguments) {
  std::string line;
  for (const std::string& argument : arguments) AppendQuoted(line, argument);
  Require(kvshare::os::SplitArguments(line) == arguments);
}

void CheckReadings(std::string_view line) {
  std::size_t longest = 0;
  for (const kvshare::os::ProgramReading& reading : kvshare::os::ReadProgram(line)) {
    Require(longest == 0 || reading.name.size() > longest);
    longest = std::max(longest, reading.name.size());
    Require(line.ends_with(reading.rest));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  CheckRoundTrip(kvshare::os::SplitArguments(text));
  CheckRoundTrip({std::string(text), std::string(text.substr(size / 2))});
  CheckReadings(text);
  return 0;
}
