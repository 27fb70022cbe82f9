// Decodes any text under any key, and what a valid key encodes. The input is the two bounds of the
// padding, the key up to a line feed, and the text.
#include <cstdint>
#include <cstdlib>

#include "kvshare/text/crypt.h"

namespace {

using namespace kvshare;

void Expect(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  static const TKovraCrypt crypt;
  const int minPad = static_cast<std::int8_t>(data[0]);
  const int maxPad = static_cast<std::int8_t>(data[1]);
  const std::string input(data + 2, data + size);
  const std::size_t keyEnd = std::min(input.find('\n'), input.size());
  const std::string key = input.substr(0, keyEnd);
  const std::string text = input.substr(std::min(keyEnd + 1, input.size()));

  const std::string decoded = crypt.DecodePWDEx(text, key);
  Expect(decoded.size() <= text.size() / 2 || decoded == TKovraCrypt::kFailureMarker);
  crypt.DecodeToInteger(text, key);
  crypt.DecodeToCurrency(text, key);
  crypt.DecodeToDatetime(text, key);

  const std::string encoded = crypt.EncodePWDEx(text, key, minPad, maxPad);
  if (encoded.empty()) return 0;  // no valid key, or no fillers
  Expect(crypt.DecodePWDEx(encoded, key) == text);
  const int limit = static_cast<int>(encoded.size());
  const std::string limited = crypt.EncodePWDExL(text, key, limit, minPad, maxPad);
  Expect(!limited.empty() && limited.size() <= encoded.size());
  Expect(crypt.DecodePWDEx(limited, key) == text);
  return 0;
}
