// The program's talk with whoever watches it.
// Internal header.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "kvshare/export.h"

namespace kvshare::os {

// Where lines are read and messages written; by numbers of open files, which stay the caller's.
class KVSHARE_API Console {
 public:
  static constexpr int kStandardInput = 0;
  static constexpr int kStandardError = 2;

  explicit Console(int input = kStandardInput, int output = kStandardError)
      : input_(input), output_(output) {}

  // From now on lines that no terminal has shown while they were typed are written as they are
  // read, so that what is on the output reads as a talk.
  void EchoLines() { echoes_ = true; }

  // Whether both are terminals, so that somebody is there to answer.
  bool IsTerminal() const;

  // Writes the bytes with one call where the system takes them at once, so that the messages of
  // several programs do not mix. There is nobody to tell of a failure.
  void Write(std::string_view bytes) const;

  // The next line without its end; nothing at the end of the input or where it cannot be read. No
  // byte behind the line is taken from the program, which may read on. A last line without an end
  // counts.
  std::optional<std::string> ReadLine() const;

 private:
  std::optional<std::string> ReadBytesOfLine() const;

  int input_;
  int output_;
  bool echoes_ = false;
};

}  // namespace kvshare::os
