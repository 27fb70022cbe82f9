#include "paper/cupsspooler.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/environment.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/strutils.h"
#include "kvshare/ui/printer.h"
#include "paper/cupsconnection.h"

namespace kvshare::paper {

namespace {

using Answer = std::unique_ptr<ipp_t, void (*)(ipp_t*)>;

constexpr const char* kName = "printer-name";
constexpr const char* kAccepting = "printer-is-accepting-jobs";

struct Queue {
  std::string name;  // UTF-8
  bool accepting = true;
};

// Adds what the attribute tells to the queue that is being read, which another group ends.
void TakeAttribute(std::vector<Queue>& queues, bool& inQueue, ipp_attribute_t* attribute) {
  const char* const name = ippGetName(attribute);
  if (name == nullptr || ippGetGroupTag(attribute) != IPP_TAG_PRINTER) {
    inQueue = false;
    return;
  }
  if (!std::exchange(inQueue, true)) queues.emplace_back();
  if (std::string_view(name) == kName) queues.back().name = ippGetString(attribute, 0, nullptr);
  if (std::string_view(name) == kAccepting) {
    queues.back().accepting = ippGetBoolean(attribute, 0) != 0;
  }
}

// The spooler's answer that it has no such thing.
bool SaysNone() {
  return cupsLastError() == IPP_STATUS_ERROR_NOT_FOUND;
}

// None where the spooler has none, and where it cannot be asked: then `trouble` says why.
std::vector<Queue> Queues(const CupsConnection& connection, std::string& trouble) {
  trouble.clear();
  if (!connection.IsOpen()) {
    trouble = connection.Reason();
    return {};
  }
  constexpr const char* kAsked[] = {kName, kAccepting};
  ipp_t* request = ippNewRequest(IPP_OP_CUPS_GET_PRINTERS);
  ippAddStrings(request, IPP_TAG_OPERATION, IPP_TAG_KEYWORD, "requested-attributes",
                std::size(kAsked), nullptr, kAsked);
  const Answer answer(cupsDoRequest(connection.Http(), request, "/"), ippDelete);
  if (!CupsAnswered() && !SaysNone()) trouble = connection.Reason();
  std::vector<Queue> queues;
  bool inQueue = false;
  for (ipp_attribute_t* attribute = ippFirstAttribute(answer.get()); attribute != nullptr;
       attribute = ippNextAttribute(answer.get())) {
    TakeAttribute(queues, inQueue, attribute);
  }
  return queues;
}

// The one of that name, as it is spelled before one that differs in letter case.
std::optional<Queue> FindQueue(const CupsConnection& connection, std::string_view printer,
                               std::string& trouble) {
  std::optional<Queue> found;
  for (Queue& queue : Queues(connection, trouble)) {
    const auto name = TryUtf8ToCp874(queue.name);
    if (!name || !SameText(*name, printer)) continue;
    if (!found || *name == printer) found = std::move(queue);
  }
  return found;
}

class RawPrinter : public TOrderedPrinterHandle {
 public:
  explicit RawPrinter(std::string printer) : printer_(std::move(printer)) {}

  std::string Trouble() const override { return trouble_; }

 private:
  bool BeginJob(std::string_view title) override {
    job_.emplace(printer_, CupsDocument{Cp874ToUtf8Lossy(title), CUPS_FORMAT_RAW, ""});
    return Done(job_->IsOpen());
  }

  bool WriteJob(std::string_view bytes) override { return Done(job_->Write(bytes)); }

  bool FinishJob() override {
    const bool sent = Done(job_->Finish());
    job_.reset();
    return sent;
  }

  bool Done(bool done) {
    if (!done) trouble_ = job_->Reason();
    return done;
  }

