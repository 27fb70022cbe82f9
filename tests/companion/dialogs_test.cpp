// The dialogs of the companion library, worked with through the bridge as a program has them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <vector>

#include "kvshare/dates/date.h"
#include "kvshare/platform/kovrawin.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/ui/backend.h"
#include "kvshare/ui/stdcontrols.h"
#include "kvshare/ui/stringgrid.h"
#include "tests/support.h"

namespace kvshare {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

template <typename Kind = TControl>
Kind& On(TForm& form, std::string_view name) {
  for (TControl* control : form.Controls()) {
    auto* of = dynamic_cast<Kind*>(control);
    if (of != nullptr && control->Name() == name) return *of;
  }
  throw Exception("no control " + std::string(name));
}

// What a user does, one a text: Enter, Esc, NAME=TEXT types, NAME@COL,ROW selects a cell, NAME!
// double-clicks it, NAME alone clicks a button.
void Act(TForm& form, std::string_view action) {
  const std::size_t sign = action.find_first_of("=@!");
  const std::string_view name = action.substr(0, sign);
  const std::string_view rest =
      sign == std::string_view::npos ? std::string_view() : action.substr(sign + 1);
  if (action == "Enter") {
    form.PressEnter();
  } else if (action == "Esc") {
    form.PressEsc();
  } else if (sign == std::string_view::npos) {
    EXPECT_TRUE(On<TButton>(form, name).Click()) << name;
  } else if (action[sign] == '=') {
    EXPECT_TRUE(On<TEdit>(form, name).TypeText(rest)) << name;
  } else if (action[sign] == '!') {
    On<TStringGrid>(form, name).DoubleClick();
  } else {
    const std::size_t comma = rest.find(',');
    On<TStringGrid>(form, name)
        .SelectCell(StrToInt(rest.substr(0, comma)), StrToInt(rest.substr(comma + 1)));
  }
}

using Script = std::vector<std::string_view>;

class Dialogs : public testing::Test {
 protected:
  // The next form.
  void Expect(const Script& script, std::function<void(TForm&)> last = {}) {
    screen_.steps.emplace_back([script, last](TForm& form) {
      for (const std::string_view action : script) Act(form, action);
      if (last) last(form);
    });
  }
  // The texts of the boxes since.
  std::vector<std::string> Shown() {
    std::vector<std::string> texts;
    for (const TMessageBox& box : screen_.messages) texts.push_back(Cp874ToUtf8(box.text));
    screen_.messages.clear();
    return texts;
  }

