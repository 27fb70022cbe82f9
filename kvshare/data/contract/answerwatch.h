// Ends a call into a driver whose server does not answer.
// Internal header.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>

#include "kvshare/data/contract/driver.h"

namespace kvshare::data {

// Watches the calls of one thread from another one. A call that has lasted for the limit, or up to
// a tenth longer, is aborted.
class AnswerWatch {
 public:
  // The connection outlives the watch. Without a limit nothing is watched.
  AnswerWatch(Connection& connection, std::chrono::milliseconds limit);
  ~AnswerWatch();
  AnswerWatch(const AnswerWatch&) = delete;
  AnswerWatch& operator=(const AnswerWatch&) = delete;

  std::chrono::milliseconds Limit() const { return limit_; }
  bool HasAborted() const { return aborted_.load(std::memory_order_acquire); }

  // A call, from begin to end; cheap enough for one row.
  class Call {
   public:
    explicit Call(AnswerWatch* watch) : watch_(watch) { Count(); }
    ~Call() { Count(); }
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

   private:
    void Count() const {
      if (watch_ == nullptr) return;
      const std::uint64_t calls = watch_->beginsAndEnds_.load(std::memory_order_relaxed);
      watch_->beginsAndEnds_.store(calls + 1, std::memory_order_release);
    }
    AnswerWatch* watch_;
  };

 private:
  void Watch();

  Connection& connection_;
  std::chrono::milliseconds limit_;
  std::atomic<std::uint64_t> beginsAndEnds_ = 0;  // odd inside a call
  std::atomic<bool> aborted_ = false;
  std::mutex mutex_;
  std::condition_variable ended_;
  bool end_ = false;
  std::thread thread_;
};

}  // namespace kvshare::data
