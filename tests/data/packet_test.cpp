// Data packets of client datasets: their form, their log, and what is no packet.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "kvshare/data/client/clientdataset.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/filebytes.h"
#include "tests/data/packets.h"

namespace kvshare {
namespace {

using ::testing::AllOf;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;
using enum TFieldType;

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
      {Items("", "<ROW CODE=\"&#65535;\"/>"), "a letter that does not exist"},
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
  set.FieldDefs().Add("TYPE", ftVariant);
  set.CreateDataSet();
  EXPECT_EQ(MessageOf<EDBClient>([&] { set.SaveToFile(kFile); }),
            "Field 'TYPE' is of a type that a data packet cannot hold");
  EXPECT_EQ(ReadFileBytes(kFile), "earlier");
  set.FieldDefs().Clear();
  set.FieldDefs().Add("DAY", ftDateTime);
  set.AddCalculated("LATER", ftDateTime);
  set.CreateDataSet();
  set.Append();
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
      const int size = IsSized(type) ? 8 : 0;
      set.FieldDefs().Add("F" + std::to_string(static_cast<int>(type)), type, size);
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
