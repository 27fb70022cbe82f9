#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <algorithm>
#include <csignal>
#include <set>
#include <vector>

#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/filebytes.h"
#include "kvshare/ui/backend.h"
#include "tests/support.h"

namespace kvshare {
namespace {

namespace fs = std::filesystem;

class FolderSpooler : public testing::Test {
 protected:
  FolderSpooler()
      : home_("KVSHARE_HOME", folder_.Path().c_str()), none_("KVSHARE_PRINTER", nullptr) {
    fs::create_directories(folder_.File("spool/Laser"));
  }

  std::string InPrinter(const std::string& name = "") const {
    return folder_.File("spool/Laser/" + name);
  }

  std::vector<std::string> Jobs() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(InPrinter())) {
      const std::string name = entry.path().filename();
      if (!name.starts_with(".last-")) names.push_back(name);
    }
    std::ranges::sort(names);
    return names;
  }

  // Sends one document the way the library does.
  bool Print(std::string_view title, std::string_view bytes) const {
    const auto printer = spooler_->Open("laser");
    return printer && printer->StartDoc(title) && printer->StartPage() && printer->Write(bytes) &&
           printer->EndDoc();
  }

  const TemporaryFolder folder_;
  const WithVariable home_, none_;
  const std::unique_ptr<TSpooler> spooler_ = MakeFolderSpooler();
};

TEST_F(FolderSpooler, FoldersArePrinters) {
  fs::create_directories(folder_.File("spool/เครื่องพิมพ์"));
  fs::create_directories(folder_.File("spool/.hidden"));
  fs::create_directories(folder_.File("spool/日本"));
  WriteFileBytes(folder_.File("spool/file"), "x");
  constexpr std::string_view kThai = "เครื่องพิมพ์"_th;
  EXPECT_EQ(spooler_->Printers(), (std::vector<std::string>{"Laser", std::string(kThai)}));
  EXPECT_TRUE(spooler_->Open(kThai));
  for (const std::string_view none : {"", "Other", ".hidden", "../spool/Laser", "file"}) {
    EXPECT_FALSE(spooler_->Open(none)) << none;
  }
  EXPECT_EQ(spooler_->DefaultPrinter(), "Laser");
  const WithVariable chosen("KVSHARE_PRINTER", "Gone");
  EXPECT_EQ(spooler_->DefaultPrinter(), "Gone") << "no cheque goes to another printer";
}

TEST_F(FolderSpooler, NoSpoolFolderAndNoHomeAreNoPrinters) {
  fs::remove_all(folder_.File("spool"));
  EXPECT_TRUE(spooler_->Printers().empty());
  EXPECT_EQ(spooler_->DefaultPrinter(), "");
  const WithVariable home("KVSHARE_HOME", nullptr), data("XDG_DATA_HOME", nullptr),
      user("HOME", nullptr);
  EXPECT_TRUE(spooler_->Printers().empty());
}

TEST_F(FolderSpooler, AJobAppearsWholeWhenItsDocumentEnds) {
  const auto printer = spooler_->Open("Laser");
  ASSERT_TRUE(printer && printer->StartDoc("Cheque 12/47") && printer->StartPage());
  EXPECT_TRUE(printer->Write("one ") && printer->Write(std::string_view("t\0wo", 4)));
  EXPECT_TRUE(std::ranges::none_of(Jobs(), [](const std::string& name) {
    return name.ends_with(".prn");
  })) << "not before";
  EXPECT_TRUE(printer->EndPage() && printer->EndDoc());
  EXPECT_EQ(Jobs(), std::vector<std::string>{"000001-Cheque 12_47.prn"});
  EXPECT_EQ(ReadFileBytes(InPrinter("000001-Cheque 12_47.prn")), std::string("one t\0wo", 8));
  EXPECT_TRUE(printer->StartDoc("again") && printer->StartPage() && printer->EndDoc());
  EXPECT_EQ(Jobs().back(), "000002-again.prn");
}

TEST_F(FolderSpooler, CallsOutOfOrderAreRefused) {
  auto printer = spooler_->Open("Laser");
  EXPECT_FALSE(printer->StartPage() || printer->Write("x") || printer->EndPage() ||
               printer->EndDoc());
  ASSERT_TRUE(printer->StartDoc("a"));
  EXPECT_FALSE(printer->StartDoc("b") || printer->Write("outside a page") || printer->EndPage());
  ASSERT_TRUE(printer->StartPage());
  EXPECT_FALSE(printer->StartPage());
  EXPECT_TRUE(printer->Write("half"));
  printer.reset();
  EXPECT_TRUE(Jobs().empty()) << "a document that did not end leaves nothing";
}

