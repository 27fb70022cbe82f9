#include "kvshare/rtl/variant.h"

#include <gtest/gtest.h>

#include <cmath>

#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/formatsettings.h"
#include "tests/support.h"

namespace kvshare {
namespace {

class VariantTest : public ::testing::Test {
 protected:
  VariantTest() {
    FormatSettings = TFormatSettings::UsEnglish();
    FormatSettings.ShortDateFormat = "dd/mm/yyyy";
    FormatSettings.LongTimeFormat = "hh:nn:ss";
  }
  ~VariantTest() override { FormatSettings = saved_; }

 private:
  TFormatSettings saved_ = FormatSettings;
};

constexpr std::int64_t kBig = (std::int64_t{1} << 53) + 1;  // no double

TEST_F(VariantTest, ReadsEveryKindAsEveryOther) {
  struct Case {
    Variant value;
    const char* text;
    bool boolean;
    std::int64_t integer;
    double real;
    Currency amount;
  };
  const Case cases[] = {
      {Unassigned, "", false, 0, 0, 0_baht},
      {true, "True", true, -1, -1, -1_baht},
      {false, "False", false, 0, 0, 0_baht},
      {-7, "-7", true, -7, -7, -7_baht},
      {2.5, "2.5", true, 2, 2.5, 2.5_baht},
      {-3.5, "-3.5", true, -4, -3.5, -3.5_baht},
      {1234.5_baht, "1234.5", true, 1234, 1234.5, 1234.5_baht},
      {TDateTime(36526.5), "01/01/2000 12:00:00", true, 36526, 36526.5, 36526.5_baht},
      {"12", "12", true, 12, 12, 12_baht},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(VarToStr(c.value), c.text);
    EXPECT_EQ(c.value.AsString(), c.text);
    EXPECT_EQ(c.value.AsBoolean(), c.boolean);
    EXPECT_EQ(c.value.AsInteger(), c.integer);
    EXPECT_EQ(c.value.AsFloat(), c.real);
    EXPECT_EQ(c.value.AsCurrency(), c.amount);
  }
  EXPECT_EQ(Variant("01/01/2000 12:00").AsDateTime().Days(), 36526.5);
  EXPECT_TRUE(Variant("TRUE").AsBoolean());
  EXPECT_EQ(Variant("922337203685477.5807").AsCurrency(), Currency::Max());
  EXPECT_TRUE(VarIsEmpty(Unassigned) && !VarIsNull(Unassigned));
  EXPECT_TRUE(VarIsNull(Null) && !VarIsEmpty(Null));
  EXPECT_EQ(VarToStr(Null), "");
}

TEST_F(VariantTest, RefusesNullBadTextAndRange) {
  struct Case {
    Variant value;
    std::string type;
  };
  const Case cases[] = {{Null, "(Null)"}, {"", "(String)"}, {"12 apples", "(String)"}};
  for (const Case& c : cases) {
    const auto message = [&c](auto read) {
      return MessageOf<EVariantTypeCastError>([&] { (c.value.*read)(); });
    };
    const std::string text = "Could not convert variant of type " + c.type + " into type ";
    EXPECT_EQ(message(&Variant::AsBoolean), text + "(Boolean)");
    EXPECT_EQ(message(&Variant::AsInteger), text + "(Integer)");
    EXPECT_EQ(message(&Variant::AsFloat), text + "(Double)");
    EXPECT_EQ(message(&Variant::AsCurrency), text + "(Currency)");
    EXPECT_EQ(message(&Variant::AsDateTime), text + "(Date)");
  }
  EXPECT_EQ(MessageOf<EVariantTypeCastError>([] { (void)Variant(Null).AsString(); }),
            "Could not convert variant of type (Null) into type (String)");
  EXPECT_THROW(Variant(9223372036854775808.0).AsInteger(), EInvalidOp);
  EXPECT_EQ(Variant(-9223372036854775808.0).AsInteger(), INT64_MIN);
  EXPECT_THROW(Variant(std::nan("")).AsInteger(), EInvalidOp);
  EXPECT_THROW(Variant(922'337'203'685'478).AsCurrency(), EIntOverflow);
  EXPECT_THROW(Variant(std::uint64_t{1} << 63), EIntOverflow);
}

TEST_F(VariantTest, Compares) {
  struct Case {
    Variant a, b;
    int order;  // -1 less, 0 equal, 1 greater
    const char* why;
  };
  const Case cases[] = {
      {Null, Null, 0, "Null is Null"},
      {Null, 1, -1, "Null is less than a number"},
      {Null, "", -1, "than text"},
      {Unassigned, 0, 0, "0 against numbers"},
      {Unassigned, "", 0, "'' against text"},
      {"10", "9", -1, "two texts by bytes"},
      {"10", 9, 1, "text against a number"},
      {"1.5", 1, 1, "a fraction is not lost"},
      {"$1F", 31, 0, ""},
      {"0.1", 0.1_baht, 0, "text and amount"},
      {"922337203685477.5806", Currency::Max(), -1, "amounts that share one real"},
      {"1.23455", 1.2346_baht, -1, "more than four decimals"},
      {0.1, 0.1_baht, 0, "real and amount"},
      {kBig, static_cast<double>(kBig), 1, "integers past 2^53"},
      {INT64_MAX, 9223372036854775808.0, -1, ""},
      {INT64_MIN, -9223372036854775808.0, 0, ""},
      {-1, -1.5, 1, ""},
      {kBig, Currency::Max(), 1, "an integer that no amount holds"},
      {true, -1, 0, "a Boolean as BoolToStr writes it"},
      {"true", true, 0, ""},
      {TDateTime(2), 2.5, -1, "a date is a number"},
      {"01/01/2000", TDateTime(36526), 0, "text against a date"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.why) + ": " + VarToStr(c.a) + " | " + VarToStr(c.b));
    EXPECT_EQ(c.a == c.b, c.order == 0);
    EXPECT_EQ(c.b == c.a, c.order == 0);
    EXPECT_EQ(c.a < c.b, c.order < 0);
    EXPECT_EQ(c.b<c.a, c.order> 0);
  }
  EXPECT_FALSE(Variant(std::nan("")) == Variant(1));
  EXPECT_FALSE(Variant(1) < Variant(std::nan("")));
  EXPECT_THROW((void)(Variant("abc") == Variant(1)), EVariantTypeCastError);
}

}  // namespace
}  // namespace kvshare
