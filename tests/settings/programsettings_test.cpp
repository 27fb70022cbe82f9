#include "kvshare/settings/programsettings.h"

#include <gtest/gtest.h>

#include "kvshare/os/files.h"
#include "kvshare/os/folders.h"
#include "kvshare/platform/verinfo.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/filebytes.h"
#include "kvshare/rtl/format.h"
#include "kvshare/settings/globals.h"
#include "kvshare/settings/numberformats.h"
#include "kvshare/start/package.h"
#include "kvshare/ui/application.h"
#include "tests/support.h"

namespace kvshare {
namespace {

class ProgramSettings : public testing::Test {
 protected:
  ProgramSettings() { Initialize(); }
  ~ProgramSettings() override {
    Finalize();
    QtyDigit = 0;
    UPrcDigit = BahtDigit = WeightDigit = 2;
    BaseLanguage = YearBase = 0;
    BTrace = false;
    Application = TApplication();
    std::filesystem::remove(Native(BtraceFile()));
  }

  static std::string BtraceFile() { return os::ProgramFolder() + "Btrace.ini"; }
  static std::string Native(const std::string& file) {  // the tests lie on Z:
    std::string path = file.substr(2);
    for (char& c : path) c = c == '\\' ? '/' : c;
    return path;
  }
  static void Store(std::string_view section, std::string_view name, std::string_view value) {
    MyKovraRegistry->WriteRegistryString("", section, name, value);
  }

  TemporaryHome home;
  WithVariable era{"KVSHARE_ERA", "543"};
};

TEST_F(ProgramSettings, NothingStoredGivesTheDefaults) {
  EXPECT_EQ(QtyDigit, 0);
  Application.HelpFile = "ledger.hlp";
  SetEditMaskAndFormatStr();
  EXPECT_EQ(QtyDigit, 4);
  EXPECT_EQ(UPrcDigit, 2);
  EXPECT_EQ(BahtDigit, 2);
  EXPECT_EQ(WeightDigit, 3);
  EXPECT_EQ(YearBase, 543);
  EXPECT_EQ(BaseLanguage, 0);
  EXPECT_EQ(ExePath, os::ProgramFolder());
  EXPECT_EQ(Application.HelpFile, ExePath + "ledger.hlp");
  EXPECT_EQ(KovraAppDataPath, MyKovraRegistry->GetKovraAppDataPath());
  EXPECT_TRUE(os::DirectoryExists(KovraAppDataPath + "Temp"));
  EXPECT_EQ(ScreencamPath, "");
  EXPECT_FALSE(BTrace);

  struct Case {
    const char *edit, *display, *zero, *pattern;
    const std::string &editMask, &displayMask, &zeroMask, &fmtStr;
  };
  const Case kCases[] = {
      {"###########0.0000", "###,###,###,##0.0000", "0.0000", "%12.4n", editQtyEditMask,
       dsplQtyEditMask, ZeroQtyEditMask, dsplQtyFmtStr},
      {"###########0.00", "###,###,###,##0.00", "0.00", "%12.2n", editUPrcEditMask,
       dsplUPrcEditMask, ZeroUPrcEditMask, dsplUPrcFmtStr},
      {"###########0.00", "###,###,###,##0.00", "0.00", "%12.2n", editBahtEditMask,
       dsplBahtEditMask, ZeroBahtEditMask, dsplBahtFmtStr},
      {"###########0.000", "###,###,###,##0.000", "0.000", "%12.3n", editWeightEditMask,
       dsplWeightEditMask, ZeroWeightEditMask, dsplWeightFmtStr},
      {"###########0.00", "###,###,###,##0.00%", "0.00", "%12.2n%%", editPercentEditMask,
       dsplPercentEditMask, ZeroPercentEditMask, dsplPercentFmtStr},
  };
  for (const Case& c : kCases) {
    EXPECT_EQ(c.editMask, c.edit);
    EXPECT_EQ(c.displayMask, c.display);
    EXPECT_EQ(c.zeroMask, c.zero);
    EXPECT_EQ(c.fmtStr, c.pattern);
  }
  EXPECT_EQ(dsplMinusBahtFmtStr, "(%12.2n)");
  EXPECT_EQ(Format(dsplPercentFmtStr, {Currency::FromRaw(70000)}), "        7.00%");
}

TEST_F(ProgramSettings, WithoutAHomeTheMasksAreBuiltAllTheSame) {
  const WithVariable none("KVSHARE_HOME", "");
  const WithVariable noneOfTheUser("HOME", "");
  dsplBahtEditMask.clear();
  SetEditMaskAndFormatStr();
  EXPECT_EQ(dsplBahtEditMask, "###,###,###,##0.00");
  EXPECT_FALSE(os::ForceDirectories("C:\\A\\B"));
}

TEST_F(ProgramSettings, ReadsWhatIsStored) {
  Store("Default", "QtyDigit", "0");
  Store("Default", "BahtDigit", "6");
  Store("Default", "PercentDigit", "5");
  Store("Default", "ScreencamPath", R"(C:\Shots)");
  MyKovraRegistry->WriteRegistryString(R"(Software\Borland\Locales)", "", os::ProgramFile(), "EN");
  WriteFileBytes(BtraceFile(), "[Config]\r\nTrace=1\r\n");
  SetEditMaskAndFormatStr();
  EXPECT_EQ(editQtyEditMask, "###########0.") << "the point stays";
  EXPECT_EQ(ZeroQtyEditMask, "0.");
  EXPECT_EQ(dsplBahtFmtStr, "%12.6n");
  EXPECT_EQ(ZeroBahtEditMask, "0.000000");
  EXPECT_EQ(PercentDigit, 2) << "never read";
  EXPECT_EQ(ScreencamPath, R"(C:\Shots)");
  EXPECT_EQ(BaseLanguage, 30000);
  EXPECT_TRUE(BTrace);

  MyKovraRegistry->WriteRegistryString(R"(Software\Borland\Locales)", "", os::ProgramFile(), "en");
  WriteFileBytes(BtraceFile(), "[Config]\r\n");
  SetEditMaskAndFormatStr();
  EXPECT_EQ(BaseLanguage, 0) << "only EN is English";
  EXPECT_FALSE(BTrace) << "a file without the key";
}

TEST_F(ProgramSettings, RefusesDigitsThatAreNoNumber) {
  for (const char* digits : {"two", "-1", "65536", "2.5"}) {
    Store("Default", "UPrcDigit", digits);
    EXPECT_EQ(MessageOf<EConvertError>(SetEditMaskAndFormatStr),
              Format("'%s' is not a valid integer value", {digits}));
    EXPECT_EQ(QtyDigit, 4) << "read before it";
  }
}

TEST(NumberFormats, DecimalsReplaceWhatFollowsTheFirstPoint) {
  struct Case {
    const char* mask;
    Word digits;
    const char* want;
  };
  constexpr Case kCases[] = {
      {"###########0.00", 6, "###########0.000000"},
      {"###########0.00", 0, "###########0."},
      {"##0", 3, "000"},  // without a point
      {"0.0.0", 1, "0.0"},
      {"", 2, "00"},
  };
  for (const Case& c : kCases) EXPECT_EQ(SetDecimalDigit(c.mask, c.digits), c.want) << c.mask;
}

}  // namespace
}  // namespace kvshare
