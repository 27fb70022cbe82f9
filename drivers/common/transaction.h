// What a driver keeps of the transaction that the library began.
#pragma once

#include <cstdint>
#include <string_view>

#include "kvshare/data/contract/driver.h"

namespace kvshare::drivers {

// What a statement means to do to its transaction, by its first words.
enum class Ending : std::uint8_t {
  None,      // nothing: it reads or writes rows, or handles a savepoint
  Commit,    // COMMIT and its like
  Rollback,  // ROLLBACK and its like, not to a savepoint
  Implicit,  // CREATE TABLE and its like: some servers commit there
  Unknown,   // whatever else: a procedure can do anything
};
Ending EndingOf(std::string_view sql);
// What a statement of that ending has done to a transaction that is gone, though it failed. CREATE
// TABLE commits first, unless that is what failed.
Ending EndingOfFailed(Ending ending, data::DriverError::Kind kind);

class TransactionState {
 public:
  bool Active() const { return active_; }
  bool Lost() const { return lost_; }
  std::int64_t Commits() const { return commits_; }
  std::int64_t Rollbacks() const { return rollbacks_; }

  void Begun();
  void Ended() {
    active_ = false;
    undone_ = false;
  }

  // A statement has ended the active transaction, and another one has begun.
  void CountEnd(Ending ending);
  // A statement of that ending lost the connection: whether it was done, nobody can tell.
  void CountLost(Ending ending) {
    if (active_ && ending != Ending::None && ending != Ending::Rollback) CountEnd(Ending::Unknown);
  }

  // The active transaction is gone without its Commit.
  void Undone() { undone_ = active_; }
  void LoseConnection() { lost_ = true; }
  // Remembers an error for what comes after it.
  void Failed(const data::DriverError& error);

  // Throw DriverError: where the connection was lost, where the transaction is gone.
  void RequireConnection() const;
  void RequireWhole() const;

 private:
  bool active_ = false;
  bool undone_ = false;
  bool lost_ = false;
  std::int64_t commits_ = 0;
  std::int64_t rollbacks_ = 0;
};

}  // namespace kvshare::drivers
