// The registry's store beside raw calls on the same disk.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "kvshare/os/registry/registry.h"
#include "kvshare/rtl/stringlist.h"
#include "tests/support.h"

namespace kvshare {
namespace {

constexpr const char* kKey = "Software\\Acme\\Ledger v5.2\\FormPosition\\MainForm";
constexpr int kValues = 100;

// A home of its own in the current folder, so that the figures measure its disk: /tmp may lie
// in memory.
class Home {
 public:
  Home() {
    ::setenv("TMPDIR", std::filesystem::current_path().c_str(), 1);
    folder_.emplace();
    ::setenv("KVSHARE_HOME", folder_->File("home").c_str(), 1);
    os::InOneRegistryTransaction([] {
      os::TRegistry registry = Open();
      for (int i = 0; i < kValues; ++i) registry.WriteInteger("Value_" + std::to_string(i), i);
    });
  }
  static os::TRegistry Open() {
    os::TRegistry registry;
    registry.OpenKey(std::string("\\") + kKey, true);
    return registry;
  }
  std::string File(const std::string& name) const { return folder_->File(name); }

 private:
  std::optional<TemporaryFolder> folder_;
};

void BM_Registry_ReadInteger(benchmark::State& state) {
  const Home home;
  const os::TRegistry registry = Home::Open();
  for (auto _ : state) benchmark::DoNotOptimize(registry.ReadInteger("Value_50"));
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_Registry_ReadInteger);

// As a program does that opens its key for each call.
void BM_Registry_OpenAndReadInteger(benchmark::State& state) {
  const Home home;
  for (auto _ : state) {
    os::TRegistry registry;
    registry.OpenKeyReadOnly(kKey);
    benchmark::DoNotOptimize(registry.ReadInteger("Value_50"));
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_Registry_OpenAndReadInteger);

void BM_Registry_GetValueNames_100(benchmark::State& state) {
  const Home home;
  const os::TRegistry registry = Home::Open();
  TStringList names;
  for (auto _ : state) registry.GetValueNames(names);
  if (names.Count() != kValues) state.SkipWithError("names are missing");
}
BENCHMARK(BM_Registry_GetValueNames_100);

void BM_Registry_Write(benchmark::State& state) {
  const Home home;
  os::TRegistry registry = Home::Open();
  int value = 0;
  for (auto _ : state) registry.WriteInteger("Value_50", ++value);
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_Registry_Write)->UseRealTime();

// The same bytes as a changed page of the store takes, appended and flushed.
void BM_Registry_Write_RawFlush(benchmark::State& state) {
  const Home home;
  const int file = ::open(home.File("raw").c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
  const std::array<char, 24 + 4096> page{};
  off_t place = 0;
  constexpr off_t kAgain = 1000;  // as often as the store begins its journal anew
  for (auto _ : state) {
    const off_t at = place++ % kAgain * static_cast<off_t>(page.size());
    if (::pwrite(file, page.data(), page.size(), at) < 0 || ::fdatasync(file) != 0) {
      state.SkipWithError("the disk refuses");
    }
  }
  ::close(file);
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_Registry_Write_RawFlush)->UseRealTime();

// Eight programs, each writing as fast as it can.
void BM_Registry_EightWriters(benchmark::State& state) {
  const Home home;
  constexpr int kWriters = 8;
  constexpr int kWrites = 100;
  for (auto _ : state) {
    std::vector<pid_t> writers;
    for (int w = 0; w < kWriters; ++w) {
      const pid_t writer = ::fork();
      if (writer == 0) {
        os::TRegistry registry = Home::Open();
        for (int i = 0; i < kWrites; ++i) registry.WriteInteger("Writer" + std::to_string(w), i);
        ::_exit(0);
      }
      writers.push_back(writer);
    }
    for (const pid_t writer : writers) {
      int status = -1;
      ::waitpid(writer, &status, 0);
      if (status != 0) state.SkipWithError("a writer failed");
    }
  }
  state.SetItemsProcessed(state.iterations() * kWriters * kWrites);
}
BENCHMARK(BM_Registry_EightWriters)->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kvshare
