// Talks with CUPS that end by themselves: a spooler that stays silent is given up after
// kCupsPatience.
#pragma once

#include <cups/cups.h>

#include <chrono>
#include <memory>
#include <string>
#include <string_view>

namespace kvshare::paper {

inline constexpr std::chrono::seconds kCupsPatience{8};

class CupsConnection {
 public:
  explicit CupsConnection(std::chrono::seconds patience = kCupsPatience);
  CupsConnection(const CupsConnection&) = delete;
  CupsConnection& operator=(const CupsConnection&) = delete;

  bool IsOpen() const { return http_ != nullptr; }
  http_t* Http() const { return http_.get(); }

  // The spooler has answered: it may be silent as long again.
  void Heard() { until_ = Clock::now() + patience_; }

  // Why the last call of this connection failed, in code page 874.
  std::string Reason() const;

 private:
  using Clock = std::chrono::steady_clock;

  std::chrono::seconds patience_;
  Clock::time_point until_;
  std::unique_ptr<http_t, void (*)(http_t*)> http_;
};

// Whether the last call of this thread was done.
bool CupsAnswered();

struct CupsDocument {
  std::string title;  // UTF-8
  const char* format;
  std::string media;  // the name of its sheet, or "" for the printer's own
};

// A job of one document. What was not finished is cancelled when this is destroyed.
class CupsJob {
 public:
  // `printer` is UTF-8. IsOpen() tells whether the spooler takes it.
  CupsJob(std::string printer, const CupsDocument& document);
  ~CupsJob();
  CupsJob(const CupsJob&) = delete;
  CupsJob& operator=(const CupsJob&) = delete;

  bool IsOpen() const { return open_; }
  bool Write(std::string_view bytes);  // once false, always false
  bool Finish();

  // Why the last call failed, in code page 874.
  std::string Reason() const { return connection_.Reason(); }

 private:
  void Cancel() const;

  std::string printer_;
  CupsConnection connection_;
  int id_ = 0;
  bool open_ = false;
  bool finished_ = false;
};

}  // namespace kvshare::paper
