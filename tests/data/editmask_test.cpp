#include "kvshare/data/fields/editmask.h"

#include <gtest/gtest.h>

#include "kvshare/data/client/clientdataset.h"
#include "kvshare/data/contract/errors.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/formatsettings.h"
#include "tests/support.h"

namespace kvshare {
namespace {

constexpr std::string_view kRefusal = "Invalid input value.  Use escape key to abandon changes";

class EditMask : public testing::Test {
 protected:
  EditMask() { FormatSettings = TFormatSettings::UsEnglish(); }
  ~EditMask() override { GetFormatSettings(); }
};

TEST_F(EditMask, ReadsItsParts) {
  struct Case {
    std::string_view mask, shown;
    std::string_view value;  // of nothing typed
  };
  const Case cases[] = {
      {"00/00/0000;1;_", "__/__/____", "  /  /    "},
      {"99/99/9999\\ 99:99;1;_", "__/__/____ __:__", "  /  /       :  "},
      {"99:99;1;_", "__:__", "  :  "},
      {"(999) 000;0;*", "(***) ***", "      "},
      {"00", "__", "  "},
      {"00;1;", "__", "  "},
      {"00;;.", "..", "  "},
      {"00;1;;", ";;", "  "},
      {"\\;\\0\\\\0;1;-", ";0\\-", ";0\\ "},
      {"!>l<a<>c_x", "___ x", "    x"},
      {"<>><#", "_", " "},
      {"-", "-", "-"},
      {"0\\", "_", " "},
      {"\\", "", ""},
      {";", "", ""},
      {";1;_", "", ""},
      {"", "", ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.mask);
    const TEditMask mask(c.mask);
    EXPECT_EQ(mask.IsEmpty(), c.shown.empty());
    EXPECT_EQ(mask.EmptyText(), c.shown);
    EXPECT_EQ(TMaskedText(mask).Value(), c.value);
  }
  FormatSettings.DateSeparator = '-';
  FormatSettings.TimeSeparator = '\0';
  EXPECT_EQ(TEditMask("00/00 00:00").EmptyText(), "__-__ ____");
}

// Which of all bytes fit: as a place of its own and as a letter of the alphabet below.
TEST_F(EditMask, PlacesTakeTheirCharacters) {
  constexpr auto kAlphabet = "07+-aZกฯเ็่ๆ฿๑๚ .\t"_th;
  struct Case {
    std::string_view mask, fits;
  };
  const Case cases[] = {
      {"0", "07"},
      {"9", "07"},
      {"#", "07+-"},
      {"L", "aZกฯเ็่ๆ"_th},
      {"l", "aZกฯเ็่ๆ"_th},
      {"A", "07aZกฯเ็่ๆ๑"_th},
      {"a", "07aZกฯเ็่ๆ๑"_th},
      {"C", "07+-aZกฯเ็่ๆ฿๑๚ ."_th},
      {"c", "07+-aZกฯเ็่ๆ฿๑๚ ."_th},
      {"x", ""},
  };
  for (const Case& c : cases) {
    std::string fits;
    for (const char key : kAlphabet) {
      if (TEditMask(c.mask).Places()[0].Takes(key)) fits += key;
    }
    EXPECT_EQ(fits, c.fits) << c.mask;
  }
}

// Keys as a user types them: < is Backspace, ^ Delete, | Home.
std::string Typed(std::string_view mask, std::string_view keys) {
  TMaskedText text{TEditMask(mask)};
  for (const char key : keys) {
    if (key == '<') {
      text.Backspace();
    } else if (key == '^') {
      text.Delete();
    } else if (key == '|') {
      text.SetCursor(0);
    } else {
      text.Type(key);
    }
  }
  return text.Shown();
}

TEST_F(EditMask, Keys) {
  struct Case {
    std::string_view mask, keys, shown;
    const char* why;
  };
  const Case cases[] = {
      {"00/00/0000;1;_", "15032567", "15/03/2567", "literals are skipped"},
      {"00/00/0000;1;_", "15/03/2567", "15/03/2567", "or typed"},
      {"00/00/0000;1;_", "5/3/2567", "5_/3_/2567", "a literal ends its group early"},
      {"00/00/0000;1;_", "1a.5:/0x3", "15/03/____", "keys that do not fit are ignored"},
      {"00/00/0000;1;_", "150325679", "15/03/2567", "one too many"},
      {"00/00/0000;1;_", "15<<<2", "2_/__/____", "backspace, also at the start"},
      {"00/00/0000;1;_", "1503<<<7", "17/__/____", "backspace over a literal"},
      {"00/00/0000;1;_", "1503|^9", "95/03/____", "the others stay where they are"},
      {"00/00/0000;1;_", "15| ", "15/__/____", "a required place takes no blank"},
      {"99/99/9999;1;_", "15| ", "_5/__/____", "one that may stay open does"},
      {"##-##", "-5--7", "-5--7", "a literal first, then the sign"},
      {"(999) 000-0000;0;_", "(02) 5551212", "(02_) 555-1212", "a literal of two"},
      {">LL<ll<>ll", "abCDeF", "ABcdeF", "letter case"},
      {">LLLLL", "น้ำaก"_th, "น้ำAก"_th, "each mark has a place"},
      {"CCC;1;_", "a_ ", "a_ ", "the blank character and a blank are characters too"},
      {"-", "-1^<", "-", "no place at all"},
      {"", "1^<", "", "no mask"},
  };
  for (const Case& c : cases) EXPECT_EQ(Typed(c.mask, c.keys), c.shown) << c.why;
}

TEST_F(EditMask, LoadsAndGivesBackValues) {
  struct Case {
    std::string_view mask, value, shown, saved;
  };
  const Case cases[] = {
      {"00/00/0000;1;_", "15/03/2567", "15/03/2567", "15/03/2567"},
      {"00/00/0000;1;_", "15/03/2567  ", "15/03/2567", "15/03/2567"},
      {"00/00/0000;1;_", "15/03", "15/03/____", "15/03/    "},
      {"00/00/0000;1;_", "  /03/", "__/03/____", "  /03/    "},
      {"00/00/0000;1;_", "", "__/__/____", "  /  /    "},
      {"00/00/0000;1;_", "   ", "__/__/____", "  /  /    "},
      {"00/00/0000;0;_", "15032567", "15/03/2567", "15032567"},
      {"00/00/0000;0;_", "15", "15/__/____", "15      "},
      {"!00/00/0000;0;_", "2567", "__/__/2567", "    2567"},
      {"!99:99;1;_", "5:30", "_5:30", " 5:30"},
      {"CC-CC", "a -b", "a_-b_", "a -b "},
      {"CCC", "a b", "a b", "a b"},
      {">LL;1;_", "กa"_th, "กa"_th, "กa"_th},
      {"CC;1;_", "__", "__", "__"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.mask);
    TMaskedText text{TEditMask(c.mask)};
    EXPECT_TRUE(text.Load(c.value));
    EXPECT_EQ(text.Shown(), c.shown);
    EXPECT_EQ(text.Value(), c.saved);
    EXPECT_FALSE(text.Modified());
  }
  const Case unfit[] = {
      {"00/00/0000;1;_", "15/03/12567", "", ""},
      {"00/00/0000;1;_", "15-03-2567", "", ""},
      {"00/00/0000;1;_", "15032567", "", ""},
      {"00/00/0000;1;_", "1x/03/2567", "", ""},
      {"000;0;_", "1234", "", ""},
      {"CC", "a\t", "", ""},
  };
  for (const Case& c : unfit) {
    TMaskedText text{TEditMask(c.mask)};
    EXPECT_FALSE(text.Load(c.value));
    EXPECT_EQ(text.Shown(), TEditMask(c.mask).EmptyText());
    EXPECT_EQ(TEditMask(c.mask).Format(c.value), c.value) << "shown as it is";
  }
  EXPECT_EQ(TEditMask("(999) 000;0;_").Format("02555"), "(025) 55 ");
  EXPECT_EQ(TEditMask("(999) 000;0;_").Format(""), "");
  EXPECT_EQ(TEditMask("").Format("any"), "any");
}

TEST_F(EditMask, OpenPlacesGoToTheFrontOfTheirGroup) {
  TMaskedText text{TEditMask("!99/99/9999;1;_")};
  for (const char key : std::string_view("1/2/67")) text.Type(key);
  EXPECT_EQ(text.Value(), " 1/ 2/  67");
  TMaskedText mixed{TEditMask("!l9")};
  mixed.Type('x');
  EXPECT_EQ(mixed.Value(), "x ") << "a letter cannot stand where a digit must";
}

TEST_F(EditMask, LinesOfAUser) {
  struct Case {
    std::string_view mask, line;
    std::string value;  // the refusal where it starts with Invalid
  };
  const std::string refused(kRefusal);
  const Case cases[] = {
      {"00/00/0000;1;_", "15/03/2567", "15/03/2567"},
      {"00/00/0000;1;_", "15032567", "15/03/2567"},
      {"00/00/0000;1;_", " 5/3/2567 ", "05/03/2567"},
      {"00/00/0000;1;_", "15/ 3/2567", "15/03/2567"},
      {"00/00/0000;1;_", "1532567", refused},     // 1/5/3256 or 15/3/2567
      {"00/00/0000;1;_", "15/3/67", refused},     // of which century
      {"00/00/0000;1;_", "15/3", refused},        // of which year
      {"00/00/0000;1;_", "15-3-2567", refused},   // other separators
      {"00/00/0000;1;_", "115/3/2567", refused},  // a group too long
      {"00/00/0000;1;_", "15/3/2567/", refused},  // something behind
      {"00/00/0000;1;_", "", refused},            // required places
      {"99/99/9999;1;_", "", "  /  /    "},
      {"99/99/9999;1;_", "/3/", "  /03/    "},
      {"99/99/9999\\ 99:99;1;_", "5/3/2567 9:5", "05/03/2567 09:05"},
      {"99/99/9999\\ 99:99;1;_", "5/3/2567  9:05", "05/03/2567 09:05"},
      {"000-000;1;_", "12-345", refused},  // a code, no number
      {"999-999;1;_", "12-345", "12 -345"},
      {"!999-999;0;_", "12345", " 12345"},
      {"(999) 000-0000;0;_", "(02) 555-1212", "02 5551212"},
      {"(999) 000-0000;0;_", "0215551212", "0215551212"},
      {"(999) 000-0000;0;_", "02-555-1212", refused},
      {">LLC00", "ab-12", "AB-12"},
      {"CC/CC", "a/b/c", refused},
      {"CCC/C", "a/b/c", "a/b/c"},
      {"", "  any \t", "  any \t"},
  };
  for (const Case& c : cases) {
    std::string value;
    try {
      value = TEditMask(c.mask).ValueOfLine(c.line);
    } catch (const EDBEditError& e) {
      value = e.Message();
    }
    EXPECT_EQ(value, c.value) << c.mask << " " << c.line;
  }
}

TEST_F(EditMask, OfAFieldOfText) {
  TClientDataSet set;
  set.FieldDefs().Add("PHONE", TFieldType::ftString, 20);
  set.CreateDataSet();
  set.Append();
  TField& field = set.Fields(0);
  field.EditMask = "\\(999\\) 999-9999;0;_";
  EXPECT_EQ(field.DisplayText(), "");
  field.SetAsString("0215551212");
  EXPECT_EQ(field.DisplayText(), "(021) 555-1212");
  EXPECT_EQ(field.Text(), "0215551212") << "what is edited is the value";
}

TEST_F(EditMask, ChecksWhatWasChanged) {
  TMaskedText text{TEditMask("00:99;1;_")};
  EXPECT_FALSE(text.IsComplete());
  EXPECT_NO_THROW(text.Check()) << "nothing was typed";
  text.Type('1');
  EXPECT_EQ(MessageOf<EDBEditError>([&] { text.Check(); }), kRefusal);
  text.Backspace();
  EXPECT_FALSE(text.Modified());
  text.Type('1');
  text.Type('2');
  EXPECT_NO_THROW(text.Check()) << "the minutes may stay open";
  ASSERT_TRUE(text.Load("12:30"));
  EXPECT_FALSE(text.TakeLine("1x"));
  EXPECT_EQ(text.Shown(), "12:30") << "a line that does not fit changes nothing";
  text.Delete();
  EXPECT_THROW(text.Check(), EDBEditError);
  text.Restore();
  EXPECT_EQ(text.Shown(), "12:30");
}

}  // namespace
}  // namespace kvshare
