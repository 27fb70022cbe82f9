// Files that are written piece by piece and appear whole or not at all.
#pragma once

#include <memory>
#include <string_view>

#include "kvshare/export.h"

namespace kvshare::os {

// What the file of that name becomes with Keep; until then an earlier one stays as it is. Without
// Keep nothing is left. Every call throws EInOutError with the platform's code and message.
class KVSHARE_API WholeFile {
 public:
  explicit WholeFile(std::string_view name);
  ~WholeFile();
  WholeFile(const WholeFile&) = delete;
  WholeFile& operator=(const WholeFile&) = delete;

  void Write(std::string_view bytes);
  void Keep();  // flushes it to the disk; nothing may be written after it

 private:
  class State;
  std::unique_ptr<State> state_;
};

}  // namespace kvshare::os
