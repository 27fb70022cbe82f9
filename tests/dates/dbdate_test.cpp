#include "kvshare/dates/dbdate.h"

#include <gtest/gtest.h>

#include <functional>

#include "kvshare/data/client/clientdataset.h"
#include "kvshare/dates/date.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/filebytes.h"
#include "kvshare/rtl/formatdatetime.h"
#include "kvshare/rtl/strutils.h"
#include "kvshare/settings/globals.h"
#include "tests/support.h"

namespace kvshare {
namespace {

using D = TKovraDbDate;
using enum TFieldType;
using Attach = void (*)(TClientDataSet&, std::string_view);

constexpr std::string_view kBadDate = " วันที่ไม่ถูกต้อง"_th;
constexpr std::string_view kBadTime = " เวลาไม่ถูกต้อง"_th;
constexpr std::string_view kFarYear = "ปีไม่ได้อยู่ในช่วง ปีปัจจุบัน บวก หรือ ลบ หนึ่งร้อยปี"_th;
constexpr std::string_view kMonths = "เดือนที่บันทึกต้องอยู่ระหว่าง 1 ถึง 12"_th;
constexpr std::string_view kDays = "วันที่บันทึกต้องอยู่ระหว่าง 1 ถึง 31"_th;
constexpr std::string_view kMonthsOrNone = "เดือนที่บันทึกต้องอยู่ระหว่าง 0ถึง 12"_th;
constexpr std::string_view kYears = "มูลค่าที่บันทึกต้องอยู่ระหว่าง 0ถึง 100"_th;
constexpr std::string_view kYearMonth = "บันทึกปีเดือนในรูป YY.MM เช่น 5ปี 9 เดือนคือ 5.09"_th;

int ThisYear() {
  return DecodeDate(Date()).Year;
}

// A record with one field of each type that holds a date or a number, all null.
class DbDate : public testing::Test {
 protected:
  DbDate() {
    FormatSettings = TFormatSettings::UsEnglish();
    FormatSettings.ShortDateFormat = "dd/mm/yyyy";
    FormatSettings.LongTimeFormat = "hh:nn:ss";
    YearBase = 543;
    dsplBahtEditMask = "#,##0.00";
    editBahtEditMask = "0.00";
    for (const TFieldType type :
         {ftDate, ftTime, ftDateTime, ftTimeStamp, ftInteger, ftFloat, ftBCD}) {
      set.FieldDefs().Add(NameOf(type), type, type == ftBCD ? 4 : 0);
    }
    set.FieldDefs().Add(NameOf(ftString), ftString, 20);
    set.CreateDataSet();
    set.Append();
  }
  ~DbDate() override {
    GetFormatSettings();
    YearBase = 0;
    dsplBahtEditMask.clear();
    editBahtEditMask.clear();
  }

  static std::string NameOf(TFieldType type) {
    return "F" + std::to_string(static_cast<int>(type));
  }
  TField& Of(TFieldType type) { return set.FieldByName(NameOf(type)); }
  TField& Of(TFieldType type, Attach attach) {
    attach(set, NameOf(type));
    return Of(type);
  }
  // The value after a user has typed, or the refusal.
  static std::string Type(TField& field, std::string_view text) {
    const std::string before = field.AsString();
    try {
      field.SetText(text);
      return field.AsString();
    } catch (const Exception& e) {
      EXPECT_EQ(field.AsString(), before) << "a refusal changes nothing";
      return e.Message();
    }
  }

