#include "apps/receipts/dayreader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "apps/receipts/amounts.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare::receipts {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::string_view kHeader = "document,date,customer,item,quantity,price,discount,vat\n";

struct Read {
  std::vector<std::string> printed;  // numbers of the complete documents
  std::vector<std::string> problems;
  std::vector<Document> documents;
};

Read ReadDay(std::string_view text, std::size_t block = std::string_view::npos,
             const DayFormat& format = {}) {
  Read read;
  DayReader reader([&](const Problem& problem) { read.problems.push_back(problem.Message()); },
                   format, EncodeDate(2026, 11, 26));
  while (!text.empty() && reader.Feed(text.substr(0, block))) {
    text.remove_prefix(std::min(block, text.size()));
  }
  read.documents = reader.Finish();
  for (const Document& document : read.documents) {
    if (document.complete) read.printed.push_back(document.number);
  }
  return read;
}

std::string Row(std::string_view number, std::string_view rest = "2026-11-24,C,I,1,5,,7") {
  return std::string(number) + "," + std::string(rest) + "\n";
}

TEST(DayReader, BadRowsSpoilTheirDocumentOnly) {
  const std::string header(kHeader);
  const std::string big(10'000'000, 'x');
  const struct {
    std::string rows;
    std::vector<std::string> printed;
    std::string first;  // problem, "" for none
    const char* why;
  } cases[] = {
      {Row("A") + Row("A") + Row("B"), {"A", "B"}, "", "two documents"},
      {Row("A") + "\r\n,,,,,,,\n" + Row("A"), {"A"}, "", "empty rows do not count"},
      {Row("A", "2026-11-24,C,\"a \"\"b\"\",\nc\",1,\"1,000.5\",,7%") +
           Row("B", "2026-02-30,C,I,1,5,,7"),
       {"A"},
       "line 4, column 2 (date): '2026-02-30' is no date: yyyy-mm-dd or dd/mm/yyyy",
       "quotes; a line break in a cell is counted"},
      {Row("A") + Row("A", "2026-11-24,C,I,x,5,,7") + Row("A") + Row("B"),
       {"B"},
       "line 3, column 5 (quantity): 'x' is no amount",
       "one bad row of three"},
      {Row("A", "2026-11-24,C,I,1,-5,,7") + Row("B"),
       {"B"},
       "line 2, column 6 (price): '-5' is negative: a credit note has negative quantities",
       "price"},
      {Row("A", "2026-11-24,C,I,1,5,-1,7") + Row("B"),
       {"B"},
       "line 2, column 7 (discount): '-1' is negative: no discount",
       "a surcharge"},
      {Row("A", "2026-11-24,C,I,1,5,,107") + Row("B"),
       {"B"},
       "line 2, column 8 (vat): '107' is no VAT rate: 0 to 100 per cent",
       "VAT"},
      {Row("A", "2026-11-24,C,I,1,5,,") + Row("B"),
       {"B"},
       "line 2, column 8 (vat): the VAT rate is missing",
       "no VAT is not 0"},
      {Row("A", "2026-11-24,C,,1,5,,7"),
       {},
       "line 2, column 4 (item): the item has no name",
       "item"},
      {Row("A", ",C,I,1,5,,7"),
       {},
       "line 2, column 2 (date): '' is no date: yyyy-mm-dd or dd/mm/yyyy",
       "a first row needs its date"},
      {Row("A") + Row("A", ",,I,1,5,,7"), {"A"}, "", "the next ones do not"},
      {Row("A") + Row("A", "2026-11-25,,I,1,5,,7"),
       {},
       "line 3, column 2 (date): the date differs from the document's first",
       "two dates"},
      {Row("A") + Row("A", ",D,I,1,5,,7"),
       {},
       "line 3, column 3 (customer): the customer differs from the document's first",
       "two customers"},
      {Row("A", "2026-11-24,\xF0\x9F\x98\x80,I,1,5,,7"),
       {},
       "line 2, column 3 (customer): No letter U+1F600 in code page 874, at byte 1",
       "a letter"},
      {Row("A", "2026-11-24,C,\xFF,1,5,,7"),
       {},
       "line 2: from here on the file is not in UTF-8; save it in one encoding, or name another "
       "one "
       "with --encoding",
       "bytes"},
      {"", {}, "no documents: no row follows the header", "a header alone"},
      {Row("A") + ",,,รวม,,10.00,,\n",
       {"A"},
       "line 3: warning: the row of totals is left out",
       "totals"},
      {Row("Grand Total:", ",,,,5,,") + Row("A"),
       {"A"},
       "line 2: warning: the row of totals is left out",
       "totals"},
      {Row("A", "2026-11-24,C,Total,1,5,,7"), {"A"}, "", "an item of that name"},
      {Row("A", "2026-11-24,C,I,1,5,,0.07"),
       {"A"},
       "line 2, column 8 (vat): warning: a VAT rate below one per cent: 7 per cent is written 7",
       "a share for a rate"},
      {Row("A", "2026-11-24,C,I,1,\"1.200,50\",,7") + Row("B"),
       {"B"},
       "line 2, column 6 (price): '1.200,50' is no amount; --decimal-comma reads it as one",
       "never guessed"},
      {Row("A", "2026-11-24,C," + big + ",1,5,,7") + Row("B"),
       {"B"},
       "line 2, column 4 (item): the cell has 10000000 bytes, at most 4096 are read",
       "10 MB"},
      {Row("A") + Row("B", "2026-11-24,C,I,1,000,5,,7") + Row("B") + Row("C"),
       {"A", "C"},
       "line 3: the row has 9 cells, the header has 8",
       "a thousands comma without quotes"},
      {Row("A") + Row("") + Row("B") + Row("C"),
       {"C"},
       "line 3, column 1 (document): the document has no number",
       "whose row is it? both neighbours'"},
      {Row("A") + Row("") + Row("A") + Row("C"),
       {"C"},
       "line 3, column 1 (document): the document has no number",
       "surely A's"},
      {Row("A") + Row("B") + Row("A") + Row("C"),
       {"B", "C"},
       "line 4, column 1 (document): document A comes back: its rows of line 2 do not stand beside "
       "this one",
       "both parts of A lack lines"},
      {Row("A") + Row("B") + "\"C,2026",
       {"A"},
       "line 4: a quote is opened and never closed",
       "cut off"},
      {Row("A") + Row("B", "\"" + big + big),
       {},
       "line 3: a cell has more than 16 MB: is a closing quote missing?",
       "a lost quote does not fill the memory"},
  };
  for (const auto& c : cases) {
    const Read read = ReadDay(header + c.rows);
    EXPECT_EQ(read.printed, c.printed) << c.why;
    EXPECT_EQ(read.problems.empty() ? "" : read.problems.front(), c.first) << c.why;
    const Read slow = ReadDay(header + c.rows, c.rows.size() > 10'000 ? 65'537 : 1);
    EXPECT_EQ(slow.problems, read.problems) << "blocks of any size: " << c.why;
  }
}

