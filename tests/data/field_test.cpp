#include "kvshare/data/fields/field.h"

#include <functional>
#include <random>
#include <span>
#include <variant>
#include <vector>

#include "kvshare/data/fields/dataset.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/formatsettings.h"
#include "tests/support.h"

namespace kvshare {
namespace {

using Cell = std::variant<std::monostate, std::int64_t, double, std::string>;

// A set of one record with fields of all types.
class OneRecord : public TDataSet {
 public:
  OneRecord() : TDataSet(nullptr, "Set") {}
  ~OneRecord() override { Close(); }

  TField& Show(TFieldType type, Cell cell) {
    Close();
    record_.cell = std::move(cell);
    type_ = type;
    Open();
    return Fields(0);
  }
  int RecordCount() const override { return 1; }

 protected:
  void InternalOpen() override { AddField(record_, {"AMT", type_, 4, 19, false}); }
  void InternalClose() noexcept override {}
  bool InternalFirst() override { return true; }
  bool InternalNext() override { return false; }

 private:
  struct Record : TRecordReader {
    Cell cell;
    bool IsNull(int) const override { return cell.index() == 0; }
    std::int64_t Integer(int) const override { return std::get<std::int64_t>(cell); }
    double Float(int) const override { return std::get<double>(cell); }
    std::string_view Text(int) const override { return std::get<std::string>(cell); }
    void AppendCharacters(std::string& out, int) const override { out += Text(0); }
  };
  Record record_;
  TFieldType type_ = TFieldType::ftUnknown;
};

class Field : public testing::Test {
 protected:
  Field() {
    FormatSettings = TFormatSettings::UsEnglish();
    FormatSettings.ShortDateFormat = "dd/mm/yyyy";
    FormatSettings.LongTimeFormat = "hh:nn:ss";
  }
  ~Field() override { GetFormatSettings(); }
  OneRecord set_;
};

using enum TFieldType;

TEST_F(Field, TypesHaveThePlatformsNumbers) {
  EXPECT_EQ(static_cast<int>(ftBCD), 8);
  EXPECT_EQ(static_cast<int>(ftMemo), 16);
  EXPECT_EQ(static_cast<int>(ftLargeint), 25);
  EXPECT_EQ(static_cast<int>(ftFMTBcd), 37);
}

TEST_F(Field, AsString) {
  struct Case {
    TFieldType type;
    Cell cell;
    std::string want;
  };
  const Case cases[] = {
      {ftString, "กข", "กข"},
      {ftInteger, std::int64_t{-7}, "-7"},
      {ftLargeint, INT64_MIN, "-9223372036854775808"},
      {ftFloat, 0.1, "0.1"},
      {ftBCD, "1234.5000", "1234.5"},
      {ftBCD, "-0.0000", "0"},
      {ftBCD, "100", "100"},
      {ftBCD, "100.00", "100"},
      {ftFMTBcd, "12345678901234567890.123456", "12345678901234567890.123456"},
      {ftBoolean, std::int64_t{1}, "True"},
      {ftDate, "2004-03-15", "15/03/2004"},
      {ftTime, "14:30:05.250", "14:30:05"},
      {ftTimeStamp, "2004-03-15 00:00:00", "15/03/2004"},
      {ftTimeStamp, "2004-03-15 00:00:01", "15/03/2004 00:00:01"},
      {ftTimeStamp, "2004-03-15T14:30:05.1239", "15/03/2004 14:30:05"},
      {ftBlob, std::string("a\0b", 3), std::string("a\0b", 3)},
      {ftInteger, {}, ""},
      {ftTimeStamp, {}, ""},
  };
  for (const Case& c : cases) EXPECT_EQ(set_.Show(c.type, c.cell).AsString(), c.want) << c.want;
  FormatSettings.DecimalSeparator = ',';
  EXPECT_EQ(set_.Show(ftBCD, "1.50").AsString(), "1,5");
}

// Short digits are read in machine words, long ones are not: both sides of every length.
TEST_F(Field, AmountsOfEveryLengthRoundHalfToEven) {
  std::mt19937_64 random(1);
  for (int i = 0; i < 20'000; ++i) {
    const auto raw = static_cast<std::int64_t>(random() >> (1 + i % 63));  // of every length
    const std::string sign = i % 2 == 0 ? "" : "-";
    const std::string digits =
        sign + std::to_string(raw / 10'000) + Format(".%.4d", {raw % 10'000});
    const auto amount = [&](std::string_view more) {
      const std::int64_t read = set_.Show(ftBCD, digits + std::string(more)).AsCurrency().Raw();
      return sign.empty() ? read : -read;
    };
    ASSERT_EQ(amount(""), raw) << digits;
    ASSERT_EQ(amount("4999999999"), raw) << digits;
    if (raw == INT64_MAX) continue;
    ASSERT_EQ(amount("5"), raw + raw % 2) << digits;
    ASSERT_EQ(amount("500000000000000001"), raw + 1) << digits;
  }
}

TEST_F(Field, Amounts) {
  struct Case {
    TFieldType type;
    Cell cell;
    Currency want;
    const char* why;
  };
  const Case cases[] = {
      {ftBCD, "922337203685477.5807", Currency::Max(), "the greatest"},
      {ftBCD, "-922337203685477.5808", Currency::Min(), "the least"},
      {ftFMTBcd, "0.00005", Currency(), "a tie to the even one"},
      {ftFMTBcd, "0.00015", 0.0002_baht, "a tie to the even one"},
      {ftFMTBcd, "-0.000150000000000001", -0.0002_baht, "above the tie"},
      {ftBCD, "12", 12_baht, "no point"},
      {ftBCD, ".5", 0.5_baht, "no digit before it"},
      {ftInteger, std::int64_t{3}, 3_baht, ""},
      {ftFloat, 0.1, 0.1_baht, ""},
      {ftString, " 1.5 ", 1.5_baht, "a text"},
      {ftBCD, {}, Currency(), "Null"},
      {ftFloat, {}, Currency(), "Null"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(set_.Show(c.type, c.cell).AsCurrency(), c.want) << c.why;
  }
  const std::string message =
      MessageOf<EDatabaseError>([&] { set_.Show(ftBCD, "922337203685477.5808").AsCurrency(); });
  EXPECT_EQ(message,
            "Set: 922337203685478 is not a valid value for field 'AMT'. The allowed range is "
            "-922337203685478 to 922337203685478");
  EXPECT_THROW(set_.Show(ftLargeint, INT64_MAX).AsCurrency(), EDatabaseError);
  EXPECT_THROW(set_.Show(ftBCD, "1e5").AsCurrency(), EDatabaseError) << "no form of a decimal";
}

TEST_F(Field, WholeNumbers) {
  struct Case {
    TFieldType type;
    Cell cell;
    std::int32_t want;
  };
  const Case cases[] = {{ftFloat, 2.5, 2},    {ftFloat, -3.5, -4},
                        {ftBCD, "2.5000", 2}, {ftBCD, "3.5000", 4},
                        {ftString, "42", 42}, {ftInteger, {}, 0},
                        {ftBCD, {}, 0},       {ftLargeint, std::int64_t{INT32_MIN}, INT32_MIN}};
  for (const Case& c : cases) EXPECT_EQ(set_.Show(c.type, c.cell).AsInteger(), c.want);
  EXPECT_EQ(MessageOf<EDatabaseError>(
                [&] { set_.Show(ftLargeint, std::int64_t{INT32_MAX} + 1).AsInteger(); }),
            "Set: 2147483648 is not a valid value for field 'AMT'. The allowed range is "
            "-2147483648 to 2147483647");
  EXPECT_THROW(set_.Show(ftFloat, 1e19).AsLargeInt(), EDatabaseError);
  EXPECT_EQ(set_.Show(ftBCD, "9223372036854775807.4").AsLargeInt(), INT64_MAX);
}

TEST_F(Field, TextsAreConvertedStrictly) {
  EXPECT_EQ(MessageOf<EConvertError>([&] { set_.Show(ftString, {}).AsInteger(); }),
            "'' is not a valid integer value")
      << "Null";
  EXPECT_EQ(MessageOf<EConvertError>([&] { set_.Show(ftString, "x").AsFloat(); }),
            "'x' is not a valid floating point value");
  EXPECT_EQ(MessageOf<EConvertError>([&] { set_.Show(ftString, "x").AsDateTime(); }),
            "'x' is not a valid date and time");
  EXPECT_EQ(set_.Show(ftString, "15/03/2004").AsDateTime(), EncodeDate(2004, 3, 15));
  EXPECT_EQ(set_.Show(ftString, "2004-03-15").AsDateTime(), EncodeDate(2004, 3, 15));
  for (const char* yes : {"T", "true", "Yes", "y"}) {
    EXPECT_TRUE(set_.Show(ftString, yes).AsBoolean()) << yes;
  }
  for (const char* no : {"", "1", "N", "false"}) {
    EXPECT_FALSE(set_.Show(ftString, no).AsBoolean()) << no;
  }
}

// What a server has in a column that it does not look into: nothing is read of it, not its
// beginning and no 0.
TEST_F(Field, WhatIsNoValueOfItsTypeIsRefusedNamingTheField) {
  const auto refusal = [](std::string_view text, std::string_view kind) {
    return Format("Set: '%s' is not a valid %s value for field 'AMT'", {text, kind});
  };
  using Read = std::function<void(TField&)>;
  const Read texts[] = {
      [](TField& f) { f.AsString(); },
      [](TField& f) { f.Value(); },
      [](TField& f) { f.DisplayText(); },
      [](TField& f) {
        f.DisplayFormat = "0.00";
        f.DisplayText();
      },
      [](TField& f) { f.OldValue(); },
  };
  const Read numbers[] = {
      [](TField& f) { f.AsFloat(); },
      [](TField& f) { f.AsInteger(); },
      [](TField& f) { f.AsLargeInt(); },
      [](TField& f) { f.AsCurrency(); },
  };
  const Read dates[] = {
      [](TField& f) { f.AsDateTime(); },
      [](TField& f) { f.AsSQLTimeStamp(); },
      [](TField& f) { f.AsFloat(); },
  };
  const auto expect = [&](TFieldType type, std::string_view text, std::string_view kind,
                          std::span<const Read> reads) {
    for (const Read& read : reads) {
      TField& field = set_.Show(type, std::string(text));
      EXPECT_EQ(MessageOf<EDatabaseError>([&] { read(field); }), refusal(text, kind));
      EXPECT_FALSE(field.IsNull());
    }
  };
  for (const char* text : {"1,200.50", "abc", "", "-", ".", "12 ", "1e5", "1.2.3", "NaN"}) {
    for (const TFieldType type : {ftBCD, ftFMTBcd, ftCurrency}) {
      expect(type, text, "floating point", texts);
      expect(type, text, "floating point", numbers);
    }
  }
  const struct {
    TFieldType type;
    const char *text, *kind;
  } cases[] = {{ftDate, "0000-00-00", "date"},
               {ftDate, "15/03/2004", "date"},
               {ftDate, "10000-01-01", "date"},
               {ftTime, "24:00:00", "time"},
               {ftTime, "-00:00:01", "time"},
               {ftTimeStamp, "infinity", "date and time"},
               {ftDateTime, "2004-02-30 10:00:00", "date and time"}};
  for (const auto& c : cases) {
    expect(c.type, c.text, c.kind, texts);
    expect(c.type, c.text, c.kind, dates);
  }
}

TEST_F(Field, TimeStampsAreReadFromEveryDate) {
  const struct {
    TFieldType type;
    Cell cell;
    double want;
  } cases[] = {{ftTimeStamp, "2004-03-15 12:00:00", 38061.5},
               {ftDateTime, "2004-03-15 12:00:00", 38061.5},
               {ftDate, "2004-03-15", 38061},
               {ftTime, "18:00:00", 0.75},
               {ftTimeStamp, {}, 0}};
  for (const auto& c : cases) {
    EXPECT_EQ(set_.Show(c.type, c.cell).AsSQLTimeStamp(), TDateTime(c.want));
  }
  for (const TFieldType type : {ftString, ftFloat, ftBCD, ftInteger}) {
    EXPECT_EQ(MessageOf<EDatabaseError>([&] { set_.Show(type, {}).AsSQLTimeStamp(); }),
              "Set: Cannot access field 'AMT' as type SQLTimeStamp");
  }
}

TEST_F(Field, OtherAccessorsAreRefused) {
  const auto refused = [&](auto action) { return MessageOf<EDatabaseError>(action); };
  EXPECT_EQ(refused([&] { set_.Show(ftInteger, std::int64_t{1}).AsDateTime(); }),
            "Set: Cannot access field 'AMT' as type DateTime");
  EXPECT_EQ(refused([&] { set_.Show(ftDate, "2004-03-15").AsInteger(); }),
            "Set: Cannot access field 'AMT' as type Integer");
  EXPECT_EQ(refused([&] { set_.Show(ftBlob, "x").AsCurrency(); }),
            "Set: Cannot access field 'AMT' as type Float");
  TField& label = set_.Show(ftBCD, "1");
  label.SetDisplayLabel("จำนวน"_th);
  EXPECT_EQ(refused([&] { label.AsBoolean(); }), std::string("Set: Cannot access field '") +
                                                     std::string("จำนวน"_th) + "' as type Boolean");
}

TEST_F(Field, Values) {
  EXPECT_EQ(set_.Show(ftBCD, "1.5000").Value(), Variant(1.5_baht));
  EXPECT_EQ(set_.Show(ftFMTBcd, "1.123456").Value(), Variant("1.123456")) << "nothing is lost";
  EXPECT_EQ(set_.Show(ftDate, "2004-03-15").Value(), Variant(EncodeDate(2004, 3, 15)));
  EXPECT_EQ(set_.Show(ftBoolean, std::int64_t{0}).Value(), Variant(false));
  EXPECT_TRUE(set_.Show(ftDate, {}).Value().IsNull());
}

TEST_F(Field, NamesAreFoundInAnyLetterCase) {
  set_.Show(ftBCD, "1");
  EXPECT_EQ(set_.FindField("amt"), &set_.Fields(0));
  EXPECT_EQ(set_.FindField("x"), nullptr);
  EXPECT_EQ(MessageOf<EDatabaseError>([&] { set_.FieldByName("x"); }), "Set: Field 'x' not found");
  EXPECT_THROW(set_.Fields(1), EListError);
}

}  // namespace
}  // namespace kvshare
