// The database layer beside the client library in the same run: a batch of inserts, a long query,
// and the splitting of a list into statements.
#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "kvshare/data/client/clientdataset.h"
#include "kvshare/data/client/provider.h"
#include "kvshare/data/sql/sqlconnection.h"
#include "kvshare/data/sql/sqlquery.h"
#include "kvshare/database/sqlbatch.h"
#include "kvshare/database/sqlfunc.h"
#include "kvshare/database/sqlsplit.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/stringlist.h"

namespace kvshare {
namespace {

constexpr int kInserts = 10'000;
constexpr int kRows = 1'000'000;

// A file that is removed with the object.
class Shop {
 public:
  Shop() {
    std::string name = (std::filesystem::temp_directory_path() / "kvshare-bench-XXXXXX").string();
    folder_ = mkdtemp(name.data());
    connection_.SetDriverName("SQLITE");
    connection_.LibraryName = "kvshare-sqlite";
    connection_.GetDriverFunc = "getSQLDriverSQLITE";
    connection_.Params.SetValue("Database", File());
    connection_.Params.SetValue("CreateDatabase", "True");
    connection_.ExecuteDirect(
        "CREATE TABLE T (ID INTEGER PRIMARY KEY, NAME VARCHAR(40), AMOUNT DECIMAL_TEXT(19,4) "
        "COLLATE DECIMAL, DAY TIMESTAMP)");
  }
  ~Shop() {
    connection_.Close();
    std::filesystem::remove_all(folder_);
  }
  Shop(const Shop&) = delete;
  Shop& operator=(const Shop&) = delete;

  std::string File() const { return folder_ + "/shop.db"; }
  TSQLConnection& Connection() { return connection_; }

  // The same file, opened without the library and with the same guarantees.
  sqlite3* OpenRaw() const {
    sqlite3* database = nullptr;
    sqlite3_open_v2(File().c_str(), &database, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX,
                    nullptr);
    sqlite3_exec(database, "PRAGMA synchronous = FULL", nullptr, nullptr, nullptr);
    sqlite3_create_collation(database, "DECIMAL", SQLITE_UTF8, nullptr,
                             [](void*, int, const void*, int, const void*) { return 0; });
    return database;
  }