  const TemporaryHome home_;
  const WithVariable path_{"KVSHARE_LIBRARY_PATH", KVSHARE_DRIVERS};
  THeadlessInterface screen_;
  const TUseInterface use_{screen_};
};

std::string Caption(TForm& form, std::string_view name) {
  return Cp874ToUtf8(On(form, name).Caption());
}

TEST_F(Dialogs, Calculator) {
  struct Case {
    double given;
    Script script;
    double want;
    const char* line;  // at the end
    const char* note;  // formula and note
    const char* why;
  };
  const Case cases[] = {
      {1234.5, {"Esc"}, 1234.5, "1234.5", "", "cancelled"},
      {0.1 + 0.2, {"OKBtn"}, 0.1 + 0.2, "0.3", "", "the line as it was: no bit is lost"},
      {1e20, {"OKBtn"}, 1e20, "", "", "nothing that 15 digits write"},
      {-0.00001, {"OKBtn"}, -0.00001, "-0.00001", "", "small"},
      {7, {"Key1", "KeyPoint", "Key5", "KeyTimes", "Key4", "OKBtn"}, 6, "1.5*4", "", "keys"},
      {7, {"KeyPlus", "Key1", "Enter", "OKBtn"}, 8, "8", "7+1 =", "goes on with the given"},
      {7,
       {"Key2", "KeyDivide", "Key3", "OKBtn"},
       7,
       "0.6667",
       "2/3 =ปัดเศษที่ทศนิยม 4 ตำแหน่ง",
       "a rounded result is shown first"},
      {7,
       {"Key2", "KeyDivide", "Key3", "OKBtn", "OKBtn"},
       0.6667,
       "0.6667",
       "2/3 =ปัดเศษที่ทศนิยม 4 ตำแหน่ง",
       "and taken then"},
      {7,
       {"Key2", "KeyDivide", "Key3", "Enter", "Enter"},
       0.6667,
       "0.6667",
       "2/3 =ปัดเศษที่ทศนิยม 4 ตำแหน่ง",
       "Enter twice"},
      {7, {"Enter"}, 7, "7", "", "nothing to compute"},
      {7, {"Expression=1/0", "OKBtn"}, 7, "1/0", "หารด้วยศูนย์ไม่ได้", "stays, and Esc ends"},
      {7, {"Expression=1+", "Enter"}, 7, "1+", "สูตรไม่ถูกต้องที่ตำแหน่ง 3", "tells where"},
      {7,
       {"Expression=12+3", "KeyBack", "Key8", "EqualsBtn", "Key5", "OKBtn"},
       5,
       "5",
       "",
       "a digit behind a result begins anew"},
      {7,
       {"Expression=12", "Enter", "KeyMinus", "Key2", "OKBtn"},
       10,
       "12-2",
       "",
       "a sign goes on"},
      {7,
       {"KeyClear", "KeyBack", "KeyOpen", "Key9", "KeyClose", "KeyPercent", "OKBtn"},
       0.09,
       "(9)%",
       "",
       "an empty line too"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.why);
    Expect(c.script, [&](TForm& form) {
      EXPECT_EQ(On<TEdit>(form, "Expression").Text(), c.line);
      EXPECT_EQ(Caption(form, "Formula") + Caption(form, "Note"), c.note);
    });
    EXPECT_EQ(ExecCalculator(0, c.given), c.want);
  }
  EXPECT_THAT(Shown(), ElementsAre());
}

TEST_F(Dialogs, Calendar) {
  const TDateTime given = EncodeDate(2024, 2, 29) + 0.75;  // a Thursday
  struct Case {
    Script script;
    TDateTime want;
    const char* month;
    const char* why;
  };
  const Case cases[] = {
      {{"Esc"}, given, "กุมภาพันธ์ 2567", "cancelled"},
      {{"OKBtn"}, given, "กุมภาพันธ์ 2567", "as it is"},
      {{"Days@0,2", "Days!"}, EncodeDate(2024, 2, 4) + 0.75, "กุมภาพันธ์ 2567", "a double click"},
      {{"Days@0,1", "Days@6,6", "OKBtn"}, given, "กุมภาพันธ์ 2567", "no day of another month"},
      {{"NextMonthBtn", "OKBtn"}, EncodeDate(2024, 3, 29) + 0.75, "มีนาคม 2567", "a month on"},
      {{"PrevMonthBtn", "PrevMonthBtn", "OKBtn"},
       EncodeDate(2023, 12, 29) + 0.75,
       "ธันวาคม 2566",
       "into the year before"},
      {{"NextYearBtn", "OKBtn"}, EncodeDate(2025, 2, 28) + 0.75, "กุมภาพันธ์ 2568", "no leap year"},
      {{"PrevYearBtn", "Enter"}, EncodeDate(2023, 2, 28) + 0.75, "กุมภาพันธ์ 2566", "Enter is OK"},
      {{"DateEdit=1/3/2569", "OKBtn"}, EncodeDate(2026, 3, 1) + 0.75, "มีนาคม 2569", "typed"},
      {{"DateEdit=31/12/3000", "NextMonthBtn", "OKBtn"},
       EncodeDate(2458, 1, 31) + 0.75,
       "มกราคม 3001",
       "typed, then gone on"},
      {{"DateEdit=15-07-46", "OKBtn"}, EncodeDate(2003, 7, 15) + 0.75, "กรกฎาคม 2546", "dashes"},
      {{"TodayBtn", "OKBtn"}, Date() + 0.75, nullptr, "today"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.why);
    Expect(c.script, [&](TForm& form) {
      if (c.month != nullptr) {
        EXPECT_EQ(Caption(form, "MonthLabel"), c.month);
      }
    });
    EXPECT_EQ(ExecCalendar(0, given), c.want);
    TDateTime picked = given;
    Expect(c.script);
    EXPECT_EQ(ExecPickDate(0, "ครบกำหนด"_th, picked), c.script.front() == "Esc" ? 0 : 1);
    EXPECT_EQ(picked, c.want);
  }
  EXPECT_EQ(screen_.shown.back(), "ครบกำหนด"_th);
  EXPECT_THAT(Shown(), ElementsAre());

  Expect({"DateEdit=31/2/2567", "OKBtn"});
  EXPECT_EQ(ExecCalendar(0, given), given);
  EXPECT_THAT(Shown(), ElementsAre("31/2/2567 วันที่ไม่ถูกต้อง"));
}

// Each month of leap and other years: every day in its column, nothing else.
TEST_F(Dialogs, CalendarOfEveryMonth) {
  for (const int year : {1900, 2000, 2023, 2024}) {
    for (int month = 1; month <= 12; ++month) {
      Expect({}, [&](TForm& form) {
        const auto& days = On<TStringGrid>(form, "Days");
        int expected = 1;
        for (int cell = 0; cell < 42; ++cell) {
          const std::string& text = days.Cells(cell % 7, 1 + cell / 7);
          if (text.empty()) continue;
          EXPECT_EQ(text, IntToStr(expected));
          EXPECT_EQ(cell % 7, DayOfWeek(EncodeDate(year, month, expected)) - 1);
          ++expected;
        }
        EXPECT_EQ(expected - 1, DaysInMonth(year, month));
        EXPECT_EQ(days.Cells(days.Col(), days.Row()), "7");
      });
      ExecCalendar(0, EncodeDate(year, month, 7));
    }
  }
}

TEST_F(Dialogs, MomentsThatNoCalendarHas) {
  for (const double days : {0.0, -1e6, 3e6, std::numeric_limits<double>::infinity()}) {
    const TDateTime odd(days);
    Expect({"Esc"}, [](TForm& form) {
      EXPECT_EQ(On<TEdit>(form, "DateEdit").Text(), TKovraDate::ddmmyyyysl25(Date()));
    });
    EXPECT_EQ(ExecCalendar(0, odd), odd);
    Expect({"OKBtn"});
    EXPECT_EQ(ExecCalendar(0, odd), Date()) << "today, where there was none";
  }
  Expect({"PrevYearBtn", "PrevMonthBtn", "OKBtn"});
  EXPECT_EQ(ExecCalendar(0, EncodeDate(1, 1, 31)), EncodeDate(1, 1, 31)) << "the years end";
  Expect({"NextYearBtn", "NextMonthBtn", "OKBtn"});
  EXPECT_EQ(ExecCalendar(0, EncodeDate(9999, 12, 31)), EncodeDate(9999, 12, 31));
}

TEST_F(Dialogs, DateIsTypedOrPicked) {
  const TDateTime given = EncodeDate(2026, 11, 25) + 0.5;
  struct Case {
    std::int32_t mode;
    Script script;
    int want;
    TDateTime date;
    const char* understood;
    const char* why;
  };
  const Case cases[] = {
      {0, {"Esc"}, 0, given, "วันพุธที่ 25 พฤศจิกายน 2569 (ค.ศ. 2026)", "cancelled"},
      {0, {"Enter"}, 1, given, "วันพุธที่ 25 พฤศจิกายน 2569 (ค.ศ. 2026)", "as it is"},
      {0,
       {"DateEdit=1/2/2569", "Enter"},
       1,
       EncodeDate(2026, 2, 1) + 0.5,
       "วันอาทิตย์ที่ 1 กุมภาพันธ์ 2569 (ค.ศ. 2026)",
       "of the Buddhist era"},
      {0,
       {"DateEdit= 1/2/2026 ", "Enter"},
       1,
       EncodeDate(2026, 2, 1) + 0.5,
       "วันอาทิตย์ที่ 1 กุมภาพันธ์ 2569 (ค.ศ. 2026)",
       "Christian"},
      {0,
       {"DateEdit=01/02/69", "Enter"},
       1,
       EncodeDate(2026, 2, 1) + 0.5,
       "วันอาทิตย์ที่ 1 กุมภาพันธ์ 2569 (ค.ศ. 2026)",
       "two digits of the era in force"},
      {1,
       {"DateEdit=01/02/26", "Enter"},
       1,
       EncodeDate(2026, 2, 1) + 0.5,
       "วันอาทิตย์ที่ 1 กุมภาพันธ์ 2569 (ค.ศ. 2026)",
       "and of the other"},
      {0, {"DateEdit=31/4/2569", "Enter"}, 0, given, "", "no such day"},
      {0, {"DateEdit=", "Enter"}, 0, given, "", "nothing"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.why);
    TDateTime date = given;
    Expect(c.script, [&](TForm& form) { EXPECT_EQ(Caption(form, "DateText"), c.understood); });
    EXPECT_EQ(ExecGetDate(c.mode, "วันที่ใบสำคัญ"_th, date), c.want);
    EXPECT_EQ(date, c.date);
  }
  EXPECT_THAT(Shown(), ElementsAre("31/4/2569 วันที่ไม่ถูกต้อง", " วันที่ไม่ถูกต้อง"));

  TDateTime date = given;
  Expect({"DateEdit=1/2/2569", "DateBtn", "Enter"});
  Expect({"NextMonthBtn", "OKBtn"});  // the calendar, within the prompt
  EXPECT_EQ(ExecGetDate(0, "", date), 1);
  EXPECT_EQ(date, EncodeDate(2026, 3, 1) + 0.5);

  // The reader would take this year for one of the Buddhist era.
  date = EncodeDate(1900, 1, 1);
  Expect({"Enter"},
         [](TForm& form) { EXPECT_EQ(On<TEdit>(form, "DateEdit").Text(), "01/01/1900"); });
  EXPECT_EQ(ExecGetDate(1, "", date), 1);
  EXPECT_EQ(date, EncodeDate(1900, 1, 1));
}

TEST_F(Dialogs, DateRange) {
  const TDateTime first = EncodeDate(2026, 1, 1), last = EncodeDate(2026, 1, 31);
  struct Case {
    Script script;
    bool want;
    TDateTime from, to;
    const char* shown;
  };
  const Case cases[] = {
      {{"Esc"}, false, first, last, ""},
      {{"Enter"}, true, first, last, ""},
      {{"FromEdit=31/1/2569", "Enter"}, true, last, last, ""},
      {{"FromEdit=1/2/2569", "Enter"}, false, first, last, "ช่วงวันที่ไม่ถูกต้อง: วันที่เริ่มต้นอยู่หลังวันที่สิ้นสุด"},
      {{"FromEdit=1/2/2569", "Enter", "ToEdit=1/3/2569", "Enter"},
       true,
       EncodeDate(2026, 2, 1),
       EncodeDate(2026, 3, 1),
       "ช่วงวันที่ไม่ถูกต้อง: วันที่เริ่มต้นอยู่หลังวันที่สิ้นสุด"},
      {{"FromEdit=x", "Enter"}, false, first, last, "x วันที่ไม่ถูกต้อง"},
      {{"ToEdit=y", "Enter"}, false, first, last, "y วันที่ไม่ถูกต้อง"},
  };
  for (const Case& c : cases) {
    TDateTime from = first, to = last;
    Expect(c.script);
    EXPECT_EQ(ExecGetDateRange(0, "", "ถึงงวด"_th, from, to), c.want) << c.script.front();
    EXPECT_EQ(from, c.from) << c.script.front();
    EXPECT_EQ(to, c.to) << c.script.front();
    const std::vector<std::string> shown = Shown();
    EXPECT_EQ(shown.empty() ? "" : shown.front(), c.shown);
  }
}

TEST_F(Dialogs, YearStaysInItsEra) {
  struct Case {
    std::int32_t given;
    Script script;
    int want;
    std::int32_t year;
    const char* other;
  };
  const Case cases[] = {
      {2569, {"Esc"}, 0, 2569, "ค.ศ. 2026"},
      {2569, {"NextBtn", "Enter"}, 1, 2570, "ค.ศ. 2027"},
      {2026, {"PrevBtn", "Enter"}, 1, 2025, "พ.ศ. 2568"},
      {2026, {"YearEdit= 2470 ", "Enter"}, 1, 2470, "ค.ศ. 1927"},
      {1, {"PrevBtn", "Enter"}, 1, 1, "พ.ศ. 544"},
      {9999, {"NextBtn", "Enter"}, 1, 9999, "ค.ศ. 9456"},
      {2569, {"YearEdit=10000", "Enter"}, 0, 2569, ""},
      {2569, {"YearEdit=0", "Enter"}, 0, 2569, ""},
      {2569, {"YearEdit=$A09", "Enter"}, 0, 2569, ""},
      {-3, {"NextBtn", "Enter"}, 0, -3, ""},
  };
  for (const Case& c : cases) {
    std::int32_t year = c.given;
    Expect(c.script, [&](TForm& form) { EXPECT_EQ(Caption(form, "OtherEra"), c.other); });
    EXPECT_EQ(ExecGetYear(0, "งวดปี"_th, year), c.want) << c.given;
    EXPECT_EQ(year, c.year) << c.given;
    EXPECT_EQ(Shown().size(), c.want == 0 && c.script.back() == "Enter" ? 1u : 0u);
  }
}

TEST_F(Dialogs, SqlAboutAndSystem) {
  const std::string sql = "SELECT *\r\nFROM " + std::string(5000, 'x');
  screen_.steps.emplace_back([](TForm& form) {
    auto& memo = On<TMemo>(form, "Sql");
    memo.EditText(memo.Text() + "\r\nWHERE 1=1");
    form.PressEnter();  // a line of the memo, no OK
    On<TButton>(form, "OKBtn").Click();
  });
  EXPECT_EQ(ExecReadSQLCmd(0, sql), sql + "\r\nWHERE 1=1\r\n");
  screen_.steps.emplace_back([](TForm& form) { On<TMemo>(form, "Sql").EditText("no"); });
  EXPECT_EQ(ExecReadSQLCmd(0, sql), sql) << "cancelled";

  Expect({}, [](TForm& form) {
    EXPECT_EQ(Caption(form, "Product"), "สมุดบัญชี");
    EXPECT_EQ(Caption(form, "Version"), "รุ่น 5.1.2.3");
    EXPECT_EQ(Caption(form, "Company"), "บริษัท ตัวอย่าง จำกัด");
    EXPECT_EQ(Caption(form, "Copyright"), "สงวนลิขสิทธิ์ 2569");
    form.PressEsc();
    EXPECT_EQ(form.ModalResult, mrOk) << "there is one button";
  });
  ExecAboutBox(0);

  const WithVariable computer("KVSHARE_COMPUTER", "till-3");
  const WithVariable user("KVSHARE_USER", "สมชาย");
  const WithVariable era("KVSHARE_ERA", "543");
  TStringList list;
  ExecReadKovraSysInfo(list);
  ASSERT_EQ(list.Count(), 1);
  EXPECT_THAT(Cp874ToUtf8(list[0]),
              testing::AllOf(HasSubstr("เครื่อง TILL-3; ผู้ใช้ สมชาย; KvShare "),
                             HasSubstr("ปีเป็น พ.ศ.; โฟลเดอร์ " + home_.Path().string())));
}

// A shop's own: they need its tables.
TEST_F(Dialogs, UsersAndGroupsAreAShopsOwn) {
  std::string name = "a", second = "b";
  EXPECT_EQ(ExecGetUserName(0, name, second), 0);
  EXPECT_FALSE(ExecGetGroupName(0, "", name, second));
  LoadKovraWin();
  DoProcedure();
  FreeKovraWin();
  EXPECT_THAT(Shown(), ElementsAre("Program GetUserName Not Found in KovraWin.DLL",
                                   "Program GetGroupName Not Found in KovraWin.DLL",
                                   "Program DoProcedure Not Found in KovraWin.DLL"));
}

// No control lies on another, none outside the form, and each that a script or a user of the
// keyboard needs has a name and a place of its own.
TEST_F(Dialogs, LayoutsHaveRoom) {
  const auto Check = [](TForm& form) {
    std::vector<const TControl*> seen;
    for (const TControl* control : form.Controls()) {
      if (!control->Visible()) continue;
      const TBounds& a = control->Bounds();
      EXPECT_FALSE(control->Name().empty());
      EXPECT_TRUE(a.Left >= 0 && a.Top >= 0 && a.Left + a.Width <= form.ClientWidth() &&
                  a.Top + a.Height <= form.ClientHeight())
          << control->Name();
      for (const TControl* other : seen) {
        const TBounds& b = other->Bounds();
        EXPECT_TRUE(a.Left >= b.Left + b.Width || b.Left >= a.Left + a.Width ||
                    a.Top >= b.Top + b.Height || b.Top >= a.Top + a.Height)
            << control->Name() << " lies on " << other->Name();
        EXPECT_NE(control->Name(), other->Name());
      }
      seen.push_back(control);
    }
    const std::vector<TWinControl*> list = form.TabList();
    for (std::size_t i = 1; i < list.size(); ++i)
      EXPECT_NE(list[i]->TabOrder, list[i - 1]->TabOrder);
    EXPECT_NE(form.DefaultButton(), nullptr);
    EXPECT_NE(form.CancelButton(), nullptr);
  };
  for (int i = 0; i < 7; ++i) screen_.steps.emplace_back(Check);
  TDateTime date, other;
  std::int32_t year = 2569;
  ExecCalculator(0, 1);
  ExecCalendar(0, date);
  ExecGetDate(0, "", date);
  ExecGetDateRange(0, "", "", date, other);
  ExecGetYear(0, "", year);
  ExecReadSQLCmd(0, "");
  ExecAboutBox(0);
  EXPECT_EQ(screen_.shown.size(), 7u);
}

}  // namespace
}  // namespace kvshare
