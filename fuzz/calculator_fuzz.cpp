// Any line for the calculator: an answer is a number that is its own answer, exact; a line that has
// none is refused with a message.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "companion/arithmetic.h"

namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kvshare::companion;
  const std::string_view line(reinterpret_cast<const char*>(data), size);
  Answer answer;
  try {
    answer = Calculate(line);
  } catch (const ECalculation& e) {
    Require(!e.Message().empty());
    return 0;
  }
  const Answer again = Calculate(answer.text);
  Require(!again.rounded && again.text == answer.text);
  return 0;
}
