// Lines in and lines out, in blocks, so that a column of a million lines streams through.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "apps/kvshare/system/descriptors.h"

namespace kvshare::app {

// The descriptors that a command reads and writes.
struct Stdio {
  int in = 0;
  int out = 1;
  int err = 2;
};

// Collects bytes and writes them in blocks. What was not flushed when it is destroyed is lost: only
// Flush can tell that the disk is full.
class BlockWriter {
 public:
  BlockWriter(int fd, std::string name) : fd_(fd), name_(std::move(name)) {}

  // Append here; the bytes leave at the next EndLine or EndBlock that fills a block, or at Flush.
  std::string& Buffer() { return buffer_; }
  void EndLine();   // appends LF
  void EndBlock();  // appends nothing
  void Flush();

 private:
  int fd_;
  std::string name_;
  std::string buffer_;
};

// Splits an input into lines. A line ends at LF, with or without CR before it, or at the end of the
// input; a byte-order mark before the first line is skipped.
class LineReader {
 public:
  static constexpr std::size_t kMaxLine = std::size_t{16} << 20;

  enum class Result { Line, TooLong, End };

  // `beforeRead` runs before each read; its argument tells whether the read would wait.
  LineReader(int fd, std::function<void(bool waits)> beforeRead);

  // The next line, valid until the next call. A line of more than kMaxLine bytes is skipped and
  // gives TooLong; memory never grows past twice that length. Throws StreamError.
  Result Next(std::string_view& line);

 private:
  bool Fill();
  void MakeRoom();
  void SkipByteOrderMark();
  Result SkipLongLine();

  int fd_;
  std::function<void(bool)> beforeRead_;
  std::vector<char> buffer_;
  std::size_t begin_ = 0;  // of the line that is being read
  std::size_t seen_ = 0;   // no LF in [begin_, seen_)
  std::size_t end_ = 0;
  bool first_ = true;
};

}  // namespace kvshare::app
