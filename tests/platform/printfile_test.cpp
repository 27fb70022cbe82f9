#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "kvshare/platform/filehelpers.h"
#include "kvshare/platform/uguid.h"
#include "kvshare/ui/backend.h"
#include "tests/os/filesupport.h"

namespace kvshare {
namespace {

using ::testing::MatchesRegex;

using Calls = std::vector<std::string>;

// A printer that notes every call and refuses one of them.
class NotingPrinter : public TPrinterHandle {
 public:
  NotingPrinter(Calls& calls, std::string refused) : calls_(calls), refused_(std::move(refused)) {}
  bool StartDoc(std::string_view title) override { return Note("start " + std::string(title)); }
  bool StartPage() override { return Note("page"); }
  bool Write(std::string_view bytes) override { return Note(std::to_string(bytes.size())); }
  bool EndPage() override { return Note("end page"); }
  bool EndDoc() override { return Note("end"); }

 private:
  bool Note(const std::string& call) {
    calls_.push_back(call);
    return call != refused_;
  }
  Calls& calls_;
  std::string refused_;
};

class NotingInterface : public THeadlessInterface, public TSpooler {
 public:
  TSpooler& Spooler() override { return *this; }
  int FormatDrive(int drive) override { return drive == 0 ? formatAnswer : 0; }
  std::vector<std::string> Printers() override { return {"p"}; }
  std::string DefaultPrinter() override { return "p"; }
  std::unique_ptr<TPrinterHandle> Open(std::string_view printer) override {
    if (refused == "open" || printer != "p") return nullptr;
    return std::make_unique<NotingPrinter>(calls, refused);
  }

  Calls calls;
  std::string refused;
  int formatAnswer = 0;
};

TEST(FileHelpers, PrintFile) {
  const TemporaryHome home;
  home.Make("f", std::string(2 * 16384 + 1, '\x1B'));
  struct Case {
    std::string refused;
    Calls calls;
  };
  const Case cases[] = {
      {"", {"start MyDocument", "page", "16384", "16384", "1", "end"}},
      {"16384", {"start MyDocument", "page", "16384", "end page", "end"}},
      {"open", {}},
      {"start MyDocument", {"start MyDocument"}},
      {"page", {"start MyDocument", "page"}},
  };
  for (const Case& c : cases) {
    NotingInterface ui;
    ui.refused = c.refused;
    const TUseInterface use(ui);
    PrintFile("C:\\f");
    EXPECT_EQ(ui.calls, c.calls) << c.refused;
    EXPECT_EQ(CodeOf([] { PrintFile("C:\\none"); }), 2);
    EXPECT_EQ(ui.calls, c.calls) << "a file that cannot be read prints nothing";
  }
}

TEST(FileHelpers, FormatDriveA) {
  struct Case {
    int answer;
    bool formatted;
    std::string_view text;
  };
  constexpr Case kCases[] = {{0, true, ""},
                             {6, true, ""},
                             {-1, false, "Error formatting the drive"},
                             {-2, false, "User canceled formatting the drive"},
                             {-3, false, "No Format"}};
  for (const Case& c : kCases) {
    NotingInterface ui;
    ui.formatAnswer = c.answer;
    const TUseInterface use(ui);
    EXPECT_EQ(FormatDriveA(), c.formatted);
    std::vector<TMessageBox> want;
    if (!c.formatted) want = {{std::string(c.text), TMsgDlgType::mtError, {TMsgDlgBtn::mbOK}, 0}};
    EXPECT_EQ(ui.messages, want);
  }
}

TEST(FileHelpers, GetGuid) {
  const std::string guid = GetGuid();
  EXPECT_THAT(guid, MatchesRegex("\\{[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}\\}"));
  EXPECT_NE(guid, GetGuid());
}

}  // namespace
}  // namespace kvshare
