// Other processes of a test.
#pragma once

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <utility>

namespace kvshare {

// A child that runs `work` and says by its exit status whether it held. Killed, if it still runs,
// when its owner goes.
class ChildProcess {
 public:
  template <typename Work>
  explicit ChildProcess(Work work) {
    std::fflush(nullptr);  // what is not written yet would be twice
    id_ = ::fork();
    if (id_ != 0) return;
    bool held = false;
    try {
      held = work();
    } catch (...) {
      held = false;
    }
    ::_exit(held ? 0 : 1);
  }
  ~ChildProcess() { Kill(); }
  ChildProcess(ChildProcess&& other) noexcept : id_(std::exchange(other.id_, 0)) {}
  ChildProcess& operator=(ChildProcess&& other) noexcept {
    std::swap(id_, other.id_);
    return *this;
  }

  bool Held() {
    int status = -1;
    ::waitpid(std::exchange(id_, 0), &status, 0);
    return status == 0;
  }
  void Kill() {
    if (id_ <= 0) return;
    ::kill(id_, SIGKILL);
    Held();
  }

 private:
  pid_t id_ = 0;
};

// Whether `work` holds for a user whom permissions bind, which the superuser is not.
template <typename Work>
bool HoldsForOrdinaryUser(Work work) {
  return ChildProcess([&] {
           constexpr uid_t kNobody = 65534;
           const bool ordinary =
               ::geteuid() != 0 || (::setgid(kNobody) == 0 && ::setuid(kNobody) == 0);
           return ordinary && work();
         })
      .Held();
}

class Pipe {
 public:
  Pipe() { static_cast<void>(::pipe2(ends_, O_CLOEXEC) == 0); }
  ~Pipe() {
    ::close(ends_[0]);
    CloseWriter();
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;

  int Reader() const { return ends_[0]; }
  void CloseWriter() { ::close(std::exchange(ends_[1], -1)); }

  // A record is small enough to arrive whole or not at all.
  template <typename Record>
  bool Write(const Record& record) const {
    return ::write(ends_[1], &record, sizeof record) == sizeof record;
  }
  template <typename Record>
  bool Read(Record& record) const {  // false at the end
    return ::read(ends_[0], &record, sizeof record) == sizeof record;
  }

 private:
  int ends_[2] = {-1, -1};
};

}  // namespace kvshare
