#include "paper/cupsconnection.h"

#include <sys/socket.h>

#include <utility>

#include "kvshare/rtl/cp874.h"

namespace kvshare::paper {

namespace {

http_t* Connect(std::chrono::milliseconds patience) {
  // Without this the user would be asked at a terminal that nobody may be watching.
  cupsSetPasswordCB2(
      [](const char*, http_t*, const char*, const char*, void*) -> const char* { return nullptr; },
      nullptr);
  constexpr int kBlocking = 1;
  http_t* http = httpConnect2(cupsServer(), ippPort(), nullptr, AF_UNSPEC, cupsEncryption(),
                              kBlocking, static_cast<int>(patience.count()), nullptr);
  return http;
}

}  // namespace

// The library begins a request that was not answered again, with a wait of its own: all of them
// together must end in time.
CupsConnection::CupsConnection(std::chrono::seconds patience)
    : patience_(patience), until_(Clock::now() + patience), http_(Connect(patience), httpClose) {
  if (!http_) return;
  constexpr double kLook = 0.5;  // seconds between two looks at the clock
  const auto goOn = [](http_t* /*http*/, void* connection) {
    return Clock::now() < static_cast<CupsConnection*>(connection)->until_ ? 1 : 0;
  };
  httpSetTimeout(Http(), kLook, goOn, this);
}

bool CupsAnswered() {
  return cupsLastError() < IPP_STATUS_REDIRECTION_OTHER_SITE;
}

std::string CupsConnection::Reason() const {
  if (!IsOpen()) return "the print spooler is down";
  // A call that broke off leaves the text of an earlier one, such as "Success".
  const char* reason = cupsLastErrorString();
  if (reason == nullptr || CupsAnswered() || Clock::now() >= until_) {
    return "the print spooler does not answer";
  }
  return TryUtf8ToCp874(reason).value_or(ippErrorString(cupsLastError()));
}

CupsJob::CupsJob(std::string printer, const CupsDocument& document) : printer_(std::move(printer)) {
  if (!connection_.IsOpen()) return;
  char media[] = "media";
  std::string sheet = document.media;
  cups_option_t option{media, sheet.data()};
  const char* const title = document.title.c_str();
  id_ = cupsCreateJob(connection_.Http(), printer_.c_str(), title, sheet.empty() ? 0 : 1, &option);
  if (id_ == 0) return;
  constexpr int kLastDocument = 1;
  open_ = cupsStartDocument(connection_.Http(), printer_.c_str(), id_, title, document.format,
                            kLastDocument) == HTTP_STATUS_CONTINUE;
  if (open_) connection_.Heard();
}

CupsJob::~CupsJob() {
  if (id_ != 0 && !finished_) Cancel();
}

bool CupsJob::Write(std::string_view bytes) {
  open_ = open_ && cupsWriteRequestData(connection_.Http(), bytes.data(), bytes.size()) ==
                       HTTP_STATUS_CONTINUE;
  if (open_) connection_.Heard();
  return open_;
}

bool CupsJob::Finish() {
  if (!open_) return false;
  open_ = false;
  finished_ =
      cupsFinishDocument(connection_.Http(), printer_.c_str()) < IPP_STATUS_REDIRECTION_OTHER_SITE;
  return finished_;
}

// By a connection of its own: the job's one is in the middle of the document.
void CupsJob::Cancel() const {
  constexpr std::chrono::seconds kShort{2};
  const CupsConnection another(kShort);
  constexpr int kKeepHistory = 0;
  if (another.IsOpen()) cupsCancelJob2(another.Http(), printer_.c_str(), id_, kKeepHistory);
}

}  // namespace kvshare::paper
