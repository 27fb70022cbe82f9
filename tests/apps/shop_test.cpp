// `kvshare shop`, and what receipts become with a seller.
#include <gmock/gmock.h>

#include <cstdlib>

#include "tests/apps/tempfile.h"
#include "tests/support.h"

namespace kvshare::app {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

class Shop : public ::testing::Test {
 protected:
  Shop() { ::setenv("KVSHARE_HOME", folder_.File("home").c_str(), 1); }
  ~Shop() override { ::unsetenv("KVSHARE_HOME"); }

  static Outcome Set(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"shop", "set"});
    return Kvshare(std::move(arguments));
  }
  static std::string Shown() { return Kvshare({"shop", "show"}).out; }

  const TemporaryFolder folder_;
};

TEST_F(Shop, IsSetPieceByPiece) {
  EXPECT_EQ(Shown(), "");
  EXPECT_EQ(Set({"--phone", "02"}).status, 2) << "a shop has a name";
  EXPECT_EQ(Set({"--name", "ร้าน=ดี", "--address", "a", "--address", "b"}).status, 0);
  EXPECT_EQ(Set({"--tax-id", "0105561000003", "--branch", "1"}).status, 0);
  EXPECT_EQ(Shown(),
            "name\tร้าน=ดี\naddress\ta\naddress\tb\ntax-id\t0-1055-61000-00-3\nbranch\t00001\n");
  EXPECT_EQ(Set({"--address", "c", "--branch", ""}).status, 0);
  EXPECT_EQ(Shown(), "name\tร้าน=ดี\naddress\tc\ntax-id\t0-1055-61000-00-3\n");
  const struct {
    std::vector<std::string> arguments;
    const char* reason;
  } refused[] = {
      {{"--tax-id", "0105561000007"}, "its check digit is wrong"},
      {{"--tax-id", "12"}, "13 digits"},
      {{"--branch", "x"}, "5 digits"},
      {{"--name", ""}, "a shop has a name"},
      {{"--address", "a\nb"}, "one line"},
  };
  for (const auto& c : refused) {
    const Outcome got = Set(c.arguments);
    EXPECT_EQ(got.status, 2) << c.reason;
    EXPECT_THAT(got.err, HasSubstr(c.reason));
  }
  EXPECT_EQ(Shown(), "name\tร้าน=ดี\naddress\tc\ntax-id\t0-1055-61000-00-3\n") << "as it was";
}

constexpr std::string_view kDay =
    "document,date,customer,item,quantity,price,discount,vat,address,tax_id,branch,reference,"
    "reference_date,reason\n"
    "A,24/11/2569,ร้านดี,กาแฟ,2,100,,7,\"1 ถนน\nกรุงเทพฯ\",0105561000003,00000,,,\n"
    "A,,,นม,1,10,,7,,,,,,\n"
    "B,24/11/2569,คุณสุดา,กาแฟ,1,100,,7,,,,,,\n"
    "C,25/11/2569,ร้านดี,กาแฟ,-1,100,,7,,,,A,24/11/2569,ชำรุด\n"
    "D,25/11/2569,ร้านดี,กาแฟ,-1,100,,7,,,,Z,24/11/2569,ชำรุด\n";

TEST_F(Shop, PapersSayWhatTheLawAsksFor) {
  ASSERT_EQ(Set({"--name", "ร้านบ้านสวน", "--address", "9 ถนนสุขุมวิท", "--tax-id", "0105561000003",
                 "--branch", "0", "--phone", "02-123"})
                .status,
            0);
  const Outcome got =
      Kvshare({"receipts", "--width", "70", "--era", "543", "--copies", "original,copy"}, kDay);
  EXPECT_EQ(got.status, 0) << got.err;
  EXPECT_THAT(got.out, HasSubstr("ร้านบ้านสวน\n9 ถนนสุขุมวิท\nโทร. / Phone 02-123\n"
                                 "เลขประจำตัวผู้เสียภาษี / Tax ID 0-1055-61000-00-3  สำนักงานใหญ่ / "
                                 "Head office\n\n"
                                 "ใบเสร็จรับเงิน/ใบกำกับภาษี / Receipt/Tax invoice  "));
  EXPECT_THAT(got.out, HasSubstr("เลขที่ A\nสำเนา / Copy\nวันที่ 24/11/2569\nลูกค้า ร้านดี\n"
                                 "ที่อยู่ / Address 1 ถนน กรุงเทพฯ\n"));
  EXPECT_THAT(got.out, HasSubstr("ยอดรวมทั้งสิ้นรวมภาษีมูลค่าเพิ่มแล้ว / The total includes VAT\n"));
  EXPECT_THAT(got.out, HasSubstr("อ้างถึง / Reference A  24/11/2569\nสาเหตุ / Reason ชำรุด\n"));
  EXPECT_THAT(got.out,
              AllOf(HasSubstr("Original value   210.00\n"), HasSubstr("Right value   110.00\n"),
                    HasSubstr("Difference   100.00\n")));
  EXPECT_THAT(got.err,
              AllOf(HasSubstr("warning: full tax invoices need the buyer's address; "
                              "documents without it: 1, the first is B\n"),
                    HasSubstr("warning: credit notes need the invoice's value, which is not "
                              "in the file; documents without it: 1, the first is D\n"),
                    Not(HasSubstr("no seller"))));
}

TEST_F(Shop, ParticularsAreRead) {
  const std::string json = Kvshare({"receipts", "--json"}, kDay).out;
  EXPECT_THAT(json,
              HasSubstr("\"kind\":\"receipt\",\"customer_address\":\"1 ถนน\\nกรุงเทพฯ\","
                        "\"customer_tax_id\":\"0105561000003\",\"customer_branch\":\"00000\"}"));
  EXPECT_THAT(json, HasSubstr("\"kind\":\"credit_note\",\"reference\":\"A\","
                              "\"reference_date\":\"2026-11-24\",\"reason\":\"ชำรุด\"}"));
  const std::string head(kDay.substr(0, kDay.find('\n') + 1));
  const struct {
    const char *rows, *problem;
  } cases[] = {
      {"A,24/11/2569,C,I,1,1,,7,,0105561000007,,,,\n",
       "line 2, column 10 (tax_id): '0105561000007' is no tax number: its check digit is wrong"},
      {"A,24/11/2569,C,I,1,1,,7,,,x,,,\n", "line 2, column 11 (branch): 'x' is no branch"},
      {"A,24/11/2569,C,I,1,1,,7,,,,B,31/11/69,\n",
       "line 2, column 13 (reference_date): '31/11/69'"},
      {"A,24/11/2569,C,I,1,1,,7,a,,,,,\nA,,,I,1,1,,7,b,,,,,\n",
       "line 3, column 9 (address): it differs from the document's first"},
      {"A,24/11/2569,C,I,1,1,,7,,,,,,\nA,,,I,1,1,,7,b,,,,,\n",
       "line 3, column 9 (address): it differs from the document's first"},
  };
  for (const auto& c : cases) {
    const Outcome got = Kvshare({"receipts"}, head + c.rows);
    EXPECT_EQ(got.status, 1);
    EXPECT_THAT(got.err, HasSubstr(c.problem));
  }
  EXPECT_EQ(Kvshare({"receipts", "--copies", "original,third"}, kDay).status, 2);
}

}  // namespace
}  // namespace kvshare::app
