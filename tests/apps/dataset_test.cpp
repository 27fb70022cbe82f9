// dataset: data packets, CSV and JSON shown, converted and compared.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/filebytes.h"
#include "tests/apps/tempfile.h"
#include "tests/support.h"

namespace kvshare::app {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

class DatasetCommand : public ::testing::Test {
 protected:
  static Outcome Run(std::vector<std::string> arguments, std::string_view input = "") {
    arguments.insert(arguments.begin(), "dataset");
    return Kvshare(std::move(arguments), input);
  }
  static Outcome Done(const std::vector<std::string>& arguments, std::string_view input = "") {
    Outcome outcome = Run(arguments, input);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0);
    return outcome;
  }

  const TemporaryHome home_;
};

// A value of each kind, and the borders between Null, "" and what has to be quoted.
constexpr std::string_view kFields =
    "CODE:string:10:required,NOTE:memo,N:i4,BIG:i8,RATE:r8,PRICE:fixed:19:4,COST:money,OPEN:"
    "boolean,"
    "DAY:date,AT:time,SOLD:datetime,STAMP:timestamp,PIC:blob,LOOSE:fixedfmt:0:2";
constexpr std::string_view kCsv =
    "CODE,NOTE,N,BIG,RATE,PRICE,COST,OPEN,DAY,AT,SOLD,STAMP,PIC,LOOSE,FREE\r\n"
    "A,\"a,\"\"b\"\"\r\nc\",-1,9007199254740993,0.1,12.5000,0.01,true,2026-11-24,09:07:00.250,"
    "2026-11-24T10:11:12,2026-11-24T00:00:00,00FF,-7.10,ปากกา\r\n"
    "\"\",\" x \",,,,,,false,,,,,,,\r\n";

TEST_F(DatasetCommand, KeepsValuesFromKindToKind) {
  home_.Make("a.csv", kCsv);
  Done({"convert", "--fields", std::string(kFields), "C:\\a.csv", "C:\\a.xml"});
  const std::string packet = ReadFileBytes("C:\\a.xml");
  EXPECT_THAT(packet, HasSubstr("<FIELD attrname=\"FREE\" fieldtype=\"string\" WIDTH=\"5\"/>"));
  EXPECT_THAT(packet, HasSubstr("<ROW CODE=\"\" NOTE=\" x \" OPEN=\"FALSE\"/>"));
  EXPECT_EQ(Done({"show", "--csv", "C:\\a.xml"}).out, kCsv);
  EXPECT_EQ(Done({"show", "--csv", "-"}, packet).out, kCsv) << "known by its beginning";

  Done({"convert", "C:\\a.xml", "C:\\a.jsonl"});
  EXPECT_THAT(ReadFileBytes("C:\\a.jsonl"),
              HasSubstr(R"("N":-1,"BIG":9007199254740993,"RATE":0.1,"PRICE":"12.5000")"));
  const std::string fields = std::string(kFields) + ",FREE:string:5";
  EXPECT_EQ(Done({"convert", "--to", "packet", "--fields", fields, "C:\\a.jsonl", "-"}).out,
            packet);
  std::string specs = Done({"show", "--fields", "C:\\a.xml"}).out;
  std::ranges::replace(specs, '\n', ',');
  EXPECT_EQ(specs, fields + ",") << "as convert reads them";
  EXPECT_EQ(Done({"compare", "C:\\a.xml", "C:\\a.xml"}).out, "");
}

TEST_F(DatasetCommand, ReadsItsOwnDecimalsAgain) {
  constexpr std::string_view kSpecs = "A:fixedfmt,B:fixed:4:2,C:money";
  constexpr std::string_view kLong =
      "A,B,C\r\n-12345678901234567890.123456,1.50,0.00000000000000000001\r\n";
  home_.Make("a.csv", kLong);
  Done({"convert", "--fields", std::string(kSpecs), "C:\\a.csv", "C:\\a.xml"});
  EXPECT_EQ(Done({"show", "--csv", "C:\\a.xml"}).out, kLong);
  EXPECT_EQ(Done({"convert", "--to", "csv", "--fields", std::string(kSpecs), "-", "-"},
                 "{\"A\":1.5e-3,\"B\":25E-1,\"C\":-1E+20}")
                .out,
            "A,B,C\r\n0.0015,2.50,-100000000000000000000\r\n");
}

