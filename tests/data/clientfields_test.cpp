// What client datasets do with the values of their fields: decimals are found and ordered by all
// their digits, calculated values kept with the record.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "kvshare/data/client/clientdataset.h"
#include "kvshare/data/client/provider.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/types.h"
#include "tests/data/sqlite.h"
#include "tests/support.h"

namespace kvshare {
namespace {

using enum TFieldType;

// A set of decimals and whole numbers, found one by one, by the order and by the key.
class Decimals : public testing::Test {
 protected:
  Decimals() {
    set.FieldDefs().Add("AMT", ftFMTBcd, 0);
    set.FieldDefs().Add("N", ftLargeint);
    set.CreateDataSet();
  }
  void Add(std::string_view amount, std::int64_t number) {
    set.Append();
    set.Fields(0).SetAsString(amount);
    set.Fields(1).SetAsInteger(number);
    set.Post();
  }
  // What Locate stands on, the same on each of the three ways; "" where there is none.
  std::string Found(const char* field, const Variant& value) {
    std::string found;
    for (const auto& [order, key] :
         {std::pair{"", ""}, std::pair{field, ""}, std::pair{"", field}}) {
      set.SetIndexFieldNames(order);
      set.SetPrimaryKey(key);
      const std::string now = set.Locate(field, value) ? set.FieldByName(field).AsString() : "";
      if (*order == '\0' && *key == '\0') found = now;
      EXPECT_EQ(now, found) << field << ": " << order << '|' << key;
      const Variant looked = set.Lookup(field, std::vector{value}, field);
      EXPECT_EQ(VarToStr(looked), found);
    }
    return found;
  }

