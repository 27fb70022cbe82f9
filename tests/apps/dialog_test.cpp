// `kvshare dialog` over a pipe, with the companion library of the build.
#include <gtest/gtest.h>

#include "kvshare/rtl/filebytes.h"
#include "tests/apps/tempfile.h"
#include "tests/support.h"

namespace kvshare::app {
namespace {

class Dialog : public testing::Test {
 protected:
  static Outcome Run(std::vector<std::string> arguments, std::string_view typed = "") {
    arguments.insert(arguments.begin(), "dialog");
    return Kvshare(std::move(arguments), typed);
  }

  const TemporaryHome home_;
  const WithVariable era_{"KVSHARE_ERA", "543"};
  const WithVariable computer_{"KVSHARE_COMPUTER", "till-3"};
};

TEST_F(Dialog, PrintsWhatIsChosen) {
  struct Case {
    std::vector<std::string> arguments;
    std::string_view typed;
    const char* out;
    const char* shown;
  };
  const Case cases[] = {
      {{"calculator", "1234.5"}, "e1=1234.5*7/107\n\n\n", "80.7617\n", "ปัดเศษที่ทศนิยม 4 ตำแหน่ง"},
      {{"calculator"}, "q\n", "", "  e1 = 0\n"},
      {{"calendar", "2026-11-25"}, "b3\n\n", "2026-12-25\n", "พฤศจิกายน 2569"},
      {{"calendar", "2026-11-25T08:30:00", "--era", "0"},
       "\n",
       "2026-11-25T08:30:00\n",
       "e1 = 25/11/2026"},
      {{"date", "2026-11-25"}, "e1=1/2/2569\n\n", "2026-02-01\n", "e1 = 25/11/2569"},
      {{"range", "2026-11-01", "2026-11-30"},
       "e2=31/10/2569\n\ne1=1/10/2569\n\n",
       "2026-10-01\t2026-10-31\n",
       "วันที่เริ่มต้นอยู่หลังวันที่สิ้นสุด"},
      {{"year", "2569"}, "b2\n\n", "2570\n", "ค.ศ. 2026"},
      {{"sql", "SELECT 1"}, "m1=FROM ลูกค้า\n\n", "SELECT 1\nFROM ลูกค้า\n", "(m1)"},
      {{"sql", "SELECT 1"}, "", "", "SELECT 1"},
  };
  for (const Case& c : cases) {
    const Outcome done = Run(c.arguments, c.typed);
    EXPECT_EQ(done.out, c.out) << c.arguments[0] << "\n" << done.err;
    EXPECT_EQ(done.status, *c.out == '\0' ? 1 : 0);
    EXPECT_NE(done.err.find(c.shown), std::string::npos) << done.err;
  }
  const Outcome about = Run({"about"}, "\n");
  EXPECT_EQ(about.out, "");
  EXPECT_EQ(about.status, 0);
  EXPECT_NE(Run({"sysinfo"}).out.find("TILL-3; "), std::string::npos);
}

TEST_F(Dialog, Refusals) {
  struct Case {
    std::vector<std::string> arguments;
    int status;
    const char* err;
  };
  const Case cases[] = {
      {{}, 2, "NAME is required"},
      {{"printer"}, 2, "is one of calculator, calendar"},
      {{"date", "2026-11-25", "x"}, 2, "is one too much"},
      {{"sql", "日"}, 2, "No letter U+65E5"},
      {{"date", "25/11/2569"}, 1, "25/11/2569"},
      {{"year", "x"}, 1, "'x' is not a valid integer value"},
  };
  for (const Case& c : cases) {
    const Outcome refused = Run(c.arguments, "\n");
    EXPECT_EQ(refused.status, c.status) << refused.err;
    EXPECT_EQ(refused.out, "");
    EXPECT_NE(refused.err.find(c.err), std::string::npos) << refused.err;
  }
}

TEST_F(Dialog, TellsOfALibraryThatCannotBeUsed) {
  const TemporaryFolder folder;
  WriteFileBytes(folder.File("libKovraWin.so"), "no library");
  const WithVariable path("KVSHARE_LIBRARY_PATH", folder.Path().c_str());
  const Outcome done = Run({"calendar", "2026-11-25"}, "\n");
  EXPECT_EQ(done.out, "");
  EXPECT_EQ(done.status, 1);
  EXPECT_EQ(done.err,
            "Error: Error: 193.On Load Library KovraWin.DLL\n"
            "Error: Program Calendar Not Found in KovraWin.DLL\n");
  EXPECT_EQ(Run({"sysinfo"}).status, 1);
}

}  // namespace
}  // namespace kvshare::app
