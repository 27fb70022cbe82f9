// FormatFloat with any mask: the text is bounded by the mask, Format agrees, and a whole
// amount prints as the real does.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "kvshare/rtl/format.h"
#include "kvshare/rtl/formatfloat.h"

using namespace kvshare;  // NOLINT: a program of one function

namespace {

void Require(bool held) {
  if (!held) std::abort();
}

// Each byte of the mask prints at most a digit and a comma or an exponent of 11 digits; the digits
// before the point and a sign come on top.
void TextIsBounded(const std::string& mask, const std::string& text) {
  Require(text.size() <= 64 + 14 * mask.size());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::int64_t bits = 0;
  if (size < sizeof bits) return 0;
  std::memcpy(&bits, data, sizeof bits);
  double real = 0;
  std::memcpy(&real, data, sizeof real);
  const std::string mask(reinterpret_cast<const char*>(data) + sizeof bits, size - sizeof bits);

  const Currency amount = Currency::FromRaw(bits);
  TextIsBounded(mask, FormatFloat(mask, real));
  TextIsBounded(mask, FormatFloat(mask, amount));
  Require(FormatFloat("0.00", amount) == Format("%.2f", {amount}));
  Require(FormatFloat("#,##0.0000", amount) == Format("%.4n", {amount}));
  if (std::fabs(real) < 1e17) Require(FormatFloat("0.000", real) == Format("%.3f", {real}));

  // A whole number of fourteen digits is the same number in both.
  const Currency whole = Currency::FromInt(bits % 100'000'000'000'000);
  std::string text = "kept ";
  AppendFormatFloat(text, mask, whole);
  Require(text == "kept " + FormatFloat(mask, static_cast<double>(Trunc(whole))));
  return 0;
}
