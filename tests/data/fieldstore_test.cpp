// How fields take values, and which texts they show.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "kvshare/data/client/clientdataset.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/formatsettings.h"
#include "tests/support.h"

namespace kvshare {
namespace {

using enum TFieldType;

class StoredField : public testing::Test {
 protected:
  StoredField() {
    FormatSettings = TFormatSettings::UsEnglish();
    FormatSettings.ShortDateFormat = "dd/mm/yyyy";
    FormatSettings.LongTimeFormat = "hh:nn:ss";
    FormatSettings.ThousandSeparator = ',';
  }
  ~StoredField() override { GetFormatSettings(); }

  // A set of one field, being edited.
  TField& Edited(TFieldType type, int size = 0) {
    set_.Close();
    set_.FieldDefs().Clear();
    set_.FieldDefs().Add("F", type, size);
    set_.CreateDataSet();
    set_.Append();
    return set_.Fields(0);
  }

  TClientDataSet set_;
};

TEST_F(StoredField, TakesTexts) {
  const struct {
    TFieldType type;
    int size;
    std::string text;
    std::string want;  // "null" for Null
  } cases[] = {
      {ftString, 5, "cut behind five", "cut b"},
      {ftString, 5, "", ""},
      {ftFixedChar, 3, "abcd", "abc"},
      {ftBytes, 3, "abcd", "abc"},
      {ftMemo, 0, std::string(100'000, 'x'), std::string(100'000, 'x')},
      {ftMemo, 8, "a memo of any length", "a memo of any length"},
      {ftFmtMemo, 8, "a memo of any length", "a memo of any length"},
      {ftBlob, 8, "a blob of any length", "a blob of any length"},
      {ftGraphic, 8, "a blob of any length", "a blob of any length"},
      {ftInteger, 0, "-2147483648", "-2147483648"},
      {ftInteger, 0, "", "null"},
      {ftLargeint, 0, "9223372036854775807", "9223372036854775807"},
      {ftBCD, 4, "12.3400", "12.34"},
      {ftBCD, 4, "-.5", "-0.5"},
      {ftBCD, 4, " +7 ", "7"},
      {ftBCD, 4, "", "null"},
      {ftFMTBcd, 8, "123456789012345678.12345678", "123456789012345678.12345678"},
      {ftFMTBcd, 8, "12345678901234567890", "12345678901234567890"},
      {ftFMTBcd, 8, "-922337203685477580812345.00000001", "-922337203685477580812345.00000001"},
      {ftFMTBcd, 8, "1.5e3", "1500"},
      {ftFMTBcd, 8, "-25E-4", "-0.0025"},
      {ftFMTBcd, 8, "1e+25", "10000000000000000000000000"},
      {ftCurrency, 0, "1e-20", "0.00000000000000000001"},
      {ftBCD, 2, "2.345", "2.35"},
      {ftBCD, 2, "-2.345", "-2.35"},
      {ftBCD, 2, "2.34499999999999999999", "2.34"},
      {ftBCD, 2, "99.995", "100"},
      {ftBCD, 2, "-0.004", "0"},
      {ftFMTBcd, 3, "12345678901234567890.12345", "12345678901234567890.123"},
      {ftBCD, 0, "2.34567", "2.34567"},
      {ftFloat, 0, "1.5e3", "1500"},
      {ftBoolean, 0, "true", "True"},
      {ftDate, 0, "15/03/2024", "15/03/2024"},
      {ftDate, 0, "", "null"},
      {ftTime, 0, "14:30", "14:30:00"},
      {ftDateTime, 0, "15/03/2024 14:30", "15/03/2024 14:30:00"},
      {ftTimeStamp, 0, "15/03/2024", "15/03/2024"},
  };
  for (const auto& c : cases) {
    TField& field = Edited(c.type, c.size);
    field.SetAsString(c.text);
    EXPECT_EQ(field.IsNull() ? "null" : field.AsString(), c.want) << c.text.substr(0, 40);
    set_.Post();
    EXPECT_EQ(field.IsNull() ? "null" : field.AsString(), c.want) << "once it is posted";
  }
}

TEST_F(StoredField, RefusesWhatIsNoValueAndKeepsTheOld) {
  const struct {
    TFieldType type;
    const char *good, *bad, *message;
  } cases[] = {
      {ftInteger, "5", "many", "'many' is not a valid integer value for field 'F'"},
      {ftInteger, "5", "2147483648",
       "2147483648 is not a valid value for field 'F'. "
       "The allowed range is -2147483648 to 2147483647"},
      {ftSmallint, "5", "32768",
       "32768 is not a valid value for field 'F'. The allowed range is -32768 to 32767"},
      {ftWord, "5", "-1", "-1 is not a valid value for field 'F'. The allowed range is 0 to 65535"},
      {ftBCD, "5", "1.2.3", "'1.2.3' is not a valid floating point value for field 'F'"},
      {ftBCD, "5", "1,000", "'1,000' is not a valid floating point value for field 'F'"},
      {ftBCD, "5", "1e", "'1e' is not a valid floating point value for field 'F'"},
      {ftBCD, "5", "1e999999999",
       "'1e999999999' is not a valid floating point value for field 'F'"},
      {ftBCD, "5", "+-1", "'+-1' is not a valid floating point value for field 'F'"},
      {ftFloat, "5", "x", "'x' is not a valid floating point value for field 'F'"},
      {ftBoolean, "True", "yes", "'yes' is not a valid boolean value for field 'F'"},
      {ftDate, "15/03/2024", "31/02/2024", "'31/02/2024' is not a valid date"},
      {ftTime, "10:00:00", "25:00", "'25:00' is not a valid time"},
      {ftDateTime, "15/03/2024", "noon", "'noon' is not a valid date and time"},
      {ftTimeStamp, "15/03/2024", "noon", "Could not parse SQL TimeStamp string"},
  };
  for (const auto& c : cases) {
    TField& field = Edited(c.type, 4);
    field.SetAsString(c.good);
    EXPECT_EQ(MessageOf<Exception>([&] { field.SetAsString(c.bad); }), c.message);
    EXPECT_EQ(field.AsString(), c.good);
  }
}

TEST_F(StoredField, TakesOtherTypes) {
  const struct {
    TFieldType type;
    std::function<void(TField&)> store;
    const char* want;  // a text with a blank in front: the error's
  } cases[] = {
      {ftBCD, [](TField& f) { f.SetAsCurrency(0.1_baht); }, "0.1"},
      {ftBCD, [](TField& f) { f.SetAsFloat(0.1); }, "0.1"},
      {ftBCD, [](TField& f) { f.SetValue(1.25_baht); }, "1.25"},
      {ftBCD, [](TField& f) { f.SetValue("1.50"); }, "1.5"},
      {ftBCD, [](TField& f) { f.SetAsFloat(0.1 + 0.2); }, "0.3"},
      {ftFMTBcd, [](TField& f) { f.SetAsFloat(0.1 + 0.2); }, "0.3"},
      {ftCurrency, [](TField& f) { f.SetAsFloat(-(0.1 + 0.2)); }, "-0.3"},
      {ftCurrency, [](TField& f) { f.SetValue(0.1 + 0.2); }, "0.3"},
      {ftFMTBcd, [](TField& f) { f.SetAsFloat(1.0 / 3); }, "0.333333333333333"},
      {ftFMTBcd, [](TField& f) { f.SetAsFloat(1e22); }, "10000000000000000000000"},
      {ftFMTBcd, [](TField& f) { f.SetAsFloat(1.25e-20); }, "0.0000000000000000000125"},
      {ftFMTBcd, [](TField& f) { f.SetAsFloat(0); }, "0"},
      {ftFMTBcd, [](TField& f) { f.SetValue(INT64_MAX); }, "9223372036854775807"},
      {ftFMTBcd, [](TField& f) { f.SetValue("12345678901234567890.5"); }, "12345678901234567890.5"},
      {ftInteger, [](TField& f) { f.SetAsCurrency(2.5_baht); }, "2"},
      {ftInteger, [](TField& f) { f.SetAsFloat(3.5); }, "4"},
      {ftInteger, [](TField& f) { f.SetValue("17"); }, "17"},
      {ftString, [](TField& f) { f.SetAsCurrency(2.5_baht); }, "2.5"},
      {ftString, [](TField& f) { f.SetAsBoolean(true); }, "True"},
      {ftString, [](TField& f) { f.SetAsDateTime(TDateTime(45366.5)); }, "15/03/2024 12:00:00"},
      {ftTime, [](TField& f) { f.SetAsDateTime(TDateTime(45366.5)); }, "12:00:00"},
      {ftDate, [](TField& f) { f.SetAsSQLTimeStamp(TDateTime(45366.5)); }, "15/03/2024"},
      {ftTimeStamp, [](TField& f) { f.SetAsSQLTimeStamp(TDateTime(0.5)); }, "30/12/1899 12:00:00"},
      {ftInteger, [](TField& f) { f.SetValue("x"); }, " Invalid value for field 'F'"},
      {ftInteger, [](TField& f) { f.SetValue(1e30); }, " Invalid value for field 'F'"},
      {ftInteger, [](TField& f) { f.SetValue(std::nan("")); }, " Invalid value for field 'F'"},
      {ftBCD, [](TField& f) { f.SetValue("abc"); }, " Invalid value for field 'F'"},
      {ftBCD, [](TField& f) { f.SetValue(""); }, " Invalid value for field 'F'"},
      {ftBCD, [](TField& f) { f.SetValue(HUGE_VAL); }, " Invalid value for field 'F'"},
      {ftFloat, [](TField& f) { f.SetValue("x"); }, " Invalid value for field 'F'"},
      {ftDate, [](TField& f) { f.SetValue("x"); }, " Invalid value for field 'F'"},
      {ftInteger, [](TField& f) { f.SetAsFloat(1e30); },
       " 1E30 is not a valid value for field 'F'. The allowed range is -2147483648 to 2147483647"},
      {ftInteger, [](TField& f) { f.SetAsFloat(std::nan("")); },
       " NAN is not a valid value for field 'F'. The allowed range is -2147483648 to 2147483647"},
      {ftFloat, [](TField& f) { f.SetAsFloat(std::nan("")); },
       " 'NAN' is not a valid floating point value for field 'F'"},
      {ftFloat, [](TField& f) { f.SetAsFloat(-HUGE_VAL); },
       " '-INF' is not a valid floating point value for field 'F'"},
      {ftBoolean, [](TField& f) { f.SetAsInteger(1); }, " Cannot access field 'F' as type Integer"},
      {ftInteger, [](TField& f) { f.SetAsDateTime(TDateTime(1)); },
       " Cannot access field 'F' as type DateTime"},
      {ftDate, [](TField& f) { f.SetAsFloat(1); }, " Cannot access field 'F' as type Float"},
  };
  for (const auto& c : cases) {
    TField& field = Edited(c.type, 30);
    const std::string want = c.want;
    if (want.front() == ' ') {
      EXPECT_EQ(" " + MessageOf<EDatabaseError>([&] { c.store(field); }), want);
      EXPECT_TRUE(field.IsNull());
    } else {
      c.store(field);
      EXPECT_EQ(field.AsString(), want);
    }
  }
}

TEST_F(StoredField, ALeastAndAMostValueBindEverySetter) {
  for (const TFieldType type : {ftFloat, ftCurrency, ftBCD, ftFMTBcd}) {
    TField& field = Edited(type, 2);
    field.MinValue = -1;
    field.MaxValue = 1.1;
    const std::string message =
        "1.5 is not a valid value for field 'F'. The allowed range is -1 to 1.1";
    EXPECT_EQ(MessageOf<EDatabaseError>([&] { field.SetAsFloat(1.5); }), message);
    EXPECT_EQ(MessageOf<EDatabaseError>([&] { field.SetAsString("1.5"); }), message);
    EXPECT_EQ(MessageOf<EDatabaseError>([&] { field.SetAsCurrency(1.5_baht); }), message);
    EXPECT_EQ(MessageOf<EDatabaseError>([&] { field.SetValue(1.5); }), message);
    EXPECT_EQ(MessageOf<EDatabaseError>([&] { field.SetValue("1.5"); }), message);
    EXPECT_THROW(field.SetAsInteger(-2), EDatabaseError);
    EXPECT_TRUE(field.IsNull());
    field.SetAsString("1.1");
    field.SetAsInteger(-1);
    EXPECT_EQ(field.AsString(), "-1");
  }
}

// A range is asked about what would be stored; bounds do not widen the range of the type.
TEST_F(StoredField, RangesAreOfTheValueThatIsStored) {
  TField& amount = Edited(ftBCD, 2);
  amount.MaxValue = 10;
  amount.SetAsString("10.004");
  EXPECT_EQ(amount.AsString(), "10");
  EXPECT_THROW(amount.SetAsString("10.005"), EDatabaseError);
  TField& exact = Edited(ftFMTBcd);
  exact.MaxValue = 10;
  EXPECT_THROW(exact.SetAsString("10.00000000000000000001"), EDatabaseError)
      << "as a real it is 10";
  TField& small = Edited(ftSmallint);
  small.MinValue = -5;
  small.MaxValue = 100'000;
  EXPECT_EQ(MessageOf<EDatabaseError>([&] { small.SetAsInteger(40'000); }),
            "40000 is not a valid value for field 'F'. The allowed range is -5 to 32767");
}

// What is stored can be read again: a moment of another year could not.
TEST_F(StoredField, TakesMomentsOfTheYears1To9999) {
  const double first = EncodeDate(1, 1, 1).Days();
  const double last = EncodeDate(9999, 12, 31).Days();
  for (const TFieldType type : {ftDate, ftDateTime, ftTimeStamp}) {
    TField& field = Edited(type);
    for (const double day : {first, first - 0.5, last, last + 0.5}) {  // the fraction is the time
      field.SetAsDateTime(TDateTime(day));
      EXPECT_EQ(std::trunc(field.AsDateTime().Days()), std::trunc(day));
    }
    field.SetAsDateTime(TDateTime(first));
    for (const double day :
         {first - 1, last + 1, last + 0.999'999'999, 1e10, -1e10, 1e300, std::nan(""), HUGE_VAL}) {
      const TDateTime moment(day);
      const std::function<void()> setters[] = {[&] { field.SetAsDateTime(moment); },
                                               [&] { field.SetAsSQLTimeStamp(moment); },
                                               [&] { field.SetValue(moment); }};
      for (const auto& store : setters) {
        EXPECT_EQ(MessageOf<EDatabaseError>(store), "Invalid value for field 'F'") << day;
      }
    }
    EXPECT_EQ(field.AsDateTime(), TDateTime(first));
  }
  TField& time = Edited(ftTime);
  time.SetAsDateTime(TDateTime(last + 1.75));
  EXPECT_EQ(time.AsString(), "18:00:00") << "a time has no year";
  EXPECT_THROW(time.SetAsDateTime(TDateTime(std::nan(""))), EDatabaseError);
}

TEST_F(StoredField, SizesAreChecked) {
  const struct {
    TFieldDef def;
    bool valid;
  } cases[] = {
      {{"F", ftString, 1, 0, false}, true},         {{"F", ftString, 8192, 0, false}, true},
      {{"F", ftString, 0, 0, false}, false},        {{"F", ftString, 8193, 0, false}, false},
      {{"F", ftString, -1, 0, false}, false},       {{"F", ftFixedChar, 0, 0, false}, false},
      {{"F", ftWideString, 9000, 0, false}, false}, {{"F", ftBytes, 0, 0, false}, false},
      {{"F", ftVarBytes, 8193, 0, false}, false},   {{"F", ftBCD, 0, 0, false}, true},
      {{"F", ftBCD, 4, 19, false}, true},           {{"F", ftBCD, -1, 0, false}, false},
      {{"F", ftBCD, 5, 4, false}, false},           {{"F", ftFMTBcd, 65, 0, false}, false},
      {{"F", ftMemo, 0, 0, false}, true},           {{"F", ftBlob, 100'000, 0, false}, true},
      {{"F", ftGuid, 0, 0, false}, true},
  };
  for (const auto& c : cases) {
    TClientDataSet set(nullptr, "Set");
    set.FieldDefs().Add(c.def);
    const std::string wanted = c.valid ? "no error" : "Set: Invalid field size";
    EXPECT_EQ(MessageOf<EDatabaseError>([&] { set.CreateDataSet(); }), wanted)
        << static_cast<int>(c.def.DataType) << ' ' << c.def.Size;
    EXPECT_EQ(set.Active(), c.valid);
  }
  EXPECT_EQ(MessageOf<EDatabaseError>([&] { set_.AddCalculated("C", ftString, 0); }),
            "Invalid field size");
  EXPECT_EQ(MessageOf<EDatabaseError>([&] { set_.AddLookup("L", ftString, 0, {}); }),
            "Invalid field size");
}

TEST_F(StoredField, ChecksStandInTheirOrder) {
  TField& field = Edited(ftInteger);
  std::string told;
  field.OnValidate = [&](TField& f) {
    told += "validate " + f.AsString() + ";";
    if (f.AsInteger() == 13) throw EConvertError("not that one");
  };
  field.OnChange = [&](TField& f) { told += "change " + f.AsString() + ";"; };
  field.SetAsInteger(1);
  EXPECT_EQ(MessageOf<EConvertError>([&] { field.SetAsInteger(13); }), "not that one");
  EXPECT_EQ(field.AsInteger(), 1);
  EXPECT_EQ(told, "validate 1;change 1;validate 13;");

  told.clear();
  field.ReadOnly = true;
  EXPECT_EQ(MessageOf<EDatabaseError>([&] { field.SetAsInteger(2); }),
            "Field 'F' cannot be modified");
  set_.Cancel();
  set_.Append();
  set_.Post();
  EXPECT_EQ(MessageOf<EDatabaseError>([&] { field.Clear(); }),
            "Dataset not in edit or insert mode");
  EXPECT_EQ(told, "") << "nobody is asked about what may not be stored";
}

TEST_F(StoredField, AHandlerThatStoresReadsItsOwnValueAndLosesToTheOuterOne) {
  TField& field = Edited(ftInteger);
  std::string told;
  field.OnValidate = [&](TField& f) {
    if (f.IsNull()) f.SetAsInteger(0);
    told += f.AsString() + ";";
  };
  field.SetAsInteger(5);
  field.Clear();
  EXPECT_EQ(told, "5;0;0;");
  EXPECT_TRUE(field.IsNull());
  field.OnValidate = [](TField& f) {
    if (!f.IsNull()) return;
    f.SetAsInteger(0);
    throw EConvertError("no zero");
  };
  EXPECT_EQ(MessageOf<EConvertError>([&] { field.Clear(); }), "no zero");
  EXPECT_EQ(field.AsString(), "0") << "what the handler stored stays";
}

TEST_F(StoredField, ShowsAndEdits) {
  const struct {
    TFieldType type;
    const char *stored, *display, *edit, *shown, *edited;
  } cases[] = {
      {ftBCD, "1234.5", "#,##0.00", "0.00", "1,234.50", "1234.50"},
      {ftBCD, "1234.5", "#,##0.00", "", "1,234.50", "1,234.50"},
      {ftBCD, "1234.5", "", "", "1234.5", "1234.5"},
      {ftBCD, "", "0.00", "0.00", "", ""},
      {ftBCD, "-1234.5", "#,##0.00;(#,##0.00);-", "", "(1,234.50)", "(1,234.50)"},
      {ftBCD, "0.123456", "0.000000", "", "0.123456", "0.123456"},
      {ftBCD, "2.34495", "0.00", "0.0000", "2.34", "2.3450"},
      {ftFMTBcd, "123456789012345678.99", "#,##0.0", "0", "123,456,789,012,345,679.0",
       "123456789012345679"},
      {ftLargeint, "9007199254740993", "#,##0", "", "9,007,199,254,740,993",
       "9,007,199,254,740,993"},
      {ftLargeint, "-9223372036854775808", "0;(0)", "", "(9223372036854775808)",
       "(9223372036854775808)"},
      {ftInteger, "5", "00;1;_", "", "05", "05"},
      {ftInteger, "-3", "00;1;_", "", "1", "1"},
      {ftInteger, "0", "00;1;_", "", "_", "_"},
      {ftFloat, "2.5", "0.00", "", "2.50", "2.50"},
      {ftDate, "15/03/2024", "yyyy", "", "2024", "15/03/2024"},
      {ftMemo, "long", "", "", "(MEMO)", "long"},
      {ftString, "text", "0.00", "", "text", "text"},
  };
  for (const auto& c : cases) {
    TField& field = Edited(c.type, 10);
    field.SetAsString(c.stored);
    field.DisplayFormat = c.display;
    field.EditFormat = c.edit;
    EXPECT_EQ(field.DisplayText(), c.shown) << c.display;
    EXPECT_EQ(field.Text(), c.edited) << c.display;
  }
  EXPECT_EQ(Edited(ftMemo).DisplayText(), "(Memo)");
}

TEST_F(StoredField, HandlersDecideAboutTextsAlone) {
  TField& field = Edited(ftInteger);
  field.OnGetText = [](TField& f, std::string& text, bool display) {
    EXPECT_EQ(text, "");
    text = (display ? "shown " : "edited ") + f.AsString();
  };
  field.OnSetText = [](TField& f, std::string_view text) {
    f.SetAsInteger(static_cast<std::int64_t>(text.size()));
  };
  field.SetText("four");
  EXPECT_EQ(field.DisplayText(), "shown 4");
  EXPECT_EQ(field.Text(), "edited 4");
  EXPECT_EQ(field.AsString(), "4") << "the value itself knows no handler";
}

}  // namespace
}  // namespace kvshare