TEST_F(DatasetCommand, GivesATextWithoutASizeThatOfTheLongestValue) {
  const std::string table = "A,B,C,D\r\nabc,00FF," + std::string(9000, 'x') + ",\r\nab,00,x,\r\n";
  const Outcome packet =
      Done({"convert", "--to", "packet", "--fields", "A:fixedchar,B:bytes", "-", "-"}, table);
  EXPECT_EQ(Done({"show", "--fields", "-"}, packet.out).out,
            "A:fixedchar:3\nB:bytes:2\nC:memo\nD:string:1\n");
  EXPECT_EQ(Done({"show", "--csv", "-"}, packet.out).out, table);
}

TEST_F(DatasetCommand, ReadsJsonOfOtherMakers) {
  const Outcome list = Done({"show", "--json", "-"},
                            "\xEF\xBB\xBF [ {\"A\":1.10, \"B\":null},\n {\"b\":true, \"C\":\"\", "
                            "\"A\":12345678901234567890.125} ]");
  EXPECT_EQ(list.out,
            "{\"A\":\"1.10\",\"B\":null,\"C\":null}\n{\"A\":\"12345678901234567890.125\",\"B\":"
            "\"true\",\"C\":\"\"}\n")
      << "numbers keep their digits";
}

TEST_F(DatasetCommand, KeepsARecordOfNothingInCsv) {
  const Outcome csv = Done({"show", "--csv", "-"}, "[{\"A\":\"x\"},{\"A\":null}]");
  EXPECT_EQ(csv.out, "A\r\nx\r\n\"\"\r\n");
  EXPECT_EQ(Done({"show", "--json", "-"}, csv.out).out, "{\"A\":\"x\"}\n{\"A\":\"\"}\n");
}

TEST_F(DatasetCommand, TellsWhereAFileIsWrong) {
  const struct {
    std::vector<std::string> arguments;
    std::string_view input;
    std::string_view message;
  } cases[] = {
      {{}, "A,B\n1,2\n3\n", "line 3: 1 cells, the heading has 2"},
      {{}, "A,a\n", "line 1: two columns a"},
      {{}, "A,,B\n", "line 1: a column without a name"},
      {{}, "", "there is no heading"},
      {{}, "A\n\"x", "line 2: a quote is opened and never closed"},
      {{}, "A\n\xC3\xA9\n", "line 2: No letter U+00E9 in code page 874, at byte 1"},
      {{}, "{\"A\":1}\n\n{\"A\":[1]}\n", "line 3: a value inside is no plain one"},
      {{}, "{\"A\":1}\n{\"A\":1", "line 2: "},
      {{}, "[{\"A\":1},[2]]", "record 2: a value inside"},
      {{}, "[1]", "record 1: a value that is no object"},
      {{"--from", "json"}, "1", "line 1: a value that is no object"},
      {{"--from", "packet"}, "A,B\n", "Mismatch in datapacket. Line 1: "},
      {{"--fields", "B:i4"}, "A\n", "there is no column 'B'"},
      {{"--fields", "A:i4"}, "A\n1\n1.5\n", "line 3: field 'A': '1.5' is not a valid integer"},
      {{"--fields", "A:i2"}, "A\n40000\n", "line 2: field 'A': 40000 is not a valid value"},
      {{"--fields", "A:fixed"}, "A\n\"1,5\"\n", "'1,5' is not a valid decimal value"},
      {{"--fields", "A:fixed:9:2"},
       "A\n1.500\n1.505\n",
       "line 3: field 'A': '1.505': the field has 2"},
      {{"--fields", "A:fixed:9:2"}, "A\n15e-3\n", "line 2: field 'A': '15e-3': the field has 2"},
      {{"--fields", "A:fixed:2:4"}, "A\n1\n", "Invalid field size"},
      {{"--fields", "A:string:9000"}, "A\n1\n", "Invalid field size"},
      {{"--fields", "A:date"}, "A\n2026-02-30\n", "line 2: field 'A': '2026-02-30'"},
      {{"--fields", "A:date"}, "A\n2026-02-03T10:00\n", "is not a valid date value"},
      {{"--fields", "A:time"}, "A\n24:00\n", "line 2: field 'A': "},
      {{"--fields", "A:boolean"}, "A\nyes\n", "'yes' is not a valid boolean value"},
      {{"--fields", "A:blob"}, "A\n0\n", "'0' is not a valid hexadecimal value"},
      {{"--fields", "A:string:2"}, "A\nabc\n", "line 2: field 'A': 3 bytes, the field has 2"},
      {{"--fields", "A:i4:required"}, "A\n\"\"\n", "line 2: Field 'A' must have a value"},
      {{"--fields", "A:i4"}, "<DATAPACKET/>", "a packet has its own fields"},
  };
  home_.Make("out.xml", "earlier");
  for (const auto& c : cases) {
    SCOPED_TRACE(c.input);
    std::vector<std::string> arguments = {"convert", "-", "C:\\out.xml"};
    arguments.insert(arguments.end(), c.arguments.begin(), c.arguments.end());
    const Outcome outcome = Run(arguments, c.input);
    EXPECT_THAT(outcome.err, StartsWith("kvshare: -: "));
    EXPECT_THAT(outcome.err, HasSubstr(c.message));
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(ReadFileBytes("C:\\out.xml"), "earlier");
  }
}

