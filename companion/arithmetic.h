// The calculator's arithmetic: exact, whatever is divided or multiplied.
#pragma once

#include <string>
#include <string_view>

#include "kvshare/rtl/exceptions.h"

namespace kvshare::companion {

// A calculation that has no answer; the message is for the user.
class ECalculation : public Exception {
 public:
  using Exception::Exception;
};

struct Answer {
  std::string text;  // the shortest decimal text: -1234.5
  bool rounded = false;
  int decimals = 0;  // where it was rounded
  bool operator==(const Answer&) const = default;
};

// Computes a typed line of numbers, + - * / ( ) and %. A number has digits, at most one point and,
// before it, commas between thousands or none; blanks may stand between. * and / come before + and
// -, else the line goes from left to right.
//
// % behind a number or a bracket takes its hundredth; where such a term is added or taken away, the
// hundredth of what stands before it, as desk calculators do: 200+7% is 214, 200*7% is 14.
//
// Fractions are kept whole, so that 10/3*3 is 10. The answer is exact where 15 digits hold it;
// another one is rounded once, a tie to the even digit, to four decimals or as few as 15 digits
// leave.
//
// Throws ECalculation: for a line that is no calculation, with the place from 1, for one of more
// than kLongestLine bytes, for a division by zero, for an answer of more than 15 digits before its
// point, and where a fraction on the way has a numerator or a denominator past 10^33.
Answer Calculate(std::string_view line);

inline constexpr std::size_t kLongestLine = 200;

}  // namespace kvshare::companion
