#include "apps/kvshare/log/logfollower.h"

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>

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
  constexpr off_t kMostBytes = 1 << 20;
  const off_t size = ::lseek(file_.Fd(), 0, SEEK_END);
  position_ = ::lseek(file_.Fd(), std::max<off_t>(size - kMostBytes, 0), SEEK_SET);
  std::string tail;
  AppendRest(tail, file_.Fd());
  std::size_t begin = tail.size();
  for (std::size_t n = 0; n <= lines && begin != std::string::npos; ++n) {
    begin = begin == 0 ? std::string::npos : tail.rfind('\n', begin - 1);
  }
  position_ += static_cast<off_t>(begin == std::string::npos ? 0 : begin + 1);
}

// A line that is not whole is read again the next time: the append that failed may have been taken
// back, and another may stand in its place.
void LogFollower::TakeNew(std::string& lines) {
  struct stat facts = {};
  if (::fstat(file_.Fd(), &facts) == 0) position_ = std::min(position_, facts.st_size);
  ::lseek(file_.Fd(), position_, SEEK_SET);
  unfinished_.clear();
  AppendRest(unfinished_, file_.Fd());
  const std::size_t end = unfinished_.rfind('\n') + 1;  // npos + 1 is 0
  lines.append(unfinished_, 0, end);
  unfinished_.erase(0, end);
  position_ += static_cast<off_t>(end);
}

bool LogFollower::HasAnotherName() const {
  struct stat own = {};
  struct stat named = {};
  if (::fstat(file_.Fd(), &own) != 0 || ::stat(path_.c_str(), &named) != 0) return false;
  return own.st_dev != named.st_dev || own.st_ino != named.st_ino;
}

void LogFollower::Take(std::string& lines) {
  if (!file_.IsOpen()) OpenIfThere();
  if (!file_.IsOpen()) return;
  const bool renamed = HasAnotherName();  // asked first: what is written before is read then
  TakeNew(lines);
  if (!renamed) return;
  OpenIfThere();
  TakeNew(lines);
}

}  // namespace kvshare::app
