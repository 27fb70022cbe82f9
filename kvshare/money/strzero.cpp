// Amounts with zeros in front, for fields of a fixed width.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "kvshare/money/money.h"
#include "kvshare/rtl/digits.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/formatsettings.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare {

namespace {

// "%%%d.%d" and a type: at least `width` characters with precision `width`.
std::string SquarePattern(char type, int width) {
  return Format("%%%d.%d%s", {width, width, type});
}

constexpr int kLongestWidth = 32'767;

// The described way, through patterns; it alone knows what Format makes of an odd width.
std::string StrZeroByPattern(Currency amount, int width, int decimals) {
  const std::int64_t whole = Trunc(amount);
  const int digits = width - decimals - (whole < 0 ? 1 : 0) - (decimals < 1 ? 0 : 1);
  std::string text = Format(SquarePattern('d', digits), {whole});
  if (decimals >= 1) {
    const std::string fraction = Format(SquarePattern('f', decimals), {Abs(Frac(amount))});
    text += Copy(fraction, 2, decimals + 1);
  }
  const std::string_view trimmed = Trim(text);
  const auto size = static_cast<std::size_t>(std::max(width, 0));
  std::string result(size - std::min(size, trimmed.size()), '0');
  return result.append(trimmed.substr(0, size));
}

// The same for the widths of everyday, at once.
constexpr int kMostDigits = 32;       // the longest precision that an integer pattern obeys
constexpr int kSpare = 4;             // four decimals are written where fewer are kept
using Buffer = std::array<char, 64>;  // sign, 32 digits, point, four decimals, the spare

int LeastDigits(Currency amount, int width, int decimals) {
  return width - decimals - (Trunc(amount) < 0 ? 1 : 0) - (decimals > 0 ? 1 : 0);
}

bool IsEveryday(Currency amount, int width, int decimals) {
  return width >= 0 && width <= kMostDigits && decimals >= 0 && decimals <= 4 &&
         LeastDigits(amount, width, decimals) >= 0 && FormatSettings.DecimalSeparator != '\0';
}

// Half up; what would carry into the whole part is dropped: .9999 gives 00.
void PutFraction(char* out, unsigned tenThousandths, int decimals) {
  constexpr unsigned kHalf[] = {0, 500, 50, 5, 0};
  const unsigned rounded = (tenThousandths + kHalf[decimals]) % Currency::kScale;
  digits::PutPair(out, rounded / 100);
  digits::PutPair(out + 2, rounded % 100);
}

std::string_view PutEveryday(Buffer& buffer, Currency amount, int width, int decimals) {
  buffer.fill('0');
  const std::uint64_t magnitude = amount.Magnitude();
  char* const end = buffer.data() + buffer.size() - kSpare;
  char* const point = decimals > 0 ? end - decimals - 1 : end;
  if (decimals > 0) {
    *point = FormatSettings.DecimalSeparator;
    PutFraction(point + 1, static_cast<unsigned>(magnitude % Currency::kScale), decimals);
  }
  char* first = digits::PutBackward(point, magnitude / Currency::kScale);
  first = std::min(first, point - LeastDigits(amount, width, decimals));
  if (Trunc(amount) < 0) *--first = '-';
  return {first, static_cast<std::size_t>(std::min(end - first, std::ptrdiff_t{width}))};
}

}  // namespace

std::string TKovraMoney::StrZero(Currency Amount, int Width, int Decimals) {
  if (IsEveryday(Amount, Width, Decimals)) {
    Buffer buffer;
    return std::string(PutEveryday(buffer, Amount, Width, Decimals));
  }
  return StrZeroByPattern(Amount, std::clamp(Width, -kLongestWidth, kLongestWidth),
                          std::clamp(Decimals, -kLongestWidth, kLongestWidth));
}

void TKovraMoney::AppendStrZero(std::string& Out, Currency Amount, int Width, int Decimals) {
  if (IsEveryday(Amount, Width, Decimals)) {
    Buffer buffer;
    Out += PutEveryday(buffer, Amount, Width, Decimals);
  } else {
    Out += StrZero(Amount, Width, Decimals);
  }
}

}  // namespace kvshare
