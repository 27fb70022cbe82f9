// The values of data packets: what each type reads, refuses and writes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "kvshare/data/client/clientdataset.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "tests/data/packets.h"

namespace kvshare {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;
using enum TFieldType;

TEST(PacketValues, ReadsAndWritesEachType) {
  struct Case {
    std::string_view field;
    std::string_view text;           // in the packet
    std::string_view value;          // as the field gives it
    std::string_view written = "=";  // where it is another
  };
  constexpr Case kCases[] = {
      {"string\" WIDTH=\"4", "a&amp;&lt;&gt;&quot;&apos;", "a&<>\"'"},
      {"string", "  x ", "  x "},
      {"string", "", ""},
      {"string", "&#9;&#x0A;&#013;|", "\t\n\r|", "&#009;&#010;&#013;|"},
      {"string", "&#001;&#031;&#x1f;&#65533x", "", "refused"},
      {"string", "&#001;&#031;&#x1f;", "\x01\x1F\x1F", "&#001;&#031;&#031;"},
      {"string\" SUBTYPE=\"FixedChar", "&#161;&#210;", "\xA1\xD2"},
      {"string.uni\" WIDTH=\"20", "&#129;", "\x81"},
      {"i1", "-128", "-128"},
      {"i2", "-32768", "-32768"},
      {"ui2", "65535", "65535"},
      {"i4", "+7", "7", "7"},
      {"ui4", "4294967295", "4294967295"},
      {"i8", "-9223372036854775808", "-9223372036854775808"},
      {"i4\" SUBTYPE=\"Autoinc", "12", "12"},
      {"r8", "1.5e-7", "1.5E-7", "1.5e-07"},
      {"r8", "0.1", "0.1"},
      {"r8\" SUBTYPE=\"Money", "12.50", "12.5", "12.5"},
      {"r8\" SUBTYPE=\"Money", "1.25E3", "1250", "1250"},
      {"r8\" SUBTYPE=\"Money", "-25e-4", "-0.0025", "-0.0025"},
      {"fixed\" DECIMALS=\"4\" WIDTH=\"19", "-0012.3400", "-12.34", "-12.34"},
      {"fixed", "-0.00", "0", "0"},
      {"fixed", ".5", "0.5", "0.5"},
      {"fixedFMT\" DECIMALS=\"2", "123456789012345678901234.1", "123456789012345678901234.1"},
      {"boolean", "TRUE", "True"},
      {"boolean", "false", "False", "FALSE"},
      {"date", "20040229", "2/29/2004"},
      {"time", "14:30:05000", "2:30:05 PM"},
      {"time", "23:59:59", "11:59:59 PM", "23:59:59000"},
      {"dateTime", "20040315T14:30:05007", "3/15/2004 2:30:05 PM"},
      {"SQLdateTime", "00010101", "1/1/0001", "00010101T00:00:00000"},
      {"bin.hex\" SUBTYPE=\"Text", "a&#013;&#010;b", "a\r\nb"},
      {"bin.hex\" SUBTYPE=\"Binary", "AP+A", std::string_view("\0\xFF\x80", 3)},
      {"bin.hex\" SUBTYPE=\"Graphics", "AP8=", std::string_view("\0\xFF", 2)},
      {"bin.hex\" WIDTH=\"8", "A A==", std::string_view("\0", 1), "AA=="},
      {"bin.hex\" SUBTYPE=\"TypedBinary", "", ""},
      {"i4", "", "-", "-"},
      {"date", "", "-", "-"},
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(std::string(c.field) + ": " + std::string(c.text));
    const std::string field = "<FIELD attrname=\"F\" fieldtype=\"" + std::string(c.field) + "\"/>";
    const auto packet = [&](std::string_view text) {
      return Packet(field, "<PARAMS/>",
                    text == "-" ? "<ROW/>" : "<ROW F=\"" + std::string(text) + "\"/>");
    };
    TClientDataSet set;
    if (c.written == "refused") {
      EXPECT_THAT(Refusal(set, packet(c.text)), StartsWith("Mismatch in datapacket. Line 1: "));
      continue;
    }
    set.SetXMLData(packet(c.text));
    ASSERT_EQ(set.RecordCount(), 1);
    EXPECT_EQ(set.Fields(0).IsNull() ? "-" : set.Fields(0).AsString(), c.value);
    EXPECT_EQ(set.XMLData(), std::string(kHead) + packet(c.written == "=" ? c.text : c.written));
  }
}

TEST(PacketValues, RefusesWhatIsNoValue) {
  struct Case {
    std::string_view fieldtype;
    std::vector<std::string_view> texts;
  };
  const Case kCases[] = {
      {"i1", {"128", "x"}},
      {"ui1", {"-1", "256"}},
      {"i2", {"32768", "1.0", " 1", "1 ", "+-1", "0x1"}},
      {"ui4", {"4294967296"}},
      {"i8", {"9223372036854775808"}},
      {"r8", {"1,5", "1e400", "1.5.", "abc", "nan", "NaN", "inf", "-infinity"}},
      {"r8\" SUBTYPE=\"Money", {"1e401", "1e", "e5", "--1", "."}},
      {"fixed", {"1 000", "-", "nan"}},
      {"boolean", {"1", "T"}},
      {"date", {"20030229", "00000101", "2004-03-15", "2004031", "20040315T", "20041301"}},
      {"time", {"24:00:00000", "14:60:00", "14:30", "14:30:05.000", "1:30:05000"}},
      {"dateTime", {"20040315 14:30:05000", "20040315T", "T14:30:05000", "20040315T25:00:00"}},
      {"bin.hex", {"A", "A-==", "AA==A"}},
  };
  for (const Case& c : kCases) {
    for (const std::string_view text : c.texts) {
      SCOPED_TRACE(std::string(c.fieldtype) + ": " + std::string(text));
      TClientDataSet set;
      EXPECT_THAT(Refusal(set, Packet("<FIELD attrname=\"F\" fieldtype=\"" +
                                          std::string(c.fieldtype) + "\"/>",
                                      "\n", "\n<ROW F=\"" + std::string(text) + "\"/>")),
                  StartsWith("Mismatch in datapacket. Line 3: field 'F': '"));
      EXPECT_FALSE(set.Active());
    }
  }
}

TEST(PacketValues, HoldsALongMemo) {
  const auto size = static_cast<std::size_t>(Asked("KVSHARE_TEST_MEMO_MB", 2)) << 20;
  std::string memo(size, 'x');
  for (std::size_t i = 0; i < size; i += 64) memo[i] = static_cast<char>(i / 64);
  TClientDataSet set;
  set.FieldDefs().Add("MEMO", ftMemo);
  set.FieldDefs().Add("BLOB", ftBlob);
  set.CreateDataSet();
  set.Append();
  set.Fields(0).SetAsString(memo);
  set.Fields(1).SetAsString(memo);
  set.Post();
  const std::string saved = set.XMLData();
  set.SetXMLData(saved);
  EXPECT_TRUE(set.Fields(0).AsString() == memo && set.Fields(1).AsString() == memo);
  EXPECT_TRUE(set.XMLData() == saved);
}

// One field's value in and out of a packet.
class OneValue {
 public:
  explicit OneValue(std::string_view field) : field_(field) {}

