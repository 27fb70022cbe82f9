// What documents lack, counted for one message each.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "apps/receipts/papertitle.h"

namespace kvshare::app {

class Lackings {
 public:
  void Add(const receipts::Document& document, receipts::UserText missing, bool creditNote);

  // A line for each kind of lacking, in the order in which they came. UTF-8.
  std::vector<std::string> Messages() const;

 private:
  struct Entry {
    receipts::UserText missing;
    bool creditNote;
    std::int64_t count;
    std::string first;  // document's number
  };
  std::vector<Entry> entries_;
};

}  // namespace kvshare::app
