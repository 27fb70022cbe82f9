#include "kvshare/settings/datetimeformat.h"

#include <gtest/gtest.h>

#include "kvshare/os/windowmessage.h"
#include "kvshare/rtl/formatdatetime.h"
#include "kvshare/settings/globals.h"
#include "kvshare/ui/application.h"

namespace kvshare {
namespace {

class DateTimeFormat : public testing::Test {
 protected:
  ~DateTimeFormat() override {
    Application = TApplication();
    FormatSettings = before_;
    msgKovraRefresh = 0;
    KovraMinDate = TDateTime();
  }

 private:
  TFormatSettings before_ = FormatSettings;
};

TEST_F(DateTimeFormat, FixesEveryFormat) {
  FormatSettings = TFormatSettings::Thai();
  SetDefaultDateTimeFormat();
  EXPECT_EQ(KovraMinDate, TDateTime(36526));
  EXPECT_EQ(msgKovraRefresh, os::RegisterWindowMessage("KovraRefresh"));
  EXPECT_EQ(FormatSettings.CurrencyString, TFormatSettings::Thai().CurrencyString);
  struct Case {
    const char *format, *want, *why;
  };
  constexpr Case kCases[] = {
      {"ddddd", "15/07/2003", "short date"},
      {"t", "02:05 pm", "short time"},
      {"tt", "02:05:09 pm", "long time"},
  };
  const TDateTime moment = EncodeDate(2003, 7, 15) + EncodeTime(14, 5, 9, 0).Days();
  for (const Case& c : kCases) EXPECT_EQ(FormatDateTime(c.format, moment), c.want) << c.why;
  EXPECT_EQ(FormatDateTime("t", TDateTime(0.25)), "06:00 am");
  EXPECT_EQ(FormatSettings.LongDateFormat, "dddd, mmmm dd, yyyy");
}

TEST_F(DateTimeFormat, StaysInForceWhenTheLocaleChanges) {
  FormatSettings.ShortDateFormat = "changed";
  Application.SettingsChanged();
  EXPECT_NE(FormatSettings.ShortDateFormat, "changed") << "read again while the switch is on";
  SetDefaultDateTimeFormat();
  Application.SettingsChanged();
  EXPECT_EQ(FormatSettings.ShortDateFormat, "dd/mm/yyyy");
}

TEST(WindowMessage, NumbersComeFromTheNameAlone) {
  const std::uint32_t number = os::RegisterWindowMessage("KovraRefresh");
  EXPECT_EQ(os::RegisterWindowMessage("KOVRAREFRESH"), number);
  EXPECT_NE(os::RegisterWindowMessage("KovraRefresh2"), number);
  EXPECT_EQ(os::RegisterWindowMessage(""), 0U);
  for (int i = 0; i < 1000; ++i) {
    const std::uint32_t any = os::RegisterWindowMessage("message" + std::to_string(i));
    EXPECT_TRUE(any >= 0xC000 && any <= 0xFFFF) << any;
  }
}

}  // namespace
}  // namespace kvshare
