// Data packets of client datasets: what is read, what is refused, and what is written.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <random>
#include <string>
#include <vector>

#include "kvshare/data/clientdataset.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/files.h"
#include "tests/support.h"

namespace kvshare {
namespace {

using ::testing::AllOf;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;
using enum TFieldType;

constexpr std::string_view kHead = R"(<?xml version="1.0" standalone="yes"?>  )";

std::string Packet(std::string_view fields, std::string_view params, std::string_view rows) {
  std::string text = "<DATAPACKET Version=\"2.0\"><METADATA><FIELDS>";
  text.append(fields).append("</FIELDS>").append(params).append("</METADATA><ROWDATA>");
  return text.append(rows).append("</ROWDATA></DATAPACKET>");
}

constexpr std::string_view kCode = R"(<FIELD attrname="CODE" fieldtype="string" WIDTH="10"/>)";
constexpr std::string_view kQty = R"(<FIELD attrname="QTY" fieldtype="i4"/>)";

std::string Items(std::string_view params, std::string_view rows) {
  return Packet(std::string(kCode).append(kQty), params, rows);
}

// The records in view: `code qty`, what changed with its status and its earlier values.
std::string Dump(TClientDataSet& set) {
  constexpr std::string_view kStatus[] = {"", "modified ", "inserted ", "deleted "};
  std::string text;
  for (set.First(); !set.Eof(); set.Next()) {
    text += kStatus[static_cast<int>(set.UpdateStatus())];
    for (int i = 0; i < set.FieldCount(); ++i) {
      const TField& field = set.Fields(i);
      text += field.IsNull() ? "-" : field.AsString();
      const Variant old = field.OldValue();
      const bool changed =
          set.UpdateStatus() != TUpdateStatus::usDeleted && old != field.NewValue();
      if (changed) text += "(" + (old.IsNull() ? "-" : old.AsString()) + ")";
      text += i + 1 < set.FieldCount() ? " " : "; ";
    }
  }
  return text;
}

std::string DumpAll(TClientDataSet& set) {
  std::string text = Dump(set);
  set.SetStatusFilter({.usDeleted = true});
  text += Dump(set);
  set.SetStatusFilter({});
  return text;
}

std::string Refusal(TClientDataSet& set, std::string_view packet) {
  return MessageOf<EDBClient>([&] { set.SetXMLData(packet); });
}

TEST(Packet, ReadsAndWritesEachType) {
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

TEST(Packet, RefusesWhatIsNoValue) {
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
      {"r8", {"1,5", "1e400", "1.5.", "abc"}},
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

TEST(Packet, RefusesWhatIsNoPacket) {
  struct Case {
    std::string packet;
    std::string_view reason;
  };
  const std::string doubled = std::string(kCode) + R"(<FIELD attrname="Code" fieldtype="i4"/>)";
  const std::string deep = [] {
    std::string open;
    std::string close;
    for (int i = 0; i < 1000; ++i) {
      open += "<X>";
      close += "</X>";
    }
    return Packet(kCode, open + close, "");
  }();
  const Case kCases[] = {
      {"", "no element found"},
      {"\x96\x19\xE0\xBD\x01", "binary form"},
      {"CODE,QTY\r\n", "syntax error"},
      {"\n<A/>", "Line 2: no DATAPACKET but 'A'"},
      {"<DATAPACKET/>", "no METADATA"},
      {"<DATAPACKET><ROWDATA/><METADATA><FIELDS/></METADATA></DATAPACKET>", "no METADATA"},
      {Packet("", "", ""), "no fields"},
      {Packet("<FIELD fieldtype=\"i4\"/>", "", ""), "without a name"},
      {Packet("<FIELD attrname=\"A\"/>", "", ""), "has the type ''"},
      {Packet("<FIELD attrname=\"A\" fieldtype=\"nested\"/>", "", ""), "the type 'nested'"},
      {Packet("<FIELD attrname=\"A\" fieldtype=\"i4\"><FIELDS/></FIELD>", "", ""), "fields inside"},
      {Packet("<FIELD attrname=\"A\" fieldtype=\"string\" WIDTH=\"-1\"/>", "", ""), "WIDTH '-1'"},
      {Packet(doubled, "", ""), "two fields 'Code'"},
      {Packet("<GROUP/>", "", ""), "'GROUP' among the fields"},
      {Items("<PARAMS/><PARAMS/>", ""), "a second 'PARAMS'"},
      {Items("", "<ROW CODE=\"A\" code=\"B\"/>"), "two values of the field 'CODE'"},
      {Items("", "<ROW CODE=\"A\" CODE=\"B\"/>"), "duplicate attribute"},
      {Items("", "<ROW><ROW/></ROW>"), "inside a record"},
      {Items("", "<LINE/>"), "no ROW"},
      {Items("<ROWDATA/>", ""), "rows inside another element"},
      {Items("", "<ROW RowState=\"256\"/>"), "RowState '256'"},
      {Items("", "text"), "text between"},
      {Items("<PARAMS PRIMARY_KEY=\"3\"/>", ""), "PRIMARY_KEY names field 3"},
      {Items("<PARAMS DEFAULT_ORDER=\"0\"/>", ""), "DEFAULT_ORDER names field 0"},
      {Items("<PARAMS PRIMARY_KEY=\"CODE\"/>", ""), "'CODE' is no number"},
      {Packet("<FIELD attrname=\"A\" fieldname=\"A;B\" fieldtype=\"i4\"/>",
              "<PARAMS PRIMARY_KEY=\"1\"/>", ""),
       "'A;B', which no list"},
      {deep, "too deep"},
      {"<!DOCTYPE a [<!ENTITY b \"b\">]>" + Items("", ""), "document type"},
      {"<!DOCTYPE a [<!ENTITY b \"bbbbbbbb\"><!ENTITY c \"&b;&b;&b;&b;\">]><DATAPACKET A=\"&c;\"/>",
       "document type"},
      {Items("", "<ROW CODE=\"&b;\"/>"), "undefined entity"},
      {Items("", "<ROW CODE=\"&#3585;&#8364;&#9999;\"/>"), "U+270F"},
      {Items("", "<ROW CODE=\"&#65535;\"/>"), "a letter that there is none of"},
      {R"(<?xml version="1.0" encoding="KOI8-R"?>)" + Items("", ""), "unknown encoding"},
      {R"(<?xml version="1.0" encoding="UTF-16"?>)" + Items("", ""), "encoding"},
      {R"(<?xml version="1.0" encoding="UTF-8"?>)" + Items("", "<ROW CODE=\"\xA1\"/>"),
       "not well-formed"},
      {R"(<?xml version="1.0" encoding="UTF-8"?>)" + Items("", "<ROW CODE=\"\xC3\xA9\"/>"),
       "no letter U+E9 in code page 874"},
      {R"(<?xml version="1.0" encoding="TIS-620"?>)" + Items("", "<ROW CODE=\"\x81\"/>"),
       "no letter U+81"},
  };
  TClientDataSet set;
  set.SetXMLData(Items("<PARAMS CHANGE_LOG=\"1 0 4\"/>", "<ROW RowState=\"4\" CODE=\"A\"/>"));
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.packet.substr(0, 300));
    EXPECT_THAT(Refusal(set, c.packet),
                AllOf(StartsWith("Mismatch in datapacket. "), HasSubstr(c.reason)));
    EXPECT_EQ(Dump(set), "inserted A(-) -; ") << "as it was";
  }
}

TEST(Packet, TakesNoPartForTheWhole) {
  const std::string whole =
      std::string(kHead) + Items("<PARAMS CHANGE_LOG=\"2 1 8\" LCID=\"1054\"/>",
                                 "<ROW RowState=\"1\" CODE=\"&#161;\" QTY=\"1\"/>"
                                 "<ROW RowState=\"8\" CODE=\"&#162;\" QTY=\"2\"/>");
  TClientDataSet set;
  set.SetXMLData(Items("", "<ROW CODE=\"A\"/>"));
  set.Edit();
  set.Fields(1).SetAsInteger(5);
  for (std::size_t size = 0; size < whole.size(); ++size) {
    ASSERT_THAT(Refusal(set, whole.substr(0, size)), StartsWith("Mismatch in datapacket. "));
    ASSERT_EQ(set.State(), TDataSetState::dsEdit);
    ASSERT_EQ(set.Fields(1).AsInteger(), 5);
  }
  set.SetXMLData(whole);
  EXPECT_EQ(Dump(set), "modified \xA2(\xA1) 2(1); ") << "the pending edit is dropped";
  EXPECT_EQ(set.XMLData(), whole);
}

TEST(Packet, ReadsTheLettersOfEachEncoding) {
  const auto utf16 = [](std::string_view text, bool bigEndian) {
    std::string out = bigEndian ? "\xFE\xFF" : "\xFF\xFE";
    for (const char c : text) {
      const auto letter = Cp874ToUnicode(static_cast<unsigned char>(c));
      const char high = static_cast<char>(letter >> 8);
      const char low = static_cast<char>(letter);
      out += bigEndian ? std::string{high, low} : std::string{low, high};
    }
    return out;
  };
  const std::string thai = Packet("<FIELD attrname=\"\xC3\xCB\xD1\xCA\" fieldtype=\"string\"/>", "",
                                  "<ROW \xC3\xCB\xD1\xCA=\"\xA1\xD2\xE4\x80\x85\"/>");
  const auto declared = [](std::string_view encoding) {
    return "<?xml version=\"1.0\" encoding='" + std::string(encoding) + "'?>";
  };
  const std::string packets[] = {
      thai,
      " \r\n" + std::string(kHead) + thai,
      declared("windows-874") + thai,
      declared("tis-620") + thai,
      declared("UTF-8") + Cp874ToUtf8(thai),
      "\xEF\xBB\xBF" + Cp874ToUtf8(thai),
      "\xEF\xBB\xBF\n" + declared("utf-8") + Cp874ToUtf8(thai),
      utf16(thai, false),
      utf16(declared("UTF-16") + thai, true),
      Packet("<FIELD attrname=\"X\" fieldname=\"&#195;&#203;&#209;&#202;\" fieldtype=\"string\"/>",
             "", "<ROW X=\"&#xA1;&#3634;&#228;&#x20AC;&#133;\"/>"),
  };
  for (const std::string& packet : packets) {
    SCOPED_TRACE(packet);
    TClientDataSet set;
    set.SetXMLData(packet);
    EXPECT_EQ(set.Fields(0).FieldName(), "รหัส"_th);
    EXPECT_EQ(set.Fields(0).AsString(), "กาไ€…"_th);
    const std::string saved = set.XMLData();
    EXPECT_THAT(saved, HasSubstr("=\"&#161;&#210;&#228;&#128;&#133;\""));
    set.SetXMLData(saved);
    EXPECT_EQ(set.Fields(0).AsString(), "กาไ€…"_th);
    EXPECT_EQ(set.XMLData(), saved);
  }
}

TEST(Packet, KeepsWhatItDoesNotKnow) {
  const std::string packet =
      std::string(kHead) +
      "<DATAPACKET Version=\"2.0\" OWNER=\"&#161;\"><METADATA NOTE=\"1\"><FIELDS COUNT=\"3\">"
      "<FIELD attrname=\"CODE\" fieldtype=\"string\" required=\"true\" HINT=\"&lt;&#010;\" "
      "WIDTH=\"10\"><PARAM Name=\"ORIGIN\" Value=\"T.CODE\"/></FIELD>"
      "<FIELD fieldtype=\"fixed\" attrname=\"PRICE\" WIDTH=\"19\" DECIMALS=\"4\"/>"
      "<FIELD attrname=\"SMALL\" fieldtype=\"ui1\" readonly=\"true\"/></FIELDS>"
      "<PARAMS LCID=\"1054\" DEFAULT_ORDER=\"2 1\" PRIMARY_KEY=\"1\" "
      "MD_FIELDLINKS=\"1 2\" CHANGE_LOG=\"2 1 8\"><PARAM Name=\"X\"/></PARAMS></METADATA>"
      "<ROWDATA PAGE=\"1\"><ROW RowState=\"1\" CODE=\"A\" SMALL=\"1\" seen=\"no\"/>"
      "<ROW RowState=\"8\" CODE=\"A\" SMALL=\"2\" seen=\"yes\" by=\"me\"/>"
      "<ROW CODE=\"B\" PRICE=\"1.5\"/></ROWDATA></DATAPACKET>";
  TClientDataSet set;
  set.SetXMLData(packet);
  EXPECT_EQ(set.XMLData(), packet);
  EXPECT_TRUE(set.Fields(0).Required());
  EXPECT_EQ(set.Fields(1).Precision(), 19);

  ASSERT_TRUE(set.Locate("CODE", "A"));
  set.Delete();
  EXPECT_THAT(set.XMLData(), HasSubstr("CHANGE_LOG=\"1 0 2\""));
  EXPECT_THAT(set.XMLData(), HasSubstr("<ROW RowState=\"2\" CODE=\"A\" SMALL=\"1\""));
  set.EmptyDataSet();
  set.Append();
  set.Fields(0).SetAsString("C");
  set.Post();
  EXPECT_THAT(set.XMLData(),
              AllOf(HasSubstr("OWNER="), HasSubstr("<ROW RowState=\"4\" CODE=\"C\"/>")))
      << "another record has not the attributes of the one that was there";
  set.CreateDataSet();
  EXPECT_THAT(set.XMLData(), Not(HasSubstr("OWNER="))) << "a new set is no packet's";
}

TEST(Packet, ReadsTheLog) {
  struct Case {
    std::string_view why;
    std::string_view log;
    std::vector<int> states;  // of the rows A, B, C ..., QTY is their number
    std::string_view records;
    std::string_view saved;  // "" where it is the same log
  };
  const Case kCases[] = {
      {"none", "", {0, 0}, "A 1; B 2; ", ""},
      {"states without a log are plain", "", {4, 8, 64}, "A 1; B 2; C 3; ", ""},
      {"out of view without a log", "", {1, 2, 32, 0}, "D 4; ", ""},
      {"inserted", "2 0 4", {0, 4}, "A 1; inserted B(-) 2(-); ", ""},
      {"modified", "2 1 8", {1, 8}, "modified B(A) 2(1); ", ""},
      {"named the other way", "1 2 8", {8, 1}, "modified A(B) 1(2); ", "2 1 8"},
      {"deleted", "1 0 2", {2, 0}, "B 2; deleted A 1; ", ""},
      {"deleted by the log alone", "1 0 2", {0}, "deleted A 1; ", ""},
      {"inserted, then modified", "1 0 4", {12}, "inserted A(-) 1(-); ", ""},
      {"inserted, modified as a row more", "1 0 4 2 1 8", {5, 8}, "inserted B(-) 2(-); ", "1 0 4"},
      {"inserted, then deleted", "1 0 4 1 0 2", {6, 0}, "B 2; ", "-"},
      {"modified twice", "2 1 8 3 2 8", {1, 9, 8}, "modified C(A) 3(1); ", "2 1 8"},
      {"modified, then deleted", "2 1 8 2 0 2", {1, 10}, "deleted B 2; ", "1 0 2"},
      {"the order of the log",
       "4 3 8 2 1 8 5 0 2",
       {1, 8, 1, 8, 2},
       "modified B(A) 2(1); modified D(C) 4(3); deleted E 5; ",
       ""},
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.why);
    std::string rows;
    for (std::size_t i = 0; i < c.states.size(); ++i) {
      rows += "<ROW RowState=\"" + std::to_string(c.states[i]) + "\" CODE=\"" +
              std::string(1, static_cast<char>('A' + i)) + "\" QTY=\"" + std::to_string(i + 1) +
              "\"/>";
    }
    TClientDataSet set;
    set.SetXMLData(Items("<PARAMS CHANGE_LOG=\"" + std::string(c.log) + "\"/>", rows));
    const std::string records = DumpAll(set);
    const std::string saved = set.XMLData();
    const std::string_view log = c.saved.empty() ? c.log : c.saved;
    if (log.empty() || log == "-") {
      EXPECT_THAT(saved, HasSubstr("<PARAMS/>"));
      EXPECT_EQ(set.ChangeCount(), 0);
    } else {
      EXPECT_THAT(saved, HasSubstr("<PARAMS CHANGE_LOG=\"" + std::string(log) + "\"/>"));
    }
    set.SetXMLData(saved);
    EXPECT_EQ(set.XMLData(), saved);
    EXPECT_EQ(records, c.records);
  }
}

TEST(Packet, RefusesALogThatDoesNotFit) {
  struct Case {
    std::string_view log;
    std::string_view reason;
  };
  constexpr Case kCases[] = {
      {"1 0", "not in threes"},     {"1 0 4 2", "not in threes"},
      {"0 0 4", "row 0"},           {"4 0 4", "row 4 is not there"},
      {"1 4 8", "row 4"},           {"1 0 3", "unknown kind"},
      {"1 0 8", "change of none"},  {"1 1 8", "named twice"},
      {"2 1 8 3 1 8", "twice"},     {"2 1 8 2 3 8", "twice"},
      {"2 1 8 1 2 8", "of itself"}, {"2 1 8 3 2 8 1 3 8", "of itself"},
      {"-1 0 4", "no number"},      {"1 99999999999999999999 8", "no number"},
  };
  TClientDataSet set;
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.log);
    EXPECT_THAT(Refusal(set, Items("\n<PARAMS CHANGE_LOG=\"" + std::string(c.log) + "\"/>",
                                   "<ROW/><ROW/><ROW/>")),
                AllOf(StartsWith("Mismatch in datapacket. Line 2: "), HasSubstr(c.reason)));
  }
}

