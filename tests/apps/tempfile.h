// Streams of a command under test.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <string>
#include <string_view>
#include <vector>

#include "apps/kvshare/cli.h"

namespace kvshare::app {

// A file in memory that holds `content`, read from its start.
class TempFile {
 public:
  explicit TempFile(std::string_view content = "") : fd_(::memfd_create("test", MFD_CLOEXEC)) {
    while (!content.empty()) {
      const ssize_t n = ::write(fd_, content.data(), content.size());
      if (n <= 0) break;
      content.remove_prefix(static_cast<std::size_t>(n));
    }
    ::lseek(fd_, 0, SEEK_SET);
  }
  ~TempFile() { ::close(fd_); }
  TempFile(const TempFile&) = delete;
  TempFile& operator=(const TempFile&) = delete;

  int Fd() const { return fd_; }
  std::string Name() const { return "/proc/self/fd/" + std::to_string(fd_); }

  std::string Content() const {
    std::string content(static_cast<std::size_t>(::lseek(fd_, 0, SEEK_END)), '\0');
    const ssize_t n = ::pread(fd_, content.data(), content.size(), 0);
    content.resize(n < 0 ? 0 : static_cast<std::size_t>(n));
    return content;
  }

 private:
  int fd_;
};

struct Outcome {
  int status = 0;
  std::string out;
  std::string err;
};

inline Outcome Kvshare(std::vector<std::string> arguments, std::string_view input = "") {
  const TempFile in(input);
  const TempFile out;
  const TempFile err;
  const int status = RunCommandLine(std::move(arguments), {in.Fd(), out.Fd(), err.Fd()});
  return {status, out.Content(), err.Content()};
}

}  // namespace kvshare::app
