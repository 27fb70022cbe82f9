// The library against the shipped conformance file, whose results do not come from it.
#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <string>

#include "apps/kvshare/log/moments.h"
#include "kvshare/dates/date.h"
#include "kvshare/money/money.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/formatfloat.h"

namespace kvshare::app {
namespace {

using nlohmann::json;

// The arguments of one case.
class Arguments {
 public:
  explicit Arguments(const json& values) : values_(values) {}

  std::string Text(const char* name) const {
    return Utf8ToCp874(values_.at(name).get<std::string>());
  }
  Currency Amount(const char* name = "Amount") const { return StrToCurr(Text(name)); }
  int Int(const char* name) const { return values_.at(name); }
  TDateTime Moment() const { return ParseIso(Text("D")); }
  Word Era() const { return values_.at("Offset"); }
  Word Code() const { return values_.at("Code"); }
  TKovraMoneyRound Mode() const { return FindRoundMode(Text("Mode"))->Mode; }

 private:
  const json& values_;
};

json Result(const std::string& text) {
  return Cp874ToUtf8(text);
}
json Result(Currency amount) {
  return Format("%.4f", {amount});
}
json Result(TKovraMoneyRound mode) {
  return RoundModeInfo(mode).Name;
}

json Result(TDateTime moment) {
  std::string text;
  AppendIso(text, moment);
  return text;
}

template <std::string (*Show)(TDateTime)>
json Shown(const Arguments& a) {
  return Result(Show(a.Moment()));
}
template <std::string (*Show)(TDateTime, Word)>
json ShownIn(const Arguments& a) {
  return Result(Show(a.Moment(), a.Era()));
}
template <TDateTime (*Read)(std::string_view)>
json ReadBack(const Arguments& a) {
  return Result(Read(a.Text("S")));
}

json Typed(const Arguments& a) {
  TDateTime date;
  const auto offset = static_cast<Word>(a.Int("YearOffset"));
  return TKovraDate::StrToKovraDate(a.Text("Text"), offset, date) ? Result(date) : json(false);
}
json Forced(const Arguments& a) {
  TDateTime date;
  const bool read = TKovraDate::ForceStrToKovraDateAsOf(a.Text("Text"), a.Int("CurrentYear"), date);
  return read ? Result(date) : json(false);
}

json ShareAndRest(const Arguments& a) {
  Currency share, rest;
  TKovraMoney::ShareValue(a.Amount(), a.Amount("Percent"), share, rest);
  return {Result(share), Result(rest)};
}

using M = TKovraMoney;
using D = TKovraDate;
using A = const Arguments&;
const std::map<std::string, std::function<json(A)>> kOperations = {
    {"Round_Baht", [](A a) { return Result(M::Round_Baht(a.Amount(), a.Mode())); }},
    {"RoundType", [](A a) { return Result(M::RoundType(a.Code())); }},
    {"PrRoundType", [](A a) { return Result(M::PrRoundType(a.Code())); }},
    {"RoundTo", [](A a) { return Result(M::RoundTo(a.Amount(), a.Int("Digits"))); }},
    {"ShareValue", ShareAndRest},
    {"ThaiWord", [](A a) { return Result(M::ThaiWord(a.Text("Digits"))); }},
    {"ThaiNote", [](A a) { return Result(M::ThaiNote(a.Amount())); }},
    {"NumToWords", [](A a) { return Result(M::NumToWords(a.Int("N"))); }},
    {"EngNote", [](A a) { return Result(M::EngNote(a.Amount())); }},
    {"EngCrncy",
     [](A a) {
       return Result(M::EngCrncy(a.Amount(), a.Text("UnitName"), a.Text("SubUnitName")));
     }},
    {"StrZero",
     [](A a) { return Result(M::StrZero(a.Amount(), a.Int("Width"), a.Int("Decimals"))); }},
    {"ReformatQty",
     [](A a) { return Result(M::ReformatQty(a.Amount("Factor"), a.Amount("Qty"))); }},
    {"ShowQty",
     [](A a) { return Result(M::ShowQty(a.Amount("Factor"), a.Amount("Qty"), a.Int("Part"))); }},
    {"ShowSkuQty",
     [](A a) {
       return Result(M::ShowSkuQty(a.Int("Mode"), a.Int("Style"), a.Int("Decimals"),
                                   a.Int("EqStyle"), a.Amount("Qty"), a.Amount("Factor"),
                                   a.Text("Rate")));
     }},
    {"IsInteger", [](A a) { return json(M::IsInteger(a.Text("S"))); }},
    {"IsFloat", [](A a) { return json(M::IsFloat(a.Text("S"))); }},
    {"Format", [](A a) { return Result(Format(a.Text("Pattern"), {a.Amount()})); }},
    {"FormatFloat", [](A a) { return Result(FormatFloat(a.Text("Mask"), a.Amount())); }},
    {"ShowDate", ShownIn<D::ShowDate>},
    {"ShowFullDate", ShownIn<D::ShowFullDate>},
    {"ShowDatetime", ShownIn<D::ShowDatetime>},
    {"ShowMonthYear", ShownIn<D::ShowMonthYear>},
    {"ShowFullMonthYear",
     [](A a) { return Result(D::ShowFullMonthYear(a.Moment(), a.Era(), a.Int("Language"))); }},
    {"yymmdd19", Shown<D::yymmdd19>},
    {"ddmmyy19", Shown<D::ddmmyy19>},
    {"yymmdd25", Shown<D::yymmdd25>},
    {"yyyymmdd19", Shown<D::yyyymmdd19>},
    {"yyyymmdd25", Shown<D::yyyymmdd25>},
    {"ddmmyyyy19", Shown<D::ddmmyyyy19>},
    {"ddmmyyyy25", Shown<D::ddmmyyyy25>},
    {"mmddyyyy19", Shown<D::mmddyyyy19>},
    {"ddmmyyyysl25", Shown<D::ddmmyyyysl25>},
    {"mmddyyyysl19", Shown<D::mmddyyyysl19>},
    {"ShowTime", Shown<D::ShowTime>},
    {"KovraDateTimeToStr", Shown<D::KovraDateTimeToStr>},
    {"KovraTimeStampStr", Shown<D::KovraTimeStampStr>},
    {"ChangeMonth",
     [](A a) {
       return Result(D::ChangeMonth(a.Moment(), static_cast<std::int8_t>(a.Int("Delta"))));
     }},
    {"StrToKovraDate", Typed},
    {"ForceStrToKovraDateAsOf", Forced},
    {"KovraStrToDateTime", ReadBack<D::KovraStrToDateTime>},
    {"KovraStrToDate", ReadBack<D::KovraStrToDate>},
    {"yyyymmddToDate", ReadBack<D::yyyymmddToDate>},
};

// The outcome in the file's own form: {"expect": ...} or {"error": name}.
json Outcome(const std::string& operation, const json& values) {
  try {
    return {{"expect", kOperations.at(operation)(Arguments(values))}};
  } catch (const EIntOverflow&) {
    return {{"error", "EIntOverflow"}};
  } catch (const EConvertError&) {
    return {{"error", "EConvertError"}};
  } catch (const EZeroDivide&) {
    return {{"error", "EZeroDivide"}};
  } catch (const EInvalidOp&) {
    return {{"error", "EInvalidOp"}};
  }
}

TEST(Conformance, EveryCaseOfTheFile) {
  FormatSettings = TFormatSettings::UsEnglish();
  const json file = json::parse(std::ifstream(KVSHARE_CONFORMANCE_FILE));
  ASSERT_EQ(file.at("version"), 1);
  std::size_t count = 0;
  std::set<std::string> modes;
  for (const json& group : file.at("groups")) {
    const std::string operation = group.at("operation");
    ASSERT_TRUE(kOperations.contains(operation)) << operation;
    for (const json& values : group.at("cases")) {
      const char* key = values.contains("error") ? "error" : "expect";
      EXPECT_EQ(Outcome(operation, values), json({{key, values.at(key)}}))
          << operation << ' ' << values;
      if (operation == "Round_Baht") modes.insert(values.at("Mode"));
      ++count;
    }
  }
  EXPECT_GT(count, 1000U);
  EXPECT_EQ(modes.size(), std::size_t{kRoundModes}) << "a new mode goes into generate.py too";
}

}  // namespace
}  // namespace kvshare::app