TEST_F(DatasetCommand, RefusesUsage) {
  const std::vector<std::string> cases[] = {
      {"convert", "a.csv", "out.txt"},
      {"convert", "--to", "dbf", "a.csv", "out.txt"},
      {"convert", "--fields", "A", "a.csv", "a.xml"},
      {"convert", "--fields", "A:text", "a.csv", "a.xml"},
      {"convert", "--fields", ":i4", "a.csv", "a.xml"},
      {"convert", "--fields", "A:i4:4", "a.csv", "a.xml"},
      {"convert", "--fields", "A:fixed:4:4:4", "a.csv", "a.xml"},
      {"convert", "--fields", "A:string:0", "a.csv", "a.xml"},
      {"show", "--changes", "--fields", "a.xml"},
      {"compare", "--from", "dbf", "a.csv", "a.xml"},
      {"compare", "a.csv"},
  };
  for (const auto& arguments : cases) {
    const Outcome outcome = Run(arguments);
    EXPECT_EQ(outcome.status, 2) << arguments[2] << ": " << outcome.err;
    EXPECT_THAT(outcome.err, HasSubstr("--help"));
  }
}

TEST_F(DatasetCommand, ShowsTheLog) {
  constexpr std::string_view kPacket =
      "<DATAPACKET><METADATA><FIELDS><FIELD attrname=\"CODE\" fieldtype=\"string\" WIDTH=\"1\"/>"
      "<FIELD attrname=\"PRICE\" fieldtype=\"fixed\" DECIMALS=\"2\"/></FIELDS>"
      "<PARAMS CHANGE_LOG=\"3 2 8 4 0 4 5 0 2\"/></METADATA><ROWDATA><ROW CODE=\"A\"/>"
      "<ROW RowState=\"1\" CODE=\"B\" PRICE=\"1.5\"/><ROW RowState=\"8\" CODE=\"B\"/>"
      "<ROW RowState=\"4\" CODE=\"N\" PRICE=\"0.00001\"/><ROW RowState=\"2\" CODE=\"D\"/>"
      "</ROWDATA></DATAPACKET>";
  EXPECT_EQ(Done({"show", "--changes", "-"}, kPacket).out,
            "STATUS    CODE    PRICE\n"
            "--------  ----  -------\n"
            "before    B        1.50\n"
            "after     B            \n"
            "inserted  N     0.00001\n"
            "deleted   D            \n");
  EXPECT_EQ(Done({"show", "-"}, kPacket).out,
            "CODE    PRICE\n"
            "----  -------\n"
            "A            \n"
            "B            \n"
            "N     0.00001\n");
}