  TClientDataSet set;
};

TEST_F(Decimals, AreFoundByAllTheirDigits) {
  std::int64_t number = 9007199254740993;  // past it a real does not have every number
  for (const char* amount :
       {"922337203685477.5808", "922337203685477.58080001", "922337203685477.5809",
        "12345678901234567890123456789012345678.5", "12345678901234567890123456789012345678.6",
        "-922337203685477.5809", "0.3", "0.30000000000000004", "5", "2.345"}) {
    Add(amount, number++);
  }
  const struct {
    const char* field;
    Variant value;
    const char* found;
    const char* why;
  } cases[] = {
      {"AMT", "922337203685477.5808", "922337203685477.5808", "past every amount"},
      {"AMT", "922337203685477.58080001", "922337203685477.58080001", "the one beside it"},
      {"AMT", "922337203685477.58080000", "922337203685477.5808", "zeros say nothing"},
      {"AMT", "922337203685477.58080002", "", "absent, and the same real"},
      {"AMT", "922337203685477.5810", "", "absent, and the same real"},
      {"AMT", "-922337203685477.5809", "-922337203685477.5809", ""},
      {"AMT", "-922337203685477.5808", "", ""},
      {"AMT", "12345678901234567890123456789012345678.6",
       "12345678901234567890123456789012345678.6", ""},
      {"AMT", "12345678901234567890123456789012345678.7", "", ""},
      {"AMT", 0.1 + 0.2, "0.3", "a real has 15 digits"},
      {"AMT", 0.3_baht, "0.3", ""},
      {"AMT", 5, "5", ""},
      {"AMT", 5.0, "5", ""},
      {"AMT", "50e-1", "5", ""},
      {"AMT", 2.345_baht, "2.345", ""},
      {"AMT", Currency::Max(), "", ""},
      {"N", "9007199254740994", "9007199254740994", ""},
      {"N", 9007199254740994.0, "9007199254740994", ""},
      {"N", "9007199254740994.0", "9007199254740994", ""},
      {"N", "9007199254740994.5", "", "no whole number is that"},
      {"N", 5.5, "", ""},
      {"N", 1e30, "", ""},
      {"N", -0.0001_baht, "", ""},
  };
  for (const auto& c : cases) EXPECT_EQ(Found(c.field, c.value), c.found) << c.why;
  for (const char* field : {"AMT", "N"}) {
    EXPECT_EQ(MessageOf<EDatabaseError>([&] { set.Locate(field, "many"); }),
              "Invalid value for field '" + std::string(field) + "'");
  }
}

TEST_F(Decimals, AreSearchedWithoutTheRoundingAndTheRangeOfStoring) {
  TClientDataSet prices;
  prices.FieldDefs().Add("PRICE", ftBCD, 2);
  prices.FieldDefs().Add("S", ftSmallint);
  prices.CreateDataSet();
  prices.Append();
  prices.Fields(0).SetAsString("2.35");
  prices.Post();
  prices.Fields(0).MaxValue = 1;
  EXPECT_TRUE(prices.Locate("PRICE", "2.350"));
  EXPECT_FALSE(prices.Locate("PRICE", "2.345")) << "it would be stored as 2.35";
  EXPECT_FALSE(prices.Locate("S", 100'000));
}

TEST_F(Decimals, LookupFieldsFindTheDigits) {
  Add("922337203685477.5808", 1);
  Add("922337203685477.5809", 2);
  TClientDataSet lines;
  lines.FieldDefs().Add("KEY", ftFMTBcd, 0);
  lines.AddLookup("NUMBER", ftInteger, 0, {"KEY", &set, "AMT", "N"});
  lines.AddLookup("AMOUNT", ftFMTBcd, 0, {"KEY", &set, "N", "AMT"});
  lines.CreateDataSet();
  const auto shown = [&](const char* key, const char* field) {
    lines.Append();
    lines.FieldByName("KEY").SetAsString(key);
    lines.Post();
    return lines.FieldByName(field).AsString();
  };
  EXPECT_EQ(shown("922337203685477.5809", "NUMBER"), "2");
  EXPECT_EQ(shown("922337203685477.58085", "NUMBER"), "");
  EXPECT_EQ(shown("2", "AMOUNT"), "922337203685477.5809");
  EXPECT_EQ(shown("1.5", "AMOUNT"), "") << "neither 1 nor 2";
}

// Against whole numbers of 128 bits: of every length and sign, and close to each other.
TEST_F(Decimals, AreInTheOrderOfTheNumbers) {
  constexpr std::size_t kPlaces = 9;
  const auto digits = [](Int128 raw) {
    std::string text = raw < 0 ? "-" : "";
    std::string all;
    for (Int128 rest = raw < 0 ? -raw : raw; rest != 0; rest /= 10) {
      all.insert(all.begin(), static_cast<char>('0' + static_cast<int>(rest % 10)));
    }
    if (all.size() <= kPlaces) all.insert(0, kPlaces + 1 - all.size(), '0');
    return text + all.substr(0, all.size() - kPlaces) + "." + all.substr(all.size() - kPlaces);
  };
  std::mt19937_64 random(14);
  std::set<Int128> numbers;
  while (numbers.size() < 400) {
    const auto length = [&random] { return 4 + random() % 60; };  // 60 bits at most
    const Int128 wide = Int128{random() >> length()} * Int128{random() >> length()};
    const Int128 raw = random() % 2 == 0 ? wide : -wide;
    for (const Int128 near : {raw, raw + 1, raw * 10}) numbers.insert(near);
  }
  std::vector<Int128> shuffled(numbers.begin(), numbers.end());
  std::ranges::shuffle(shuffled, random);
  for (const Int128 raw : shuffled) Add(digits(raw), 0);
  set.SetIndexFieldNames("AMT");
  set.First();
  for (const Int128 raw : numbers) {
    std::string want = digits(raw);
    want.resize(want.find_last_not_of('0') + 1);
    if (want.ends_with('.')) want.pop_back();
    ASSERT_EQ(set.Fields(0).AsString(), want);
    ASSERT_TRUE(set.Locate("AMT", digits(raw)));
    ASSERT_EQ(set.Fields(0).AsString(), want);
    set.Next();
  }
  EXPECT_TRUE(set.Eof());
}

TEST(InternallyCalculatedFields, AreKeptWithTheRecord) {
  TClientDataSet lines(nullptr, "Lines");
  const auto define = [](TClientDataSet& made) {
    made.FieldDefs().Add("PRICE", ftBCD, 2);
    made.FieldDefs().Add("QTY", ftInteger);
    made.FieldDefs().Add({"TOTAL", ftBCD, 2, 0, false, TFieldKind::fkInternalCalc});
  };
  const auto total = [](TDataSet& sender) {
    sender.FieldByName("TOTAL").SetAsCurrency(sender.FieldByName("PRICE").AsCurrency() *
                                              sender.FieldByName("QTY").AsCurrency());
  };
  define(lines);
  lines.OnCalcFields = total;
  lines.CreateDataSet();
  for (const char* price : {"2.50", "0.10"}) {
    lines.Append();
    lines.FieldByName("PRICE").SetAsString(price);
    lines.FieldByName("QTY").SetAsInteger(3);
    lines.Post();
  }
  EXPECT_EQ(lines.FieldByName("TOTAL").AsString(), "0.3");
  lines.SetIndexFieldNames("TOTAL");
  EXPECT_TRUE(lines.Locate("TOTAL", 7.5_baht)) << "it is a field of the record";
  lines.MergeChangeLog();
  lines.Edit();
  EXPECT_EQ(MessageOf<EDatabaseError>([&] { lines.FieldByName("TOTAL").SetAsInteger(1); }),
            "Lines: Dataset not in edit or insert mode");
  lines.FieldByName("QTY").SetAsInteger(4);
  lines.Post();
  EXPECT_EQ(lines.FieldByName("TOTAL").AsString(), "10");
  EXPECT_EQ(lines.FieldByName("TOTAL").OldValue(), 7.5_baht);

  lines.OnCalcFields = [](TDataSet&) { throw EDatabaseError("no rate today"); };
  lines.Edit();
  lines.FieldByName("QTY").SetAsInteger(5);
  EXPECT_EQ(MessageOf<EDatabaseError>([&] { lines.Post(); }), "no rate today");
  EXPECT_EQ(lines.State(), TDataSetState::dsEdit);
  lines.Cancel();

  TClientDataSet loaded;
  loaded.SetXMLData(lines.XMLData());
  EXPECT_EQ(loaded.FieldByName("TOTAL").FieldKind(), TFieldKind::fkInternalCalc);
  EXPECT_EQ(loaded.FieldByName("TOTAL").AsString(), lines.FieldByName("TOTAL").AsString());
  EXPECT_EQ(loaded.XMLData(), lines.XMLData());

  TClientDataSet refused;
  refused.FieldDefs().Add({"C", ftInteger, 0, 0, false, TFieldKind::fkCalculated});
  EXPECT_EQ(MessageOf<EDatabaseError>([&] { refused.CreateDataSet(); }),
            "Field 'C' is not kept with the record");
}

// A server that takes any text into a column: the records come whole, and what is no value can be
// written over.
TEST(FetchedValues, ThatAreNoneOfTheirTypeHarmNoOther) {
  const TemporaryFolder folder;
  TSQLConnection connection;
  UseSqlite(connection, folder.File("x.db"));
  connection.ExecuteDirect(
      "CREATE TABLE T (ID INTEGER PRIMARY KEY, AMT DECIMAL_TEXT(19,4), DAY DATE)");
  connection.ExecuteDirect(
      "INSERT INTO T VALUES (1, '1,200.50', '2026-11-25'), (2, '20', '0000-00-00')");
  TDataSetProvider provider(connection);
  provider.TableName = "T";
  provider.KeyFields = "ID";
  TClientDataSet set;
  set.SetProvider(&provider);
  EXPECT_THAT(MessageOf<EDatabaseError>([&] { set.Open(); }), testing::StartsWith("Field 'AMT': "));
  EXPECT_FALSE(set.Active());

  connection.ExecuteDirect("UPDATE T SET AMT = '3.50' WHERE ID = 1");
  set.SetIndexFieldNames("AMT");
  set.Open();
  set.Last();
  EXPECT_EQ(set.FieldByName("AMT").AsCurrency(), 20_baht);
  const TField& day = set.FieldByName("DAY");
  EXPECT_EQ(MessageOf<EDatabaseError>([&] { day.AsDateTime(); }),
            "'0000-00-00' is not a valid date value for field 'DAY'");
  EXPECT_EQ(MessageOf<EDBClient>([&] { set.XMLData(); }),
            "Field 'DAY': '0000-00-00' is no value that a data packet can hold");
  set.Edit();
  set.FieldByName("DAY").SetAsDateTime(EncodeDate(2026, 11, 25));
  set.Post();
  EXPECT_EQ(set.ApplyUpdates(0), 0) << "found by the text that the server has";
  EXPECT_EQ(connection.ExecuteDirect("UPDATE T SET ID = ID WHERE DAY = '2026-11-25'"), 2);
}

}  // namespace
}  // namespace kvshare
