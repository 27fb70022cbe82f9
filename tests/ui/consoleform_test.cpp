#include "kvshare/ui/consoleform.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <thread>

#include "kvshare/rtl/exceptions.h"
#include "kvshare/ui/backend.h"
#include "tests/apps/tempfile.h"
#include "tests/ui/sampleform.h"
#include "tests/ui/terminal.h"

namespace kvshare {
namespace {

constexpr const char* kSample =
    "\n"
    "== ใบสำคัญ ==\n"
    "Type: Modified\n"
    "Error:\n"
    "  ยอดไม่เท่ากัน\n"
    "  debit 10.00\n"
    "\n"
    "  | Field | New Value | Old Value\n"
    "--+-------+-----------+----------\n"
    "1 | NAME  | น้ำ        | กา\n"
    "2 | SUM   | 12.50     |\n"
    "\n"
    "Action\n"
    "   1 ( ) Skip\n"
    "   2 ( ) Correct\n"
    "\n"
    "  c1 [ ] Only changed\n"
    "\n"
    "Enter: OK   q: Cancel   ?: help\n";

struct Talk {
  int result;
  std::string said;  // behind the first prompt
  std::string unread;
};

Talk TalkWith(TForm& form, std::string_view typed) {
  const app::TempFile in(typed), out;
  const std::string first = ShownForm(form) + "> ";
  const int result = TalkAboutForm(form, os::Console(in.Fd(), out.Fd()));
  const std::string shown = out.Content();
  EXPECT_TRUE(shown.starts_with(first)) << shown;
  const auto taken = static_cast<std::size_t>(lseek(in.Fd(), 0, SEEK_CUR));
  return {result, shown.substr(std::min(first.size(), shown.size())),
          std::string(typed.substr(taken))};
}

TEST(ConsoleForm, ShowsAllThatTheFormHas) {
  SampleForm form;
  EXPECT_EQ(ShownForm(form), kSample);
  form.actions.SetItemIndex(1);
  form.actions.SetEnabled(false);
  form.grid.SetEnabled(false);
  form.ok.SetEnabled(false);
  form.kind.SetVisible(false);
  form.cancel.Cancel = form.message.ReadOnly = false;
  const std::string shown = ShownForm(form);
  for (const char* part : {"\nModified\n", "   - (*) Correct\n", "- | SUM ", "(m1)\n",
                           "\n-: OK   b2: Cancel   q: close   ?: help\n"}) {
    EXPECT_NE(shown.find(part), std::string::npos) << part << shown;
  }
  form.cancel.Default = form.cancel.Cancel = true;
  EXPECT_NE(ShownForm(form).find("   Enter, q: Cancel   ?"), std::string::npos);
}

TEST(ConsoleForm, LinesToTypeInto) {
  TForm form(nullptr);
  TEdit below(&form), above(&form), fixed(&form);
  below.SetTop(20);
  fixed.SetTop(30);
  above.MaxLength = 3;
  above.SetText("12.50");
  below.SetText("a\tb");
  fixed.SetText("x");
  fixed.ReadOnly = true;
  EXPECT_NE(ShownForm(form).find("  e1 = 12.50\n  e2 = a b\n   - = x\n"), std::string::npos);
  const Talk talk = TalkWith(form, "e1=ก=ข-\ne2=\ne3=y\ne4=z\ne1\nq\n");
  EXPECT_EQ(above.Text(), "ก=ข"_th) << "all behind the first =, as much as there is room for";
  EXPECT_EQ(below.Text(), "");
  EXPECT_EQ(fixed.Text(), "x");
  EXPECT_NE(talk.said.find("  e1 = ก=ข\n  e2 = \n"), std::string::npos) << talk.said;
}

TEST(ConsoleForm, NoTextSteersTheTerminalOrBreaksTheTable) {
  TForm form(nullptr);
  TStringGrid grid(&form);
  form.SetCaption("x\x1B[2J\r\ny");
  grid.SetFixedCols(0);
  grid.SetColCount(2);
  grid.SetRowCount(3);
  grid.SetCells(0, 0, "a\r\nb\tc\x07");
  std::string cells(39, 'x');
  cells.append("ที่"_th).append("นี่"_th);
  grid.SetCells(0, 1, cells);
  grid.SetCells(1, 1, "\xFC");
  const std::string wide(39, ' ');
  const std::string want[] = {
      "",
      "== x\uFFFD[2J y ==",
      "",
      "  | a" + wide + " |",
      "  | b c\uFFFD" + wide.substr(3) + " |",
      "--+-" + std::string(40, '-') + "-+--",
      "1 | " + std::string(39, 'x') + "ที่ | \uFFFD",
      "  | นี่" + wide + " |",
      "2 |  " + wide + " |",
      "",
      "q: close   ?: help",
  };
  std::string lines;
  for (const std::string& line : want) lines += line + "\n";
  EXPECT_EQ(ShownForm(form), lines);
}

TEST(ConsoleForm, TypedLinesDoWhatAUserMay) {
  constexpr const char* kNot = "Not understood; ? tells what can be typed.\n> ";
  constexpr const char* kNone = "There is no such number.\n> ";
  constexpr const char* kCannot = "That cannot be done at the moment.\n> ";
  struct Case {
    const char *typed, *said, *why;
  };
  const Case cases[] = {
      {"2\n", "   1 ( ) Skip\n   2 (*) Correct\n", "a choice"},
      {" C1 \n", "c1 [x] Only changed\n", "a box, in capitals"},
      {"c1\nc1\n", "c1 [ ] Only changed\n", "and off again"},
      {"2\n1=ก้อน\n", "1 | NAME  | ก้อน       | กา\n", "into the column that may be edited"},
      {"2\n2= a=b\n", "2 | SUM   |  a=b      |\n", "all behind the first ="},
      {"2=x\n", kCannot, "not while the form forbids it"},
      {"m1=x\n", kCannot, "a read-only memo"},
      {"3\n", kNone, "two choices"},
      {"0\n", kNone, "numbers begin at 1, and Enter is not meant"},
      {"99999999999999999999999\n", kNone, "past every number"},
      {"0=x\n", kNone, "headings are no rows"},
      {"c\n", kNot, "a letter without its number"},
      {"q1\n", kNot, "a number too much"},
      {"c1=x\n", kNot, "a text too much"},
      {"=x\n", kNot, "a text for nothing"},
      {"1x\n", kNot, "no number"},
      {"ก\n", kNot, "a letter of none"},
      {"?\n", "types TEXT into that row of the table\n", "help"},
      {"1=日\n", "No letter U+65E5 in code page 874, at byte 3\n> ", "a letter that is not Thai"},
      {"\xFF\n", "Invalid UTF-8 at byte 1\n> ", "no text"},
      {"2\n1=a\tb\n", "Control characters cannot be typed here.\n> ", "Tab does not move"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.why);
    SampleForm form;
    const Talk talk = TalkWith(form, c.typed);
    EXPECT_NE(talk.said.find(c.said), std::string::npos) << talk.said;
    EXPECT_EQ(talk.result, mrCancel) << "at the end of the input";
  }
}

TEST(ConsoleForm, ButtonsEndTheTalkAndLeaveTheRestOfTheInput) {
  struct Case {
    const char* typed;
    int result;
    const char* unread;
  };
  constexpr Case kCases[] = {
      {"\nq\n", mrOk, "q\n"}, {" \n", mrOk, ""}, {"q\n\n", mrCancel, "\n"},
      {"Q\n", mrCancel, ""},  {"b1", mrOk, ""},  {"b2\n", mrCancel, ""},
      {"", mrCancel, ""},
  };
  for (const Case& c : kCases) {
    SampleForm form;
    form.SetActiveControl(&form.cancel);  // Enter is the default button all the same
    const Talk talk = TalkWith(form, c.typed);
    EXPECT_EQ(talk.result, c.result) << c.typed;
    EXPECT_EQ(talk.unread, c.unread);
    EXPECT_EQ(talk.said, *c.typed == '\0' ? "\n" : "");
  }
}

TEST(ConsoleForm, AHandlersErrorIsShownAndTheFormStays) {
  SampleForm form;
  form.changed.OnClick = [&form] {
    form.message.SetText("changed before it failed");
    constexpr std::string_view kRefused = "ลงบัญชี\r\nไม่ได้\x1B"_th;
    throw EDatabaseError(kRefused);
  };
  form.ok.OnClick = [] { throw EAbort("silent"); };
  const Talk talk = TalkWith(form, "c1\n\nm1=x\n");
  EXPECT_NE(talk.said.find("help\nลงบัญชี\nไม่ได้\uFFFD\n> \n=="), std::string::npos) << talk.said;
  EXPECT_NE(talk.said.find("  changed before it failed\n"), std::string::npos);
  EXPECT_EQ(talk.said.find("silent"), std::string::npos);
  EXPECT_EQ(talk.result, mrCancel) << "a button that has failed closes nothing";

  form.message.ReadOnly = false;
  form.ModalResult = mrNone;
  TalkWith(form, "m1=x\nm1=y\n");
  EXPECT_EQ(form.message.Text(), "changed before it failed\r\nx\r\ny");
}

TEST(ConsoleForm, NumbersGoOnFromControlToControl) {
  SampleForm form;
  TRadioGroup more(&form);
  TStringGrid below(&form);
  more.SetTop(50);
  more.AddItem("Third");
  below.SetTop(500);
  below.Options.goEditing = true;
  TalkWith(form, "3\n4=x\n");
  EXPECT_EQ(more.ItemIndex(), 0);
  EXPECT_EQ(form.actions.ItemIndex(), -1);
  EXPECT_EQ(below.Cells(1, 2), "x");
}

TEST(ConsoleForm, IsAskedOnlyWhereSomebodySits) {
  struct Case {
    const char* typed;
    int result;
    const char* sum;
  };
  constexpr Case kCases[] = {{"2\n2=13.75\n\n", mrOk, "13.75"}, {"2\n2=1\n\x04", mrCancel, "1"}};
  for (const Case& c : kCases) {
    SampleForm form;
    const Terminal terminal(c.typed);
    TConsoleInterface console(terminal.Fd(), terminal.Fd());
    const TUseInterface use(console);
    EXPECT_EQ(form.ShowModal(), c.result);
    EXPECT_EQ(form.grid.Cells(1, 2), c.sum);
    EXPECT_TRUE(terminal.Shown().starts_with(std::string(kSample) + "> "));
  }
  const app::TempFile file("\n"), out;
  const Terminal terminal("\n");
  for (const auto& [in, err] :
       {std::pair{file.Fd(), out.Fd()}, {terminal.Fd(), out.Fd()}, {file.Fd(), terminal.Fd()}}) {
    SampleForm form;
    EXPECT_EQ(TConsoleInterface(in, err).ShowModalForm(form), mrCancel);
  }
  EXPECT_EQ(out.Content(), std::string(kSample) + kSample) << "and no prompt";
  EXPECT_EQ(terminal.Shown(), kSample);
  EXPECT_EQ(lseek(file.Fd(), 0, SEEK_CUR), 0) << "nothing is read";
}

TEST(ConsoleForm, WaitsForAnInputThatDoesNot) {
  const Terminal terminal("");
  fcntl(terminal.Fd(), F_SETFL, O_NONBLOCK);
  SampleForm form;
  std::thread user([&terminal] {
    usleep(20'000);
    terminal.Type("\n");
  });
  EXPECT_EQ(TConsoleInterface(terminal.Fd(), terminal.Fd()).ShowModalForm(form), mrOk);
  user.join();
}

}  // namespace
}  // namespace kvshare
