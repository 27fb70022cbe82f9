#include "kvshare/os/registry/sqlite.h"

#include <sqlite3.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <iterator>
#include <system_error>
#include <thread>

namespace kvshare::os::sqlite {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds kPatience{10'000};

struct ReasonRow {
  int code;
  const char* reason;
};
constexpr ReasonRow kReasons[] = {
    {SQLITE_FULL, "the disk is full"},
    {SQLITE_READONLY, "it may only be read"},
    {SQLITE_CANTOPEN, "it or a file beside it cannot be opened"},
    {SQLITE_PERM, "it may not be opened"},
    {SQLITE_NOTADB, "it is no settings store, or it is damaged"},
    {SQLITE_CORRUPT, "it is damaged"},
    {SQLITE_BUSY, "another program has kept it locked for ten seconds"},
    {SQLITE_TOOBIG, "a value is too large"},
    {SQLITE_NOMEM, "out of memory"},
    {SQLITE_IOERR, "the disk reports an error"},
};

const char* ReasonOf(int code) {
  for (const ReasonRow& row : kReasons) {
    if (row.code == (code & 0xFF)) return row.reason;
  }
  return sqlite3_errstr(code);
}

bool IsAccess(int code) {
  constexpr int kCodes[] = {SQLITE_CANTOPEN, SQLITE_IOERR, SQLITE_FULL, SQLITE_READONLY,
                            SQLITE_PROTOCOL};
  return std::ranges::find(kCodes, code & 0xFF) != std::end(kCodes);
}

[[noreturn]] void Throw(sqlite3* handle, int code) {
  const int system = handle != nullptr ? sqlite3_system_errno(handle) : 0;
  const bool ofSystem = (code & 0xFF) == SQLITE_CANTOPEN || (code & 0xFF) == SQLITE_IOERR;
  if (ofSystem && (system == ENOSPC || system == EDQUOT)) code = SQLITE_FULL;
  std::string reason = ReasonOf(code);
  if (ofSystem && code != SQLITE_FULL && system != 0) {
    reason += ": " + std::generic_category().message(system);
  }
  if (IsAccess(code)) throw AccessError(reason);
  throw StoreError(reason);
}

void Check(sqlite3* handle, int code) {
  if (code != SQLITE_OK) Throw(handle, code);
}

// Writers queue for less than a flush of the disk takes, so that eight of them share its speed; the
// usual waits of up to a tenth of a second would leave it idle.
int WaitForOthers(void* /*unused*/, int tries) {
  constexpr milliseconds kPause{1};
  constexpr std::chrono::microseconds kFirstPause{100};
  constexpr int kShortTries = 10;
  if (tries * kPause > kPatience) return 0;
  const std::chrono::nanoseconds pause = tries < kShortTries ? kFirstPause : kPause;
  std::this_thread::sleep_for(pause);
  return 1;
}

std::string ImmutableUri(const std::string& path) {
  std::string uri = "file:";
  for (const char c : path) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    const auto byte = static_cast<unsigned char>(c);
    const bool plain = (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') ||
                       (byte >= 'a' && byte <= 'z') || byte == '/' || byte == '.';
    if (plain) {
      uri += c;
    } else {
      uri.append({'%', kDigits[byte >> 4], kDigits[byte & 15]});
    }
  }
  return uri + "?immutable=1";
}

sqlite3* Open(const std::string& path, Mode mode) {
  const bool immutable = mode == Mode::Immutable;
  const std::string name = immutable ? ImmutableUri(path) : path;
  const int access = immutable                ? SQLITE_OPEN_URI | SQLITE_OPEN_READONLY
                     : mode == Mode::Unlocked ? SQLITE_OPEN_READONLY
                                              : SQLITE_OPEN_READWRITE;
  const int flags = SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE | access;
  const char* const locks = mode == Mode::Unlocked ? "unix-none" : nullptr;
  sqlite3* handle = nullptr;
  const int code = sqlite3_open_v2(name.c_str(), &handle, flags, locks);
  if (code == SQLITE_OK) return handle;
  try {
    Throw(handle, code);
  } catch (...) {
    sqlite3_close_v2(handle);
    throw;
  }
}

}  // namespace

Database::Database(const std::string& path, Mode mode) : handle_(Open(path, mode)) {
  Check(handle_.get(), sqlite3_busy_handler(handle_.get(), WaitForOthers, nullptr));
  if (mode == Mode::Exclusive || mode == Mode::Unlocked) {
    Run("PRAGMA locking_mode=EXCLUSIVE");  // before the first read, which would need the others
    LeaveUntouched();
  }
  Run("PRAGMA synchronous=FULL; PRAGMA trusted_schema=OFF; PRAGMA cell_size_check=ON");
}

void Database::Close::operator()(sqlite3* handle) const {
  sqlite3_close_v2(handle);
}

void Database::Run(const char* sql) const {
  Check(Handle(), sqlite3_exec(Handle(), sql, nullptr, nullptr, nullptr));
}

std::int64_t Database::Number(const char* sql) const {
  Statement statement(*this, sql);
  Statement::Run run(statement);
  return run.Next() ? run.Number(0) : 0;
}

std::string Database::Text(const char* sql) const {
  Statement statement(*this, sql);
  Statement::Run run(statement);
  return run.Next() ? std::string(run.Bytes(0)) : std::string();
}

bool Database::ReadOnly() const {
  return sqlite3_db_readonly(Handle(), "main") == 1;
}

bool Database::InTransaction() const {
  return sqlite3_get_autocommit(Handle()) == 0;
}

void Database::LeaveUntouched() const {
  sqlite3_db_config(Handle(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
}

Statement::Statement(const Database& database, const char* sql) {
  sqlite3_stmt* handle = nullptr;
  Check(database.Handle(), sqlite3_prepare_v3(database.Handle(), sql, -1, SQLITE_PREPARE_PERSISTENT,
                                              &handle, nullptr));
  handle_.reset(handle);
}

void Statement::Finalize::operator()(sqlite3_stmt* handle) const {
  sqlite3_finalize(handle);
}

Statement::Run::~Run() {
  sqlite3_reset(handle_);
}

Statement::Run& Statement::Run::Bind(std::string_view bytes) {
  const char* data = bytes.empty() ? "" : bytes.data();  // a null pointer would bind NULL
  Check(sqlite3_db_handle(handle_),
        sqlite3_bind_blob64(handle_, ++parameter_, data, bytes.size(), SQLITE_STATIC));
  return *this;
}

Statement::Run& Statement::Run::Bind(std::int64_t number) {
  Check(sqlite3_db_handle(handle_), sqlite3_bind_int64(handle_, ++parameter_, number));
  return *this;
}

bool Statement::Run::Next() {
  const int code = sqlite3_step(handle_);
  if (code == SQLITE_ROW) return true;
  if (code != SQLITE_DONE) Throw(sqlite3_db_handle(handle_), code);
  return false;
}

std::string_view Statement::Run::Bytes(int column) const {
  const void* data = sqlite3_column_blob(handle_, column);
  const auto size = static_cast<std::size_t>(sqlite3_column_bytes(handle_, column));
  return data == nullptr ? std::string_view()
                         : std::string_view(static_cast<const char*>(data), size);
}

std::int64_t Statement::Run::Number(int column) const {
  return sqlite3_column_int64(handle_, column);
}

}  // namespace kvshare::os::sqlite
