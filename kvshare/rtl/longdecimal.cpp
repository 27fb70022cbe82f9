#include "kvshare/rtl/longdecimal.h"

#include <algorithm>

#include "kvshare/rtl/decimaltext.h"

namespace kvshare::inline rtl {

std::optional<LongDecimal> LongDecimal::Read(std::string_view text) {
  const auto parts = SplitDecimal(text);
  if (!parts) return std::nullopt;
  LongDecimal number;
  number.negative_ = parts->negative;
  number.digits_.reserve(parts->whole.size() + parts->decimals.size());
  number.digits_.append(parts->whole).append(parts->decimals);
  const std::size_t zeros = std::min(number.digits_.find_first_not_of('0'), number.digits_.size());
  number.digits_.erase(0, zeros);
  number.point_ = static_cast<int>(parts->whole.size()) - static_cast<int>(zeros);
  number.Shrink();
  return number;
}

// Without zeros at the end.
void LongDecimal::Shrink() {
  digits_.resize(digits_.find_last_not_of('0') + 1);  // 0 where there is no other digit
  if (!digits_.empty()) return;
  point_ = 1;
  negative_ = false;
}

void LongDecimal::RoundTo(int keep) {
  if (keep >= Count()) return;
  const bool up = keep >= 0 && At(keep) >= '5';
  digits_.resize(static_cast<std::size_t>(std::max(keep, 0)));
  if (up) {
    while (digits_.ends_with('9')) digits_.pop_back();
    if (digits_.empty()) {
      digits_ = "1";
      ++point_;
    } else {
      ++digits_.back();
    }
  }
  Shrink();
}

void LongDecimal::AppendShortest(std::string& out, char decimalSeparator) const {
  if (negative_) out.push_back('-');
  if (point_ <= 0 || IsZero()) out.push_back('0');
  for (int i = 0; i < point_ && !IsZero(); ++i) out.push_back(At(i));
  if (Count() <= point_) return;
  if (decimalSeparator != '\0') out.push_back(decimalSeparator);
  for (int i = std::min(point_, 0); i < 0; ++i) out.push_back('0');
  out.append(digits_, static_cast<std::size_t>(std::max(point_, 0)));
}

}  // namespace kvshare::inline rtl