TEST_F(FolderSpooler, TitlesBecomeSafeNames) {
  constexpr std::string_view kReceipt = "ใบเสร็จ"_th;
  struct Case {
    std::string title, name;
  };
  const Case cases[] = {
      {std::string(kReceipt), "ใบเสร็จ"},
      {"", "job"},
      {"..\\../x", ".._.._x"},
      {std::string("a\0b\n\xFF:*?", 8), "a_b_____"},
      {std::string(300, 'x'), std::string(200, 'x')},
      {std::string(300, '\xA1'),
       [] {
         std::string letters;
         for (int i = 0; i < 66; ++i) letters += "ก";  // a letter is never cut
         return letters;
       }()},
  };
  int number = 0;
  for (const Case& c : cases) {
    EXPECT_TRUE(Print(c.title, "x"));
    EXPECT_EQ(Jobs().back(), "00000" + std::to_string(++number) + "-" + c.name + ".prn");
  }
}

TEST_F(FolderSpooler, NumbersGoUpWhateverIsTakenAway) {
  struct Case {
    const char *there, *want;
    const char* why;
  };
  constexpr Case kCases[] = {
      {"000041-x.prn", "000042-t.prn", "after the highest job"},
      {nullptr, "000043-t.prn", "the printer took all jobs away"},
      {"999999-x.prn", "1000000-t.prn", "a seventh digit"},
      {"9999999999-x.prn", "1000001-t.prn", "somebody else's file"},
      {"2000000.prn", "1000002-t.prn", "likewise"},
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.why);
    for (const std::string& job : Jobs()) fs::remove(InPrinter(job));
    if (c.there != nullptr) WriteFileBytes(InPrinter(c.there), "");
    EXPECT_TRUE(Print("t", "x"));
    EXPECT_TRUE(fs::exists(InPrinter(c.want)));
  }
  WriteFileBytes(InPrinter(".last-999999999"), "");
  EXPECT_FALSE(Print("t", "x")) << "no number is left";
}

TEST_F(FolderSpooler, ProcessesNeverShareANumber) {
  constexpr int kProcesses = 6, kJobs = 20;
  std::vector<pid_t> children;
  for (int i = 0; i < kProcesses; ++i) {
    const pid_t child = fork();
    if (child == 0) {
      bool all = true;
      for (int job = 0; job < kJobs; ++job) all = Print("from " + std::to_string(i), "x") && all;
      _exit(all ? 0 : 1);
    }
    children.push_back(child);
  }
  for (const pid_t child : children) {
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
  }
  std::set<std::string> numbers;
  for (const std::string& job : Jobs()) numbers.insert(job.substr(0, 6));
  EXPECT_EQ(numbers.size(), std::size_t{kProcesses * kJobs});
  EXPECT_EQ(*numbers.rbegin(), "000120") << "none is left out";
}

TEST_F(FolderSpooler, AFolderThatVanishesOrIsFullIsRefused) {
  const auto printer = spooler_->Open("Laser");
  ASSERT_TRUE(printer->StartDoc("a") && printer->StartPage() && printer->Write("half"));
  fs::remove_all(InPrinter());
  EXPECT_FALSE(printer->EndDoc());
  EXPECT_FALSE(printer->StartDoc("b"));

  fs::create_directories(InPrinter());
  rlimit earlier{};
  getrlimit(RLIMIT_FSIZE, &earlier);
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  const rlimit full{1000, earlier.rlim_max};
  setrlimit(RLIMIT_FSIZE, &full);
  EXPECT_TRUE(printer->StartDoc("c") && printer->StartPage());
  EXPECT_FALSE(printer->Write(std::string(3000, 'x')));
  setrlimit(RLIMIT_FSIZE, &earlier);
  std::signal(SIGXFSZ, handler);
  EXPECT_FALSE(printer->Write("the rest")) << "there is room again, but a piece is missing";
  EXPECT_TRUE(printer->EndPage());
  EXPECT_FALSE(printer->EndDoc());
  EXPECT_TRUE(Jobs().empty());
}

}  // namespace
}  // namespace kvshare
