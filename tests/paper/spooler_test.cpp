// Beside a real print spooler, whose queues lead to a socket of this program.
#include <arpa/inet.h>
#include <cups/cups.h>
#include <gmock/gmock.h>
#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <optional>

#include "kvshare/platform/filehelpers.h"
#include "kvshare/platform/win32.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/filebytes.h"
#include "kvshare/ui/paper.h"
#include "tests/paper/tool.h"
#include "tests/servers/serverprocess.h"
#include "tests/support.h"

namespace kvshare::paper {
namespace {

using Clock = std::chrono::steady_clock;

// The spooler's tools warn of queues without a driver; that is shown only where one fails.
void Shell(const std::string& command) {
  OutputOf(command + " 2>&1");
}

// A printer at the end of a wire: it takes what the spooler sends.
class Wire {
 public:
  Wire() : listener_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* general = reinterpret_cast<sockaddr*>(&address);
    if (bind(listener_, general, size) != 0 || listen(listener_, 8) != 0 ||
        getsockname(listener_, general, &size) != 0) {
      throw std::runtime_error("no socket");
    }
    port_ = ntohs(address.sin_port);
  }
  ~Wire() { close(listener_); }
  Wire(const Wire&) = delete;
  Wire& operator=(const Wire&) = delete;

  int Port() const { return port_; }

  // What the next job brings; nullopt where none comes within the time.
  std::optional<std::string> NextJob(std::chrono::milliseconds patience) const {
    pollfd waiting{listener_, POLLIN, 0};
    if (poll(&waiting, 1, static_cast<int>(patience.count())) != 1) return std::nullopt;
    const int job = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    std::string bytes;
    char block[65536];
    for (ssize_t n = 1; (n = read(job, block, sizeof block)) > 0;) {
      bytes.append(block, static_cast<std::size_t>(n));
    }
    close(job);
    return bytes;
  }

 private:
  int listener_;
  int port_ = 0;
};

// A printer of A5 sheets, 12 points white at the sides and 24 above and below, that takes PDF.
constexpr std::string_view kSmallPrinter = R"ppd(*PPD-Adobe: "4.3"
*FormatVersion: "4.3"
*FileVersion: "1.0"
*LanguageVersion: English
*LanguageEncoding: ISOLatin1
*PCFileName: "SMALL.PPD"
*Product: "(Small)"
*Manufacturer: "Small"
*ModelName: "Small"
*ShortNickName: "Small"
*NickName: "Small"
*PSVersion: "(3010.000) 0"
*LanguageLevel: "3"
*ColorDevice: False
*DefaultColorSpace: Gray
*cupsFilter: "application/pdf 0 -"
*OpenUI *PageSize: PickOne
*OrderDependency: 10 AnySetup *PageSize
*DefaultPageSize: A5
*PageSize A5: "<</PageSize[420 595]>>setpagedevice"
*CloseUI: *PageSize
*OpenUI *PageRegion: PickOne
*OrderDependency: 10 AnySetup *PageRegion
*DefaultPageRegion: A5
*PageRegion A5: "<</PageSize[420 595]>>setpagedevice"
*CloseUI: *PageRegion
*DefaultImageableArea: A5
*ImageableArea A5: "12 24 408 571"
*DefaultPaperDimension: A5
*PaperDimension A5: "420 595"
)ppd";

constexpr std::chrono::seconds kSoon{30};
constexpr std::chrono::milliseconds kNever{700};

class Spooler : public testing::Test {
 protected:
  Spooler() { AddQueue("Laser"); }
  ~Spooler() override {
    for (const std::string& queue : queues_) Shell("lpadmin -x " + queue);
  }

  void AddQueue(const std::string& name) {
    Shell("lpadmin -p " + name +
          " -E -m raw -v socket://127.0.0.1:" + std::to_string(wire_.Port()));
    queues_.push_back(name);
  }

  // The sheet that a job asks for.
  static std::string MediaOf(int job) {
    ipp_t* request = ippNewRequest(IPP_OP_GET_JOB_ATTRIBUTES);
    ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_URI, "job-uri", nullptr,
                 ("ipp://localhost/jobs/" + std::to_string(job)).c_str());
    const std::unique_ptr<ipp_t, void (*)(ipp_t*)> answer(
        cupsDoRequest(CUPS_HTTP_DEFAULT, request, "/"), ippDelete);
    ipp_attribute_t* media = ippFindAttribute(answer.get(), "media", IPP_TAG_ZERO);
    return media == nullptr ? "" : ippGetString(media, 0, nullptr);
  }

  static int ActiveJobs() {
    cups_job_t* jobs = nullptr;
    const int count = cupsGetJobs2(CUPS_HTTP_DEFAULT, &jobs, nullptr, 0, CUPS_WHICHJOBS_ACTIVE);
    cupsFreeJobs(count, jobs);
    return count;
  }

  Wire wire_;
  std::vector<std::string> queues_;
  WithVariable none_{"KVSHARE_PRINTER", nullptr};
  TPaperInterface ui_;
  TUseInterface use_{ui_};
};

