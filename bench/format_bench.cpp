// Amounts as text: the library beside a loop written by hand.
#include <benchmark/benchmark.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>

#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/currency.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/formatfloat.h"

namespace kvshare {
namespace {

constexpr std::size_t kAmounts = 1024;  // a power of two

// Both signs, up to ten million baht, in satang.
const std::array<Currency, kAmounts>& Amounts() {
  static const auto amounts = [] {
    std::array<Currency, kAmounts> result;
    std::mt19937_64 random(1);
    std::uniform_int_distribution<std::int64_t> satang(-1'000'000'000, 1'000'000'000);
    for (Currency& amount : result) amount = Currency::FromRaw(satang(random) * 100);
    return result;
  }();
  return amounts;
}

// What a programmer in a hurry writes for "%12.2n": two decimals, commas, twelve columns.
std::string HandWritten(Currency amount) {
  char text[40];
  char* const end = text + sizeof text;
  char* at = end;
  std::uint64_t satang = (amount.Magnitude() + 50) / 100;
  for (int digits = 0; digits < 3 || satang != 0; ++digits) {
    if (digits == 2) *--at = '.';
    if (digits > 2 && (digits - 2) % 3 == 0) *--at = ',';
    *--at = static_cast<char>('0' + satang % 10);
    satang /= 10;
  }
  if (amount.Raw() < 0) *--at = '-';
  while (end - at < 12) *--at = ' ';
  return {at, end};
}

template <typename Work>
void ForEachAmount(benchmark::State& state, Work work) {
  const auto& amounts = Amounts();
  std::size_t i = 0;
  for (auto _ : state) work(amounts[i++ % kAmounts]);
  state.SetItemsProcessed(state.iterations());
}

void BM_HandWritten(benchmark::State& state) {
  ForEachAmount(state, [](Currency amount) { benchmark::DoNotOptimize(HandWritten(amount)); });
}
BENCHMARK(BM_HandWritten);

void BM_Format(benchmark::State& state) {
  ForEachAmount(state,
                [](Currency amount) { benchmark::DoNotOptimize(Format("%12.2n", {amount})); });
}
BENCHMARK(BM_Format);

void BM_AppendFormat(benchmark::State& state) {
  std::string line;
  ForEachAmount(state, [&line](Currency amount) {
    line.clear();
    AppendFormat(line, "%12.2n", {amount});
    benchmark::DoNotOptimize(line.data());
  });
}
BENCHMARK(BM_AppendFormat);

void BM_FormatReal(benchmark::State& state) {
  ForEachAmount(state, [](Currency amount) {
    benchmark::DoNotOptimize(Format("%12.2n", {CurrencyToFloat(amount)}));
  });
}
BENCHMARK(BM_FormatReal);

void BM_FormatFloatMask(benchmark::State& state) {
  ForEachAmount(state, [](Currency amount) {
    benchmark::DoNotOptimize(FormatFloat("###,###,###,##0.00", amount));
  });
}
BENCHMARK(BM_FormatFloatMask);

void BM_CurrToStr(benchmark::State& state) {
  ForEachAmount(state, [](Currency amount) { benchmark::DoNotOptimize(CurrToStr(amount)); });
}
BENCHMARK(BM_CurrToStr);

}  // namespace
}  // namespace kvshare