TEST(Packet, FillsWhatAChangeLeavesOut) {
  constexpr std::string_view kRows =
      "<ROW RowState=\"1\" CODE=\"A\" QTY=\"1\"/><ROW RowState=\"8\" QTY=\"2\"/>"
      "<ROW RowState=\"1\" CODE=\"B\" QTY=\"3\"/><ROW RowState=\"8\" CODE=\"\" QTY=\"\"/>"
      "<ROW RowState=\"4\" CODE=\"C\"/>";
  TClientDataSet set;
  set.SetXMLData(Items("<PARAMS DATASET_DELTA=\"1\" CHANGE_LOG=\"2 1 8 4 3 8 5 0 4\"/>", kRows));
  EXPECT_EQ(Dump(set), "modified A 2(1); modified (B) -(3); inserted C(-) -; ");
  const std::string saved = set.XMLData();
  EXPECT_THAT(saved, Not(HasSubstr("DATASET_DELTA"))) << "what is saved is whole";
  set.SetXMLData(saved);
  EXPECT_EQ(Dump(set), "modified A 2(1); modified (B) -(3); inserted C(-) -; ");
  set.SetXMLData(Items("<PARAMS DATASET_DELTA=\"1\"/>", kRows));
  EXPECT_EQ(Dump(set), "A 2;  -; C -; ");
}

