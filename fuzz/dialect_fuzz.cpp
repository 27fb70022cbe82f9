// Patterns and texts of any bytes: a builder's fragment holds its texts and no wildcard marker, or
// its error is one of the two. The input is a field and a value, a line each, and a profile's keys.
#include <cstdint>
#include <cstdlib>
#include <fstream>

#include "kvshare/database/sqldialect.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/lines.h"
#include "kvshare/rtl/strutils.h"
#include "kvshare/settings/globals.h"
#include "tests/support.h"

namespace {

using namespace kvshare;

void Require(bool holds) {
  if (!holds) std::abort();
}

template <typename Builder>
void Check(Builder build) {
  std::string text;
  try {
    text = build();
  } catch (const EConvertError& e) {
    Require(e.Message().starts_with("Format '") ||
            e.Message().starts_with("No argument for format '"));
  }
}

void CheckComparisons(std::string_view field, std::string_view value) {
  for (int kind = 0; kind < 3; ++kind) {
    for (const bool matchCase : {false, true}) {
      for (const auto compare : {SQLCompareCmd, SQLNotCmd}) {
        Check([&] {
          std::string text = compare(field, value, matchCase, kind);
          Require(Pos("<WILDCARD>", UpperCase(text)) == 0);
          Require(!value.empty() || text.empty());
          return text;
        });
      }
    }
  }
  const std::string blind = SQLCharFormat(value, false);
  Require(blind == UpperCase(blind) && Trim(blind) == blind);
  Require(std::string_view(value).starts_with(SQLCharFormat(value, true)));
}

void CheckDates() {
  for (const double days : {38051.38, -700000.0, 0.0, 2958465.9}) {
    for (const auto literal : {DateTimeToSQLDate, DateTimeToSQLDateTime}) {
      const std::string text = literal(TDateTime(days));
      Require(text.starts_with(SQLDateDelimiter) && text.ends_with(SQLDateDelimiter));
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const TemporaryFolder folder;
  static const std::string file = folder.File("SqlIntf.ini");
  const std::string input(data, data + size);
  std::string_view rest = input;
  const std::string_view field = rest.empty() ? rest : TakeLine(rest);
  const std::string_view value = rest.empty() ? rest : TakeLine(rest);
  std::ofstream(file, std::ios::binary) << "[DATABASE.X]\n" << rest;
  SQLMonthNameFormat = 0;
  ReadDialectFile(file, "x");

  Require(SQLMonthNameFormat >= 0 && SQLMonthNameFormat <= 4);
  Require(UpperCase(SQLDateFormat) == SQLDateFormat);
  CheckComparisons(field, value);
  Check([&] { return SQLNumEqual(field, value); });
  Check([&] { return SQLNumNotEqual(field, value); });
  Check([&] { return SQLNumNot2DecPt(field); });
  CheckDates();
  return 0;
}
