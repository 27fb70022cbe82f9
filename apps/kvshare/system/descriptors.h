// The command's streams and files as the system reads and writes them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace kvshare::app {

// A read or write that failed: `standard output: No space left on device`.
class StreamError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Whoever read the output has gone, as `head` does: nobody is there to read a message.
class ReaderGone : public StreamError {
 public:
  ReaderGone() : StreamError("nobody reads the output") {}
};

bool IsTerminal(int descriptor);

// Whether nothing has come yet and the input has not ended.
bool ReadWouldWait(int descriptor);

// Up to `size` bytes; 0 at the end of the input. Throws StreamError.
std::size_t ReadSome(int descriptor, char* to, std::size_t size);

// Writes all the bytes. Throws ReaderGone, or StreamError with the stream's name.
void WriteAll(int descriptor, std::string_view bytes, const std::string& stream);

// A file that is open for reading.
class InputFile {
 public:
  InputFile() = default;  // of no file
  // Throws StreamError `PATH: reason`, for a folder too.
  explicit InputFile(const std::string& path);
  ~InputFile();
  InputFile(InputFile&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
  InputFile& operator=(InputFile&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
  }

  bool IsOpen() const { return descriptor_ >= 0; }
  int Fd() const { return descriptor_; }

  // In bytes, now. Throws StreamError.
  std::uint64_t Size() const;

  // The next byte that is read. Throws StreamError.
  void SeekTo(std::uint64_t position) const;

  // Whether another file has the name now. False where no file has it.
  bool WasReplacedAt(const std::string& path) const;

 private:
  int descriptor_ = -1;
};

}  // namespace kvshare::app
