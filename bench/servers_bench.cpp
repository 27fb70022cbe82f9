// A million rows of four columns through a driver, beside the server's own client used by hand.
//
//   tests/servers/with-server mariadb build/release/bench/servers_bench
#include <benchmark/benchmark.h>

#include "bench/servers/bare.h"
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
    const auto cursor = connection->Query(kQuery, {});
    sum = 0;
    while (cursor->Next()) {
      sum += static_cast<std::size_t>(cursor->Integer(0)) + cursor->Text(1).size() +
             cursor->Text(2).size() + cursor->Text(3).size();
    }
  }
  Finish(state, sum);
}
BENCHMARK(BM_Rows_ByDriver)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
}  // namespace kvshare