TEST(Packet, BringsKeyAndOrder) {
  const std::string rows = "<ROW CODE=\"A\" QTY=\"2\"/><ROW CODE=\"B\" QTY=\"1\"/>";
  TClientDataSet set;
  set.SetXMLData(Items("<PARAMS DEFAULT_ORDER=\"2\" PRIMARY_KEY=\"1\"/>", rows));
  EXPECT_EQ(Dump(set), "B 1; A 2; ");
  set.SetIndexFieldNames("CODE");
  EXPECT_EQ(Dump(set), "A 2; B 1; ");
  set.SetIndexFieldNames("");
  EXPECT_EQ(Dump(set), "B 1; A 2; ");
  set.Append();
  set.Fields(0).SetAsString("A");
  EXPECT_EQ(MessageOf<EDBClient>([&] { set.Post(); }), "Key violation.");
  set.Cancel();
  EXPECT_EQ(Refusal(set, Items("<PARAMS PRIMARY_KEY=\"1\"/>", rows + rows)), "Key violation.");
  EXPECT_EQ(Dump(set), "B 1; A 2; ") << "as it was";

  set.SetPrimaryKey("QTY;CODE");
  EXPECT_THAT(set.XMLData(), HasSubstr("<PARAMS DEFAULT_ORDER=\"2\" PRIMARY_KEY=\"2 1\"/>"));
  set.SetIndexFieldNames("QTY");
  EXPECT_EQ(MessageOf<EDatabaseError>([&] { set.SetXMLData(Packet(kCode, "", "<ROW/>")); }),
            "Field 'QTY' not found");
  EXPECT_EQ(Dump(set), "B 1; A 2; ");
  set.SetIndexFieldNames("");
  set.SetXMLData(Items("", rows + rows));
  EXPECT_EQ(set.RecordCount(), 4) << "a packet without a key has none";
  EXPECT_EQ(set.PrimaryKey(), "");
}

