// SQLite in owners. The one header of the library that stands before it.
// Internal header.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace kvshare::os {

// Why a store cannot be used, in plain words for the person who must mend it (UTF-8).
class StoreError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The file or one that SQLite keeps beside it cannot be opened, made, written or locked. The file
// may be readable in another mode.
class AccessError : public StoreError {
 public:
  using StoreError::StoreError;
};

namespace sqlite {

enum class Mode : std::uint8_t {
  ReadWrite,  // reads where the file may not be written
  // Needs no shared memory beside the file and keeps other connections out meanwhile: for a full
  // disk.
  Exclusive,
  // Reads the file and its log of pending writes without a lock: where nobody can write them.
  Unlocked,
  Immutable,  // reads a file that nobody changes and that has no log
};

// A connection, used by one thread at a time. Everything throws StoreError.
class Database {
 public:
  // Another program's write is waited for, up to ten seconds.
  Database(const std::string& path, Mode mode);

  void Run(const char* sql) const;
  std::int64_t Number(const char* sql) const;  // the one number of a query
  std::string Text(const char* sql) const;     // the one text of a query
  bool ReadOnly() const;
  bool InTransaction() const;
  // Closing leaves the file as it is, also where this was the last connection.
  void LeaveUntouched() const;
  sqlite3* Handle() const { return handle_.get(); }

 private:
  struct Close {
    void operator()(sqlite3* handle) const;
  };
  std::unique_ptr<sqlite3, Close> handle_;
};

// A prepared statement.
class Statement {
 public:
  Statement(const Database& database, const char* sql);

  // One run; the statement can be run again when it is gone.
  class Run {
   public:
    explicit Run(Statement& statement) : handle_(statement.handle_.get()) {}
    ~Run();
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    // The next parameter. The bytes stay the caller's and must live as long as the run.
    Run& Bind(std::string_view bytes);
    Run& Bind(std::int64_t number);
    bool Next();  // whether there is a row
    void Execute() { Next(); }

    std::string_view Bytes(int column) const;  // valid until the next row
    std::int64_t Number(int column) const;

   private:
    sqlite3_stmt* handle_;
    int parameter_ = 0;
  };

 private:
  struct Finalize {
    void operator()(sqlite3_stmt* handle) const;
  };
  std::unique_ptr<sqlite3_stmt, Finalize> handle_;
};

}  // namespace sqlite

}  // namespace kvshare::os