 private:
  std::string folder_;
  TSQLConnection connection_;
};

std::string Insert(int id) {
  return "INSERT INTO T VALUES (" + std::to_string(id) + ", '" + std::string("สมุดบัญชีแยกประเภท"_th) +
         "', '" + std::to_string(id % 100'000) + ".2500', '2026-11-25 14:30:05')";
}

const TStringList& Batch() {
  static const TStringList lines = [] {
    TStringList list;
    for (int i = 1; i <= kInserts; ++i) list.Add(Insert(i) + ";");
    return list;
  }();
  return lines;
}

void BM_BatchOfInserts_RawClient(benchmark::State& state) {
  Shop shop;
  std::vector<std::string> statements;
  for (int i = 1; i <= kInserts; ++i) statements.push_back(Cp874ToUtf8(Insert(i)));
  sqlite3* database = shop.OpenRaw();
  for (auto _ : state) {
    sqlite3_exec(database, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr);
    for (const std::string& statement : statements) {
      if (sqlite3_exec(database, statement.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
        state.SkipWithError(sqlite3_errmsg(database));
        break;
      }
    }
    sqlite3_exec(database, "COMMIT", nullptr, nullptr, nullptr);
    state.PauseTiming();
    sqlite3_exec(database, "DELETE FROM T", nullptr, nullptr, nullptr);
    state.ResumeTiming();
  }
  sqlite3_close(database);
  state.SetItemsProcessed(state.iterations() * kInserts);
}
BENCHMARK(BM_BatchOfInserts_RawClient)->Unit(benchmark::kMillisecond)->MinTime(2);

void BM_BatchOfInserts(benchmark::State& state) {
  Shop shop;
  const TStringList& lines = Batch();
  for (auto _ : state) {
    if (!RunExecSQLBatch(shop.Connection(), lines, true)) state.SkipWithError("the batch failed");
    state.PauseTiming();
    shop.Connection().ExecuteDirect("DELETE FROM T");
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * kInserts);
}
BENCHMARK(BM_BatchOfInserts)->Unit(benchmark::kMillisecond)->MinTime(2);

Shop& Ledger() {
  static Shop shop;
  static const bool filled = [] {
    shop.Connection().StartTransaction({});
    for (int i = 1; i <= kRows; ++i) shop.Connection().ExecuteDirect(Insert(i));
    shop.Connection().Commit({});
    return true;
  }();
  benchmark::DoNotOptimize(filled);
  return shop;
}

// Steps and takes each value out of the row as what it is there: a number, texts of UTF-8.
void BM_MillionRows_RawClient(benchmark::State& state) {
  sqlite3* database = Ledger().OpenRaw();
  for (auto _ : state) {
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(database, "SELECT ID, NAME, AMOUNT, DAY FROM T", -1, &statement, nullptr);
    std::string texts[3];
    std::int64_t ids = 0;
    while (sqlite3_step(statement) == SQLITE_ROW) {
      ids += sqlite3_column_int64(statement, 0);
      for (int i = 0; i < 3; ++i) {
        const void* text = sqlite3_column_text(statement, i + 1);
        texts[i].assign(static_cast<const char*>(text),
                        static_cast<std::size_t>(sqlite3_column_bytes(statement, i + 1)));
      }
      benchmark::DoNotOptimize(texts);
    }
    benchmark::DoNotOptimize(ids);
    sqlite3_finalize(statement);
  }
  sqlite3_close(database);
  state.SetItemsProcessed(state.iterations() * kRows);
}
BENCHMARK(BM_MillionRows_RawClient)->Unit(benchmark::kMillisecond)->MinTime(2);

// Steps and takes each value as a program uses it: code page 874, an amount, a moment.
void BM_MillionRows(benchmark::State& state) {
  TSQLQuery query;
  query.SetSQLConnection(&Ledger().Connection());
  query.SQL().SetText("SELECT ID, NAME, AMOUNT, DAY FROM T");
  for (auto _ : state) {
    std::string name;
    std::int64_t ids = 0;
    std::int64_t total = 0;
    double days = 0;
    query.Open();
    TField& id = query.Fields(0);
    TField& text = query.Fields(1);
    TField& amount = query.Fields(2);
    TField& day = query.Fields(3);
    for (; !query.Eof(); query.Next()) {
      ids += id.AsInteger();
      name.clear();
      text.AppendString(name);
      total += amount.AsCurrency().Raw();
      days += day.AsDateTime().Days();
      benchmark::DoNotOptimize(name);
    }
    query.Close();
    benchmark::DoNotOptimize(ids + total);
    benchmark::DoNotOptimize(days);
  }
  state.SetItemsProcessed(state.iterations() * kRows);
}
BENCHMARK(BM_MillionRows)->Unit(benchmark::kMillisecond)->MinTime(2);

void BM_SplitStatements(benchmark::State& state) {
  const TStringList& lines = Batch();
  std::int64_t size = 0;
  for (auto _ : state) {
    size = 0;
    ForEachSqlStatement(lines, [&size](const SqlStatement& statement) {
      size += static_cast<std::int64_t>(statement.text.size());
    });
    benchmark::DoNotOptimize(size);
  }
  state.SetBytesProcessed(state.iterations() * size);
}
BENCHMARK(BM_SplitStatements);

// --- Changed records of a screen, noticed when somebody else was there first

void FillShop(Shop& shop) {
  RunSQLBatch(shop.Connection(), Batch());
}

constexpr const char* kUpdate =
    "update T set NAME = ? where ID = ? and NAME = ? COLLATE BINARY and AMOUNT = ? and "
    "DAY >= ? and DAY < ?";

void BM_ApplyUpdates_RawClient(benchmark::State& state) {
  Shop shop;
  FillShop(shop);
  sqlite3* database = shop.OpenRaw();
  sqlite3_stmt* update = nullptr;
  sqlite3_prepare_v2(database, kUpdate, -1, &update, nullptr);
  std::string now = Cp874ToUtf8("สมุดบัญชีแยกประเภท"_th);
  std::string next = "0";
  const std::string day = "2026-11-25 14:30:05";
  const std::string later = "2026-11-25 14:30:05.001";
  for (auto _ : state) {
    sqlite3_exec(database, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr);
    for (int id = 1; id <= kInserts; ++id) {
      const std::string amount = std::to_string(id % 100'000) + ".25";
      const auto bind = [&](int place, const std::string& text) {
        sqlite3_bind_text(update, place, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
      };
      bind(1, next);
      sqlite3_bind_int(update, 2, id);
      bind(3, now);
      bind(4, amount);
      bind(5, day);
      bind(6, later);
      sqlite3_step(update);
      if (sqlite3_changes(database) != 1) state.SkipWithError("a record was not found");
      sqlite3_reset(update);
    }
    sqlite3_exec(database, "COMMIT", nullptr, nullptr, nullptr);
    now = next;
    next = std::to_string(std::stoi(next) + 1);
  }
  sqlite3_finalize(update);
  sqlite3_close(database);
  state.SetItemsProcessed(state.iterations() * kInserts);
}
BENCHMARK(BM_ApplyUpdates_RawClient)->Unit(benchmark::kMillisecond);

void BM_ApplyUpdates(benchmark::State& state) {
  Shop shop;
  FillShop(shop);
  TDataSetProvider provider(shop.Connection());
  provider.TableName = "T";
  provider.KeyFields = "ID";
  TClientDataSet set;
  set.SetProvider(&provider);
  set.Open();
  TField& name = set.FieldByName("NAME");
  int round = 0;
  for (auto _ : state) {
    state.PauseTiming();
    const std::string text = std::to_string(round++);
    for (set.First(); !set.Eof(); set.Next()) {
      set.Edit();
      name.SetAsString(text);
      set.Post();
    }
    state.ResumeTiming();
    if (set.ApplyUpdates(static_cast<int>(state.range(0))) != 0) state.SkipWithError("refused");
  }
  state.SetItemsProcessed(state.iterations() * kInserts);
}
BENCHMARK(BM_ApplyUpdates)->Arg(0)->Arg(-1)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kvshare