TEST(Packet, NamesFieldsThatNoAttributeCan) {
  constexpr std::string_view kName = "ชื่อ"_th;
  const std::string names[] = {"F1",    "Unit price", "RowState", "2nd", std::string(kName),
                               "ฯ\x81", "a:b",        ""};
  TClientDataSet set;
  for (const std::string& name : names) set.FieldDefs().Add(name.empty() ? "-" : name, ftInteger);
  set.CreateDataSet();
  set.Append();
  for (int i = 0; i < set.FieldCount(); ++i) set.Fields(i).SetAsInteger(i);
  set.Post();
  const std::string saved = set.XMLData();
  EXPECT_THAT(saved, HasSubstr("<ROW RowState=\"4\" F1=\"0\" F2=\"1\" F3=\"2\" F4=\"3\" " +
                               std::string(kName) + "=\"4\" F5=\"5\""));
  TClientDataSet read;
  read.SetXMLData(saved);
  for (int i = 0; i < set.FieldCount(); ++i) {
    EXPECT_EQ(read.Fields(i).FieldName(), set.Fields(i).FieldName());
    EXPECT_EQ(read.Fields(i).AsInteger(), i);
  }
  EXPECT_EQ(read.XMLData(), saved);
}

TEST(Packet, SavesAFileWholeOrNotAtAll) {
  const TemporaryHome home;
  constexpr std::string_view kFile = "C:\\Lists\\items.xml";
  home.Make("Lists/items.xml", "earlier");
  TClientDataSet set;
  EXPECT_EQ(MessageOf<EDatabaseError>([&] { set.SaveToFile(kFile); }),
            "Cannot perform this operation on a closed dataset");
  set.FieldDefs().Add("DAY", ftDateTime);
  set.AddCalculated("LATER", ftDateTime);
  set.CreateDataSet();
  set.Append();
  set.Fields(0).SetAsDateTime(EncodeDate(9999, 12, 31) + 1);
  set.Post();
  EXPECT_THAT(MessageOf<EDBClient>([&] { set.SaveToFile(kFile); }),
              StartsWith("Field 'DAY': '10000-01-01 00:00:00' is no value"));
  EXPECT_EQ(ReadFileBytes(kFile), "earlier");
  set.Edit();
  set.Fields(0).SetAsDateTime(EncodeDate(9999, 12, 31));
  set.Post();
  set.SaveToFile(kFile);
  EXPECT_THAT(ReadFileBytes(kFile), AllOf(EndsWith("</DATAPACKET>"), Not(HasSubstr("LATER"))));
  set.EmptyDataSet();
  EXPECT_EQ(MessageOf<EInOutError>([&] { set.LoadFromFile("C:\\Lists\\none.xml"); }),
            "No such file or directory");
  EXPECT_TRUE(set.Active());
  set.LoadFromFile(kFile);
  EXPECT_EQ(set.Fields(0).AsDateTime(), EncodeDate(9999, 12, 31));
  EXPECT_EQ(set.FieldCount(), 2) << "calculated fields stay the program's";
  set.FieldDefs().Add("TYPE", ftVariant);
  set.CreateDataSet();
  EXPECT_EQ(MessageOf<EDBClient>([&] { set.XMLData(); }),
            "Field 'TYPE' is of a type that a data packet cannot hold");
}