  std::string printer_;  // UTF-8
  std::string trouble_;
  std::optional<CupsJob> job_;
};

[[noreturn]] void Refuse(std::string_view printer, std::string_view reason) {
  throw RefusedJob(printer, reason);
}

Queue RequireQueue(std::string_view printer) {
  std::string trouble;
  auto queue = FindQueue(CupsConnection(), printer, trouble);
  if (!queue) Refuse(printer, trouble.empty() ? "there is no printer of that name" : trouble);
  return *std::move(queue);
}

}  // namespace

EPrinter RefusedJob(std::string_view printer, std::string_view reason) {
  return EPrinter(Format("The printer %s does not take the job: %s", {printer, reason}));
}

std::vector<std::string> CupsSpooler::Printers() {
  std::vector<std::string> printers;
  for (const Queue& queue : Queues(CupsConnection(), trouble_)) {
    if (auto name = TryUtf8ToCp874(queue.name)) printers.push_back(*std::move(name));
  }
  std::ranges::sort(printers);
  return printers;
}

std::string CupsSpooler::DefaultPrinter() {
  trouble_.clear();
  if (const std::string_view chosen = Environment("KVSHARE_PRINTER"); !chosen.empty()) {
    return TryUtf8ToCp874(chosen).value_or("");
  }
  const CupsConnection connection;
  if (!connection.IsOpen()) {
    trouble_ = connection.Reason();
    return {};
  }
  if (const char* name = cupsGetDefault2(connection.Http()); name != nullptr) {
    return TryUtf8ToCp874(name).value_or("");
  }
  if (!CupsAnswered() && !SaysNone()) {
    trouble_ = connection.Reason();
    return {};
  }
  const std::vector<Queue> queues = Queues(connection, trouble_);
  return queues.size() == 1 ? TryUtf8ToCp874(queues.front().name).value_or("") : "";
}

std::unique_ptr<TPrinterHandle> CupsSpooler::Open(std::string_view printer) {
  const auto queue = FindQueue(CupsConnection(), printer, trouble_);
  if (!queue) return nullptr;
  return std::make_unique<RawPrinter>(queue->name);
}

TSheet CupsSpooler::SheetOf(std::string_view printer) {
  const CupsConnection connection;
  const auto queue = FindQueue(connection, printer, paperTrouble_);
  paperAsked_ = std::chrono::steady_clock::now();
  if (!queue) return {};
  const auto freeOne = [](cups_dest_t* destination) { cupsFreeDests(1, destination); };
  const std::unique_ptr<cups_dest_t, decltype(freeOne)> destination(
      cupsGetNamedDest(connection.Http(), queue->name.c_str(), nullptr), freeOne);
  if (!destination) return {};
  const std::unique_ptr<cups_dinfo_t, void (*)(cups_dinfo_t*)> about(
      cupsCopyDestInfo(connection.Http(), destination.get()), cupsFreeDestInfo);
  cups_size_t size{};
  if (!about || cupsGetDestMediaDefault(connection.Http(), destination.get(), about.get(),
                                        CUPS_MEDIA_FLAGS_DEFAULT, &size) == 0) {
    return {};
  }
  const TSheet paper{size.width, size.length, size.left, size.top, size.right, size.bottom};
  const bool printable = paper.left >= 0 && paper.top >= 0 && paper.right >= 0 &&
                         paper.bottom >= 0 && paper.width - paper.left - paper.right > 0 &&
                         paper.height - paper.top - paper.bottom > 0;
  return printable ? paper : TSheet{};
}

std::string CupsSpooler::FreshPaperTrouble() const {
  constexpr std::chrono::seconds kFresh{2};
  const bool fresh = std::chrono::steady_clock::now() - paperAsked_ < kFresh;
  return fresh ? paperTrouble_ : std::string();
}

void CupsSpooler::RequirePrinter(std::string_view printer) {
  if (const std::string trouble = FreshPaperTrouble(); !trouble.empty()) Refuse(printer, trouble);
  if (!RequireQueue(printer).accepting) Refuse(printer, "it does not accept jobs");
}

std::string CupsSpooler::MediaOf(const TSheet& sheet) {
  const pwg_media_t* media = pwgMediaForSize(sheet.width, sheet.height);
  return media == nullptr ? "" : media->pwg;
}

void CupsSpooler::PrintPdf(std::string_view printer, const JobTicket& ticket,
                           std::string_view bytes) {
  CupsJob job(RequireQueue(printer).name,
              {Cp874ToUtf8Lossy(ticket.title), CUPS_FORMAT_PDF, ticket.media});
  if (!job.Write(bytes) || !job.Finish()) Refuse(printer, job.Reason());
}

}  // namespace kvshare::paper
