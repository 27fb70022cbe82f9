#include "apps/kvshare/log/logfollower.h"

#include <algorithm>
#include <filesystem>

#include "apps/kvshare/terminal/inputfile.h"

namespace kvshare::app {

LogFollower::LogFollower(std::string path, std::size_t lines) : path_(std::move(path)) {
  OpenIfThere();
  if (file_.IsOpen()) SkipToLast(lines);
}

void LogFollower::OpenIfThere() {
  std::error_code ignored;
  if (!std::filesystem::exists(path_, ignored)) return;
  file_ = InputFile(path_);
  position_ = 0;
}

void LogFollower::SkipToLast(std::size_t lines) {
  constexpr std::uint64_t kMostBytes = 1 << 20;
  const std::uint64_t size = file_.Size();
  position_ = size > kMostBytes ? size - kMostBytes : 0;
  file_.SeekTo(position_);
  std::string tail;
  AppendRest(tail, file_.Fd());
  std::size_t begin = tail.size();
  for (std::size_t n = 0; n <= lines && begin != std::string::npos; ++n) {
    begin = begin == 0 ? std::string::npos : tail.rfind('\n', begin - 1);
  }
  position_ += begin == std::string::npos ? 0 : begin + 1;
}

// A line that is not whole is read again the next time: the append that failed may have been taken
// back, and another may stand in its place.
void LogFollower::TakeNew(std::string& lines) {
  position_ = std::min(position_, file_.Size());
  file_.SeekTo(position_);
  unfinished_.clear();
  AppendRest(unfinished_, file_.Fd());
  const std::size_t end = unfinished_.rfind('\n') + 1;  // npos + 1 is 0
  lines.append(unfinished_, 0, end);
  unfinished_.erase(0, end);
  position_ += end;
}

void LogFollower::Take(std::string& lines) {
  if (!file_.IsOpen()) OpenIfThere();
  if (!file_.IsOpen()) return;
  const bool renamed =
      file_.WasReplacedAt(path_);  // asked first: what is written before is read then
  TakeNew(lines);
  if (!renamed) return;
  OpenIfThere();
  TakeNew(lines);
}

}  // namespace kvshare::app
