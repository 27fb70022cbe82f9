#include "apps/kvshare/terminal/stream.h"

#include <cstring>

#include "kvshare/rtl/utf8mark.h"

namespace kvshare::app {

namespace {

constexpr std::size_t kBlock = std::size_t{256} << 10;

}  // namespace

void BlockWriter::EndLine() {
  buffer_.push_back('\n');
  EndBlock();
}

void BlockWriter::EndBlock() {
  if (buffer_.size() >= kBlock) Flush();
}

void BlockWriter::Flush() {
  std::string bytes;  // emptied when the write fails too
  bytes.swap(buffer_);
  WriteAll(fd_, bytes, name_);
  bytes.clear();
  bytes.swap(buffer_);
}

LineReader::LineReader(int fd, std::function<void(bool)> beforeRead)
    : fd_(fd), beforeRead_(std::move(beforeRead)), buffer_(kBlock) {}

LineReader::Result LineReader::Next(std::string_view& line) {
  for (;;) {
    const char* from = buffer_.data() + seen_;
    const auto* lf = static_cast<const char*>(std::memchr(from, '\n', end_ - seen_));
    std::size_t stop = lf != nullptr ? static_cast<std::size_t>(lf - buffer_.data()) : end_;
    if (lf == nullptr) {
      seen_ = end_;
      if (end_ - begin_ > kMaxLine) return SkipLongLine();
      if (Fill()) continue;
      if (begin_ == end_) return Result::End;
      stop = end_;  // Fill may have moved the line
    }
    const std::size_t start = begin_;
    begin_ = seen_ = lf != nullptr ? stop + 1 : stop;
    if (stop - start > kMaxLine) return Result::TooLong;
    if (stop > start && buffer_[stop - 1] == '\r') --stop;
    line = {buffer_.data() + start, stop - start};
    return Result::Line;
  }
}

// Reads the next block behind what is there; false at the end of the input.
bool LineReader::Fill() {
  MakeRoom();
  beforeRead_(ReadWouldWait(fd_));
  const std::size_t n = ReadSome(fd_, buffer_.data() + end_, buffer_.size() - end_);
  end_ += n;
  if (first_) SkipByteOrderMark();
  return n != 0;
}

void LineReader::MakeRoom() {
  if (begin_ > 0) {
    std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
    end_ -= begin_;
    seen_ -= begin_;
    begin_ = 0;
  }
  if (end_ == buffer_.size()) buffer_.resize(2 * buffer_.size());
}

// Waits for three bytes unless the first ones already differ, since a pipe may give one at a time.
void LineReader::SkipByteOrderMark() {
  const std::string_view start(buffer_.data(), end_);
  if (start.size() < kUtf8Mark.size() && kUtf8Mark.starts_with(start)) return;
  first_ = false;
  if (start.starts_with(kUtf8Mark)) begin_ = seen_ = kUtf8Mark.size();
}

LineReader::Result LineReader::SkipLongLine() {
  for (;;) {
    begin_ = seen_ = end_ = 0;
    if (!Fill()) return Result::TooLong;
    const auto* lf = static_cast<const char*>(std::memchr(buffer_.data(), '\n', end_));
    if (lf == nullptr) continue;
    begin_ = seen_ = static_cast<std::size_t>(lf - buffer_.data()) + 1;
    return Result::TooLong;
  }
}

}  // namespace kvshare::app
