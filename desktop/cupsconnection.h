// Talks with CUPS that end by themselves: no call waits for longer than kCupsSeconds.
#pragma once

#include <cups/cups.h>

#include <memory>
#include <string>
#include <string_view>

namespace kvshare::desktop {

inline constexpr int kCupsSeconds = 10;

class CupsConnection {
 public:
  CupsConnection();

  bool IsOpen() const { return http_ != nullptr; }
  http_t* Http() const { return http_.get(); }

 private:
  std::unique_ptr<http_t, void (*)(http_t*)> http_;
};

// What the last call of this thread was refused with, in code page 874.
std::string CupsReason();

// A job of one document. What was not finished is cancelled when this is destroyed.
class CupsJob {
 public:
  // `printer` and `title` are UTF-8. IsOpen() tells whether the spooler takes it.
  CupsJob(std::string printer, const std::string& title, const char* format);
  ~CupsJob();
  CupsJob(const CupsJob&) = delete;
  CupsJob& operator=(const CupsJob&) = delete;

  bool IsOpen() const { return open_; }
  bool Write(std::string_view bytes);  // once false, always false
  bool Finish();

 private:
  void Cancel() const;

  std::string printer_;
  CupsConnection connection_;
  int id_ = 0;
  bool open_ = false;
  bool finished_ = false;
};

}  // namespace kvshare::desktop
