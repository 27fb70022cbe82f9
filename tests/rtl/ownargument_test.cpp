// Arguments that lie in the text or the list which a routine changes: each acts as a copy of it
// would. The texts are longer than what a string keeps in itself, so that they move.
#include <gtest/gtest.h>

#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/filebytes.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/formatdatetime.h"
#include "kvshare/rtl/formatfloat.h"
#include "kvshare/rtl/inifile.h"
#include "kvshare/rtl/stringlist.h"
#include "kvshare/rtl/strutils.h"
#include "tests/support.h"

namespace kvshare {
namespace {

std::string_view BehindFirst(const std::string& text) {
  return std::string_view{text}.substr(1);
}

TEST(OwnArgument, OfATextThatGrows) {
  const TDateTime day = EncodeDate(2026, 11, 24);
  std::string thai;
  thai += "บาทถ้วนบาทถ้วนบาทถ้วน"_th;
  const std::string behind = "x" + thai;
  const struct {
    const char* routine;
    std::string_view start;
    void (*grow)(std::string& out, TDateTime day);
    std::string_view grown;  // what stands behind `start` then
  } cases[] = {
      {"AppendUtf8", thai, [](std::string& out, TDateTime) { AppendUtf8(out, out); },
       "บาทถ้วนบาทถ้วนบาทถ้วน"},
      {"AppendUtf8 of a part", behind,
       [](std::string& out, TDateTime) { AppendUtf8(out, BehindFirst(out)); },
       "บาทถ้วนบาทถ้วนบาทถ้วน"},
      {"AppendCp874", "twenty letters twenty letters",
       [](std::string& out, TDateTime) { AppendCp874(out, BehindFirst(out)); },
       "wenty letters twenty letters"},
      {"AppendFormat, its pattern", "a pattern with %d and with %s in it",
       [](std::string& out, TDateTime) {
         AppendFormat(out, out, {7, "a text that is longer than the rest"});
       },
       "a pattern with 7 and with a text that is longer than the rest in it"},
      {"AppendFormat, an argument", "twenty letters twenty letters",
       [](std::string& out, TDateTime) {
         AppendFormat(out, " and %s%s", {out, "!"});
       },
       " and twenty letters twenty letters!"},
      {"AppendFormatAll", "twenty letters twenty letters",
       [](std::string& out, TDateTime) {
         AppendFormatAll(out, "%d%s", {1, out});
       },
       "1twenty letters twenty letters"},
      {"AppendFormatFloat of a real", "'a mask with a long text'0.00",
       [](std::string& out, TDateTime) { AppendFormatFloat(out, out, 1.5); },
       "a mask with a long text1.50"},
      {"AppendFormatFloat of an amount", "'a mask with a long text'0.00",
       [](std::string& out, TDateTime) { AppendFormatFloat(out, out, 1.5_baht); },
       "a mask with a long text1.50"},
      {"AppendFormatDateTime", "'a pattern with a long text' dd/mm/yyyy",
       [](std::string& out, TDateTime moment) { AppendFormatDateTime(out, out, moment); },
       "a pattern with a long text 24/11/2026"},
  };
  for (const auto& c : cases) {
    std::string text(c.start);
    text.shrink_to_fit();
    c.grow(text, day);
    EXPECT_EQ(text, std::string(c.start).append(c.grown)) << c.routine;
  }
  std::string text = "twenty letters twenty letters";
  Insert(BehindFirst(text), text, 2);
  EXPECT_EQ(text, "twenty letters twenty letterswenty letters twenty letters");

  const std::string bad = "no letter \xFF stands in this text";
  text = bad;
  EXPECT_THROW(AppendUtf8(text, text), EConvertError);
  EXPECT_EQ(text, bad) << "a failed append leaves the text as it was";
}

constexpr const char* kLong = "an item that is longer than a short one";

TStringList SortedWithDoubles() {
  TStringList list;
  list.Duplicates = TDuplicates::dupAccept;
  list.SetSorted(true);
  for (const char* text : {"b", "a", kLong}) list.Add(text);
  return list;
}

TEST(OwnArgument, OfAListThatChanges) {
  const TemporaryHome home;
  const std::string file = R"(C:\a folder with a long name\a.ini)";
  const std::string section = "a section with a long name";
  home.Make("a folder with a long name/a.ini", "[" + section + "]\r\nkey=value\r\n");
  const struct {
    const char* routine;
    std::vector<std::string> start;
    void (*change)(TStringList& list);
    std::vector<std::string> want;
  } cases[] = {
      {"Add", {kLong}, [](TStringList& list) { list.Add(list[0]); }, {kLong, kLong}},
      {"Insert",
       {"a", kLong},
       [](TStringList& list) { list.Insert(0, list[1]); },
       {kLong, "a", kLong}},
      {"Put",
       {"a", kLong},
       [](TStringList& list) { list.Put(1, BehindFirst(list[1])); },
       {"a", kLong + 1}},
      {"SetValue",
       {"the name of a value=the value itself"},
       [](TStringList& list) { list.SetValue(list.Names(0), list[0]); },
       {"the name of a value=the name of a value=the value itself"}},
      {"SetValue, emptied",
       {"the name of a value=the value itself", kLong},
       [](TStringList& list) { list.SetValue(list.Names(0), ""); },
       {kLong}},
      {"SetText",
       {"a", "two lines in\none single item"},
       [](TStringList& list) { list.SetText(list[1]); },
       {"two lines in", "one single item"}},
      {"SetCommaText",
       {"a", "first item,second item"},
       [](TStringList& list) { list.SetCommaText(list[1]); },
       {"first", "item", "second", "item"}},
      {"Assign", {"a", kLong}, [](TStringList& list) { list.Assign(list); }, {"a", kLong}},
      {"AddStrings",
       {"a", kLong},
       [](TStringList& list) { list.AddStrings(list); },
       {"a", kLong, "a", kLong}},
      {"AddStrings, sorted",
       {},
       [](TStringList& list) {
         list = SortedWithDoubles();
         list.AddStrings(list);
       },
       {"a", "a", kLong, kLong, "b", "b"}},
      {"LoadFromFile",
       {file},
       [](TStringList& list) { list.LoadFromFile(list[0]); },
       {"[" + section + "]", "key=value"}},
      {"ReadSection",
       {file, section},
       [](TStringList& list) { TIniFile(list[0]).ReadSection(list[1], list); },
       {"key"}},
      {"ReadSectionValues",
       {file, section},
       [](TStringList& list) { TIniFile(list[0]).ReadSectionValues(list[1], list); },
       {"key=value"}},
      {"ReadSections",
       {file},
       [](TStringList& list) { TIniFile(list[0]).ReadSections(list); },
       {section}},
  };
  for (const auto& c : cases) {
    TStringList list;
    for (const std::string& text : c.start) list.Add(text);
    c.change(list);
    EXPECT_EQ(std::vector<std::string>(list.begin(), list.end()), c.want) << c.routine;
  }
}

}  // namespace
}  // namespace kvshare
