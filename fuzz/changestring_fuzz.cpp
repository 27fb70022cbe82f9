// A replacement against its described steps: search, delete, insert, from the start again.
// The input is what is replaced, what replaces it and the text, each but the last ended by a line
// feed.
#include <cstdint>
#include <cstdlib>
#include <optional>

#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/strutils.h"
#include "kvshare/text/strings.h"

namespace {

using namespace kvshare;

void Expect(bool holds) {
  if (!holds) std::abort();
}

std::string_view TakeLine(std::string_view& input) {
  const std::size_t end = std::min(input.find('\n'), input.size());
  const std::string_view line = input.substr(0, end);
  input.remove_prefix(std::min(end + 1, input.size()));
  return line;
}

std::optional<std::string> ChangeByTheSteps(std::string_view text, std::string_view old,
                                            std::string_view with) {
  const std::string upper = UpperCase(old);
  std::string out(text);
  for (int step = 0; step < 300; ++step) {
    const int at = Pos(upper, UpperCase(out));
    if (at == 0) return out;
    Delete(out, at, static_cast<int>(old.size()));
    Insert(with, out, at);
  }
  return std::nullopt;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string input(data, data + size);
  std::string_view text = input;
  const std::string_view old = TakeLine(text);
  const std::string_view with = TakeLine(text);

  const std::string upper = UpperCase(old);
  if (Pos(upper, UpperCase(with)) != 0) {
    try {
      Expect(TKovraString::ChangeString(text, old, with) == text);
      Expect(Pos(upper, UpperCase(text)) == 0);
    } catch (const EConvertError&) {
      Expect(Pos(upper, UpperCase(text)) != 0);
    }
    return 0;
  }
  const std::optional<std::string> want = ChangeByTheSteps(text, old, with);
  if (want) Expect(TKovraString::ChangeString(text, old, with) == *want);
  return 0;
}
