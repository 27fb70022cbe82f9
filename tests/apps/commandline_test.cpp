#include "apps/kvshare/cli.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "kvshare/platform/verinfo.h"
#include "kvshare/rtl/cp874.h"
#include "tests/apps/tempfile.h"
#include "tests/support.h"

namespace kvshare::app {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

constexpr const char* kKey = "ABCDEFGHIJKLMNOP";

TEST(CommandLine, Dates) {
  const struct {
    std::vector<std::string> arguments;
    std::string out, err;
    int status;
  } cases[] = {
      {{"show", "--era", "543", "2003-07-15"}, "15/07/2546\n", "", 0},
      {{"show", "--era=0", "--layout", "datetime", " 2003-07-15 14:05 "},
       "15/07/2003 14:05\n",
       "",
       0},
      {{"show", "--layout", "TimeStamp", "2003-07-15T14:05:09.8"}, "2003071514050980\n", "", 0},
      {{"show", "--layout", "ddmmyyyysl25", "2003-07-15", "9999-12-31"},
       "15/07/2546\n31/12/10542\n",
       "",
       0},
      {{"show", "--era", "0", "--layout", "fullmonthyear", "--language", "en", "2003-07-15"},
       "JULY, 2003\n",
       "",
       0},
      {{"show", "--json", "--era", "0", "2003-07-15T14:05", "2003-07-15T00:00:00.05", "2003-02-29"},
       "{\"date\":\"2003-07-15T14:05:00\",\"text\":\"15/07/2003\"}\n"
       "{\"date\":\"2003-07-15T00:00:00.050\",\"text\":\"15/07/2003\"}\n"
       "{\"argument\":3,\"error\":\"'2003-02-29' is no moment: yyyy-mm-dd or "
       "yyyy-mm-ddThh:mm:ss\"}\n",
       "argument 3: '2003-02-29' is no moment: yyyy-mm-dd or yyyy-mm-ddThh:mm:ss\n",
       1},
      {{"parse", "--era", "543", "15/07/2546", "5/07/2546"},
       "2003-07-15\n\n",
       "argument 2: '5/07/2546' is not a valid date\n",
       1},
      {{"parse", "--loose", "5/7/2003"}, "2003-07-05\n", "", 0},
      {{"parse", "--stamp", "200307151405", "2003-07-15", "20030715", "2oo30715"},
       "2003-07-15T14:05:00\n2003-07-15\n2003-07-15\n\n",
       "argument 4: '2oo3' is not a valid integer value\n",
       1},
      {{"month", "1", "2003-01-31"}, "2003-02-28\n", "", 0},
      {{"month", "-1", "2003-03-31T10:00"}, "2003-02-28\n", "", 0},
      {{"month", "12", "2003-01-31", "2004-02-29", "9999-01-01"},
       "2004-01-31\n2005-02-28\n\n",
       "argument 3: the years are 1 to 9999\n",
       1},
      {{"month", "-25", "2003-01-31"}, "2000-12-31\n", "", 0},
      {{"parse", "--era", "543", " 15/07/2546"},
       "\n",
       "argument 1: ' 15/07/2546' is not a valid date\n",
       1},
  };
  for (const auto& c : cases) {
    std::vector<std::string> arguments = {"date"};
    arguments.insert(arguments.end(), c.arguments.begin(), c.arguments.end());
    const Outcome got = Kvshare(arguments);
    EXPECT_EQ(got.out, c.out);
    EXPECT_EQ(got.err, c.err);
    EXPECT_EQ(got.status, c.status);
  }
  for (const char* bad : {"2003-7-15", "2003-07-15T", "2003-07-15T24:00", "2003-07-15T10:00:00.",
                          "2003-07-15T10:00:00.1234", "15/07/2003", ""}) {
    EXPECT_EQ(Kvshare({"date", "show", bad}).status, 1) << bad;
  }
  using Arguments = std::vector<std::string>;
  for (const Arguments& usage :
       {Arguments{"date"}, Arguments{"date", "show", "--era", "1", "2003-07-15"},
        Arguments{"date", "show", "--layout", "iso", "2003-07-15"},
        Arguments{"date", "parse", "--loose", "--stamp", "20030715"},
        Arguments{"date", "month", "119977", "2003-07-15"}}) {
    EXPECT_EQ(Kvshare(usage).status, 2);
  }
}

TEST(CommandLine, MistypedCommandsAreTold) {
  const struct {
    std::vector<std::string> arguments;
    const char* told;
  } cases[] = {
      {{"wrods", "1"}, "there is no command `kvshare wrods`; did you mean `kvshare words`?\n"},
      {{"date", "prase"},
       "there is no command `kvshare date prase`; did you mean `kvshare date parse`?\n"},
      {{"xyzzy"}, "there is no command `kvshare xyzzy`\n"},
      {{"words", "--englsh", "1"}, "--englsh"},
  };
  for (const auto& c : cases) {
    const Outcome got = Kvshare(c.arguments);
    EXPECT_EQ(got.status, 2);
    EXPECT_NE(got.err.find(c.told), std::string::npos) << got.err;
    EXPECT_EQ(got.out, "");
  }
}

TEST(CommandLine, Items) {
  const struct {
    std::vector<std::string> arguments;
    std::string input, out, err;
    int status;
    const char* why;
  } cases[] = {
      {{"words", "1200"}, "", "(หนึ่งพันสองร้อยบาทถ้วน)\n", "", 0, "an operand"},
      {{"words"},
       "1,234.50\r\n 0.5 \n",
       "(หนึ่งพันสองร้อยสามสิบสี่บาทห้าสิบสตางค์)\n(ห้าสิบสตางค์)\n",
       "",
       0,
       "a column: thousands, blanks, CR LF"},
      {{"words"}, "", "", "", 0, "an empty column"},
      {{"words"},
       "abc\n\n9e99\n1",
       "\n\n\n(หนึ่งบาทถ้วน)\n",
       "line 1: 'abc' is no amount\n"
       "line 2: '' is no amount\n"
       "line 3: '9e99' is no amount\n",
       1,
       "one line out for each, whatever comes in"},
      {{"words", "๕", "\xFF", "1\x1B[2J"},
       "",
       "\n\n\n",
       "argument 1: '๕' is no amount\n"
       "argument 2: Invalid UTF-8 at byte 1\n"
       "argument 3: '1?[2J' is no amount\n",
       1,
       "reasons are legible and steer no terminal"},
      {{"words", "--json", "x", "-1"},
       "",
       "{\"argument\":1,\"error\":\"'x' is no amount\"}\n"
       "{\"amount\":\"-1.0000\",\"words\":\"(หนึ่งบาทถ้วน)\",\"safe\":false}\n",
       "argument 1: 'x' is no amount\n"
       "argument 2: warning: the words do not say that the amount is negative\n",
       1,
       "JSON, one object a line"},
      {{"words", "1000000000000"},
       "",
       "(ถ้วน)\n",
       "argument 1: warning: the amount is too large: the words are not its words\n",
       0,
       "the contract's text, with a warning"},
      {{"words", "--english", "2147483647.99"},
       "",
       "Two Thousand One Hundred and Forty Seven Million Four Hundred and Eighty Three Thousand "
       "Six "
       "Hundred and Forty Seven Baht Ninety Nine Stang\n",
       "",
       0,
       "the largest English amount"},
      {{"words", "--english", "2147483648"},
       "",
       "Baht Only\n",
       "argument 1: warning: the amount is too large: the words are not its words\n",
       0,
       "one satang more"},
      {{"words", "--currency", "Dollars,Cents", "12.01"},
       "",
       "Twelve Dollars One Cents\n",
       "",
       0,
       "other names"},
      {{"round", "mrnear25", "12.125", "-12.125", "-.125"},
       "",
       "12.2500\n-12.2500\n-0.2500\n",
       "",
       0,
       "any letter case; negative operands need no --"},
      {{"round", "mrNearBaht", "--", "-12.50"}, "", "-13.0000\n", "", 0, "and may have it"},
      {{"round", "8", "2.345"}, "", "2.5000\n", "", 0, "code 8 of the full list is mrNear50"},
      {{"round", "8", "--price", "2.345"}, "", "2.3500\n", "", 0, "of the price list mrTwoDigits"},
      {{"round", "13", "--price", "2.345"},
       "",
       "2.3450\n",
       "argument 1: warning: the code is in no list: the amount stays as it is\n",
       0,
       "past its end"},
      {{"round", "mrUpToBaht", "922337203685477.5"},
       "",
       "\n",
       "argument 1: Integer overflow\n",
       1,
       "a result out of range is no result"},
      {{"share", "33.3333", "100"}, "", "33.3300\t66.6700\n", "", 0, "share and rest"},
      {{"qty", "12", "29"}, "", "           2.05\n", "", 0, "packs and loose units"},
      {{"qty", "12", "29", "--sku", "2,6,0,6,0.5"}, "", "2+5=14.500000\n", "", 0, "a unit's text"},
      {{"format", "%.0f ฿%%", "99.5"}, "", "100 ฿%\n", "", 0, "Thai in the pattern"},
      {{"format", "%n\n", "1"},
       "",
       "\n",
       "argument 1: the result has a line break; --json shows it escaped\n",
       1,
       "one line each"},
      {{"format", "--json", "%f\n", "1"},
       "",
       "{\"amount\":\"1.0000\",\"text\":\"1.00\\n\"}\n",
       "",
       0,
       "JSON escapes it"},
      {{"mask", "0.00;(0.00);-", "-5", "0"}, "", "(5.00)\n-\n", "", 0, "sections"},
      {{"decode", "--key", kKey, "A", "!!"},
       "",
       "\n\n",
       "argument 1: the text cannot be decoded\n",
       1,
       "an odd text fails; one without a character of the key is the empty text"},
      {{"message", "RSTRCASH", "65525", "rstrNone"},
       "",
       "65525\trstrCash\tเงินสด\n65525\trstrCash\tเงินสด\n\n",
       "argument 3: no message is named 'rstrNone'\n",
       1,
       "by name and by identifier"},
  };
  for (const auto& c : cases) {
    const Outcome got = Kvshare(c.arguments, c.input);
    EXPECT_EQ(got.out, c.out) << c.why;
    EXPECT_EQ(got.err, c.err) << c.why;
    EXPECT_EQ(got.status, c.status) << c.why;
  }
}

TEST(CommandLine, WrongUsageGivesStatusTwoAndNoOutput) {
  const struct {
    std::vector<std::string> arguments;
    std::string reason;
  } cases[] = {
      {{}, "COMMAND: is needed"},
      {{"nonsense"}, "nonsense"},
      {{"words", "--bogus", "1"}, "--bogus"},
      {{"words", "--currency", "Dollars"}, "UNIT,SUBUNIT"},
      {{"round"}, "MODE: is needed"},
      {{"round", "mrNear", "1"}, "'mrNear' is no rounding mode"},
      {{"round", "70000", "1"}, "no rounding mode"},
      {{"round", "--list", "3"}, "takes no MODE"},
      {{"share", "many", "1"}, "'many' is no amount"},
      {{"qty", "0", "1"}, "FACTOR"},
      {{"qty", "12", "1", "--sku", "1,2,3"}, "--sku"},
      {{"qty", "12", "1", "--sku", "1,9,0,0,0"}, "--sku"},
      {{"format", "%d", "1"}, "invalid or incompatible"},
      {{"mask", "0\xF0\x9F\x98\x80", "1"}, "MASK: No letter U+1F600"},
      {{"encode", "text"}, "a key is needed"},
      {{"encode", "--key", "ABCDEFGHIJKLMNOO", "text"}, "a key has 16 to 64"},
      {{"encode", "--key-file", "/nonexistent", "text"}, "cannot open /nonexistent"},
      {{"receipts", "--width", "5"}, "--width"},
      {{"receipts", "--round", "99"}, "no rounding mode"},
      {{"receipts", "--vat", "none"}, "--vat"},
      {{"message", "--language", "nowhere", "rstrCash"}, "--language"},
  };
  for (const auto& c : cases) {
    const Outcome got = Kvshare(c.arguments);
    EXPECT_EQ(got.status, 2) << c.reason;
    EXPECT_EQ(got.out, "") << c.reason;
    EXPECT_THAT(got.err, HasSubstr(c.reason));
    EXPECT_THAT(got.err, StartsWith("kvshare: "));
  }
}

TEST(CommandLine, EncodedTextsDecode) {
  const std::string texts = "ลับมาก\nsecret\n\n";
  ::setenv("KVSHARE_KEY", kKey, 1);
  const Outcome encoded = Kvshare({"encode"}, texts);
  const Outcome decoded = Kvshare({"decode"}, encoded.out);
  ::unsetenv("KVSHARE_KEY");
  EXPECT_EQ(decoded.out, texts);
  EXPECT_EQ(decoded.status, 0);

  const TempFile file(std::string(kKey) + "\r\n");
  EXPECT_EQ(Kvshare({"decode", "--key-file", file.Name()}, encoded.out).out, texts);
}

TEST(CommandLine, AFreshKeyIsAKey) {
  const std::string key = Kvshare({"key"}).out.substr(0, 16);
  EXPECT_EQ(Kvshare({"encode", "--key", key, "x"}).status, 0) << key;
}

TEST(CommandLine, ListsAreWhole) {
  const auto lines = [](const std::string& text) {
    return std::count(text.begin(), text.end(), '\n');
  };
  EXPECT_THAT(Kvshare({"round", "--list"}).out,
              StartsWith("0\tmrNoRound\tไม่ปัด\n1\tmrDownToBaht\t"));
  EXPECT_EQ(lines(Kvshare({"round", "--list"}).out), 28);
  EXPECT_EQ(lines(Kvshare({"round", "--list", "--price"}).out), 13);
  EXPECT_THAT(Kvshare({"round", "--list", "--price"}).out, HasSubstr("\n7\tmrOneDigits\t"));
  EXPECT_THAT(Kvshare({"message", "--list", "--json"}).out,
              HasSubstr("{\"identifier\":65525,\"name\":\"rstrCash\",\"text\":\"เงินสด\"}\n"));
}

TEST(CommandLine, EveryCommandTeachesByExample) {
  for (const char* name : {"show", "parse", "month"}) {
    const Outcome help = Kvshare({"date", name, "--help"});
    EXPECT_THAT(help.out, HasSubstr("  kvshare date " + std::string(name))) << name;
  }
  for (const char* name : {"receipts", "words", "round", "share", "qty", "format", "mask", "encode",
                           "decode", "key", "message"}) {
    const Outcome help = Kvshare({name, "--help"});
    EXPECT_EQ(help.status, 0) << name;
    EXPECT_THAT(help.out, HasSubstr("  kvshare " + std::string(name))) << name;
    EXPECT_THAT(help.out, HasSubstr("--json")) << name;
    EXPECT_THAT(Kvshare({"--help"}).out, HasSubstr(std::string("  ") + name));
  }
}

constexpr std::string_view kDay =
    "vat,document,date,customer,item,quantity,price,discount\n"
    "7,A-1,24/11/2569,ร้านดี,กาแฟ,2,\"1,000.00\",10\n"
    "0,A-1,,,นม,1,0.13,\n"
    "7,C-1,2026-11-24,ร้านดี,กาแฟ,-2,\"1,000.00\",10\n"
    "7,B-1,2026-11-24,,ชา,x,1,\n";

TEST(CommandLine, Receipts) {
  const Outcome got =
      Kvshare({"receipts", "--width", "50", "--cash-step", "mrDownTo25", "--era", "543"}, kDay);
  EXPECT_EQ(got.status, 1);
  EXPECT_EQ(got.err,
            "line 5, column 6 (quantity): 'x' is no amount\n"
            "line 5: document B-1 is not printed: a row of it, or beside it, is in error\n"
            "line 4: warning: document C-1: no Thai and English words for -2,129.25, the figures "
            "stand alone\n"
            "warning: no seller is set, and the papers name none; `kvshare shop set` sets one\n");
  EXPECT_THAT(got.out, StartsWith("==================================================\n"
                                  "ใบเสร็จรับเงิน / Receipt                     เลขที่ A-1\n"
                                  "วันที่ 24/11/2569\n"
                                  "ลูกค้า ร้านดี\n"
                                  "--------------------------------------------------\n"
                                  "รายการ            จำนวน      ราคา  ส่วนลด  จำนวนเงิน\n"
                                  "กาแฟ                  2  1,000.00  10.00  1,990.00\n"));
  EXPECT_THAT(got.out, HasSubstr("                        ปัดเศษ / Rounding     -0.18\n"
                                 "                         รวมทั้งสิ้น / Total  2,129.25\n"
                                 "(สองพันหนึ่งร้อยยี่สิบเก้าบาทยี่สิบห้าสตางค์)\n"
                                 "Two Thousand One Hundred and Twenty Nine Baht\n"
                                 "Twenty Five Stang\n"));
  EXPECT_THAT(got.out, HasSubstr("รวมทั้งสิ้น / Total  -2,129.25\n\n")) << "no words";
  EXPECT_THAT(got.out, HasSubstr("Documents left out"));
}

TEST(CommandLine, MessagesInThai) {
  ::setenv("KVSHARE_LANGUAGE", "th", 1);
  const Outcome words = Kvshare({"words", "x", "-1"});
  const Outcome receipts = Kvshare({"receipts"}, kDay);
  ::unsetenv("KVSHARE_LANGUAGE");
  EXPECT_EQ(words.err,
            "ข้อมูลที่ 1: 'x' ไม่ใช่จำนวน\n"
            "ข้อมูลที่ 2: คำเตือน: คำอ่านไม่ได้บอกว่าจำนวนเงินติดลบ\n");
  EXPECT_EQ(receipts.err,
            "บรรทัดที่ 5, คอลัมน์ที่ 6 (quantity): 'x' ไม่ใช่จำนวน\n"
            "บรรทัดที่ 5: เอกสาร B-1 ไม่ได้พิมพ์: แถวของเอกสารหรือแถวที่ติดกันมีข้อผิดพลาด\n"
            "บรรทัดที่ 4: คำเตือน: เอกสาร C-1: ไม่มีคำอ่านภาษาไทยและอังกฤษของ -2,129.30 จึงมีแต่ตัวเลข\n"
            "คำเตือน: ยังไม่ได้ตั้งผู้ขาย เอกสารจึงไม่มีชื่อผู้ขาย; ตั้งได้ด้วย `kvshare shop set`\n");
}

TEST(CommandLine, ReceiptsFromAnExport) {
  const std::string day =
      "sep=;\r\ndocument;date;customer;item;quantity;price;discount;vat\r\n"
      "A-1;๒๔/๑๑/๖๙ 0:00;ร้านดี;กาแฟ;2;1.000,50;;7%\r\n";
  const std::vector<std::string> arguments = {"receipts", "--json", "--decimal-comma", "--era",
                                              "543"};
  const Outcome utf8 = Kvshare(arguments, day);
  EXPECT_EQ(utf8.status, 0) << utf8.err;
  EXPECT_THAT(utf8.out, HasSubstr("\"date\":\"2026-11-24\""));
  EXPECT_THAT(utf8.out, HasSubstr("\"price\":\"1000.50"));
  EXPECT_EQ(Kvshare(arguments, Utf8ToCp874(day)).out, utf8.out);
  EXPECT_EQ(Kvshare({"receipts", "--encoding", "latin1"}, day).status, 2);
  EXPECT_EQ(Kvshare({"receipts", "--separator", "|"}, day).status, 2);
}

TEST(CommandLine, ReceiptsHaveTheDigitsOfTheSettings) {
  const TemporaryHome home;
  struct Case {
    const char *quantity, *price, *amount, *want, *why;
  };
  constexpr Case kCases[] = {
      {"0", "3", "2", "   2  1,000.000  10.00  1,990.00\n", "as stored"},
      {"1", "0", "0", "   2.0  1,000.00  10.00  1,990.00\n",
       "the milk's 13 satang show in every row"},
  };
  const TKovraRegistry store;
  for (const Case& c : kCases) {
    store.WriteRegistryString("", "Default", "QtyDigit", c.quantity);
    store.WriteRegistryString("", "Default", "UPrcDigit", c.price);
    store.WriteRegistryString("", "Default", "BahtDigit", c.amount);
    EXPECT_THAT(Kvshare({"receipts", "--width", "50"}, kDay).out, HasSubstr(c.want)) << c.why;
  }
  store.WriteRegistryString("", "Default", "QtyDigit", "two");
  EXPECT_EQ(Kvshare({"receipts"}, kDay).err,
            "kvshare: the stored digits cannot be used: 'two' is not a valid integer value; "
            "`kvshare doctor` tells which\n");
}

TEST(CommandLine, ReceiptsAsJson) {
  const Outcome got =
      Kvshare({"receipts", "--json", "--price-includes-vat", "--vat", "line"}, kDay);
  EXPECT_THAT(
      got.out,
      StartsWith(
          "{\"document\":\"A-1\",\"date\":\"2026-11-24\",\"customer\":\"ร้านดี\",\"lines\":["
          "{\"item\":\"กาแฟ\",\"quantity\":\"2\",\"price\":\"1000.00\",\"gross\":\"2000.00\","
          "\"discount\":\"10.00\",\"vat_rate\":\"7\",\"net\":\"1859.81\",\"vat\":\"130.19\"},"));
  EXPECT_THAT(got.out,
              HasSubstr("\"net\":\"-1859.81\",\"vat\":\"-130.19\",\"vat_rates\":[{\"rate\":\"7\","
                        "\"net\":\"-1859.81\",\"vat\":\"-130.19\"}],\"rounding\":\"0.00\","
                        "\"total\":\"-1990.00\",\"words_thai\":null,\"words_english\":null,"
                        "\"kind\":\"credit_note\"}\n"));
}

TEST(CommandLine, ReceiptsNameAMissingFile) {
  const Outcome got = Kvshare({"receipts", "/nonexistent.csv"});
  EXPECT_EQ(got.status, 1);
  EXPECT_EQ(got.err, "kvshare: /nonexistent.csv: No such file or directory\n");
}

}  // namespace
}  // namespace kvshare::app
