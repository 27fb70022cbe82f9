// Files that appear in a folder whole and numbered upwards: what a spooler is made of. Names are
// the system's.
// Internal header.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kvshare::os {

// The folders directly in `folder`, by bytes, those whose name begins with `.` left out. Empty
// where it cannot be read.
std::vector<std::string> FoldersIn(const std::string& folder);

// A file without a name of its own until it is whole. Destroying it before throws it away.
class JobFile {
 public:
  explicit JobFile(std::string folder);  // IsOpen() tells whether the folder takes it
  ~JobFile();
  JobFile(const JobFile&) = delete;
  JobFile& operator=(const JobFile&) = delete;

  bool IsOpen() const { return file_ >= 0; }

  // Once false, always false: a job that lacks a piece never appears.
  bool Write(std::string_view bytes);

  // Flushes the file and names it NNNNNN-`name`. The number is greater than the number of every job
  // that the folder has had, removed jobs included. Several processes get different ones.
  bool Publish(std::string_view name);

 private:
  bool Close();

  std::string folder_;
  std::string temporary_;
  int file_ = -1;
};

}  // namespace kvshare::os
