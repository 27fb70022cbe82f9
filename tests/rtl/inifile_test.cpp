#include "kvshare/rtl/inifile.h"

#include <gtest/gtest.h>

#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/filebytes.h"
#include "kvshare/rtl/iniparser.h"
#include "tests/support.h"

namespace kvshare {
namespace {

class IniFile : public ::testing::Test {
 protected:
  void Put(std::string_view bytes) { WriteFileBytes(ini.FileName(), bytes); }
  std::string Bytes() const { return ReadFileBytes(ini.FileName()); }

  TemporaryFolder folder;
  TIniFile ini{folder.File("test.ini")};
};

constexpr std::string_view kFile =
    "Lost=before the first header\r\n"
    "  [ Main ] what follows counts for nothing\r\n"
    "; Comment=no\r\n"
    "  ;Comment2=no\n"
    "#Hash=yes\n"
    "\t Key \t=\t value ; tail \t\r"
    "key=second\r\n"
    "Empty=\r\n"
    "no key\r\n"
    "Double=\" in \"\r\n"
    "Single='%S'\r\n"
    "Nothing=\"\"\r\n"
    "Twice=''a''\r\n"
    "Mixed=\"a'\r\n"
    "Lone=\"\r\n"
    "[open=3\r\n"
    "Number=0x1F\r\nHex=$10\r\nApples=12 apples\r\nMinus=-1\r\nZero=0\r\nTrue=true\r\n"
    "[Other]\r\n"
    "[main]\r\n"
    "Late=1\r\n"
    "[Other]\r\n"
    "Last=x";

TEST_F(IniFile, ContentsAreThoseOfOneMoment) {
  Put("a[0]=[Main]\n  x [Main]\n [ Main ]\r Key=1\n[Open\n[Other]\nKey=2");
  const TIniContents contents(ini.FileName());
  Put("[Main]\nKey=3");
  EXPECT_EQ(contents.ReadInteger("main", "key", 0), 1) << "brackets inside a line are no header";
  EXPECT_EQ(contents.ReadString("Other", "Key", ""), "2");
  EXPECT_FALSE(contents.SectionExists("Open"));
  EXPECT_FALSE(contents.SectionExists("0"));
  EXPECT_EQ(ini.ReadInteger("Main", "Key", 0), 3);
  EXPECT_FALSE(TIniContents(folder.File("none")).SectionExists(""));
}

TEST_F(IniFile, ReadsAsThePlatformDoes) {
  struct Case {
    std::string_view section, key, want;
    const char* why;
  };
  constexpr Case kCases[] = {
      {"main", "KEY", "value ; tail", "blanks and tabs dropped, case ignored, first of two"},
      {"Main", "; Comment", "?", "comment"},
      {"Main", "Comment2", "?", "comment behind blanks"},
      {"Main", "#Hash", "yes", "# is an ordinary byte"},
      {"Main", "Empty", "", "an empty value is not the default"},
      {"Main", "no key", "?", "no ="},
      {"Main", "Double", " in ", "blanks inside quotes stay"},
      {"Main", "Single", "%S", "single quotes"},
      {"Main", "Nothing", "", "nothing between quotes"},
      {"Main", "Twice", "'a'", "one pair only"},
      {"Main", "Mixed", "\"a'", "unequal quotes stay"},
      {"Main", "Lone", "\"", "a lone quote stays"},
      {"Main", "[open", "3", "no ], no header"},
      {"Main", "Late", "?", "only the first section of a name"},
      {"Other", "Last", "?", "only the first, though empty"},
  };
  Put(kFile);
  for (const Case& c : kCases) EXPECT_EQ(ini.ReadString(c.section, c.key, "?"), c.want) << c.why;
  EXPECT_EQ(ini.ReadString("Main", "none", " 'a' \t  "), " 'a' \t") << "the default's blanks";
}

TEST_F(IniFile, NumbersAndBooleans) {
  struct Case {
    std::string_view key;
    int number;  // of the default -9
    bool ofTrue, ofFalse;
  };
  constexpr Case kCases[] = {
      {"Number", 31, true, true}, {"Hex", 16, true, true},      {"Apples", -9, true, false},
      {"Minus", -1, true, true},  {"Zero", 0, false, false},    {"True", -9, true, false},
      {"Empty", -9, true, false}, {"Missing", -9, true, false},
  };
  Put(kFile);
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.key);
    EXPECT_EQ(ini.ReadInteger("Main", c.key, -9), c.number);
    EXPECT_EQ(ini.ReadBool("Main", c.key, true), c.ofTrue);
    EXPECT_EQ(ini.ReadBool("Main", c.key, false), c.ofFalse);
  }
}

TEST_F(IniFile, Lists) {
  Put(kFile);
  TStringList list;
  list.Add("old");
  ini.ReadSections(list);
  EXPECT_EQ(list.CommaText(), "Main,Other,main,Other");
  ini.ReadSection("OTHER", list);
  EXPECT_EQ(list.Count(), 0);
  Put("[s]\nb=' 1'\n;c=2\nB=2\nno\ne=\n[t]\nx=1");
  ini.ReadSection("S", list);
  EXPECT_EQ(list.CommaText(), "b,B,e");
  ini.ReadSectionValues("s", list);
  EXPECT_EQ(list.Text(), "b= 1\r\nB= 1\r\ne=\r\n") << "a repeated key has the first value";
  EXPECT_TRUE(ini.SectionExists("T"));
  EXPECT_FALSE(ini.SectionExists("u"));
  EXPECT_TRUE(ini.ValueExists("s", "E"));
  EXPECT_FALSE(ini.ValueExists("t", "b"));
}

