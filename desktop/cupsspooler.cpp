#include "desktop/cupsspooler.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "desktop/cupsconnection.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/environment.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/strutils.h"
#include "kvshare/ui/printer.h"

namespace kvshare::desktop {

namespace {

using Answer = std::unique_ptr<ipp_t, void (*)(ipp_t*)>;

constexpr const char* kName = "printer-name";
constexpr const char* kAccepting = "printer-is-accepting-jobs";

struct Queue {
  std::string name;  // UTF-8
  bool accepting = true;
};

std::optional<std::string> InCp874(std::string_view name) {
  try {
    return Utf8ToCp874(name);
  } catch (const EConvertError&) {
    return std::nullopt;
  }
}

bool Answered() {
  return cupsLastError() < IPP_STATUS_REDIRECTION_OTHER_SITE;
}

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

// None where the spooler does not answer, which Answered() tells, or has none.
std::vector<Queue> Queues(const CupsConnection& connection) {
  if (!connection.IsOpen()) return {};
  constexpr const char* kAsked[] = {kName, kAccepting};
  ipp_t* request = ippNewRequest(IPP_OP_CUPS_GET_PRINTERS);
  ippAddStrings(request, IPP_TAG_OPERATION, IPP_TAG_KEYWORD, "requested-attributes",
                std::size(kAsked), nullptr, kAsked);
  const Answer answer(cupsDoRequest(connection.Http(), request, "/"), ippDelete);
  std::vector<Queue> queues;
  bool inQueue = false;
  for (ipp_attribute_t* attribute = ippFirstAttribute(answer.get()); attribute != nullptr;
       attribute = ippNextAttribute(answer.get())) {
    TakeAttribute(queues, inQueue, attribute);
  }
  return queues;
}

// The one of that name, as it is spelled before one that differs in letter case.
std::optional<Queue> FindQueue(const CupsConnection& connection, std::string_view printer) {
  std::optional<Queue> found;
  for (Queue& queue : Queues(connection)) {
    const auto name = InCp874(queue.name);
    if (!name || !SameText(*name, printer)) continue;
    if (!found || *name == printer) found = std::move(queue);
  }
  return found;
}

class RawPrinter : public TPrinterHandle {
 public:
  explicit RawPrinter(std::string printer) : printer_(std::move(printer)) {}

  bool StartDoc(std::string_view title) override {
    if (job_) return false;
    job_.emplace(printer_, Cp874ToUtf8Lossy(title), CUPS_FORMAT_RAW);
    if (!job_->IsOpen()) job_.reset();
    return job_.has_value();
  }

  bool StartPage() override {
    if (!job_ || inPage_) return false;
    inPage_ = true;
    return true;
  }

  bool Write(std::string_view bytes) override { return inPage_ && job_->Write(bytes); }

  bool EndPage() override { return std::exchange(inPage_, false); }

  bool EndDoc() override {
    const bool sent = job_ && job_->Finish();
    job_.reset();
    inPage_ = false;
    return sent;
  }

 private:
  std::string printer_;  // UTF-8
  std::optional<CupsJob> job_;
  bool inPage_ = false;  // only while there is a job
};

[[noreturn]] void Refuse(std::string_view printer, std::string_view reason) {
  throw EPrinter(Format("The printer %s does not take the job: %s", {printer, reason}));
}

Queue RequireQueue(std::string_view printer) {
  const CupsConnection connection;
  if (!connection.IsOpen()) Refuse(printer, "the print spooler is down");
  auto queue = FindQueue(connection, printer);
  if (!queue) Refuse(printer, Answered() ? "there is none of that name" : CupsReason());
  return *std::move(queue);
}

}  // namespace

std::vector<std::string> CupsSpooler::Printers() {
  std::vector<std::string> printers;
  for (const Queue& queue : Queues(CupsConnection())) {
    if (auto name = InCp874(queue.name)) printers.push_back(*std::move(name));
  }
  std::ranges::sort(printers);
  return printers;
}

std::string CupsSpooler::DefaultPrinter() {
  if (const std::string_view chosen = Environment("KVSHARE_PRINTER"); !chosen.empty()) {
    return InCp874(chosen).value_or("");
  }
  const CupsConnection connection;
  if (!connection.IsOpen()) return {};
  if (const char* name = cupsGetDefault2(connection.Http()); name != nullptr) {
    return InCp874(name).value_or("");
  }
  if (!Answered() && cupsLastError() != IPP_STATUS_ERROR_NOT_FOUND) return {};
  const std::vector<Queue> queues = Queues(connection);
  return queues.size() == 1 ? InCp874(queues.front().name).value_or("") : "";
}

std::unique_ptr<TPrinterHandle> CupsSpooler::Open(std::string_view printer) {
  const auto queue = FindQueue(CupsConnection(), printer);
  if (!queue) return nullptr;
  return std::make_unique<RawPrinter>(queue->name);
}

Paper CupsSpooler::PaperOf(std::string_view printer) {
  const CupsConnection connection;
  const auto queue = FindQueue(connection, printer);
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
  const Paper paper{size.width, size.length, size.left, size.top, size.right, size.bottom};
  const bool printable = paper.left >= 0 && paper.top >= 0 && paper.right >= 0 &&
                         paper.bottom >= 0 && paper.width - paper.left - paper.right > 0 &&
                         paper.height - paper.top - paper.bottom > 0;
  return printable ? paper : Paper{};
}

void CupsSpooler::RequirePrinter(std::string_view printer) {
  if (!RequireQueue(printer).accepting) Refuse(printer, "it does not accept jobs");
}

void CupsSpooler::PrintPdf(std::string_view printer, std::string_view title,
                           std::string_view bytes) {
  CupsJob job(RequireQueue(printer).name, Cp874ToUtf8Lossy(title), CUPS_FORMAT_PDF);
  if (!job.Write(bytes) || !job.Finish()) Refuse(printer, CupsReason());
}

}  // namespace kvshare::desktop