  TClientDataSet set;
};

// A program that has not put the suite's formats in force reads its dates with the month first.
TEST_F(DbDate, TheTraceNamesFieldsOfAnotherOrder) {
  const TemporaryHome home;
  ExePath = "C:\\Ledger\\";
  const auto traced = [&] {
    std::error_code ignored;
    std::filesystem::remove(home.Drive() / "Ledger/Trace.log", ignored);
    D::SetDateTimeField(set, NameOf(ftDateTime));
    D::SetDateField(set, NameOf(ftDate));
    D::SetTimeField(set, NameOf(ftTime));
    return home.Has("Ledger/Trace.log") ? ReadFileBytes("C:\\Ledger\\Trace.log") : "";
  };
  FormatSettings.ShortDateFormat = "mm/dd/yyyy";
  EXPECT_EQ(traced(), "") << "no trace is asked for";
  BTrace = true;
  const std::string trace = traced();
  for (const TFieldType type : {ftDateTime, ftDate}) {
    EXPECT_NE(
        trace.find(" Dates " + NameOf(type) + ": dates are read as mm/dd/yyyy, not day first"),
        std::string::npos)
        << trace;
  }
  EXPECT_EQ(trace.find(NameOf(ftTime) + ":"), std::string::npos);
  FormatSettings.ShortDateFormat = "d/m/yyyy";
  EXPECT_EQ(traced(), "");
  BTrace = false;
  ExePath.clear();
}

TEST_F(DbDate, ShowsValues) {
  const std::string today = TKovraDate::ShowDate(Date(), 543);
  struct Case {
    Attach attach;
    TFieldType type;
    std::string_view value, text;
    std::string null;
  };
  const Case cases[] = {
      {D::SetDateField, ftDate, "15/03/2024", "15/03/2567", today},
      {D::SetDateNullField, ftDate, "15/03/2024", "15/03/2567", ""},
      {D::SetDateNullField, ftTimeStamp, "15/03/2024 23:59:00", "15/03/2567", ""},
      {D::SetDateNullField, ftString, "15/03/2024", "15/03/2567", ""},
      {D::SetDateTimeField, ftDateTime, "15/03/2024 09:05:59", "15/03/2567 09:05", ""},
      {D::SetDateTimeNullField, ftTimeStamp, "15/03/2024", "15/03/2567 00:00", ""},
      {D::SetTimeField, ftTime, "09:05:59", "09:05", ""},
      {D::SetTimeNullField, ftTimeStamp, "15/03/2024 21:05", "21:05", ""},
      {D::SetTimeNotNullField, ftTime, "09:05", "09:05", "00:00"},
      {D::SetYearField, ftInteger, "2024", "2567", std::to_string(ThisYear() + 543)},
      {D::SetYearField, ftBCD, "-543", "0", std::to_string(ThisYear() + 543)},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    TField& field = Of(c.type, c.attach);
    field.Clear();
    EXPECT_EQ(field.DisplayText(), c.null);
    field.SetAsString(c.value);
    EXPECT_EQ(field.DisplayText(), c.text);
    EXPECT_EQ(field.Text(), c.text);
  }
  TField& years = Of(ftFloat, D::SetYearField);
  years.SetAsFloat(2024.5);
  EXPECT_EQ(MessageOf<EConvertError>([&] { years.Text(); }),
            "'2024.5' is not a valid integer value");
}

// The message of `date`, `time REASON` and `year`; another text is one itself.
std::string Refusal(std::string_view text, std::string_view kind) {
  if (kind == "year") return std::string(kFarYear);
  if (kind == "date") return std::string(text).append(kBadDate);
  if (!kind.starts_with("time ")) return std::string(kind);
  return std::string(text).append(kBadTime).append("\r\n").append(kind.substr(5));
}

TEST_F(DbDate, TakesTypedTexts) {
  const std::string today = DateToStr(Date());
  struct Case {
    Attach attach;
    TFieldType type;
    std::string_view text, value;
  };
  const Case cases[] = {
      {D::SetDateField, ftDate, "15/03/2567", "15/03/2024"},
      {D::SetDateField, ftDate, "15-03-67", "15/03/2024"},
      {D::SetDateField, ftTimeStamp, "29/02/2567", "29/02/2024"},
      {D::SetDateNullField, ftDate, "  /  /    ", today},
      {D::SetDateField, ftDate, "", "date"},
      {D::SetDateField, ftDate, "  /03/2567", "date"},
      {D::SetDateField, ftDate, "29/02/2568", "date"},
      {D::SetDateField, ftDate, "%s/03/2567", "date"},
      {D::SetDateField, ftDate, "15/03/2400", "year"},

      {D::SetDateTimeField, ftDateTime, "15/03/2567 09:05", "15/03/2024 09:05:00"},
      {D::SetDateTimeField, ftTimeStamp, "15/03/2567 00:00", "15/03/2024"},
      {D::SetDateTimeField, ftTime, "15/03/2567 09:05", "09:05:00"},
      {D::SetDateTimeField, ftDateTime, "  /  /       :  ", ""},
      {D::SetDateTimeField, ftDateTime, "15/03/256x 09:05", "date"},
      {D::SetDateTimeField, ftDateTime, "15/03/", "date"},
      {D::SetDateTimeField, ftDateTime, "15/03/2024 09:05", "year"},
      {D::SetDateTimeField, ftDateTime, "31/02/2567 09:05",
       "time '31/02/2024' is not a valid date"},
      {D::SetDateTimeField, ftDateTime, "15/03/2567", "time '' is not a valid integer value"},
      {D::SetDateTimeField, ftDateTime, "15/03/2567 24:00", "time Invalid argument to time encode"},

      {D::SetTimeField, ftTime, "09:05", "09:05:00"},
      {D::SetTimeField, ftTime, "00:00", "00:00:00"},
      {D::SetTimeField, ftTime, " 9: 5", "09:05:00"},
      {D::SetTimeNullField, ftTime, "  :  ", ""},
      {D::SetTimeField, ftDateTime, "00:00", "30/12/1899"},
      {D::SetTimeField, ftTimeStamp, "09:05", "30/12/1899 09:05:00"},
      {D::SetTimeField, ftTime, "24:00", "time '24:00' is not a valid time"},
      {D::SetTimeField, ftString, "00:00", "Cannot access field 'F1' as type SQLTimeStamp"},
      {D::SetTimeField, ftString, "  :  ", ""},

      {D::SetYearField, ftInteger, "2567", "2024"},
      {D::SetYearField, ftString, "2567", "2024"},
      {D::SetYearField, ftInteger, "2024", "year"},
      {D::SetYearField, ftInteger, "", "year"},
      {D::SetYearField, ftInteger, "256x", "'256x' is not a valid integer value"},
  };
  for (const Case& c : cases) {
    TField& field = Of(c.type, c.attach);
    field.Clear();
    EXPECT_EQ(Type(field, c.text), Refusal(c.text, c.value)) << c.text;
  }
  YearBase = 0;
  EXPECT_EQ(Type(Of(ftInteger), ""), std::to_string(ThisYear()));
  EXPECT_EQ(Type(Of(ftDate, D::SetDateField), "15/03/2024"), "15/03/2024");
}

TEST_F(DbDate, YearsAHundredEitherWay) {
  struct Case {
    int distance;
    bool taken;
  };
  for (const Case& c : {Case{-101, false}, Case{-100, true}, Case{100, true}, Case{101, false}}) {
    const std::string year = std::to_string(ThisYear() + c.distance);
    const std::string typed = std::to_string(ThisYear() + c.distance + 543);
    const std::string far(kFarYear);
    EXPECT_EQ(Type(Of(ftDate, D::SetDateField), "31/12/" + typed), c.taken ? "31/12/" + year : far);
    EXPECT_EQ(Type(Of(ftDateTime, D::SetDateTimeField), "01/01/" + typed + " 00:00"),
              c.taken ? "01/01/" + year : far);
    EXPECT_EQ(Type(Of(ftInteger, D::SetYearField), typed), c.taken ? year : far);
  }
}

TEST_F(DbDate, WhatRefusesAMomentIsTold) {
  constexpr std::string_view kText = "15/03/2567 09:05";
  TField& field = Of(ftDateTime, D::SetDateTimeField);
  field.OnValidate = [](TField&) { throw Exception("closed month"); };
  EXPECT_EQ(Type(field, kText), Refusal(kText, "time closed month"));
  set.Cancel();
  EXPECT_EQ(Type(field, kText), Refusal(kText, "time Dataset not in edit or insert mode"));
}

TEST_F(DbDate, TextsHaveTheSeparatorsInForce) {
  FormatSettings.DateSeparator = '-';
  FormatSettings.TimeSeparator = '.';
  TField& field = Of(ftDateTime, D::SetDateTimeField);
  EXPECT_EQ(Type(field, "15-03-2567 09.05"), "15-03-2024 09.05.00");
  EXPECT_EQ(field.Text(), "15-03-2567 09.05");
  EXPECT_EQ(Type(field, "  -  -       .  "), "");
  EXPECT_EQ(Type(Of(ftDate, D::SetDateNullField), "  -  -    "), DateToStr(Date()));
  EXPECT_EQ(Type(Of(ftDateTime, D::SetTimeField), "00.00"), "30-12-1899");
}

// What is shown of a value reads back as that value, on every day of two centuries.
TEST_F(DbDate, EveryDayIsShownAsDescribedAndReadBack) {
  TField& field = Of(ftDateTime, D::SetDateTimeField);
  TField& date = Of(ftDate, D::SetDateField);
  int minute = 0;
  for (TDateTime day = EncodeDate(ThisYear() - 100, 1, 1); day < EncodeDate(ThisYear() + 101, 1, 1);
       day = day + 1) {
    minute = (minute + 7) % (24 * 60);
    const TDateTime moment = JoinDateTime(day, EncodeTime(minute / 60, minute % 60, 0, 0));
    const std::string plain = FormatDateTime("DD/MM/YYYY HH:NN", moment);
    const std::string year = std::to_string(StrToInt(plain.substr(6, 4)) + YearBase);
    field.SetAsDateTime(moment);
    const std::string shown = field.Text();
    ASSERT_EQ(shown, plain.substr(0, 6) + year + plain.substr(10));
    field.Clear();
    field.SetText(shown);
    ASSERT_EQ(DecodeDateTime(field.AsDateTime()).Time, DecodeTime(moment));
    ASSERT_EQ(DecodeDate(field.AsDateTime()), DecodeDate(day));
    date.SetText(shown.substr(0, 10));
    ASSERT_EQ(date.AsDateTime(), day);
    ASSERT_EQ(date.Text(), shown.substr(0, 10));
  }
}

// Whatever stands at a place: moment and refusal are the same as by the described steps.
TEST_F(DbDate, EveryMomentIsReadAsDescribed) {
  TField& field = Of(ftDateTime, D::SetDateTimeField);
  const auto described = [](std::string_view text) {
    const TDateTime date = StrToDate(std::string(Copy(text, 1, 6)) + "2024");
    const int hour = StrToInt(Copy(text, 12, 2));
    return JoinDateTime(date, EncodeTime(hour, StrToInt(Copy(text, 15, 2)), 0, 0));
  };
  for (const std::string_view format : {"dd/mm/yyyy", "mm/dd/yyyy"}) {
    FormatSettings.ShortDateFormat = format;
    for (const std::size_t at : {0U, 1U, 2U, 3U, 4U, 5U, 10U, 11U, 12U, 13U, 14U, 15U, 16U}) {
      for (int byte = 0; byte < 256; ++byte) {
        std::string text = "12/11/2567 10:15 ";
        text[at] = static_cast<char>(byte);
        field.Clear();
        try {
          const TDateTime moment = described(text);
          EXPECT_EQ(Type(field, text), DateTimeToStr(moment));
        } catch (const Exception& e) {
          EXPECT_EQ(Type(field, text), Refusal(text, "time " + e.Message()));
        }
      }
    }
  }
}

TEST_F(DbDate, Checks) {
  struct Case {
    void (*check)(TField&);
    TFieldType type;
    std::string_view value;  // empty: null
    std::string_view message;
  };
  const Case cases[] = {
      {D::KovraMonthValidate, ftInteger, "1", ""},
      {D::KovraMonthValidate, ftInteger, "12", ""},
      {D::KovraMonthValidate, ftInteger, "0", kMonths},
      {D::KovraMonthValidate, ftFloat, "12.25", kMonths},
      {D::KovraMonthValidate, ftInteger, "", kMonths},
      {D::qyValidate_Month, ftInteger, "12", ""},
      {D::qyValidate_Month, ftInteger, "13", kMonths},
      {D::qyValidate_Month, ftFloat, "0.5", ""},
      {D::qyValidate_Month, ftInteger, "", kMonths},
      {D::qyValidate_Day, ftInteger, "31", ""},
      {D::qyValidate_Day, ftInteger, "0", kDays},
      {D::qyValidate_Day, ftBCD, "31.0001", kDays},
      {D::qyValidate_Day, ftInteger, "", kDays},
      {D::qyValidate_0_12, ftInteger, "0", ""},
      {D::qyValidate_0_12, ftInteger, "-1", kMonthsOrNone},
      {D::qyValidate_0_12, ftInteger, "13", kMonthsOrNone},
      {D::qyValidate_0_12, ftInteger, "", ""},
      {D::qyValidate_Year_Month, ftFloat, "3.11", ""},
      {D::qyValidate_Year_Month, ftBCD, "5.09", ""},
      {D::qyValidate_Year_Month, ftFloat, "3.12", kYearMonth},
      {D::qyValidate_Year_Month, ftFloat, "8.12", kYearMonth},  // times 100 it is below 812
      {D::qyValidate_Year_Month, ftBCD, "5.1199", ""},
      {D::qyValidate_Year_Month, ftFloat, "5.11999", ""},  // as an amount it is 5.12
      {D::qyValidate_Year_Month, ftFloat, "1.5E-5", ""},
      {D::qyValidate_Year_Month, ftFloat, "100", ""},
      {D::qyValidate_Year_Month, ftFloat, "100.5", kYears},
      {D::qyValidate_Year_Month, ftFloat, "-0.01", kYears},
      {D::qyValidate_Year_Month, ftFloat, "", ""},
  };
  for (const Case& c : cases) {
    TField& field = Of(c.type);
    field.OnValidate = nullptr;
    field.SetAsString("7");
    field.OnValidate = c.check;
    EXPECT_EQ(Type(field, c.value), c.message.empty() ? c.value : c.message) << c.value;
  }
}

TEST_F(DbDate, NullIsWrittenAsZeroFirst) {
  TField& field = Of(ftInteger);
  D::qyValidate_0_12(field);
  EXPECT_EQ(field.AsString(), "0");
  field.Clear();
  EXPECT_THROW(D::qyValidate_Day(field), Exception);
  EXPECT_EQ(field.AsString(), "0");
}

TEST_F(DbDate, Attaches) {
  struct Case {
    Attach attach;
    TFieldType type;
    std::string_view looks;  // mask|format|format of editing|handlers|check
  };
  const Case cases[] = {
      {D::SetDateField, ftDate, "00/00/0000;1;_|||yes|no"},
      {D::SetDateNullField, ftDate, "99/99/9999;1;_|||yes|no"},
      {D::SetTimeField, ftTime, "00:00;1;_|||yes|no"},
      {D::SetTimeNotNullField, ftTime, "00:00;1;_|||yes|no"},
      {D::SetTimeNullField, ftTime, "99:99;1;_|||yes|no"},
      {D::SetDateTimeField, ftDateTime, "00/00/0000\\ 00:00;1;_|||yes|no"},
      {D::SetDateTimeNullField, ftTimeStamp, "99/99/9999\\ 99:99;1;_|||yes|no"},
      {D::SetYearField, ftInteger, "|0000;1;_|0000;1;_|yes|no"},
      {D::SetYearField, ftString, "|||yes|no"},
      {D::SetYearMonthField, ftFloat, "|#,##0.00|0.00|no|yes"},
      {D::SetDayField, ftBCD, "|00;1;_|00;1;_|no|yes"},
      {D::SetMonthField, ftInteger, "|00;1;_|00;1;_|no|yes"},
      {D::SetMonthField, ftString, "|||no|yes"},
  };
  const auto looks = [](const TField& field) {
    return field.EditMask + "|" + field.DisplayFormat + "|" + field.EditFormat +
           (field.OnGetText && field.OnSetText ? "|yes" : "|no") +
           (field.OnValidate ? "|yes" : "|no");
  };
  for (const Case& c : cases) {
    set.Close();
    set.CreateDataSet();  // the fields anew, nothing attached
    c.attach(set, "f" + NameOf(c.type).substr(1));
    EXPECT_EQ(looks(Of(c.type)), c.looks);
    const std::string error = MessageOf<EDatabaseError>([&] { c.attach(set, "NONE"); });
    EXPECT_EQ(error == "Field 'NONE' not found", c.attach == D::SetYearMonthField) << error;
  }
}

}  // namespace
}  // namespace kvshare
