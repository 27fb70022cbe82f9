#include "kvshare/os/registry/registrystore.h"

#include <algorithm>
#include <utility>

#include "kvshare/rtl/strutils.h"

namespace kvshare::os::store {

namespace {

constexpr std::int64_t kApplication = 0x4B765267;  // "KvRg", at a fixed place of the file
constexpr std::int64_t kVersion = 1;

// A key's path begins with the letter of its hive, so that its parents are found by cutting it.
// Values are in creation order by their number.
constexpr const char* kTables =
    "PRAGMA journal_mode=MEMORY;"
    "BEGIN;"
    "PRAGMA application_id=1266045543;"
    "CREATE TABLE keys(id INTEGER PRIMARY KEY, parent INTEGER NOT NULL,"
    "  path BLOB NOT NULL UNIQUE, name BLOB NOT NULL);"
    "CREATE UNIQUE INDEX keys_of_key ON keys(parent, path);"
    "CREATE TABLE vals(id INTEGER PRIMARY KEY, key INTEGER NOT NULL, folded BLOB NOT NULL,"
    "  name BLOB NOT NULL, kind INTEGER NOT NULL, data BLOB NOT NULL, UNIQUE(key, folded));"
    "INSERT INTO keys VALUES(1, 0, x'55', x''), (2, 0, x'4D', x'');"
    "PRAGMA user_version=1;"
    "COMMIT";
static_assert(kApplication == 1266045543 && kVersion == 1);

constexpr std::size_t kLongestKeyName = 255;
constexpr std::size_t kDeepestKey = 512;

char HiveLetter(Hive hive) {
  return hive == Hive::CurrentUser ? 'U' : 'M';
}

RegistryValue ValueIn(const sqlite::Statement::Run& run) {
  return {std::string(run.Bytes(0)), static_cast<ValueKind>(run.Number(1)),
          std::string(run.Bytes(2))};
}

std::vector<std::string> Names(sqlite::Statement& statement, std::string_view folded) {
  std::vector<std::string> names;
  sqlite::Statement::Run run(statement);
  for (run.Bind(folded); run.Next();) names.emplace_back(run.Bytes(0));
  return names;
}

bool Found(sqlite::Statement& statement, std::string_view folded) {
  sqlite::Statement::Run run(statement);
  return run.Bind(folded).Next();
}

// The store of another program, or of a later version of this one, is left alone.
void RequireOurs(const sqlite::Database& database) {
  if (database.Number("PRAGMA application_id") != kApplication) {
    throw StoreError("it is no settings store, or it is damaged");
  }
  const std::int64_t version = database.Number("PRAGMA user_version");
  if (version > kVersion) {
    throw StoreError("it was written by a newer version of the suite (store version " +
                     std::to_string(version) + ")");
  }
  if (version != kVersion) throw StoreError("it is damaged: it has no store version");
}

sqlite::Database OpenAs(sqlite::Mode mode, const std::string& path) {
  sqlite::Database database(path, mode);
  RequireOurs(database);
  return database;
}

// Without the shared memory beside the file. The log that a program left behind is read with it.
std::optional<sqlite::Database> OpenAlone(const std::string& path) {
  using sqlite::Mode;
  for (const Mode mode : {MayWrite(path) ? Mode::Exclusive : Mode::Unlocked, Mode::Immutable}) {
    if (mode == Mode::Immutable && HasLog(path)) break;
    try {
      return OpenAs(mode, path);
    } catch (const AccessError&) {
      continue;  // the first failure is the one that a user can mend
    }
  }
  return std::nullopt;
}

}  // namespace

struct Session::Statements {
  explicit Statements(const sqlite::Database& database)
      : findKey(database, "SELECT id FROM keys WHERE path=?"),
        hasSubKeys(database,
                   "SELECT 1 FROM keys k JOIN keys c ON c.parent=k.id WHERE k.path=? LIMIT 1"),
        keyNames(database,
                 "SELECT c.name FROM keys k JOIN keys c ON c.parent=k.id WHERE k.path=?"
                 " ORDER BY c.path"),
        value(database,
              "SELECT v.name, v.kind, v.data FROM keys k JOIN vals v ON v.key=k.id"
              " WHERE k.path=? AND v.folded=?"),
        values(database,
               "SELECT v.name, v.kind, v.data FROM keys k JOIN vals v ON v.key=k.id"
               " WHERE k.path=? ORDER BY v.id"),
        addKey(database, "INSERT INTO keys(parent, path, name) VALUES(?, ?, ?)"),
        write(database,
              "INSERT INTO vals(key, folded, name, kind, data) VALUES(?, ?, ?, ?, ?)"
              " ON CONFLICT(key, folded) DO UPDATE SET kind=excluded.kind, data=excluded.data"),
        deleteValue(database,
                    "DELETE FROM vals WHERE key=(SELECT id FROM keys WHERE path=?) AND folded=?"
                    " RETURNING 1"),
        deleteValuesBelow(database,
                          "DELETE FROM vals WHERE key IN"
                          " (SELECT id FROM keys WHERE path=? OR (path>=? AND path<?))"),
        deleteKeysBelow(database,
                        "DELETE FROM keys WHERE path=? OR (path>=? AND path<?) RETURNING 1") {}