TEST_F(IniFile, MissingFileAndByteOrderMark) {
  TStringList list;
  EXPECT_EQ(ini.ReadString("s", "k", "d"), "d");
  ini.ReadSections(list);
  EXPECT_EQ(list.Count(), 0);
  Put("\xEF\xBB\xBF[s]\r\nk=1\r\n[t]\r\nk=2\r\n");
  EXPECT_EQ(ini.ReadString("s", "k", "d"), "d") << "the mark spoils the first header";
  EXPECT_EQ(ini.ReadString("t", "k", "d"), "2");
}

TEST_F(IniFile, BufferLimits) {
  const std::string longest(2047, 'v');
  Put("[s]\nk='" + longest + "w'\n");
  EXPECT_EQ(ini.ReadString("s", "k", ""), longest);
  EXPECT_EQ(ini.ReadString("s", "none", longest + "w"), longest);

  std::string bytes = "[s]\n";
  for (int i = 0; i < 3000; ++i) bytes += "key" + std::to_string(1000 + i) + "=" + longest + "\n";
  Put(bytes);
  TStringList list;
  ini.ReadSection("s", list);
  ASSERT_EQ(list.Count(), 2048) << "8 bytes each of 16384, two of them zero at the end";
  EXPECT_EQ(list[2046], "key3046");
  EXPECT_EQ(list[2047], "key304") << "the last name loses a byte";
  ini.ReadSectionValues("s", list);
  EXPECT_EQ(list[2046], "key3046=" + longest);
  EXPECT_EQ(list[2047], "key304=");
}

TEST_F(IniFile, WritingKeepsEveryOtherByte) {
  struct Case {
    std::string_view before, section, key, value, after;
    const char* why;
  };
  constexpr Case kCases[] = {
      {"", "s", "k", "v", "[s]\r\nk=v\r\n", "new file"},
      {"[s]\n Key = old \n;c\n", "S", "kEY", "new", "[s]\n Key = new \n;c\n", "spelling stays"},
      {"[s]\nk=\nk=2", "s", "k", "1", "[s]\nk=1\nk=2", "the first of two"},
      {"[s]\na=1\n;c\n\n[t]\n", "s", "k", "v", "[s]\na=1\n;c\nk=v\n\n[t]\n",
       "behind the last line"},
      {"[s]\r\na=1", "s", "k", "v", "[s]\r\na=1\r\nk=v\r\n", "a last line without end"},
      {"[s]\na=1\n\n", "s", "k", "v", "[s]\na=1\nk=v\n\n", "a blank line at the end"},
      {"[s]\na='1'\n", "t", "k", "v", "[s]\na='1'\n\n[t]\nk=v\n", "new section"},
      {"[s]\nk=\"q\"\n", "s", "k", "'w'", "[s]\nk=\"'w'\"\n", "quotes that would be taken off"},
      {"[s]\n", "s", "k", " v", "[s]\nk=\" v\"\n", "blanks that would be dropped"},
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.why);
    Put(c.before);
    ini.WriteString(c.section, c.key, c.value);
    EXPECT_EQ(Bytes(), c.after);
    EXPECT_EQ(ini.ReadString(c.section, c.key, "?"), c.value);
  }
  ini.WriteInteger("s", "n", -5);
  ini.WriteBool("s", "b", true);
  EXPECT_EQ(Bytes(), "[s]\nk=\" v\"\nn=-5\nb=1\n");
  ini.DeleteKey("s", "K");
  ini.DeleteKey("s", "none");
  EXPECT_EQ(Bytes(), "[s]\nn=-5\nb=1\n");
  Put(";top\n[a]\nx=1\n\n[s]\nk\n[t]\ny=2");
  ini.EraseSection("A");
  ini.EraseSection("none");
  EXPECT_EQ(Bytes(), ";top\n[s]\nk\n[t]\ny=2");
  ini.EraseSection("t");
  EXPECT_EQ(Bytes(), ";top\n[s]\nk\n");
}

TEST_F(IniFile, RefusesWhatItCouldNotReadBack) {
  struct Case {
    std::string_view section, key, value;
  };
  constexpr Case kCases[] = {
      {"a]b", "k", "v"}, {" a", "k", "v"},  {"a\n", "k", "v"},
      {"a", "k=", "v"},  {"a", ";k", "v"},  {"a", "k ", "v"},
      {"a", "k\r", ""},  {"a", "[k", "v]"}, {"a", "k", "v\n[b]"},
  };
  for (const Case& c : kCases) {
    EXPECT_THROW(ini.WriteString(c.section, c.key, c.value), EIniFileException) << c.key;
  }
  EXPECT_FALSE(FileExists(ini.FileName()));

  TIniFile nowhere(folder.File("none/x.ini"));
  EXPECT_EQ(MessageOf<EIniFileException>([&] { nowhere.WriteString("s", "k", "v"); }),
            "Unable to write to " + nowhere.FileName());
}

}  // namespace
}  // namespace kvshare
