// Which connection a call uses: a lease of a session, for one call or one transaction.
//
// A thread inside a transaction always gets the session that holds it. Other calls take an idle
// session of the pool, or open one, and give it back. Two events make a session unusable. The file
// may be replaced by another one of its name, which its identity shows. And the process may fork:
// the file locks belong to the parent, so a child never uses or closes what it has inherited, and
// refuses to work where the parent was in the middle of a call. The pool is a few atomic pointers,
// since a lock could be held by another thread at the fork and stay locked in the child for ever.
#include <array>
#include <atomic>
#include <utility>

#include "kvshare/os/forks.h"
#include "kvshare/os/paths.h"
#include "kvshare/os/registry/registrystore.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare::os::store {

namespace {

constexpr const char* kForked =
    "this process was forked while its parent was using the store; start a new program instead";

// The session of this thread's open transaction, which owns it.
thread_local Session* transaction = nullptr;

// The idle sessions of the process. Without a lock that a fork could leave locked behind.
class Pool {
 public:
  static Pool& Instance() {
    static Pool pool;
    return pool;
  }

  Pool() {
    AtForks([] { Instance().CloseAll(); }, [] { ++Instance().forks_; });
  }
  ~Pool() {
    for (auto& place : idle_) {
      if (process_ == ThisProcess()) Take(place);
    }
  }
  Pool(const Pool&) = delete;
  Pool& operator=(const Pool&) = delete;

  std::unique_ptr<Session> Get(const std::string& path, const FileIdentity& identity) {
    RefuseInherited();
    ++busy_;
    try {
      for (auto& place : idle_) {
        auto session = Take(place);
        if (session && session->IsOf(path, identity)) return session;
        // The file of that name may be another one by now, whose companions are not ours.
        if (session) session->LeaveUntouched();
      }
      return std::make_unique<Session>(path, identity);
    } catch (...) {
      --busy_;
      throw;
    }
  }

  void GiveBack(std::unique_ptr<Session> session) {
    if (session->Process() != ThisProcess()) {  // the parent's: closing it would end its locks
      static_cast<void>(session.release());
      return;
    }
    if (session->Reusable()) {
      for (auto& place : idle_) {
        Session* nobody = nullptr;
        if (place.compare_exchange_strong(nobody, session.get())) {
          static_cast<void>(session.release());
          break;
        }
      }
    }
    session.reset();
    --busy_;
  }

  // In a child, sessions that were busy or idle at the fork would share SQLite's own idea of which
  // locks are held.
  void RefuseInherited() {
    const unsigned now = ThisProcess();
    if (process_ != now) {
      for (auto& place : idle_) {
        if (Take(place).release() != nullptr) inherited_ = true;
      }
      if (busy_.exchange(0) != 0) inherited_ = true;
      process_ = now;
    }
    if (inherited_) throw StoreError(kForked);
  }

  unsigned ThisProcess() const { return forks_; }

 private:
  using Place = std::atomic<Session*>;
  static std::unique_ptr<Session> Take(Place& place) {
    return std::unique_ptr<Session>(place.exchange(nullptr));
  }

  // The file's last changes stay beside it, so that a fork never waits for the disk.
  void CloseAll() {
    if (process_ != ThisProcess()) return;  // the parent's
    for (auto& place : idle_) {
      if (const auto session = Take(place)) session->LeaveUntouched();
    }
  }

  std::array<Place, 8> idle_{};
  std::atomic<int> busy_{0};
  std::atomic<unsigned> forks_{0};    // between the first process and this one
  std::atomic<unsigned> process_{0};  // whose idle sessions these are
  std::atomic<bool> inherited_{false};
};

}  // namespace

unsigned ThisProcess() {
  return Pool::Instance().ThisProcess();
}

std::string StoreFile() {
  try {
    return HomeFolder() + "/registry.db";
  } catch (const EInOutError& e) {
    throw StoreError(e.Message());
  }
}

Lease::Lease(Lease&& other) noexcept
    : own_(std::move(other.own_)), session_(std::exchange(other.session_, nullptr)) {}

Lease::~Lease() {
  if (own_) Pool::Instance().GiveBack(std::move(own_));
}

Lease Lease::OfTransaction() {
  Lease lease;
  lease.session_ = transaction;
  if (lease && lease->Process() != ThisProcess()) throw StoreError(kForked);
  return lease;
}

Lease Lease::ForReading() {
  Lease lease = OfTransaction();
  if (lease) return lease;
  const std::string path = StoreFile();
  const auto identity = IdentityOf(path);
  if (!identity) return lease;
  lease.own_ = Pool::Instance().Get(path, *identity);
  lease.session_ = lease.own_.get();
  return lease;
}

Lease Lease::ForWriting() {
  Lease lease = ForReading();
  if (lease) return lease;
  CreateWhole(StoreFile(), Session::Initialise);
  Lease made = ForReading();
  if (!made) throw StoreError("it was deleted while it was made");
  return made;
}

Change::Change() : lease_(Lease::ForWriting()), outermost_(transaction == nullptr) {
  if (!outermost_) RequireTransaction();
  Run(outermost_ ? "BEGIN IMMEDIATE" : "SAVEPOINT part");
  open_ = true;
  try {
    lease_->RequireSoundOnce();
  } catch (const StoreError&) {
    Undo();
    throw;
  }
  if (outermost_) transaction = &*lease_;
}

Change::~Change() {
  const bool parents = lease_->Process() != ThisProcess();
  if (outermost_) transaction = nullptr;
  if (open_ && !parents) Undo();
}

void Change::Undo() {
  if (!lease_->Connection().InTransaction()) return;
  try {
    Run(outermost_ ? "ROLLBACK" : "ROLLBACK TO part; RELEASE part");
  } catch (const StoreError&) {
    open_ = false;  // what is not committed is gone in any case when the connection reads again
  }
}

void Change::Commit() {
  RequireTransaction();
  Run(outermost_ ? "COMMIT" : "RELEASE part");
  open_ = false;
}

// A full disk undoes a transaction at once: what a program writes after that, having caught the
// error, must not be kept without what came before.
void Change::RequireTransaction() const {
  if (!lease_->Connection().InTransaction()) {
    throw StoreError("an earlier change of the same transaction has failed");
  }
}

void Change::Run(const char* sql) {
  lease_->Connection().Run(sql);
}

View::View() : lease_(Lease::ForReading()) {
  if (!lease_ || lease_->Connection().InTransaction()) return;
  lease_->Connection().Run("BEGIN");
  open_ = true;
}

View::~View() {
  if (!open_ || !lease_->Connection().InTransaction()) return;
  try {
    lease_->Connection().Run("ROLLBACK");
  } catch (const StoreError&) {
    open_ = false;  // nothing was changed
  }
}

}  // namespace kvshare::os::store