  // As it is saved again; `refused` for what is no value.
  std::string Saved(std::string_view text) {
    constexpr std::string_view kBegin = "<ROW F=\"";
    try {
      set_.SetXMLData(Packet("<FIELD attrname=\"F\" fieldtype=\"" + field_ + "\"/>", "",
                             std::string(kBegin).append(text).append("\"/>")));
    } catch (const EDBClient&) {
      return "refused";
    }
    const std::string packet = set_.XMLData();
    const std::size_t begin = packet.find(kBegin) + kBegin.size();
    return packet.substr(begin, packet.find('"', begin) - begin);
  }
  const TField& Field() const { return set_.Fields(0); }

 private:
  std::string field_;
  TClientDataSet set_;
};

TEST(PacketValues, BringsBackEachByteOfATextAndABlob) {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
  for (const TFieldType type : {ftString, ftMemo, ftBlob, ftBytes}) {
    for (std::size_t size = 0; size <= bytes.size(); ++size) {
      TClientDataSet set;
      set.FieldDefs().Add("F", type, IsSized(type) ? 256 : 0);
      set.CreateDataSet();
      set.Append();
      set.Fields(0).SetAsString(bytes.substr(bytes.size() - size));
      set.Post();
      set.SetXMLData(set.XMLData());
      ASSERT_FALSE(set.Fields(0).IsNull());
      ASSERT_EQ(set.Fields(0).AsString(), bytes.substr(bytes.size() - size));
    }
  }
  OneValue blob("bin.hex\" SUBTYPE=\"Binary");
  for (const auto& [text, value] :
       std::initializer_list<std::pair<const char*, const char*>>{{"Zg==", "f"},
                                                                  {"Zm8=", "fo"},
                                                                  {"Zm9v", "foo"},
                                                                  {"Zm9vYg==", "foob"},
                                                                  {"Zm9vYmE=", "fooba"},
                                                                  {"Zm9vYmFy", "foobar"}}) {
    EXPECT_EQ(blob.Saved(text), text);
    EXPECT_EQ(blob.Field().AsString(), value) << "as in RFC 4648";
  }
}

TEST(PacketValues, TakesTheDaysAndTimesThatThereAre) {
  const auto digits = [](int value, std::size_t count) {
    const std::string text = std::to_string(value);
    return std::string(count - std::min(count, text.size()), '0') + text;
  };
  OneValue date("date");
  for (const int year : {1, 1900, 2000, 2003, 2004, 9999}) {
    for (int month = 0; month <= 13; ++month) {
      for (int day = 0; day <= 32; ++day) {
        const std::string text = digits(year, 4) + digits(month, 2) + digits(day, 2);
        TDateTime want;
        const bool sound = TryEncodeDate(year, month, day, want);
        ASSERT_EQ(date.Saved(text), sound ? text : "refused");
        ASSERT_TRUE(!sound || date.Field().AsDateTime() == want);
      }
    }
  }
  OneValue time("time");
  for (const auto& [hour, minute, second, ms] : {std::array{0, 0, 0, 0},
                                                 {23, 59, 59, 999},
                                                 {0, 0, 0, 1},
                                                 {24, 0, 0, 0},
                                                 {0, 60, 0, 0},
                                                 {0, 0, 60, 0},
                                                 {9, 7, 5, 40}}) {
    const std::string text =
        digits(hour, 2) + ":" + digits(minute, 2) + ":" + digits(second, 2) + digits(ms, 3);
    TDateTime want;
    const bool sound = TryEncodeTime(hour, minute, second, ms, want);
    EXPECT_EQ(time.Saved(text), sound ? text : "refused");
    EXPECT_TRUE(!sound || time.Field().AsDateTime() == want);
  }
}

// However an amount is written, it is the same text in memory: keys and searches compare texts.
TEST(PacketValues, ReadsEachSpellingOfANumberAlike) {
  std::mt19937_64 random(874);
  OneValue amount("fixedFMT");
  for (int i = 0; i < 300; ++i) {
    const auto raw = static_cast<std::int64_t>(random() >> (1 + random() % 63));
    const Currency value = Currency::FromRaw(i % 2 == 0 ? raw : -raw);
    const std::string plain = CurrToStr(value);
    const std::string sign = plain.starts_with('-') ? "-" : "";
    const std::string magnitude = plain.substr(sign.size());
    const std::string integer = std::to_string(value.Raw());
    for (const std::string& text :
         {plain, sign + "00" + magnitude, integer + "e-4", integer + "000E-7",
          sign + "." + std::to_string(raw) + "e" +
              std::to_string(static_cast<int>(integer.size() - sign.size()) - 4),
          plain + (plain.find('.') == std::string::npos ? ".000" : "000")}) {
      ASSERT_EQ(amount.Saved(text), plain) << text;
    }
    const double number = std::bit_cast<double>(random());
    if (!std::isfinite(number)) continue;
    TClientDataSet set;
    set.FieldDefs().Add("F", ftFloat);
    set.CreateDataSet();
    set.Append();
    set.Fields(0).SetAsFloat(number);
    set.Post();
    set.SetXMLData(set.XMLData());
    ASSERT_EQ(set.Fields(0).AsFloat(), number);
  }
}

}  // namespace
}  // namespace kvshare
