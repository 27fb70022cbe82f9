#include "kvshare/ui/messages.h"

#include <gtest/gtest.h>

#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/ui/application.h"
#include "kvshare/ui/backend.h"
#include "tests/support.h"

namespace kvshare {
namespace {

using enum TMsgDlgBtn;
using enum TMsgDlgType;

TEST(Messages, EnterAndEscape) {
  struct Case {
    TMsgDlgButtons buttons;
    int enter, escape;
    const char* why;
  };
  constexpr Case kCases[] = {
      {{mbOK}, mrOk, mrOk, "the only button is both"},
      {{mbYes, mbNo}, mrYes, mrNo, "a question"},
      {{mbYes, mbNo, mbCancel}, mrYes, mrCancel, "Cancel before No"},
      {{mbYes, mbOK}, mrOk, mrOk, "OK before Yes"},
      {{mbAbort, mbRetry, mbIgnore}, mrRetry, mrNone, "Esc finds nothing"},
      {{mbYesToAll, mbAll, mbNoToAll}, mrAll, mrNone, "in the order of a box, not of the call"},
      {{mbIgnore, mbAbort}, mrAbort, mrNone, "likewise"},
      {{mbHelp, mbYesToAll}, mrYesToAll, mrNone, "Help is no answer"},
      {{mbHelp}, mrNone, mrNone, "Help alone"},
      {{}, mrNone, mrNone, "no button"},
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.why);
    const TMessageBox message{"", mtError, c.buttons, 0};
    EXPECT_EQ(message.EnterResult(), c.enter);
    EXPECT_EQ(message.EscapeResult(), c.escape);
  }
}

TEST(Messages, TheHeadlessBackEndRecordsAndAnswersByScript) {
  THeadlessInterface headless;
  headless.answers = {mrNo, mrYesToAll};
  const TUseInterface use(headless);
  EXPECT_EQ(MessageDlg("first", mtConfirmation, {mbYes, mbNo}, 7), mrNo);
  EXPECT_EQ(MessageDlg("second", mtWarning, {mbOK}, 0), mrYesToAll);
  EXPECT_EQ(MessageDlg("third", mtError, {mbOK, mbCancel}, 0), mrCancel)
      << "the script is at its end";
  ASSERT_EQ(headless.messages.size(), 3u);
  EXPECT_EQ(headless.messages[0], (TMessageBox{"first", mtConfirmation, {mbNo, mbYes}, 7}));
}

TEST(Messages, TheEarlierBackEndComesBack) {
  TUserInterface& first = UserInterface();
  THeadlessInterface outer, inner;
  {
    const TUseInterface useOuter(outer);
    {
      const TUseInterface useInner(inner);
      EXPECT_EQ(&UserInterface(), &inner);
    }
    EXPECT_EQ(&UserInterface(), &outer);
  }
  EXPECT_EQ(&UserInterface(), &first);
}

TEST(Messages, TheConsoleShowsUtf8AndConfirmsNothing) {
  Application.Title = "Ledger";
  struct Case {
    std::string_view text;
    TMsgDlgType type;
    const char* shown;
    const char* why;
  };
  constexpr Case kCases[] = {
      {"ปิดงวดแล้ว"_th, mtInformation, "Information: ปิดงวดแล้ว\n", "Thai"},
      {"a\r\nb\rc\n\nd", mtError, "Error: a\nb\nc\n\nd\n",
       "each line end is one, blank lines stay"},
      {"end\r\n", mtWarning, "Warning: end\n", "no second line end"},
      {"sure?", mtConfirmation, "Confirm: sure?\n", "a question"},
      {"hello", mtCustom, "Ledger: hello\n", "the application's title"},
      {"x\x1B[2J\ty\x7F\xFF", mtError, "Error: x\uFFFD[2J\ty\uFFFD\uFFFD\n", "steers no terminal"},
      {"", mtError, "Error: \n", "nothing to say"},
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.why);
    testing::internal::CaptureStderr();
    const int answer = MessageDlg(c.text, c.type, {mbYes, mbNo}, 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), c.shown);
    EXPECT_EQ(answer, mrNo);
  }
  Application.Title.clear();
  testing::internal::CaptureStderr();
  MessageDlg("hello", mtCustom, {mbOK}, 0);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "hello\n");
}

TEST(Messages, TheConsoleHasNoScreenAndFormatsNothing) {
  EXPECT_EQ(MessageOf<EOSError>([] { UserInterface().CaptureScreen(); }), "There is no screen");
  EXPECT_EQ(UserInterface().FormatDrive(0), -3);
}

}  // namespace
}  // namespace kvshare
