// Rounding and words: rounding beside a plain rounding loop, texts beside copying the finished
// text.
#include <benchmark/benchmark.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>

#include "kvshare/money/money.h"

namespace kvshare {
namespace {

constexpr std::size_t kAmounts = 1024;  // a power of two

// Up to 2,147,483,647.99, in satang.
const std::array<Currency, kAmounts>& Amounts() {
  static const auto amounts = [] {
    std::array<Currency, kAmounts> result;
    std::mt19937_64 random(1);
    std::uniform_int_distribution<std::int64_t> satang(0, 214'748'364'799);
    for (Currency& amount : result) amount = Currency::FromRaw(satang(random) * 100);
    return result;
  }();
  return amounts;
}

// ---- rounding ----

// To the nearest multiple of a quarter, as one writes it for numbers that are never negative.
[[gnu::noinline]] std::int64_t PlainRound(std::int64_t value) {
  return (value + 1'250) / 2'500 * 2'500;
}

void BM_RoundPlain(benchmark::State& state) {
  std::size_t i = 0;
  for (auto _ : state) benchmark::DoNotOptimize(PlainRound(Amounts()[i++ % kAmounts].Raw()));
}
BENCHMARK(BM_RoundPlain);

void BM_RoundBaht(benchmark::State& state) {
  const auto mode = static_cast<TKovraMoneyRound>(state.range(0));
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(TKovraMoney::Round_Baht(Amounts()[i++ % kAmounts], mode));
  }
  state.SetLabel(std::string(RoundModeInfo(mode).Name));
}
BENCHMARK(BM_RoundBaht)->DenseRange(0, kRoundModes - 1);

// ---- texts ----

using MakeText = std::string (*)(Currency);
using AppendText = void (*)(std::string&, Currency);

std::string StrZero16(Currency amount) {
  return TKovraMoney::StrZero(amount, 16, 2);
}
void AppendStrZero16(std::string& out, Currency amount) {
  TKovraMoney::AppendStrZero(out, amount, 16, 2);
}

void CopyText(benchmark::State& state, MakeText make) {
  std::array<std::string, kAmounts> texts;
  for (std::size_t i = 0; i < kAmounts; ++i) texts[i] = make(Amounts()[i]);
  std::size_t i = 0;
  for (auto _ : state) {
    std::string text(texts[i++ % kAmounts]);
    benchmark::DoNotOptimize(text.data());
  }
  state.SetItemsProcessed(state.iterations());
}

void FreshText(benchmark::State& state, MakeText make) {
  std::size_t i = 0;
  for (auto _ : state) {
    std::string text = make(Amounts()[i++ % kAmounts]);
    benchmark::DoNotOptimize(text.data());
  }
  state.SetItemsProcessed(state.iterations());
}

void AppendedText(benchmark::State& state, AppendText append) {
  std::string text;
  std::size_t i = 0;
  for (auto _ : state) {
    text.clear();
    append(text, Amounts()[i++ % kAmounts]);
    benchmark::DoNotOptimize(text.data());
  }
  state.SetItemsProcessed(state.iterations());
}

BENCHMARK_CAPTURE(CopyText, ThaiNote, &TKovraMoney::ThaiNote);
BENCHMARK_CAPTURE(FreshText, ThaiNote, &TKovraMoney::ThaiNote);
BENCHMARK_CAPTURE(AppendedText, ThaiNote, &TKovraMoney::AppendThaiNote);
BENCHMARK_CAPTURE(CopyText, EngNote, &TKovraMoney::EngNote);
BENCHMARK_CAPTURE(FreshText, EngNote, &TKovraMoney::EngNote);
BENCHMARK_CAPTURE(AppendedText, EngNote, &TKovraMoney::AppendEngNote);
BENCHMARK_CAPTURE(CopyText, StrZero, &StrZero16);
BENCHMARK_CAPTURE(FreshText, StrZero, &StrZero16);
BENCHMARK_CAPTURE(AppendedText, StrZero, &AppendStrZero16);

}  // namespace
}  // namespace kvshare