TEST_F(Spooler, AToolThatFailsIsHeard) {
  EXPECT_NONFATAL_FAILURE(Shell("lpadmin -p Odd -E -v odd://127.0.0.1"),
                          "Bad device-uri scheme \"odd\"");
}

TEST_F(Spooler, AFileArrivesByteForByte) {
  std::string bytes;
  for (int i = 0; i < 100'000; ++i) bytes += static_cast<char>(i * 7 % 256);
  bytes += std::string("\0\x1B%-12345X\f\0", 12);
  const TemporaryFolder folder;
  const std::string file = folder.File("cheque.prn");
  std::ofstream(file, std::ios::binary) << bytes;
  PrintFile(file);
  EXPECT_EQ(wire_.NextJob(kSoon), bytes);
  EXPECT_EQ(wire_.NextJob(kNever), std::nullopt) << "once";
}

TEST_F(Spooler, PrintersAndTheDefaultOne) {
  EXPECT_EQ(ui_.Spooler().Printers(), std::vector<std::string>{"Laser"});
  EXPECT_EQ(ui_.Spooler().DefaultPrinter(), "Laser") << "the only one";
  EXPECT_TRUE(TKovraWin32::IsPrinterInstalled());
  AddQueue("Cheques");
  EXPECT_EQ(ui_.Spooler().Printers(), (std::vector<std::string>{"Cheques", "Laser"}));
  EXPECT_EQ(ui_.Spooler().DefaultPrinter(), "") << "neither was chosen";
  Shell("lpadmin -d Cheques");
  EXPECT_EQ(ui_.Spooler().DefaultPrinter(), "Cheques");
  const WithVariable chosen("KVSHARE_PRINTER", "laser");
  EXPECT_EQ(ui_.Spooler().DefaultPrinter(), "laser");
  EXPECT_NE(ui_.Spooler().Open("laser"), nullptr) << "letter case does not count";
}

TEST_F(Spooler, APrinterThatIsNamedAndMissingIsNotReplaced) {
  const WithVariable chosen("KVSHARE_PRINTER", "Gone");
  EXPECT_EQ(ui_.Spooler().Open(ui_.Spooler().DefaultPrinter()), nullptr);
  const TemporaryFolder folder;
  std::ofstream(folder.File("f")) << "x";
  PrintFile(folder.File("f"));
  EXPECT_EQ(MessageOf<EPrinter>([this] { ui_.Printer().BeginDoc(); }),
            "The printer Gone does not take the job: there is no printer of that name");
  EXPECT_FALSE(ui_.Printer().Printing());
  EXPECT_EQ(ActiveJobs(), 0);
  EXPECT_EQ(wire_.NextJob(kNever), std::nullopt);
}

TEST_F(Spooler, AQueueThatRejects) {
  Shell("cupsreject Laser");
  const auto printer = ui_.Spooler().Open("Laser");
  ASSERT_NE(printer, nullptr);
  EXPECT_FALSE(printer->StartDoc("t"));
  EXPECT_FALSE(printer->StartPage());
  EXPECT_FALSE(printer->Write("x"));
  EXPECT_FALSE(printer->EndDoc());
  EXPECT_EQ(MessageOf<EPrinter>([this] { ui_.Printer().BeginDoc(); }),
            "The printer Laser does not take the job: it does not accept jobs");
  Shell("cupsaccept Laser");
  ui_.Printer().BeginDoc();
  Shell("cupsreject Laser");
  EXPECT_THAT(MessageOf<EPrinter>([this] { ui_.Printer().EndDoc(); }),
              testing::StartsWith("The printer Laser does not take the job: "));
  EXPECT_FALSE(ui_.Printer().Printing());
  EXPECT_EQ(wire_.NextJob(kNever), std::nullopt);
}

TEST_F(Spooler, CallsOutOfOrderAndDocumentsThrownAway) {
  auto printer = ui_.Spooler().Open("Laser");
  EXPECT_FALSE(printer->StartPage()) << "no document";
  ASSERT_TRUE(printer->StartDoc("ใบเสร็จ"_th));
  EXPECT_FALSE(printer->StartDoc("another"));
  EXPECT_FALSE(printer->Write("x")) << "no page";
  ASSERT_TRUE(printer->StartPage());
  EXPECT_FALSE(printer->StartPage());
  ASSERT_TRUE(printer->Write("half a cheque"));
  printer.reset();
  EXPECT_EQ(wire_.NextJob(kNever), std::nullopt);
  EXPECT_EQ(ActiveJobs(), 0) << "the job is cancelled";
}

TEST_F(Spooler, APageArrivesUnderItsTitle) {
  Shell("cupsdisable Laser");
  TPrinter& printer = ui_.Printer();
  constexpr std::string_view kTitle = "ใบเสร็จ"_th;
  printer.Title = kTitle;
  EXPECT_EQ(printer.PageSize(), (TSize{4661, 6416})) << "A4, as the queue tells nothing";
  printer.BeginDoc();
  printer.Canvas().TextOut(600, 600, "X");
  printer.EndDoc();
  cups_job_t* jobs = nullptr;
  const int count = cupsGetJobs2(CUPS_HTTP_DEFAULT, &jobs, "Laser", 0, CUPS_WHICHJOBS_ACTIVE);
  ASSERT_EQ(count, 1);
  EXPECT_STREQ(jobs[0].title, "ใบเสร็จ");
  EXPECT_STREQ(jobs[0].format, "application/pdf");
  cupsFreeJobs(count, jobs);
  Shell("cupsenable Laser");
  EXPECT_THAT(wire_.NextJob(kSoon).value_or(""), testing::StartsWith("%PDF-"));
}

TEST_F(Spooler, ThePaperOfThePrinter) {
  const TemporaryFolder folder;
  std::ofstream(folder.File("small.ppd")) << kSmallPrinter;
  Shell("lpadmin -p Laser -P " + folder.File("small.ppd"));
  TPrinter& printer = ui_.Printer();
  printer.BeginDoc();
  EXPECT_EQ(printer.PageSize(), (TSize{3300, 4558}));
  printer.EndDoc();
  EXPECT_THAT(wire_.NextJob(kSoon).value_or(""), testing::HasSubstr("/MediaBox [ 0 0 420.0"));
}

TEST_F(Spooler, APrinterByItsNameAndItsSheet) {
  AddQueue("Other");
  Shell("cupsdisable Laser");
  const auto printer = Paper().QueuePrinter("Laser", kSheetA5);
  EXPECT_EQ(printer->PageSize(), (TSize{3196, 4361}));
  printer->BeginDoc();
  printer->EndDoc();
  cups_job_t* jobs = nullptr;
  const int count = cupsGetJobs2(CUPS_HTTP_DEFAULT, &jobs, "Laser", 0, CUPS_WHICHJOBS_ACTIVE);
  ASSERT_EQ(count, 1);
  EXPECT_EQ(MediaOf(jobs[0].id), "iso_a5_148x210mm");
  cupsFreeJobs(count, jobs);
  Shell("cancel -a Laser");
}

TEST_F(Spooler, ARollReachesItsPrinterUnchanged) {
  const auto print = [](TRollPrinter& printer) {
    printer.BeginDoc();
    printer.Canvas().TextOut(0, 0, "น้ำดื่ม"_th);
    printer.NewPage();
    printer.EndDoc();
  };
  const TemporaryFolder folder;
  print(*Paper().RollFilePrinter(folder.File("roll.bin"), TRoll::Roll80, {TCut::Partial, true}));
  print(*Paper().RollQueuePrinter("Laser", TRoll::Roll80, {TCut::Partial, true}));
  EXPECT_EQ(wire_.NextJob(kSoon), ReadFileBytes(folder.File("roll.bin")));
  {
    const auto halfway = Paper().RollQueuePrinter("Laser", TRoll::Roll58, {});
    halfway->BeginDoc();
    halfway->NewPage();
  }
  EXPECT_EQ(wire_.NextJob(kNever), std::nullopt) << "a job that was not ended is cancelled";
}

// The last ones: the spooler does not answer, then it is dead.
TEST_F(Spooler, ZASpoolerThatHangsOrDies) {
  const auto open = ui_.Spooler().Open("Laser");
  ASSERT_TRUE(open->StartDoc("t") && open->StartPage());
  const int pid = PidOfFile(ServerFile());
  kill(pid, SIGSTOP);
  const auto begin = Clock::now();
  EXPECT_TRUE(ui_.Spooler().Printers().empty());
  EXPECT_LT(Clock::now() - begin, std::chrono::seconds(11));
  EXPECT_EQ(ui_.Spooler().Trouble(), "the print spooler does not answer");
  {
    const WithVariable chosen("KVSHARE_PRINTER", "Laser");
    EXPECT_EQ(MessageOf<EPrinter>([this] { ui_.Printer().BeginDoc(); }),
              "The printer Laser does not take the job: the print spooler does not answer");
  }
  EXPECT_LT(Clock::now() - begin, std::chrono::seconds(22));
  kill(pid, SIGCONT);

  KillServer();
  queues_.clear();
  const std::string block(16384, 'x');
  bool taken = true;
  for (int i = 0; taken && i < 1000; ++i) taken = open->Write(block);
  EXPECT_FALSE(taken) << "the wire is cut";
  EXPECT_FALSE(open->EndDoc());
  EXPECT_NE(open->Trouble(), "Success");
  EXPECT_NE(open->Trouble(), "");
  EXPECT_TRUE(ui_.Spooler().Printers().empty());
  EXPECT_EQ(ui_.Spooler().DefaultPrinter(), "");
  EXPECT_EQ(ui_.Spooler().Open("Laser"), nullptr);
  EXPECT_FALSE(TKovraWin32::IsPrinterInstalled());
  EXPECT_EQ(MessageOf<EPrinter>([this] { ui_.Printer().BeginDoc(); }), "the print spooler is down");
  const TemporaryFolder folder;
  std::ofstream(folder.File("f")) << "x";
  PrintFile(folder.File("f"));
  EXPECT_EQ(wire_.NextJob(kNever), std::nullopt);
}

}  // namespace
}  // namespace kvshare::paper
