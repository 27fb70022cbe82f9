// A million rows of four columns and a batch of 10,000 inserts through a driver and the library,
// beside the server's own client used by hand.
//
//   tests/servers/with-server mariadb build/release/bench/servers_bench
#include <benchmark/benchmark.h>

#include "bench/servers/bare.h"
#include "kvshare/data/sql/sqlquery.h"
#include "kvshare/database/sqlfunc.h"
#include "tests/drivers/server.h"

namespace kvshare {
namespace {

constexpr std::size_t kRows = 1'000'000;
constexpr const char* kQuery = "SELECT n, t, d, m FROM kv_million";

std::string FillStatement(const std::string& server) {
  if (server.find("mariadb") != std::string::npos) {
    return "INSERT INTO kv_million SELECT seq, CONCAT('เงินสด ', seq), seq / 7,"
           " DATE_ADD('2000-01-01', INTERVAL seq % 9000 DAY) FROM seq_1_to_1000000";
  }
  if (server.find("postgres") != std::string::npos) {
    return "INSERT INTO kv_million SELECT n, 'เงินสด ' || n, n / 7.0,"
           " DATE '2000-01-01' + n % 9000 FROM generate_series(1, 1000000) n";
  }
  return "EXECUTE BLOCK AS DECLARE n INTEGER = 1; BEGIN WHILE (n <= 1000000) DO BEGIN"
         " INSERT INTO kv_million VALUES (:n, 'เงินสด ' || :n, :n / 7.0000,"
         " DATEADD(MOD(:n, 9000) DAY TO DATE '2000-01-01')); n = n + 1; END END";
}

bench::BareReader ReaderOf(const std::string& server) {
  if (server.starts_with("odbc")) return bench::ReadByOdbc;
  if (server == "mariadb") return bench::ReadByMySql;
  return server == "postgres" ? bench::ReadByPostgres : bench::ReadByFirebird;
}

// Made once, by whichever benchmark comes first.
void NeedTable() {
  static const bool made = [] {
    const auto connection = Connected();
    CreateTable(*connection, "kv_million", "n INTEGER, t VARCHAR(60), d DECIMAL(18,4), m DATE");
    connection->Execute(FillStatement(CurrentDialect().server));
    return true;
  }();
  benchmark::DoNotOptimize(made);
}

void Finish(benchmark::State& state, std::size_t sum) {
  if (sum <= kRows * (kRows + 1) / 2) state.SkipWithError("not all rows were read");
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kRows));
}

void BM_Rows_ByHand(benchmark::State& state) {
  NeedTable();
  const bench::BareReader read = ReaderOf(CurrentDialect().server);
  std::size_t sum = 0;
  for (auto _ : state) sum = read(ServerParameters(), kQuery);
  Finish(state, sum);
}
BENCHMARK(BM_Rows_ByHand)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_Rows_ByDriver(benchmark::State& state) {
  NeedTable();
  std::size_t sum = 0;
  for (auto _ : state) {
    const auto connection = Connected();
    const auto cursor = connection->Query(kQuery);
    sum = 0;
    while (cursor->Next()) {
      sum += static_cast<std::size_t>(cursor->Integer(0)) + cursor->Text(1).size() +
             cursor->Text(2).size() + cursor->Text(3).size();
    }
  }
  Finish(state, sum);
}
BENCHMARK(BM_Rows_ByDriver)->Unit(benchmark::kMillisecond)->UseRealTime();

void Connect(TSQLConnection& connection) {
  const std::string library = CurrentDialect().library;
  connection.SetDriverName("Server");
  connection.LibraryName = library.substr(3, library.rfind('.') - 3);  // lib*.so
  connection.GetDriverFunc = CurrentDialect().entry;
  for (const auto& [name, value] : ServerParameters()) connection.Params.SetValue(name, value);
  connection.Open();
}

// As a program reads them: a number, a text in code page 874, an amount, a date.
void BM_Rows_ByQuery(benchmark::State& state) {
  NeedTable();
  std::size_t sum = 0;
  for (auto _ : state) {
    TSQLConnection connection;
    Connect(connection);
    TSQLQuery query;
    query.SetSQLConnection(&connection);
    query.SQL().Add(kQuery);
    query.Open();
    std::string text;
    sum = 1;
    for (; !query.Eof(); query.Next()) {
      text.clear();
      query.Fields(1).AppendString(text);
      benchmark::DoNotOptimize(query.Fields(2).AsCurrency());
      benchmark::DoNotOptimize(query.Fields(3).AsDateTime());
      sum += static_cast<std::size_t>(query.Fields(0).AsLargeInt());
    }
  }
  Finish(state, sum);
}
BENCHMARK(BM_Rows_ByQuery)->Unit(benchmark::kMillisecond)->UseRealTime();

constexpr int kInserts = 10'000;

std::string Insert(int number) {
  return "INSERT INTO kv_batch VALUES (" + std::to_string(number) + ", 'Cash', '" +
         std::to_string(number) + ".2500', '2026-11-25')";
}

void NeedEmptyTable(benchmark::State& state) {
  state.PauseTiming();
  const auto connection = Connected();
  CreateTable(*connection, "kv_batch", "n INTEGER, t VARCHAR(60), d DECIMAL(18,4), m DATE");
  state.ResumeTiming();
}

void BM_Batch_ByHand(benchmark::State& state) {
  const std::string server = CurrentDialect().server;
  if (server != "mariadb" && server != "postgres") {
    state.SkipWithError("measured on MariaDB and PostgreSQL");
    return;
  }
  const bench::BareBatch run = server == "mariadb" ? bench::RunByMySql : bench::RunByPostgres;
  std::vector<std::string> statements;
  for (int i = 0; i < kInserts; ++i) statements.push_back(Insert(i));
  for (auto _ : state) {
    NeedEmptyTable(state);
    if (!run(ServerParameters(), statements)) state.SkipWithError("the batch failed");
  }
}
BENCHMARK(BM_Batch_ByHand)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(2);

void BM_Batch(benchmark::State& state) {
  TStringList lines;
  for (int i = 0; i < kInserts; ++i) lines.Add(Insert(i) + ";");
  TSQLConnection connection;
  Connect(connection);
  for (auto _ : state) {
    NeedEmptyTable(state);
    if (!RunExecSQLBatch(connection, lines, false)) state.SkipWithError("the batch failed");
  }
}
BENCHMARK(BM_Batch)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(2);

}  // namespace
}  // namespace kvshare
