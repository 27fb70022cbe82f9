// A log that grows while it is read, through its monthly renaming.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "apps/kvshare/system/descriptors.h"

namespace kvshare::app {

class LogFollower {
 public:
  // Begins with the last `lines` lines of the file at a system's name; one that is missing is
  // waited for.
  LogFollower(std::string path, std::size_t lines);

  // Appends the whole lines that have come since the last call, as the file has them. When the file
  // has taken another name, the rest of it comes before the new one's lines. Throws StreamError.
  void Take(std::string& lines);

  // What stands behind the last whole line.
  const std::string& Unfinished() const { return unfinished_; }

 private:
  void OpenIfThere();
  void SkipToLast(std::size_t lines);
  void TakeNew(std::string& lines);

  std::string path_;
  InputFile file_;
  std::uint64_t position_ = 0;  // behind the last whole line
  std::string unfinished_;
};

}  // namespace kvshare::app
