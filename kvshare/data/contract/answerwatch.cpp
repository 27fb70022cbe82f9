#include "kvshare/data/contract/answerwatch.h"

namespace kvshare::data {

AnswerWatch::AnswerWatch(Connection& connection, std::chrono::milliseconds limit)
    : connection_(connection), limit_(limit) {
  if (limit_.count() > 0) thread_ = std::thread([this] { Watch(); });
}

AnswerWatch::~AnswerWatch() {
  if (!thread_.joinable()) return;
  {
    const std::lock_guard lock(mutex_);
    end_ = true;
  }
  ended_.notify_one();
  thread_.join();
}

void AnswerWatch::Watch() {
  constexpr int kLooks = 10;
  std::uint64_t seen = 0;
  int looks = 0;  // that have seen the same call
  std::unique_lock lock(mutex_);
  while (!ended_.wait_for(lock, limit_ / kLooks, [this] { return end_; })) {
    const std::uint64_t now = beginsAndEnds_.load(std::memory_order_acquire);
    const bool same = now == seen && now % 2 == 1;
    seen = now;
    looks = same ? looks + 1 : 0;
    if (looks != kLooks) continue;
    aborted_.store(true, std::memory_order_release);
    connection_.Abort();
  }
}

}  // namespace kvshare::data