  sqlite::Statement findKey, hasSubKeys, keyNames, value, values, addKey, write, deleteValue,
      deleteValuesBelow, deleteKeysBelow;
};

void Session::Forget::operator()(Statements* statements) const {
  std::default_delete<Statements>()(statements);
}

std::optional<std::string> CleanPath(std::string_view current, std::string_view key) {
  std::string path;
  if (!key.empty() && key.front() != '\\') path = current;
  for (std::size_t start = 0; start < key.size();) {
    const std::size_t end = std::min(key.find('\\', start), key.size());
    const std::string_view name = key.substr(start, end - start);
    start = end + 1;
    if (name.empty()) continue;
    if (name.size() > kLongestKeyName) return std::nullopt;
    if (!path.empty()) path += '\\';
    path += name;
  }
  const auto depth = static_cast<std::size_t>(std::ranges::count(path, '\\')) + 1;
  if (depth > kDeepestKey) return std::nullopt;
  return path;
}

std::string IntegerBytes(std::uint32_t value) {
  std::string bytes;
  for (unsigned shift = 0; shift < 32; shift += 8)
    bytes += static_cast<char>(value >> shift & 0xFF);
  return bytes;
}

std::string FoldedKey(Hive hive, std::string_view path) {
  std::string folded(1, HiveLetter(hive));
  folded.reserve(path.size() + 2);
  if (!path.empty()) folded += '\\';
  for (const char c : path) folded += UpCase(c);
  return folded;
}

Session::Session(std::string path, const FileIdentity& identity)
    : path_(std::move(path)),
      identity_(identity),
      process_(ThisProcess()),
      store_(Open(path_)),
      statements_(new Statements(store_.database)) {}

// What a connection keeps beside the file cannot be made on a full disk, nor in a folder that may
// not be written: what is stored must be read all the same.
Session::Opened Session::Open(const std::string& path) {
  if (IsInClosedFolder(path)) return {OpenAs(sqlite::Mode::Immutable, path), false};
  try {
    return {OpenAs(sqlite::Mode::ReadWrite, path), true};
  } catch (const AccessError&) {
    if (auto alone = OpenAlone(path)) return {std::move(*alone), false};
    throw;
  }
}

// The tables come first: with the journal of later writes they would lie beside the file until its
// closing, which cannot tell that it failed.
void Session::Initialise(const std::string& path) {
  const sqlite::Database database(path, sqlite::Mode::ReadWrite);
  database.Run(kTables);
  if (database.Text("PRAGMA journal_mode=WAL") != "wal") {
    throw StoreError("this file system cannot be shared by programs");
  }
}

bool Session::HasKey(std::string_view folded) {
  return FindKey(folded) != 0;
}

bool Session::HasSubKeys(std::string_view folded) {
  return Found(statements_->hasSubKeys, folded);
}

std::int64_t Session::FindKey(std::string_view folded) {
  sqlite::Statement::Run run(statements_->findKey);
  return run.Bind(folded).Next() ? run.Number(0) : 0;
}

std::optional<RegistryValue> Session::Value(std::string_view folded, std::string_view name) {
  const std::string foldedName = UpperCase(name);
  sqlite::Statement::Run run(statements_->value);
  if (!run.Bind(folded).Bind(foldedName).Next()) return std::nullopt;
  return ValueIn(run);
}

std::vector<RegistryValue> Session::Values(std::string_view folded) {
  std::vector<RegistryValue> values;
  sqlite::Statement::Run run(statements_->values);
  for (run.Bind(folded); run.Next();) values.push_back(ValueIn(run));
  return values;
}

std::vector<std::string> Session::ValueNames(std::string_view folded) {
  return Names(statements_->values, folded);
}

std::vector<std::string> Session::KeyNames(std::string_view folded) {
  return Names(statements_->keyNames, folded);
}

std::int64_t Session::EnsureKey(Hive hive, std::string_view path) {
  const std::string folded = FoldedKey(hive, path);
  if (const std::int64_t key = FindKey(folded); key != 0) return key;
  std::int64_t key = FindKey(FoldedKey(hive, ""));
  if (key == 0) throw StoreError("it is damaged: a hive has no root");
  const std::string_view whole = folded;
  for (std::size_t start = 0; start < path.size();) {
    const std::size_t end = std::min(path.find('\\', start), path.size());
    const std::string_view upToHere = whole.substr(0, end + 2);
    const std::int64_t parent = key;
    key = FindKey(upToHere);
    if (key == 0) key = AddKey(parent, upToHere, path.substr(start, end - start));
    start = end + 1;
  }
  return key;
}

std::int64_t Session::AddKey(std::int64_t parent, std::string_view folded, std::string_view name) {
  {
    sqlite::Statement::Run run(statements_->addKey);
    run.Bind(parent).Bind(folded).Bind(name).Execute();
  }
  return FindKey(folded);
}

void Session::Write(std::int64_t key, const RegistryValue& value) {
  const std::string folded = UpperCase(value.name);
  sqlite::Statement::Run run(statements_->write);
  run.Bind(key).Bind(folded).Bind(value.name).Bind(static_cast<std::int64_t>(value.kind));
  run.Bind(value.data).Execute();
}

bool Session::DeleteValue(std::string_view folded, std::string_view name) {
  const std::string foldedName = UpperCase(name);
  sqlite::Statement::Run run(statements_->deleteValue);
  return run.Bind(folded).Bind(foldedName).Next();
}

bool Session::DeleteKey(std::string_view folded) {
  const std::string first = std::string(folded) + '\\';
  const std::string end = std::string(folded) + static_cast<char>('\\' + 1);
  {
    sqlite::Statement::Run run(statements_->deleteValuesBelow);
    run.Bind(folded).Bind(first).Bind(end).Execute();
  }
  sqlite::Statement::Run run(statements_->deleteKeysBelow);
  return run.Bind(folded).Bind(first).Bind(end).Next();
}

void Session::RequireSound() const {
  const std::int64_t pageSize = Connection().Number("PRAGMA page_size");
  if (SizeOf(path_) % pageSize != 0) throw StoreError("it is damaged: it was cut short");
  const std::string report = Connection().Text("PRAGMA integrity_check(1)");
  if (report != "ok") throw StoreError("it is damaged: " + report);
}

void Session::RequireSoundOnce() {
  if (sound_) return;
  RequireSound();
  sound_ = true;
}

}  // namespace kvshare::os::store
