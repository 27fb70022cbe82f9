// A company's books, posted from the command line: whole documents, once each, whatever happens to
// a run. On SQLite, or on the server that this program runs beside (tests/servers/with-server).
#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <fstream>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <thread>

#include "apps/receipts/calc.h"
#include "apps/receipts/dayreader.h"
#include "kvshare/data/sql/sqlquery.h"
#include "kvshare/database/sqlfunc.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/filebytes.h"
#include "kvshare/rtl/format.h"
#include "tests/apps/tempfile.h"
#include "tests/company/company.h"

namespace kvshare {
namespace {

using app::Kvshare;
using app::Outcome;
using app::TempFile;
using ::testing::HasSubstr;
using ::testing::StartsWith;

constexpr const char* kLog = "ProgramData/QXN/Share/Log/LEDGER.log";
const std::string kHead = "document,date,customer,item,quantity,price,discount,vat\n";

class Posting : public ServerCompany {
 protected:
  Posting() {
    for (const char* table :
         {"DOCUMENT", "DOCLINE", "DOCPAPER", "SCTYTAB", "KOVRASYNC", "KOVRAVERSION"}) {
      DropTable(table);
    }
    connection_->Close();
    const app::Outcome made = app::Kvshare({"company", "create", "--connect", kAlias});
    EXPECT_EQ(made.err, "");
  }

  static std::vector<std::string> Arguments(std::vector<std::string> more) {
    std::vector<std::string> arguments = {"post", "--connect", kAlias};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  }
  static Outcome Post(std::string_view day, std::vector<std::string> more = {"--json"}) {
    return Kvshare(Arguments(std::move(more)), day);
  }
  // A run of its own process, to be ended by whoever started it.
  static pid_t StartPosting(const TempFile& day, const TempFile& out) {
    const pid_t child = ::fork();
    if (child != 0) return child;
    const TempFile err;
    ::_exit(app::RunCommandLine(Arguments({"--json", day.Name()}), {day.Fd(), out.Fd(), err.Fd()}));
  }

  // Each question on a connection of its own: no lock stays, no snapshot is old.
  template <typename Work>
  static void OnBooks(Work work) {
    TSQLConnection connection;
    ConnectDBMS(connection, kAlias, true);
    work(connection);
  }
  static std::string Ask(std::string_view sql) {
    std::string answer = "(none)";
    OnBooks([&](TSQLConnection& connection) {
      TSQLQuery query;
      query.SetSQLConnection(&connection);
      query.SQL().Add(sql);
      query.Open();
      if (!query.Eof()) answer = query.Fields(0).AsString();
    });
    return answer;
  }
  static void Run(std::string_view sql) {
    OnBooks([&](TSQLConnection& connection) { connection.ExecuteDirect(sql); });
  }
  std::ptrdiff_t LogLines() const {
    if (!home_.Has(kLog)) return 0;
    return std::ranges::count(ReadFileBytes((home_.Drive() / kLog).string()), '\n');
  }

  // Documents, lines and sums as they stand in the books; whatever is not whole makes it differ.
  static std::string Books() {
    return Ask("SELECT COUNT(*) FROM DOCUMENT") + " " + Ask("SELECT COUNT(*) FROM DOCLINE") + " " +
           Baht("SELECT SUM(DOC_TOTAL) FROM DOCUMENT") + " " +
           Baht("SELECT SUM(LIN_NET) FROM DOCLINE") + " " +
           Baht("SELECT SUM(LIN_VAT) FROM DOCLINE");
  }
  static std::string Baht(std::string_view sql) { return Format("%.4n", {StrToCurr(Ask(sql))}); }
  static std::string TornDocuments() {
    return Ask(
        "SELECT COUNT(*) FROM DOCUMENT WHERE DOC_LINES <>"
        " (SELECT COUNT(*) FROM DOCLINE WHERE LIN_DOC = DOC_NO)");
  }
};

// The shipped day and what its receipts come to.
struct Day {
  std::string text = ReadFileBytes(KVSHARE_DAY);
  std::vector<receipts::Document> documents;
  std::string books;

