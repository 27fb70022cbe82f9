#include "kvshare/settings/globals.h"

#include <gtest/gtest.h>

#include <set>

namespace kvshare {
namespace {

TEST(Globals, InitialValues) {
  struct Case {
    const char* name;
    std::int64_t got, want;
  };
  const Case kCases[] = {
      {"BaseLanguage", BaseLanguage, 0},
      {"SQLMonthNameFormat", SQLMonthNameFormat, 0},
      {"QtyDigit", QtyDigit, 0},
      {"UPrcDigit", UPrcDigit, 2},
      {"BahtDigit", BahtDigit, 2},
      {"WeightDigit", WeightDigit, 2},
      {"PercentDigit", PercentDigit, 2},
      {"SkuNmFmt", SkuNmFmt, 4},
      {"SkuEqFmt", SkuEqFmt, 8},
      {"UDscRnd", UDscRnd, 0},
      {"TDscRnd", TDscRnd, 2},
      {"ArprbCtrlXVat", ArprbCtrlXVat, 3},
      {"ArprbCtrlIVat", ArprbCtrlIVat, 4},
      {"BTrace", BTrace, 0},
      {"msgKovraRefresh", msgKovraRefresh, 0},
      {"KovraUserKey", KovraUserKey, 0},
      {"KovraUserLevel", KovraUserLevel, 0},
      {"KovraUserPosn", KovraUserPosn, 0},
      {"KovraCurrentkey", KovraCurrentkey, 0},
      {"KovraGenkeyEnable", KovraGenkeyEnable, 0},
      {"YearBase", YearBase, 0},
      {"UseLastWL", UseLastWL, 0},
  };
  for (const Case& c : kCases) EXPECT_EQ(c.got, c.want) << c.name;
  EXPECT_EQ(KovraMinDate, TDateTime(0));
  EXPECT_EQ(KovraWin32, nullptr);
  EXPECT_EQ(KovraDbDate, nullptr);
  EXPECT_EQ(KovraDbLog, nullptr);
  EXPECT_EQ(KovraDbPost, nullptr);
}

TEST(Globals, EveryTextIsListedOnceAndEmpty) {
  std::set<const std::string*> seen;
  for (const std::string* text : TextGlobals()) {
    EXPECT_EQ(*text, "");
    seen.insert(text);
  }
  EXPECT_EQ(seen.size(), TextGlobals().size());
  EXPECT_EQ(seen.size(), 26U + 25U + 21U) << "company and folders, SQL dialect, masks and patterns";
}

}  // namespace
}  // namespace kvshare
