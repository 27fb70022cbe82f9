// What the command asks of the system for its own process.
#pragma once

#include <filesystem>
#include <string>

namespace kvshare::app {

// From now on a write to a reader that has gone fails, and does not end the process.
void KeepRunningWithoutReaders();

// "" is an empty value, not the absence of one.
void SetEnvironment(const std::string& name, const std::string& value);

// Whether this user may create files in the folder.
bool MayWriteInto(const std::filesystem::path& folder);

// Ctrl-C as a question, for work that ends between two steps and reports what is done. While it
// lives, the first one, or the first request to end, only asks; the second one ends the process as
// ever. One lives at a time.
class Interruption {
 public:
  Interruption();
  ~Interruption();
  Interruption(const Interruption&) = delete;
  Interruption& operator=(const Interruption&) = delete;

  bool Asked() const;
};

}  // namespace kvshare::app
