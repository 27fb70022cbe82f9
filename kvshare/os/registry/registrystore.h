// The store under the registry: its tables, and who may use which connection.
//
// Connections are few and stay open, with their statements, in a pool of the process: a call takes
// one and gives it back. A connection belongs to one file and one process: it is closed when the
// home has changed or the file was replaced. A process's locks are not inherited by its children;
// before a fork the idle connections are therefore closed, and a child that was forked while one
// was at work (in another thread, or inside a transaction) cannot use the store.
// Internal header.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kvshare/os/registry/registry.h"
#include "kvshare/os/registry/sqlite.h"
#include "kvshare/os/registry/storefile.h"

namespace kvshare::os::store {

inline constexpr std::size_t kLongestValueName = 16'383;

// The path from the root to a key that is named from there ("\A") or from `current`, without a `\`
// too many; nothing for one beyond the limits.
std::optional<std::string> CleanPath(std::string_view current, std::string_view key);

// Four bytes, the lowest first.
std::string IntegerBytes(std::uint32_t value);

// A key as the tables know it: its hive, and its path without letter case.
std::string FoldedKey(Hive hive, std::string_view path);

// Differs between a process and its children, without asking the system each time.
unsigned ThisProcess();

// A connection with its statements. Everything throws StoreError. A path has no `\` at its ends and
// none doubled; "" is the hive's root.
class Session {
 public:
  Session(std::string path, const FileIdentity& identity);

  // Makes the tables of a new store.
  static void Initialise(const std::string& path);

  bool IsOf(const std::string& path, const FileIdentity& identity) const {
    return path_ == path && identity_ == identity;
  }
  unsigned Process() const { return process_; }  // whose connection it is
  // Whether it keeps nobody out and sees what others write.
  bool Reusable() const { return store_.shared; }
  void LeaveUntouched() const { store_.database.LeaveUntouched(); }
  const sqlite::Database& Connection() const { return store_.database; }

  bool HasKey(std::string_view folded);
  bool HasSubKeys(std::string_view folded);
  std::optional<RegistryValue> Value(std::string_view folded, std::string_view name);
  std::vector<RegistryValue> Values(std::string_view folded);
  std::vector<std::string> ValueNames(std::string_view folded);
  std::vector<std::string> KeyNames(std::string_view folded);

  // Inside a Change only.
  std::int64_t EnsureKey(Hive hive, std::string_view path);
  void Write(std::int64_t key, const RegistryValue& value);
  bool DeleteValue(std::string_view folded, std::string_view name);
  bool DeleteKey(std::string_view folded);

  // Throws StoreError for a file that was cut short, and for what quietly went wrong in it. Reads
  // all of it.
  void RequireSound() const;
  // The same before the first change of this connection, within its transaction.
  void RequireSoundOnce();

 private:
  struct Opened {
    sqlite::Database database;
    bool shared;
  };
  struct Statements;
  struct Forget {
    void operator()(Statements* statements) const;
  };

  static Opened Open(const std::string& path);
  std::int64_t FindKey(std::string_view folded);  // 0 when absent
  std::int64_t AddKey(std::int64_t parent, std::string_view folded, std::string_view name);

  std::string path_;
  FileIdentity identity_;
  unsigned process_;
  bool sound_ = false;
  Opened store_;
  std::unique_ptr<Statements, Forget> statements_;
};

// The use of a session: this thread's open transaction's, or one of the pool. Throws StoreError.
class Lease {
 public:
  static Lease ForReading();  // empty while there is no store
  static Lease ForWriting();  // makes the store when it is not there yet
  Lease(Lease&& other) noexcept;
  Lease& operator=(Lease&&) = delete;
  ~Lease();

  explicit operator bool() const { return session_ != nullptr; }
  Session* operator->() const { return session_; }
  Session& operator*() const { return *session_; }

 private:
  Lease() = default;
  static Lease OfTransaction();

  std::unique_ptr<Session> own_;
  Session* session_ = nullptr;
};

// Changes that are on the disk together after Commit, or not at all. Within another one of the same
// thread it is a part of that, and is undone alone when it is not committed.
class Change {
 public:
  Change();
  ~Change();
  Change(const Change&) = delete;
  Change& operator=(const Change&) = delete;

  Session* operator->() const { return &*lease_; }
  void Commit();

 private:
  void Run(const char* sql);
  void Undo();
  void RequireTransaction() const;

  Lease lease_;
  bool outermost_;
  bool open_ = false;
};

// What the store holds at one moment. Empty while there is no store. Throws StoreError.
class View {
 public:
  View();
  ~View();
  View(const View&) = delete;
  View& operator=(const View&) = delete;

  explicit operator bool() const { return static_cast<bool>(lease_); }
  Session* operator->() const { return &*lease_; }
  Session& operator*() const { return *lease_; }

 private:
  Lease lease_;
  bool open_ = false;  // within a transaction there is no need
};

// The store's file. Throws StoreError where there is no home folder.
std::string StoreFile();

}  // namespace kvshare::os::store
