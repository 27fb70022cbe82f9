#include "apps/kvshare/day/lackings.h"

#include <algorithm>

namespace kvshare::app {

using receipts::Say;
using receipts::SayUtf8;

void Lackings::Add(const receipts::Document& document, receipts::UserText missing,
                   bool creditNote) {
  const auto known = std::ranges::find_if(entries_, [&](const Entry& entry) {
    return &entry.missing.Row() == &missing.Row() && entry.creditNote == creditNote;
  });
  if (known != entries_.end()) {
    ++known->count;
  } else {
    entries_.push_back({missing, creditNote, 1, document.number});
  }
}

std::vector<std::string> Lackings::Messages() const {
  std::vector<std::string> messages;
  messages.reserve(entries_.size());
  for (const Entry& entry : entries_) {
    const std::string missing = Say(entry.missing);
    messages.push_back(
        entry.creditNote
            ? SayUtf8("credit notes need %s; documents without it: %d, the first is %s",
                      {missing, entry.count, entry.first})
            : SayUtf8("full tax invoices need %s; documents without it: %d, the first is %s",
                      {missing, entry.count, entry.first}));
  }
  return messages;
}

}  // namespace kvshare::app