std::string AsUtf16(std::string_view utf8, bool bigEndian) {
  std::string out = bigEndian ? "\xFE\xFF" : "\xFF\xFE";
  for (const char c : Utf8ToCp874(utf8)) {
    const char16_t letter = Cp874ToUnicode(static_cast<unsigned char>(c));
    const char high = static_cast<char>(letter >> 8);
    const char low = static_cast<char>(letter & 0xFF);
    out += bigEndian ? high : low;
    out += bigEndian ? low : high;
  }
  return out;
}

TEST(DayReader, EncodingsByContent) {
  const std::string day = std::string(kHeader) + Row("A", "2026-11-24,เก๋,ไข่,1,5,,7") +
                          Row("B", "2026-11-24,“ก”,น้ำ €,1,5,,7");
  const std::string ascii = Row("C", "2026-11-24,C," + std::string(4000, 'x') + ",1,5,,7");
  std::string late(kHeader);  // the first Thai letter stands far behind
  for (int i = 0; i < 40; ++i) late += ascii;
  late += Row("D", "2026-11-24,ก,ข,1,5,,7");
  const struct {
    std::string bytes;
    TextEncoding encoding;
    std::vector<std::string> printed;
    const char* why;
  } cases[] = {
      {day, TextEncoding::ByContent, {"A", "B"}, "UTF-8"},
      {"\xEF\xBB\xBF" + day, TextEncoding::ByContent, {"A", "B"}, "UTF-8 with its mark"},
      {Utf8ToCp874(day), TextEncoding::ByContent, {"A", "B"}, "the code page"},
      {AsUtf16(day, false), TextEncoding::ByContent, {"A", "B"}, "UTF-16"},
      {AsUtf16(day, true), TextEncoding::ByContent, {"A", "B"}, "UTF-16, high byte first"},
      {AsUtf16(day, true).substr(2), TextEncoding::Utf16Be, {"A", "B"}, "named, without a mark"},
      {Utf8ToCp874(late), TextEncoding::ByContent, {"C", "D"}, "the code page, late"},
      {late, TextEncoding::ByContent, {"C", "D"}, "UTF-8, late"},
  };
  for (const auto& c : cases) {
    for (const std::size_t block : {std::size_t{1}, std::size_t{3}, std::size_t{70'000}}) {
      const Read read = ReadDay(c.bytes, block, {c.encoding});
      EXPECT_THAT(read.problems, IsEmpty()) << c.why;
      EXPECT_EQ(read.printed, c.printed) << c.why << ", blocks of " << block;
    }
  }
  const Read read = ReadDay(Utf8ToCp874(day));
  EXPECT_EQ(read.documents.front().customer, "เก๋"_th);
  EXPECT_EQ(read.documents.back().lines.front().item, "น้ำ €"_th);
}

// One problem, at the line where the encoding ends; what stands whole before it is printed.
TEST(DayReader, BrokenEncodings) {
  const std::string thai = Row("A", "2026-11-24,ก,ข,1,5,,7") + Row("B", "2026-11-24,ก,ข,1,5,,7");
  const std::string day = std::string(kHeader) + thai;
  std::string longDay = day;
  for (int i = 0; i < 2000; ++i) longDay += Row("B", "2026-11-24,ก,ข,1,5,,7");
  const std::string advice = "; save it in one encoding, or name another one with --encoding";
  const std::string zero =
      "a zero byte stands here; a file in UTF-16 needs its byte-order mark or --encoding utf-16le";
  const struct {
    std::string bytes, problem;
    TextEncoding encoding;
  } cases[] = {
      {day + Utf8ToCp874(thai), "line 4: from here on the file is not in UTF-8" + advice, {}},
      {longDay + Utf8ToCp874(thai),
       "line 2004: from here on the file is not in UTF-8" + advice,
       {}},
      {Utf8ToCp874(day) + "C,2026-11-24,\x81",
       "line 4: from here on the file is not in code page 874" + advice,
       {}},
      {Utf8ToCp874(day), "line 2: from here on the file is not in UTF-8" + advice,
       TextEncoding::Utf8},
      {day, "line 2: from here on the file is not in code page 874" + advice, TextEncoding::Cp874},
      {AsUtf16(day, false) + "x", "line 4: from here on the file is not in UTF-16" + advice, {}},
      {AsUtf16(day, false) + "\x01\xDC",
       "line 4: from here on the file is not in UTF-16" + advice,
       {}},
      {AsUtf16(day, false).substr(2), "line 1: " + zero, {}},
      {day + "C\xE0\xB8", "line 4: from here on the file is not in UTF-8" + advice, {}},
  };
  for (const auto& c : cases) {
    for (const std::size_t block : {std::size_t{1}, std::size_t{70'000}}) {
      const Read read = ReadDay(c.bytes, block, {c.encoding});
      ASSERT_FALSE(read.problems.empty()) << c.problem;
      EXPECT_EQ(read.problems.front(), c.problem);
      EXPECT_LE(read.problems.size(), 2U) << "and the document that it cuts off: " << c.problem;
    }
  }
}

TEST(DayReader, Separators) {
  const std::string comma = std::string(kHeader) + Row("A") + Row("B");
  const auto separated = [&comma](char separator) {
    std::string text = comma;
    std::ranges::replace(text, ',', separator);
    return text;
  };
  const struct {
    std::string text;
    char separator;
    std::vector<std::string> printed;
    std::string first;
    const char* why;
  } cases[] = {
      {separated(';'), 0, {"A", "B"}, "", "semicolons"},
      {separated('\t'), 0, {"A", "B"}, "", "tabs"},
      {"\r\n\r\nsep=;\r\n" + separated(';'), 0, {"A", "B"}, "", "named by the file"},
      {"SEP=|\n" + separated('|'), 0, {"A", "B"}, "", "any one"},
      {separated('|'), '|', {"A", "B"}, "", "named by the user"},
      {"sep=;\n" + comma, ',', {"A", "B"}, "", "the user knows better"},
      {"document;date;customer;item;quantity;price;discount;vat;\"a, "
       "b\"\nA;2026-11-24;C;I;1;5;;7;\n",
       0,
       {"A"},
       "line 1, column 9 (a, b): warning: the column is unknown and ignored",
       "a comma in quotes"},
      {"document,date;customer\nA\n",
       0,
       {},
       "line 1: the header has more than one of comma, semicolon and tab: name the separator with "
       "--separator",
       "two kinds"},
      {"document\nA\n", 0, {}, "line 1: column date is missing", "no separator"},
  };
  for (const auto& c : cases) {
    DayFormat format;
    format.separator = c.separator;
    for (const std::size_t block : {std::size_t{1}, std::string_view::npos}) {
      const Read read = ReadDay(c.text, block, format);
      EXPECT_EQ(read.printed, c.printed) << c.why;
      EXPECT_EQ(read.problems.empty() ? "" : read.problems.front(), c.first) << c.why;
    }
  }
}

// Left out, these would make false receipts.
TEST(DayReader, LinesThatLookLikeTotals) {
  const std::string head = "item,document,date,customer,quantity,price,discount,vat\n";
  const Read named = ReadDay(head + "Total,A,2026-11-24,C,1,5,,7\nรวม,A,,,1,5,,7\n");
  EXPECT_THAT(named.problems, IsEmpty());
  EXPECT_EQ(named.documents.front().lines.size(), 2U);
  const Read unnamed = ReadDay(head + "x,A,2026-11-24,C,1,5,,7\nTotal,,,,1,5,,7\n");
  EXPECT_THAT(unnamed.printed, IsEmpty());
}

TEST(DayReader, HeaderProblems) {
  EXPECT_THAT(ReadDay("").problems, ElementsAre("line 1: the header line is missing"));
  EXPECT_THAT(ReadDay("document,date,customer,item,quantity,price,discount\nA\n").problems,
              ElementsAre("line 1: column vat is missing"));
  EXPECT_THAT(ReadDay("vat,document,date,customer,item,quantity,price,discount,VAT\nA\n").problems,
              ElementsAre("line 1, column 9 (VAT): the column stands twice"));
  std::string thai;
  for (int i = 0; i < 30; ++i) thai += "ก";
  EXPECT_THAT(ReadDay(thai + "," + std::string(kHeader)).problems,
              ElementsAre("line 1, column 1 (" + thai.substr(0, 78) +
                              "): warning: the column is unknown and ignored",
                          "no documents: no row follows the header"))
      << "a long name is cut between letters";
  const Read read = ReadDay(
      "\xEF\xBB\xBF Vat ,note,document,date,customer,item,quantity,price,discount\r\n"
      "7,n,A,1/2/2569,C,ไข่,-1.5,5,1\r\n");
  EXPECT_THAT(read.problems,
              ElementsAre("line 1, column 2 (note): warning: the column is unknown and ignored"));
  ASSERT_THAT(read.printed, ElementsAre("A"));
  const Document& document = read.documents.front();
  EXPECT_EQ(document.date, EncodeDate(2026, 2, 1));
  EXPECT_EQ(document.lines.front().item, "ไข่"_th);
  EXPECT_EQ(document.lines.front().discount, -1_baht) << "the sign of the quantity";
}

// Such a document is read as it stands, with a warning.
TEST(DayReader, DoubtfulYearsAreTold) {
  const struct {
    const char *date, *warning;  // "" for none
  } cases[] = {
      {"25/11/2569", ""},
      {"25/11/2006", ""},
      {"25/11/3112", "3112 looks like a year to which 543 was added twice: it would be 2026"},
      {"25/11/2399", "the year 2399, 2399 as it was typed, lies more than 20 years ahead"},
      {"25/11/2469", "the year 1926, 2469 as it was typed, lies more than 20 years back"},
      {"2005-11-25", "the year 2005, 2005 as it was typed, lies more than 20 years back"},
  };
  for (const auto& c : cases) {
    const std::string row = std::string(c.date) + ",C,I,1,5,,7";
    const Read read = ReadDay(std::string(kHeader) + Row("A", row) + Row("A", row));
    EXPECT_THAT(read.printed, ElementsAre("A"));
    if (*c.warning == 0) {
      EXPECT_THAT(read.problems, IsEmpty()) << c.date;
    } else {
      EXPECT_THAT(read.problems,
                  ElementsAre(std::string("line 2, column 2 (date): warning: ") + c.warning));
    }
  }
}

TEST(Columns, Amounts) {
  const struct {
    const char* text;
    std::int64_t raw;  // 0: refused
  } cases[] = {
      {"1,200", 1200'0000},
      {"1,200.50", 1200'5000},
      {"-12,345,678.9", -12'345'678'9000},
      {"+1,200 ", 1200'0000},
      {"12.50", 12'5000},
      {"12,00", 0},
      {"1.200,50", 0},
      {"1,2000", 0},
      {"1200,500", 0},
      {",500", 0},
      {"1,200.5,0", 0},
      {"1,200,", 0},
      {"1,,200", 0},
      {"1,200e3", 0},
      {"1.000,000", 0},
  };
  for (const auto& c : cases) {
    if (c.raw == 0) {
      EXPECT_THROW(ParseAmount(c.text), EConvertError) << c.text;
    } else {
      EXPECT_EQ(ParseAmount(c.text), Currency::FromRaw(c.raw)) << c.text;
    }
  }
}

TEST(Columns, NumbersInTheFilesOwnHand) {
  const struct {
    std::string_view text;
    DecimalMark mark;
    std::int64_t raw;  // 0: refused
  } cases[] = {
      {"1.234,50", DecimalMark::Comma, 1234'5000},
      {"-1.234.567,5", DecimalMark::Comma, -1'234'567'5000},
      {"1,250", DecimalMark::Comma, 1'2500},
      {"1,250", DecimalMark::Point, 1250'0000},
      {"1,234.50", DecimalMark::Comma, 0},
      {"12,50", DecimalMark::Point, 0},
      {"๑,๒๓๔.๕๐"_th, DecimalMark::Point, 1234'5000},
      {"๑.๒๓๔,๕"_th, DecimalMark::Comma, 1234'5000},
      {"๑ก"_th, DecimalMark::Point, 0},
  };
  for (const auto& c : cases) {
    if (c.raw == 0) {
      EXPECT_THROW(ParseNumber(c.text, c.mark), EConvertError) << c.text;
    } else {
      EXPECT_EQ(ParseNumber(c.text, c.mark), Currency::FromRaw(c.raw)) << c.text;
    }
  }
}

TEST(Columns, YearsOfTwoDigits) {
  EXPECT_EQ(ParseDate("24/11/69", 543).date, EncodeDate(2026, 11, 24));
  EXPECT_EQ(ParseDate("24/11/69", 0).date, EncodeDate(2069, 11, 24));
  EXPECT_EQ(ParseDate("๒๔/๑๑/๒๕๖๙"_th).date, EncodeDate(2026, 11, 24));
  EXPECT_THROW(ParseDate("26-11-24", 543), EConvertError) << "the year may stand first";
}

TEST(Columns, Dates) {
  const struct {
    const char* text;
    int year, month, day;  // 0: refused
  } cases[] = {
      {"2026-11-24", 2026, 11, 24},
      {"2569-11-24", 2026, 11, 24},
      {"24/11/2569", 2026, 11, 24},
      {"1/2/2026", 2026, 2, 1},
      {"29/02/2567", 2024, 2, 29},
      {"29/02/2568", 0, 0, 0},
      {"2399-01-01", 2399, 1, 1},
      {"2400-01-01", 1857, 1, 1},
      {"26-11-24", 0, 0, 0},
      {"2026-1-2", 0, 0, 0},
      {"24/11/26", 2026, 11, 24},
      {"24-11-2026", 2026, 11, 24},
      {"2569-11-24 0:00", 2026, 11, 24},
      {"24/11/2569 00:00:00", 2026, 11, 24},
      {"2026-11-24T23:59:59.999", 2026, 11, 24},
      {"24/11/2569 25:00", 0, 0, 0},
      {"24/11/2569 noon", 0, 0, 0},
      {"2026/11/24", 0, 0, 0},
      {"24/11/2026x", 0, 0, 0},
      {"24//2026", 0, 0, 0},
      {"24/11", 0, 0, 0},
      {"-1-01-01", 0, 0, 0},
      {"24/11/20/26", 0, 0, 0},
  };
  for (const auto& c : cases) {
    if (c.year == 0) {
      EXPECT_THROW(ParseDate(c.text), EConvertError) << c.text;
    } else {
      EXPECT_EQ(ParseDate(c.text).date, EncodeDate(c.year, c.month, c.day)) << c.text;
    }
  }
}

}  // namespace
}  // namespace kvshare::receipts