TEST_F(DatasetCommand, ComparesByKeyOrAsAWhole) {
  const struct {
    std::string_view why;
    std::string_view first, second;
    std::vector<std::string> options;
    std::string_view out;
    int status;
  } cases[] = {
      {"another order", "K,V\n1,a\n2,b\n", "V,K\nb,2\na,1\n", {"--key", "K"}, "", 0},
      {"Null is not empty",
       "K,V\n1,\n",
       "K,V\n1,\"\"\n",
       {"--key", "k"},
       "*\trecord\t1\tV\t\t\n",
       1},
      {"two fields a key",
       "K,L,V\na,b,1\na,c,2\n",
       "K,L,V\na,c,3\nb,b,1\n",
       {"--key", "K,L"},
       "-\trecord\ta;b\n*\trecord\ta;c\tV\t2\t3\n+\trecord\tb;b\n",
       1},
      {"a line break in a value",
       "K,V\n1,\"x\ny\"\n",
       "K,V\n1,xyz\n",
       {"--key", "K"},
       "*\trecord\t1\tV\tx y\txyz\n",
       1},
      {"as a whole, one of two alike is gone",
       "V\na\na\nb\n",
       "V\na\nb\n",
       {},
       "-\trecord\ta\n",
       1},
      {"fields",
       "K,OLD\n1,x\n",
       "K,NEW\n1,x\n",
       {"--key", "K"},
       "-\tfield\tOLD\tOLD:string:1\n+\tfield\tNEW\tNEW:string:1\n",
       1},
      {"no such key", "K\n1\n", "K\n1\n", {"--key", "X"}, "", 2},
      {"a key that one record has not alone", "K\n1\n1\n", "K\n1\n", {"--key", "K"}, "", 2},
      {"nor in the second", "K\n1\n", "K\n1\n1\n", {"--key", "K"}, "", 2},
      {"nor where the second lacks it", "K\n2\n2\n", "K\n1\n", {"--key", "K"}, "", 2},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.why);
    home_.Make("1.csv", c.first);
    home_.Make("2.csv", c.second);
    std::vector<std::string> arguments = {"compare", "C:\\1.csv", "C:\\2.csv"};
    arguments.insert(arguments.end(), c.options.begin(), c.options.end());
    const Outcome outcome = Run(arguments);
    EXPECT_EQ(outcome.status, c.status) << outcome.err;
    EXPECT_EQ(outcome.err.empty(), c.status != 2);
    if (c.status != 2) {
      EXPECT_EQ(outcome.out, c.out);
    }
  }
  EXPECT_EQ(Run({"compare", "C:\\1.csv", "C:\\none.xml"}).status, 2) << "trouble, not a difference";
}

TEST_F(DatasetCommand, ComparesPacketsByTheirPrimaryKey) {
  const auto packet = [](std::string_view decimals, std::string_view rows) {
    return "<DATAPACKET><METADATA><FIELDS><FIELD attrname=\"K\" fieldtype=\"i4\"/>"
           "<FIELD attrname=\"V\" fieldtype=\"fixed\" DECIMALS=\"" +
           std::string(decimals) +
           "\" WIDTH=\"9\"/></FIELDS><PARAMS PRIMARY_KEY=\"1\"/></METADATA>" + "<ROWDATA>" +
           std::string(rows) + "</ROWDATA></DATAPACKET>";
  };
  home_.Make("1.xml", packet("2", "<ROW K=\"1\" V=\"1.5\"/><ROW K=\"2\" V=\"2\"/>"));
  home_.Make("2.xml", packet("4", "<ROW K=\"2\" V=\"2\"/><ROW K=\"1\"/>"));
  const Outcome outcome = Run({"compare", "--json", "C:\\1.xml", "C:\\2.xml"});
  EXPECT_EQ(
      outcome.out,
      R"({"side":"*","what":"field","field":"V","before":"V:fixed:9:2","after":"V:fixed:9:4"})"
      "\n"
      R"({"side":"*","what":"record","key":"1","field":"V","before":"1.5","after":null})"
      "\n");
  EXPECT_EQ(outcome.status, 1);
}

}  // namespace
}  // namespace kvshare::app
