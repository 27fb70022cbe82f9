// The shipped day, posted to the server: the books have what the receipts have, to the last satang.
#include <map>

#include "apps/receipts/calc.h"
#include "apps/receipts/dayreader.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/files.h"
#include "kvshare/rtl/format.h"
#include "tests/apps/tempfile.h"
#include "tests/company/company.h"

namespace kvshare {
namespace {

using ::testing::HasSubstr;

class Posting : public ServerCompany {
 protected:
  Posting() {
    for (const char* table : {"DOCUMENT", "DOCLINE", "SCTYTAB", "KOVRASYNC", "KOVRAVERSION"}) {
      DropTable(table);
    }
    connection_->Close();
    const app::Outcome made = app::Kvshare({"company", "--connect", kAlias});
    EXPECT_EQ(made.err, "");
    EXPECT_EQ(made.status, 0);
  }
  static app::Outcome Post(std::string_view day, std::vector<std::string> more = {}) {
    std::vector<std::string> arguments = {"post", "--connect", kAlias, "--json"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return app::Kvshare(std::move(arguments), day);
  }
  std::string Count(std::string_view table) const {
    return Ask(Format("SELECT COUNT(*) FROM %s", {table}));
  }
};

TEST_F(Posting, TheShippedDay) {
  const std::string day = ReadFileBytes(KVSHARE_DAY);
  receipts::DayReader reader([](const receipts::Problem&) {});
  reader.Feed(day);
  const std::vector<receipts::Document> documents = reader.Finish();
  receipts::DayTotal sums;
  std::size_t lines = 0;
  for (const auto& document : documents) {
    sums.Add(Calculate(document, {}));
    lines += document.lines.size();
  }
  const app::Outcome posted = Post(day);
  EXPECT_EQ(
      posted.out,
      Format("{\"posted\":%d,\"lines\":%d,\"total\":\"%s\",\"there\":0,\"left\":0}\n",
             {static_cast<int>(documents.size()), static_cast<int>(lines), CurrToStr(sums.total)}));
  EXPECT_EQ(posted.status, 0) << posted.err;
  EXPECT_EQ(StrToCurr(Ask("SELECT SUM(DOC_TOTAL) FROM DOCUMENT")), sums.total);
  EXPECT_EQ(StrToCurr(Ask("SELECT SUM(LIN_NET) FROM DOCLINE")), sums.net);
  EXPECT_EQ(StrToCurr(Ask("SELECT SUM(LIN_VAT) FROM DOCLINE")), sums.vat);
  EXPECT_EQ(Count("DOCLINE"), std::to_string(lines));
  EXPECT_EQ(Ask("SELECT SYN_LASTSEND FROM KOVRASYNC"),
            Format("0%16.16d", {static_cast<int>(documents.size())}));

  std::map<std::string, std::string> customers;
  TSQLQuery query;
  query.SetSQLConnection(connection_.get());
  query.SQL().Add("SELECT DOC_NO, DOC_CUSTOMER, DOC_DATE FROM DOCUMENT");
  for (query.Open(); !query.Eof(); query.Next()) {
    customers[query.Fields(0).AsString()] = query.Fields(1).AsString();
  }
  query.Close();
  for (const auto& document : documents) {
    EXPECT_EQ(customers[document.number], document.customer) << document.number;
  }
  const std::string log = ReadFileBytes("C:\\ProgramData\\QXN\\Share\\Log\\LEDGER.log");
  EXPECT_EQ(std::ranges::count(log, '\n'), std::ssize(documents));

  connection_->Close();
  EXPECT_THAT(Post(day).out, HasSubstr("{\"posted\":0,\"lines\":0,\"total\":\"0\",\"there\":"));
  EXPECT_EQ(Count("DOCUMENT"), std::to_string(documents.size())) << "nothing doubles";
}

TEST_F(Posting, TextsThatSqlWouldTakeApart) {
  const std::string texts = "O'Hara; \"ช้าง\" \\' -- x";
  const std::string day =
      "document,date,customer,item,quantity,price,discount,vat\n"
      "D1,2026-11-24,\"O'Hara; \"\"ช้าง\"\" \\' -- x\",\"O'Hara; \"\"ช้าง\"\" \\' -- x\",1,10,,7\n";
  EXPECT_THAT(Post(day).out, HasSubstr("{\"posted\":1,"));
  EXPECT_EQ(Cp874ToUtf8(Ask("SELECT DOC_CUSTOMER FROM DOCUMENT")), texts);
  EXPECT_EQ(Cp874ToUtf8(Ask("SELECT LIN_ITEM FROM DOCLINE")), texts);
}

TEST_F(Posting, WhatCannotBePostedLeavesTheRest) {
  const std::string head = "document,date,customer,item,quantity,price,discount,vat\n";
  EXPECT_EQ(Post(head + "D1,2026-11-24,,a,1,10,,7\nD2,2026-11-24,,a,1,20,,7\n").status, 0);
  connection_->Close();
  const app::Outcome again =
      Post(head +
           "D1,2026-11-24,,a,1,11,,7\nD2,2026-11-24,,a,1,20,,7\nD'3,2026-11-24,,a,1,1,,7\n"
           "D4,2026-11-24,,a,1,x,,7\nD5,2026-11-24,,a,1,50,,7\n");
  EXPECT_EQ(again.status, 1);
  EXPECT_EQ(again.out, "{\"posted\":1,\"lines\":1,\"total\":\"53.5\",\"there\":1,\"left\":3}\n");
  EXPECT_THAT(again.err, HasSubstr("document D1 is posted already, with another content"));
  EXPECT_THAT(again.err, HasSubstr("document D'3: a number has no quotes"));
  EXPECT_EQ(Count("DOCUMENT"), "3");
  connection_->Close();
  const app::Outcome refused = Post(head + "D6,2026-11-24,,a,1,1,,7\n", {"--position", "2"});
  EXPECT_EQ(refused.err, "kvshare: สิทธิของท่านไม่เพียงพอที่จะเพิ่มเติมข้อมูลได้\n");
  EXPECT_EQ(refused.status, 1);
  EXPECT_EQ(Count("DOCUMENT"), "3");
}

}  // namespace
}  // namespace kvshare
