// Format with any pattern: refuses with its own error or keeps to its limits, and an amount's text
// reads back as the amount.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/format.h"

using namespace kvshare;  // NOLINT: a program of one function

namespace {

constexpr std::size_t kMaxWidth = 32767;

void Require(bool held) {
  if (!held) std::abort();
}

// Every `%` is one directive at most, which prints no more than its width or its argument.
void FormatKeepsItsLimits(std::string_view format, std::span<const TVarRec> args) {
  std::string out = "before";
  try {
    AppendFormat(out, format, args);
  } catch (const EConvertError&) {
    Require(out == "before");
    return;
  }
  std::size_t directives = 0;
  for (const char c : format) directives += c == '%';
  Require(out.starts_with("before"));
  Require(out.size() <= 6 + format.size() + directives * (kMaxWidth + format.size()));
  Require(out == "before" + Format(format, args));
}

// The digits of a plain decimal text as ten-thousandths.
Currency AmountOf(std::string_view text) {
  const bool negative = text.starts_with('-');
  Int128 raw = 0;
  int decimals = -1;
  for (const char c : text.substr(negative ? 1 : 0)) {
    if (c == '.') {
      decimals = 0;
      continue;
    }
    Require(c >= '0' && c <= '9');
    raw = raw * 10 + (c - '0');
    decimals += decimals >= 0;
  }
  Require(decimals <= 4);
  for (int i = decimals < 0 ? 0 : decimals; i < 4; ++i) raw *= 10;
  return Currency::FromWide(negative ? -raw : raw);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::int64_t bits = 0;
  if (size < sizeof bits) return 0;
  std::memcpy(&bits, data, sizeof bits);
  double real = 0;
  std::memcpy(&real, data, sizeof real);
  const std::string format(reinterpret_cast<const char*>(data) + sizeof bits, size - sizeof bits);

  const Currency amount = Currency::FromRaw(bits);
  const auto number = static_cast<std::int32_t>(bits);
  const TVarRec orders[][4] = {{amount, real, number, format},
                               {number, amount, bits, real},
                               {real, format, number % 64, amount},
                               {format, 'c', data, number % 8}};
  for (const auto& args : orders) FormatKeepsItsLimits(format, args);

  Require(AmountOf(CurrToStr(amount)) == amount);
  Require(AmountOf(Format("%.4f", {amount})) == amount);
  Require(Format("%g", {real}) == FloatToStr(real));
  return 0;
}
