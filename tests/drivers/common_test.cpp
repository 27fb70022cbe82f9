// What the drivers share: text forms, parameters, placeholders.
#include <gmock/gmock.h>

#include <limits>

#include "drivers/common/forms.h"
#include "drivers/common/parameters.h"
#include "drivers/common/statements.h"
#include "kvshare/data/driver.h"

namespace kvshare::drivers {
namespace {

TEST(Forms, ScaledNumbers) {
  struct Case {
    std::int64_t value;
    int decimals;
    const char* want;
  };
  constexpr Case kCases[] = {
      {0, 0, "0"},
      {0, 2, "0.00"},
      {5, 2, "0.05"},
      {-5, 4, "-0.0005"},
      {123, 2, "1.23"},
      {-123, 3, "-0.123"},
      {10'000, 4, "1.0000"},
      {-7, 0, "-7"},
      {std::numeric_limits<std::int64_t>::max(), 4, "922337203685477.5807"},
      {std::numeric_limits<std::int64_t>::min(), 4, "-922337203685477.5808"},
      {std::numeric_limits<std::int64_t>::min(), 18, "-9.223372036854775808"},
  };
  for (const Case& c : kCases) {
    std::string out = "x";
    AppendScaled(out, c.value, c.decimals);
    EXPECT_EQ(out, std::string("x") + c.want);
  }
}

TEST(Forms, DatesAndTimes) {
  std::string out;
  AppendDate(out, 1, 2, 3);
  out += ' ';
  AppendTime(out, 4, 5, 6, 0);
  out += ' ';
  AppendTime(out, 23, 59, 59, 7);
  EXPECT_EQ(out, "0001-02-03 04:05:06 23:59:59.007");
}

TEST(Forms, Milliseconds) {
  std::string scratch;
  for (const auto& [text, want] : {std::pair{"14:30:05", "14:30:05"},
                                   {"14:30:05.5", "14:30:05.500"},
                                   {"14:30:05.12", "14:30:05.120"},
                                   {"14:30:05.123", "14:30:05.123"},
                                   {"14:30:05.999999", "14:30:05.999"}}) {
    EXPECT_EQ(ToMilliseconds(text, scratch), want);
  }
}

TEST(Forms, Numbers) {
  EXPECT_EQ(ToInteger("-9223372036854775808"), std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(ToFloat("1e-300"), 1e-300);
  EXPECT_EQ(ToFloat(FromFloat(0.1)), 0.1);
  for (const char* bad : {"", "12x", " 1", "9223372036854775808"}) {
    EXPECT_THROW(ToInteger(bad), data::DriverError) << bad;
  }
}

TEST(Forms, Characters) {
  EXPECT_EQ(FirstCharacters("กขค  ", 4), "กขค ");
  EXPECT_EQ(FirstCharacters("a😀ก", 2), "a😀");
  EXPECT_EQ(FirstCharacters("ก", 5), "ก");
  EXPECT_EQ(FirstCharacters("ก", 0), "");
  EXPECT_EQ(TrimmedRight(" a b  "), " a b");
  EXPECT_EQ(TrimmedRight("  "), "");
  EXPECT_NO_THROW(RefuseZeroByte("a"));
  EXPECT_THROW(RefuseZeroByte(std::string_view("a\0b", 3)), data::DriverError);
}

TEST(HostName, HostAndPort) {
  struct Case {
    const char* name;
    const char* host;
    const char* port;
  };
  constexpr Case kCases[] = {
      {"", "", ""},
      {"db", "db", ""},
      {"db:3306", "db", "3306"},
      {"[::1]:5432", "::1", "5432"},
      {"[::1]", "::1", ""},
      {"fe80::1", "fe80::1", ""},
  };
  for (const Case& c : kCases) {
    const ServerAddress address = SplitHostName(c.name);
    EXPECT_EQ(address.host, c.host) << c.name;
    EXPECT_EQ(address.port, c.port) << c.name;
  }
  for (const char* bad : {"db:", "db:x", "db:0", "db:65536", "[::1]5432", "db:33 "}) {
    EXPECT_THROW(SplitHostName(bad), data::DriverError) << bad;
  }
}

TEST(Statements, AreMarkedAsEachClientWants) {
  const data::StatementParts statement{{"a = ", " OR b = ", " OR c = ", ""}, {1, 0, 1}};
  EXPECT_EQ(MarkedByQuestions(statement), "a = ? OR b = ? OR c = ?");
  EXPECT_EQ(MarkedByNumbers(statement), "a = $2 OR b = $1 OR c = $2");
  const std::vector<data::ParameterValue> values = {std::int64_t{1}, "x"};
  const std::vector<data::ParameterValue> byPlace = {"x", std::int64_t{1}, "x"};
  EXPECT_EQ(ValuesByPlace(statement.places, values), byPlace);
  EXPECT_THROW(ValuesByPlace(statement.places, std::span(values).first(1)), data::DriverError);
  EXPECT_EQ(MarkedByNumbers({{"SELECT '?'"}, {}}), "SELECT '?'");
}

}  // namespace
}  // namespace kvshare::drivers
