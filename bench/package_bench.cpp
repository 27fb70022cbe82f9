// What a program pays to start with the library, and for each message.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <memory>

#include "kvshare/messages/catalogue.h"
#include "kvshare/start/package.h"

namespace kvshare {
namespace {

// Goal: below 50 microseconds.
void InitializeFinalize(benchmark::State& state) {
  for ([[maybe_unused]] auto step : state) {
    Initialize();
    Finalize();
  }
}
BENCHMARK(InitializeFinalize);

void LoadStrCopies(benchmark::State& state) {
  for ([[maybe_unused]] auto step : state) benchmark::DoNotOptimize(LoadStr(rstrEYearOutOfRange));
}
BENCHMARK(LoadStrCopies);

// The raw loop beside it: a copy of the same text.
void CopyOfAMessage(benchmark::State& state) {
  const std::string_view text = FindMessageById(rstrEYearOutOfRange)->Text;
  for ([[maybe_unused]] auto step : state) {
    std::string copy(text);
    benchmark::DoNotOptimize(copy);
  }
}
BENCHMARK(CopyOfAMessage);

// Kilobytes that loading and starting the library adds to a program; goal: below 2048. Measured by
// a program that is not linked with it.
void LoadedLibrary(benchmark::State& state) {
  double kilobytes = 0;
  for ([[maybe_unused]] auto step : state) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> output(
        popen(KVSHARE_RESIDENT " " KVSHARE_LIBRARY, "r"), pclose);
    if (!output || std::fscanf(output.get(), "%lf", &kilobytes) != 1) {
      state.SkipWithError("cannot measure");
      break;
    }
  }
  state.counters["resident_kB"] = kilobytes;
}
BENCHMARK(LoadedLibrary)->Iterations(3)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kvshare