  Day() {
    receipts::DayReader reader([](const receipts::Problem&) {});
    reader.Feed(text);
    documents = reader.Finish();
    receipts::DayTotal sums;
    int lines = 0;
    for (const auto& document : documents) {
      sums.Add(Calculate(document, {}));
      lines += static_cast<int>(document.lines.size());
    }
    books = Format("%d %d %.4n %.4n %.4n",
                   {static_cast<int>(documents.size()), lines, sums.total, sums.net, sums.vat});
  }
};

TEST_F(Posting, TheShippedDayToTheSatang) {
  const Day day;
  const auto posted = nlohmann::json::parse(Post(day.text).out);
  EXPECT_EQ(posted["posted"], day.documents.size());
  EXPECT_EQ(posted["left"], 0);
  EXPECT_EQ(posted["send"], Format("0%16.16d", {static_cast<int>(day.documents.size())}));
  EXPECT_EQ(Books(), day.books);
  EXPECT_EQ(LogLines(), std::ssize(day.documents));

  OnBooks([&](TSQLConnection& connection) {
    TSQLQuery query;
    query.SetSQLConnection(&connection);
    query.SQL().Add(
        "SELECT DOC_NO, DOC_CUSTOMER, LIN_NO, LIN_ITEM FROM DOCUMENT, DOCLINE"
        " WHERE LIN_DOC = DOC_NO");
    std::map<std::pair<std::string, int>, std::string> texts;
    for (query.Open(); !query.Eof(); query.Next()) {
      texts[{query.Fields(0).AsString(), query.Fields(2).AsInteger()}] =
          query.Fields(1).AsString() + "|" + query.Fields(3).AsString();
    }
    for (const auto& document : day.documents) {
      for (std::size_t i = 0; i < document.lines.size(); ++i) {
        const std::string& stored = texts[{document.number, static_cast<int>(i) + 1}];
        EXPECT_EQ(stored, document.customer + "|" + document.lines[i].item);
      }
    }
  });

  const auto again = nlohmann::json::parse(Post(day.text).out);
  EXPECT_EQ(again["posted"], 0);
  EXPECT_EQ(again["there"], day.documents.size());
  EXPECT_EQ(again["send"], posted["send"]);
  EXPECT_EQ(Books(), day.books);
  EXPECT_EQ(LogLines(), std::ssize(day.documents));
}

TEST_F(Posting, AnotherContentIsAnErrorThatChangesNothing) {
  const std::string number = "D'1\\\"";
  const auto with = [&](const std::string& first, const std::string& second) {
    const std::string quoted = "\"D'1\\\"\"\",";
    return kHead + quoted + first + "\n" + quoted + second + "\n";
  };
  const std::string first = "2026-11-24,ช้าง,a,2,10,,7";
  const std::string second = ",,b,1,5,,0";
  ASSERT_EQ(Post(with(first, second)).status, 0);
  const std::string books = Books();
  const std::string counter = Ask("SELECT SYN_LASTSEND FROM KOVRASYNC");
  const struct {
    std::string first, second;
    const char* why;
    const char* told;  // of the difference
  } cases[] = {
      {"2026-11-25,ช้าง,a,2,10,,7", second, "another date",
       "date: 2026-11-24 there, 2026-11-25 here\n"},
      {"2026-11-24,ช่าง,a,2,10,,7", second, "another mark on a letter of the customer",
       "customer: 'ช้าง' there, 'ช่าง' here\n"},
      {"2026-11-24,,a,2,10,,7", second, "no customer", "customer: 'ช้าง' there, '' here\n"},
      {"2026-11-24,ช้าง,A,2,10,,7", second, "an item in another case",
       "line 1, item: 'a' there, 'A' here\n"},
      {"2026-11-24,ช้าง,a,4,5,,7", second, "a quantity and a price with the same product",
       "line 1, quantity: 2.00 there, 4.00 here; line 1, price: 10.00 there, 5.00 here\n"},
      {"2026-11-24,ช้าง,a,2,11,2,7", second, "a discount that makes up for the price",
       "line 1, price: 10.00 there, 11.00 here; line 1, discount: 0.00 there, 2.00 here\n"},
      {"2026-11-24,ช้าง,a,2,10.0001,,7", second, "a price that rounds to the same amount",
       "line 1, price: 10.00 there, 10.0001 here\n"},
      {first, ",,b,1,5,,", "no VAT rate", ""},
      {"2026-11-24,ช้าง,b,1,5,,0", ",,a,2,10,,7", "lines in another order",
       "line 1, item: 'a' there, 'b' here; "},
      {first, second + "\n\"D'1\\\"\"\",,,c,0,5,,0", "one more line, of nothing",
       "another content: lines: 2 there, 3 here\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.why);
    const Outcome got = Post(with(c.first, c.second));
    EXPECT_EQ(got.status, 1);
    EXPECT_THAT(got.err, HasSubstr("document " + number + " is not posted: "));
    EXPECT_THAT(got.err, HasSubstr(c.told));
    EXPECT_EQ(Books(), books);
  }
  EXPECT_EQ(Ask("SELECT SYN_LASTSEND FROM KOVRASYNC"), counter);
  EXPECT_EQ(LogLines(), 1);
  EXPECT_EQ(nlohmann::json::parse(Post(with(first, second)).out)["there"], 1);
}

TEST_F(Posting, TextsThatSqlWouldTakeApart) {
  const std::string text = "O'Hara; \"ช้าง\" \\' -- :NO ? x\r\nถ.สุขุมวิท";
  const std::string cell = "\"O'Hara; \"\"ช้าง\"\" \\' -- :NO ? x\r\nถ.สุขุมวิท\"";
  const std::string day = kHead + "D1,2026-11-24," + cell + "," + cell + ",1,10,,7\n";
  EXPECT_EQ(Post(day).status, 0);
  EXPECT_EQ(Cp874ToUtf8(Ask("SELECT DOC_CUSTOMER FROM DOCUMENT")), text);
  EXPECT_EQ(Cp874ToUtf8(Ask("SELECT LIN_ITEM FROM DOCLINE")), text);
  EXPECT_EQ(nlohmann::json::parse(Post(day).out)["there"], 1);
}

TEST_F(Posting, AmountsAtTheLimitsOfPrecision) {
  const std::string day =
      kHead + "D1,2026-11-24,,a,99999999999.9999,1,,7\n" + "D2,2026-11-24,,a,-0.0001,0.0001,,7\n";
  EXPECT_EQ(Post(day).status, 0);
  EXPECT_EQ(StrToCurr(Ask("SELECT LIN_QTY FROM DOCLINE WHERE LIN_DOC = 'D1'")),
            StrToCurr("99999999999.9999"));
  EXPECT_EQ(nlohmann::json::parse(Post(day).out)["there"], 2);
}

TEST_F(Posting, WhatCannotBePostedLeavesTheRest) {
  const Outcome got = Post(kHead + "D1,2026-11-24,,a,1,x,,7\n" + std::string(41, 'D') +
                           ",2026-11-24,,a,1,20,,7\nD3,2026-11-24,,a,1,50,,7\n");
  EXPECT_EQ(got.status, 1);
  EXPECT_EQ(got.out,
            "{\"posted\":1,\"lines\":1,\"total\":\"53.50\",\"there\":0,\"left\":2,"
            "\"send\":\"00000000000000001\"}\n");
  EXPECT_THAT(got.err, HasSubstr("its number is longer than 40 letters"));
  EXPECT_EQ(Ask("SELECT DOC_NO FROM DOCUMENT"), "D3");
}

TEST_F(Posting, TheRightIsAskedFor) {
  const Outcome refused = Post(kHead, {"--position", "2"});
  EXPECT_EQ(refused.err, "kvshare: สิทธิของท่านไม่เพียงพอที่จะเพิ่มเติมข้อมูลได้\n");
  EXPECT_EQ(refused.status, 1);
  EXPECT_EQ(Post(kHead + "D1,2026-11-24,,a,1,1,,7\n", {"--position", "0"}).status, 0);
}

TEST_F(Posting, AHalfMadeCompanyIsCompleted) {
  EXPECT_EQ(Kvshare({"company", "create", "--connect", kAlias}).err,
            "kvshare: there is a company already in this database\n");
  Run("DROP TABLE SCTYTAB");
  Run("DELETE FROM KOVRAVERSION");
  const std::string day = kHead + "D1,2026-11-24,,a,1,1,,7\n";
  EXPECT_THAT(Post(day).err, StartsWith("kvshare: there is no company in this database; "));
  EXPECT_EQ(Kvshare({"company", "create", "--connect", kAlias}).status, 0);
  EXPECT_EQ(Post(day).status, 0);
}

TEST_F(Posting, NothingIsPostedUnseenByTheLog) {
  const std::string day =
      kHead + "D1,2026-11-24,,a,1,1,,7\nD2,2026-11-24,,a,1,2,,7\nD3,2026-11-24,,a,1,3,,7\n";
  const std::string folder = "ProgramData/QXN/Share/Log";
  home_.Make(folder, "a file where the folder should be");
  const Outcome stopped = Post(day);
  EXPECT_EQ(stopped.status, 1);
  EXPECT_THAT(stopped.err, HasSubstr("document D1 is posted, but not in the log: "));
  EXPECT_THAT(stopped.out, StartsWith("{\"posted\":1,\"lines\":1,\"total\":\"1.07\",\"there\":0,"
                                      "\"left\":2,"));
  std::filesystem::remove(home_.Drive() / folder);
  EXPECT_THAT(Post(day).out, StartsWith("{\"posted\":2,"));
  EXPECT_EQ(LogLines(), 2);
}

TEST_F(Posting, ReceiptsOfWhatIsPosted) {
  const std::string first = "D1,2026-11-24,ช้าง,a,1,10,,7\n";
  const std::string second = "D2,2026-11-24,ช้าง,b,2,20,,7\n";
  const std::vector<std::string> print = {"--print", "--era", "543", "--width", "60"};
  Post(kHead + first);
  const std::string receipt =
      Kvshare({"receipts", "--era", "543", "--width", "60"}, kHead + second).out;
  const std::string printed = Post(kHead + first + second, print).out;
  const std::size_t summary = printed.find("1 documents with 1 lines posted, 42.80 baht");
  ASSERT_NE(summary, std::string::npos);
  EXPECT_THAT(receipt, StartsWith(printed.substr(0, summary)));
  EXPECT_THAT(printed, HasSubstr("D2"));
  const std::string third = "D3,2026-11-24,,c,1,1,,7\n";
  EXPECT_THAT(Post(kHead + third, {"--print", "--json"}).out,
              StartsWith(Kvshare({"receipts", "--json"}, kHead + third).out + "{\"posted\":1,"));
}

// From the books, equal to the day's own print.
TEST_F(Posting, ReprintsWhatWasPosted) {
  const Day day;
  std::vector<std::string> numbers;
  for (const auto& document : day.documents) numbers.push_back(document.number);
  const std::vector<std::vector<std::string>> rules = {
      {},
      {"--vat", "line", "--price-includes-vat", "--cash-step", "mrDownTo25", "--round",
       "mrUpTo25"}};
  for (const std::vector<std::string>& options : rules) {
    for (const char* table : {"DOCUMENT", "DOCLINE", "DOCPAPER"})
      Run(Format("DELETE FROM %s", {table}));
    EXPECT_EQ(Post(day.text, options).status, 0);
    std::vector<std::string> print = {"receipts", "--era", "543", "--width", "60"};
    print.insert(print.end(), options.begin(), options.end());
    const std::string receipts = Kvshare(print, day.text).out;
    std::vector<std::string> reprint = {"reprint", "--connect", kAlias, "--era",
                                        "543",     "--width",   "60"};
    reprint.insert(reprint.end(), numbers.begin(), numbers.end());
    const Outcome got = Kvshare(reprint);
    EXPECT_EQ(got.status, 0) << got.err;
    const std::size_t total = receipts.rfind("====\nยอดรวมทั้งวัน");
    EXPECT_EQ(got.out, receipts.substr(0, total - 56));
  }
  const Outcome unknown = Kvshare({"reprint", "--connect", kAlias, "nobody"});
  EXPECT_EQ(unknown.status, 1);
  EXPECT_EQ(unknown.err, "there is no document nobody in the books\n");
}

TEST_F(Posting, ThePaperBelongsToTheContent) {
  const std::string head =
      "document,date,customer,item,quantity,price,discount,vat,address,reason\n";
  const std::string day = head + "D1,2026-11-24,C,a,1,10,,7,\"1 ถนน\nกรุงเทพฯ\",\n";
  EXPECT_EQ(Post(day).status, 0);
  EXPECT_EQ(nlohmann::json::parse(Post(day).out)["there"], 1);
  const Outcome other = Post(head + "D1,2026-11-24,C,a,1,10,,7,2 ถนน,ชำรุด\n");
  EXPECT_EQ(other.status, 1);
  EXPECT_THAT(other.err, HasSubstr("reason: '' there, 'ชำรุด' here"));
  Run("DELETE FROM DOCPAPER");  // as another program may have written it
  EXPECT_EQ(nlohmann::json::parse(Post(day).out)["there"], 1);
  const Outcome got = Kvshare({"reprint", "--connect", kAlias, "D1"});
  EXPECT_EQ(got.status, 1);
  EXPECT_THAT(got.err, HasSubstr("the books do not say by which rules it was computed"));
}

TEST_F(Posting, AKilledRunLeavesWholeDocumentsAndTheNextFinishes) {
  const Day day;
  const TempFile file(day.text);
  for (const std::ptrdiff_t lines : {1, 60, 140}) {
    const TempFile out;
    const pid_t child = StartPosting(file, out);
    ASSERT_GT(child, 0);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (LogLines() < lines && std::chrono::steady_clock::now() < deadline) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    ::kill(child, SIGKILL);
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status)) << "it was to be killed in the middle";
    EXPECT_EQ(TornDocuments(), "0");
    EXPECT_GE(StrToInt64(Ask("SELECT COUNT(*) FROM DOCUMENT")), lines);
  }
  EXPECT_EQ(Post(day.text).status, 0);
  EXPECT_EQ(Books(), day.books);
}

TEST_F(Posting, TwoRunsAtOncePostTheDayOnce) {
  const Day day;
  const TempFile file(day.text);
  const TempFile outs[2];
  pid_t children[2] = {};
  for (int i = 0; i < 2; ++i) children[i] = StartPosting(file, outs[i]);
  std::size_t posted = 0;
  for (int i = 0; i < 2; ++i) {
    int status = 0;
    ::waitpid(children[i], &status, 0);
    EXPECT_EQ(status, 0);
    const auto told = nlohmann::json::parse(outs[i].Content());
    posted += told["posted"].get<std::size_t>();
    EXPECT_EQ(told["left"], 0);
  }
  EXPECT_EQ(posted, day.documents.size());
  EXPECT_EQ(Books(), day.books);
  EXPECT_EQ(Ask("SELECT COUNT(DISTINCT DOC_SENDNO) FROM DOCUMENT"),
            std::to_string(day.documents.size()));
}

}  // namespace
}  // namespace kvshare