TEST(Packet, HoldsALongMemo) {
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

  // As it is saved again; `refused` for what is none.
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

TEST(Packet, BringsBackEachByteOfATextAndABlob) {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
  for (const TFieldType type : {ftString, ftMemo, ftBlob, ftBytes}) {
    for (std::size_t size = 0; size <= bytes.size(); ++size) {
      TClientDataSet set;
      set.FieldDefs().Add("F", type);
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

TEST(Packet, TakesTheDaysAndTimesThatThereAre) {
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
TEST(Packet, ReadsEachSpellingOfANumberAlike) {
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
    TClientDataSet set;
    set.FieldDefs().Add("F", ftFloat);
    set.CreateDataSet();
    set.Append();
    set.Fields(0).SetAsFloat(number);
    set.Post();
    set.SetXMLData(set.XMLData());
    ASSERT_TRUE(set.Fields(0).AsFloat() == number || number != number);
  }
}

// Sets that were worked with in all kinds of ways are the same after a save and a load.
TEST(Packet, ComesBackAsItWasSaved) {
  std::mt19937 random(20261125);
  const auto below = [&random](unsigned limit) { return static_cast<int>(random() % limit); };
  const auto fill = [&](TClientDataSet& set) {
    for (int i = 1; i < set.FieldCount(); ++i) {
      if (below(3) == 0) continue;
      if (below(4) == 0) {
        set.Fields(i).Clear();
        continue;
      }
      switch (set.Fields(i).DataType()) {
        case ftString:
        case ftBlob: {
          std::string text;
          for (int n = below(9); n > 0; --n) text += static_cast<char>(below(256));
          set.Fields(i).SetAsString(text);
          break;
        }
        case ftDateTime:
          set.Fields(i).SetAsDateTime(TDateTime(below(80000) + below(86'400'000) / 86'400'000.0));
          break;
        default:
          set.Fields(i).SetAsFloat((below(2'000'001) - 1'000'000) / 64.0);
      }
    }
  };
  for (int round = 0; round < 60; ++round) {
    TClientDataSet set;
    set.FieldDefs().Add("ID", ftInteger);
    for (const TFieldType type : {ftString, ftBlob, ftDateTime, ftFloat, ftFMTBcd, ftLargeint}) {
      set.FieldDefs().Add("F" + std::to_string(static_cast<int>(type)), type);
    }
    set.CreateDataSet();
    set.SetPrimaryKey("ID");
    for (int step = 0; step < 60; ++step) {
      const int what = below(10);
      if (what < 4 || set.IsEmpty()) {
        what % 2 == 0 ? set.Append() : set.Insert();
        set.Fields(0).SetAsInteger(round * 100 + step);
        fill(set);
        set.Post();
      } else if (what < 7) {
        set.First();
        for (int n = below(8); n > 0 && !set.Eof(); --n) set.Next();
        set.Edit();
        fill(set);
        set.Post();
      } else if (what == 7) {
        set.Delete();
      } else if (what == 8 && below(8) == 0) {
        set.MergeChangeLog();
      } else if (what == 9) {
        set.UndoLastChange(below(2) == 0);
      }
    }
    const std::string saved = set.XMLData();
    TClientDataSet read;
    read.SetXMLData(saved);
    EXPECT_EQ(read.XMLData(), saved);
    set.SetIndexFieldNames("ID");
    read.SetIndexFieldNames("ID");
    EXPECT_EQ(Dump(read), Dump(set));
    EXPECT_EQ(read.ChangeCount(), set.ChangeCount());
    set.CancelUpdates();
    read.CancelUpdates();
    EXPECT_EQ(Dump(read), Dump(set)) << "what was before the changes came along";
  }
}

}  // namespace
}  // namespace kvshare
