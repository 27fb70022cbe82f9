#include "kvshare/rtl/format.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/formatfloat.h"
#include "kvshare/rtl/variant.h"

namespace kvshare {
namespace {

const TFormatSettings kUs = TFormatSettings::UsEnglish();

struct OneArgument {
  const char* format;
  TVarRec argument;
  std::string want;
};

TEST(Format, Integers) {
  const std::int64_t least = std::numeric_limits<std::int64_t>::min();
  const OneArgument cases[] = {
      {"%d", -7, "-7"},
      {"%5.3d", -7, " -007"},
      {"%-5d|", 42, "42   |"},
      {"%16.16d", 7, "0000000000000007"},
      {"%2.2d", 123, "123"},
      {"%.0d", 0, "0"},
      {"%17.17d", 21, "               21"},
      {"%.17d", std::int64_t{21}, "00000000000000021"},
      {"%.32d", least, "-00000000000009223372036854775808"},
      {"%.33d", least, "-9223372036854775808"},
      {"%u", -1, "4294967295"},
      {"%u", std::int64_t{-1}, "18446744073709551615"},
      {"%x", -1, "FFFFFFFF"},
      {"%X", std::int64_t{-1}, "FFFFFFFFFFFFFFFF"},
      {"%.4x", 255, "00FF"},
      {"%d", std::numeric_limits<std::uint32_t>::max(), "4294967295"},
      {"%x", static_cast<std::int16_t>(-1), "FFFFFFFF"},
      {"%d", std::uint8_t{200}, "200"},
  };
  for (const auto& c : cases) EXPECT_EQ(Format(c.format, {c.argument}, kUs), c.want) << c.format;
}

TEST(Format, RealsAndAmounts) {
  const double infinity = std::numeric_limits<double>::infinity();
  const OneArgument cases[] = {
      // Half away from zero on the decimal digits.
      {"%.2f", 2.345_baht, "2.35"},
      {"%.2f", -2.345_baht, "-2.35"},
      {"%.1f", 0.25_baht, "0.3"},
      {"%f", 0.125, "0.13"},
      {"%.2f", 2.345, "2.35"},
      {"%.2f", 1.005, "1.00"},
      {"%.0f", 0.5, "1"},
      {"%.0f", 2.5, "3"},
      {"%.0f", 0.05, "0"},
      {"%.2f", 9.996, "10.00"},
      {"%.0f", 0.9999_baht, "1"},
      // What rounds to zero has no sign.
      {"%.2f", -0.0001_baht, "0.00"},
      {"%.4f", -0.0001_baht, "-0.0001"},
      {"%.2f", -0.004, "0.00"},
      {"%.1e", -0.0, "0E+000"},
      // Width, decimals, thousands.
      {"%12.2n", -1234.5, "   -1,234.50"},
      {"(%12.2n)", -1234.5_baht, "(   -1,234.50)"},
      {"%12.2n%%", -1234.5, "   -1,234.50%"},
      {"%15.10f", 0.125, "   0.1250000000"},
      {"%20.8f", 0.125_baht, "          0.12500000"},
      {"%n", 999.999_baht, "1,000.00"},
      {"%.0n", 123456_baht, "123,456"},
      {"%.18n", Currency::Max(), "922,337,203,685,477.580700000000000000"},
      {"%.4n", Currency::Min(), "-922,337,203,685,477.5808"},
      {"%.3f", Currency::Min(), "-922337203685477.581"},
      {"%.19f", 1.5, "1.50"},
      // Past 18 digits before the point.
      {"%n", 999999999999999872.0, "999,999,999,999,999,872.00"},
      {"%.2n", -1e18, "-1E18"},
      {"%.0f", 1e300, "1E300"},
      {"%8m", 1.25e20, " 1.25E20"},
      // Exponents.
      {"%.3e", 1234.5, "1.23E+003"},
      {"%e", -1234.5_baht, "-1.23450000000000E+003"},
      {"%.2E", 9.96e-10, "1.0E-009"},
      {"%.0e", 5e-324, "5E-324"},
      {"%.18e", 0.1, "1.00000000000000006E-001"},
      {"%.19e", 0.1, "1.00000000000000E-001"},
      {"%.5e", Currency::Max(), "9.2234E+014"},
      {"%e", 0_baht, "0.00000000000000E+000"},
      // The shortest text.
      {"%g", 0.1, "0.1"},
      {"%g", 1e20, "1E20"},
      {"%g", -0.000015, "-1.5E-5"},
      {"%g", 9.9999999999999991e-05, "0.0001"},
      {"%g", 999999999999999.9, "1E15"},
      {"%.3g", 1234.5, "1.23E3"},
      {"%.4g", 1234.5, "1235"},
      {"%.0g", 7.5, "8"},
      {"%.18g", 0.1, "0.100000000000000006"},
      {"%.2g", Currency::Min(), "-922337203685477.5808"},
      {"%g", 1000_baht, "1000"},
      // No numbers.
      {"%8.2n", -infinity, "    -INF"},
      {"%-5m|", std::nan(""), "NAN  |"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Format(c.format, {c.argument}, kUs), c.want) << c.format;
  }
}

TEST(Format, TextsAndPointers) {
  constexpr std::string_view kName = "สมชาย"_th;
  const std::string name(kName);
  const Variant null = Null, number = 42, text = "abc";
  const void* address = nullptr;
  const OneArgument cases[] = {
      {"%S", "text", "text"},
      {"%7s|", name, "  " + name + "|"},
      {"%-4.2s|", name, name.substr(0, 2) + "  |"},
      {"%.0s", "gone", ""},
      {"%.99999999999999999999s", "all", "all"},
      {"%3s", 'c', "  c"},
      {"%s", std::string_view("a\0b", 3), std::string("a\0b", 3)},
      {"[%s]", null, "[]"},
      {"%s", number, "42"},
      {"%4.2s", text, "  ab"},
      {"%p", address, sizeof(void*) == 8 ? "0000000000000000" : "00000000"},
  };
  for (const auto& c : cases) EXPECT_EQ(Format(c.format, {c.argument}, kUs), c.want) << c.format;
}

struct ManyArguments {
  std::string_view format;
  std::vector<TVarRec> arguments;
  std::string_view want;
};

TEST(Format, DirectivesAndTheirArguments) {
  const ManyArguments cases[] = {
      {"", {}, ""},
      {"100%% of %s", {"it"}, "100% of it"},
      {"%12.0n.%2.2d", {2.0, 5}, "           2.05"},
      {"%s", {"more arguments", "than directives"}, "more arguments"},
      {"%1:s %s", {"a", "b", "c"}, "b c"},
      {"%0:s%0:s", {"a"}, "aa"},
      {"%1:d %0:d %d", {1, 2}, "2 1 2"},
      {"%*d|%-*d|", {4, 1, 4, 2}, "   1|2   |"},
      {"%*.*f", {8, 1, 2.25}, "     2.3"},
      {"%*:s", {1, "b"}, "b"},
      {"%1:*d", {"skipped", 3, 5}, "  5"},
      {"%*s", {-1, "no width"}, "no width"},
      {"%.*f", {-1, 1.5}, "1.50"},
      {"%.s|", {"no byte"}, "|"},
      {std::string_view("\0%d\0", 4), {1}, std::string_view("\0001\0", 3)},
      // The text ends inside a directive.
      {"100%", {}, "100"},
      {"100%5", {}, "100"},
      {"%d %0:-12.", {1}, "1 "},
      {"%*", {}, ""},
  };
  for (const auto& c : cases) EXPECT_EQ(Format(c.format, c.arguments, kUs), c.want) << c.format;
}

TEST(Format, WidthHasALimit) {
  EXPECT_EQ(Format("%32767s", {"x"}, kUs).size(), 32767);
  EXPECT_EQ(Format("%9999999999d", {1}, kUs).size(), 32767);
  EXPECT_EQ(Format("%-*m", {std::numeric_limits<std::int32_t>::max(), 1.0}, kUs).size(), 32767);
}

std::string MessageOf(std::string_view format, const std::vector<TVarRec>& arguments) {
  std::string out = "kept";
  try {
    AppendFormat(out, format, arguments, kUs);
  } catch (const EConvertError& e) {
    EXPECT_EQ(out, "kept") << "what was written before the error is gone";
    return e.Message();
  }
  return "no error";
}

TEST(Format, ErrorsNameTheFormat) {
  struct Refused {
    std::string_view format;
    std::vector<TVarRec> arguments;
  };
  const Variant variant = 1;
  // clang-format off
  const Refused incompatible[] = {
      {"%f", {1}},         {"%m", {std::int64_t{1}}},     {"%d", {1.0}},      {"%x", {1_baht}},
      {"%s", {1}},         {"%s", {1.0}},                 {"%d", {variant}},  {"%d", {"1"}},
      {"%d", {true}},      {"%s", {true}},                {"%p", {1}},        {"%z", {1}},
      {"%*d", {1.0, 1}},   {"%*d", {std::int64_t{1}, 1}}, {"%5%", {1}},       {"%5-d", {1, 2}},
      {"%-5:d", {1, 2}},   {"%:d", {1, 2}},               {"%d %.-5f", {1, 2}}};
  const Refused missing[] = {
      {"%d %s", {1}},      {"%z", {}},                    {"%*d", {5}},       {"%1:d", {1}},
      {"%*:d", {-1}},      {"%999999999999:d", {1}}};
  // clang-format on
  for (const auto& c : incompatible) {
    EXPECT_EQ(MessageOf(c.format, c.arguments),
              "Format '" + std::string(c.format) + "' invalid or incompatible with argument");
  }
  for (const auto& c : missing) {
    EXPECT_EQ(MessageOf(c.format, c.arguments),
              "No argument for format '" + std::string(c.format) + "'");
  }
  EXPECT_EQ(MessageOf("0123456789012345678901234567890123 %d", {}),
            "No argument for format '0123456789012345678901234567890'");
}

// What is appended behind "> ", or the error behind what is left of it.
std::string AllOf(std::string_view format) {
  std::string out = "> ";
  try {
    AppendFormatAll(out, format, {"a", "b"});
  } catch (const EConvertError& e) {
    return out + e.Message();
  }
  return out;
}

TEST(Format, AllArgumentsOrAnError) {
  EXPECT_EQ(AllOf("%s %s"), "> a b");
  EXPECT_EQ(AllOf("%1:s %0:s"), "> b a");
  EXPECT_EQ(AllOf("%0:s%0:s%s"), "> aab");
  EXPECT_EQ(AllOf("%0:s %0:s"), "> a a") << "two placeholders";
  for (const std::string format : {"", "%s", "%s %%s", "%s%"}) {
    EXPECT_EQ(AllOf(format), "> Format '" + format + "' invalid or incompatible with argument");
  }
  EXPECT_EQ(AllOf("%s%s%s"), "> No argument for format '%s%s%s'");
}

TEST(Format, CurrencyTextStandsAsTheSettingsSay) {
  constexpr std::string_view kPositive[] = {"$1.5", "1.5$", "$ 1.5", "1.5 $"};
  constexpr std::string_view kNegative[] = {
      "($1.5)", "-$1.5",  "$-1.5",  "$1.5-",  "(1.5$)", "-1.5$",  "1.5-$",   "1.5$-",
      "-1.5 $", "-$ 1.5", "1.5 $-", "$ 1.5-", "$ -1.5", "1.5- $", "($ 1.5)", "(1.5 $)"};
  TFormatSettings settings = kUs;
  settings.CurrencyDecimals = 1;
  for (int i = -1; i <= 16; ++i) {
    settings.CurrencyFormat = settings.NegCurrFormat = i;
    const auto known = static_cast<std::size_t>(i);
    const std::string_view positive = kPositive[known < 4 ? known : 0];
    const std::string_view negative = kNegative[known < 16 ? known : 0];
    EXPECT_EQ(Format("%m", {1.5_baht}, settings), positive) << i;
    EXPECT_EQ(Format("%m", {-1.5}, settings), negative) << i;
    EXPECT_EQ(Format("%8m", {-1.5_baht}, settings),
              std::string(8 - negative.size(), ' ').append(negative));
    EXPECT_EQ(Format("%-8m", {-1.5_baht}, settings),
              std::string(negative).append(8 - negative.size(), ' '));
  }
  EXPECT_EQ(Format("%14m", {-1234.5_baht}, TFormatSettings::Thai()), "    -฿1,234.50"_th);
  EXPECT_EQ(Format("%m", {-0.004_baht}, kUs), "$0.00");
  settings.CurrencyDecimals = 1000;
  EXPECT_EQ(Format("%m", {1_baht}, settings), "$1.000000000000000000");

  settings.DecimalSeparator = ',';
  settings.ThousandSeparator = '\0';
  EXPECT_EQ(Format("%n %g %e", {1234.5, 0.5, 1.5}, settings), "1234,50 0,5 1,50000000000000E+000");
}

// The rule, step by step: the digits of 0.digits * 10^point, rounded half up at a decimal place.
std::string RoundedText(std::string digits, int point, int decimals, bool negative) {
  const int zeros = std::max(1 - point, 0) + 1;  // one before the point, one for a carry
  digits = std::string(static_cast<std::size_t>(zeros), '0') + digits;
  const auto keep = static_cast<std::size_t>(point + zeros + decimals);
  digits.resize(std::max(digits.size(), keep + 1), '0');
  const bool up = digits[keep] >= '5';
  digits.resize(keep);
  for (std::size_t i = keep; up && ++digits[--i] > '9';) digits[i] = '0';
  if (digits[0] == '0') digits.erase(0, 1);
  const bool zero = digits.find_first_not_of('0') == std::string::npos;
  const std::size_t before = digits.size() - static_cast<std::size_t>(decimals);
  const std::string sign = negative && !zero ? "-" : "";
  return sign + digits.substr(0, before) + (decimals > 0 ? "." : "") + digits.substr(before);
}

std::string RoundedText(Currency amount, int decimals) {
  const std::string digits = std::to_string(amount.Magnitude());
  return RoundedText(digits, static_cast<int>(digits.size()) - 4, decimals, amount.Raw() < 0);
}

std::string RoundedText(double value, int decimals) {
  char text[40];
  std::snprintf(text, sizeof text, "%.17e", std::fabs(value));  // exact, ties to even
  std::string digits(text, 19);
  digits.erase(1, 1);
  return RoundedText(digits, std::atoi(text + 20) + 1, decimals, value < 0);
}

TEST(Format, EveryRoadRoundsAsTheRuleSays) {
  std::mt19937_64 random(874);
  for (int i = 0; i < 20'000; ++i) {
    const std::uint64_t bits = random();
    const int decimals = static_cast<int>(bits % 19);
    const auto amount = Currency::FromRaw(static_cast<std::int64_t>(random()) >> (bits >> 8) % 64);
    // Exponents from 2^-70 to 2^58: below 18 digits, and with ties among them.
    const double value = std::ldexp(static_cast<double>(static_cast<std::int32_t>(random())),
                                    static_cast<int>((bits >> 16) % 97) - 70);
    const std::string mask = "0." + std::string(static_cast<std::size_t>(decimals), '0');
    const TVarRec arguments[] = {decimals, amount, decimals, value};
    const std::string wantAmount = RoundedText(amount, decimals);
    const std::string wantReal = RoundedText(value, decimals);
    ASSERT_EQ(Format("%.*f %.*f", arguments, kUs), wantAmount + ' ' + wantReal);
    ASSERT_EQ(FormatFloat(mask, amount, kUs), wantAmount);
    ASSERT_EQ(FormatFloat(mask, value, kUs), wantReal);
  }
}

}  // namespace
}  // namespace kvshare
