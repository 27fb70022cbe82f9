// Dates of both eras: the library beside digits put and read by hand.
#include <benchmark/benchmark.h>

#include <array>
#include <cstddef>
#include <string>

#include "kvshare/dates/date.h"

namespace kvshare {
namespace {

constexpr std::size_t kMoments = 1024;  // a power of two

template <typename Value, typename Make>
std::array<Value, kMoments> ManyOf(Make make) {
  std::array<Value, kMoments> values;
  for (std::size_t i = 0; i < kMoments; ++i) {
    values[i] = make(TDateTime(30'000.0 + static_cast<double>(i * 37 % 20'000)));
  }
  return values;
}

template <typename Value, typename Work>
void ForEach(benchmark::State& state, const std::array<Value, kMoments>& values, Work work) {
  std::size_t i = 0;
  for (auto _ : state) benchmark::DoNotOptimize(work(values[i++ % kMoments]));
  state.SetItemsProcessed(state.iterations());
}

const std::array<TDateTime, kMoments>& Moments() {
  static const auto moments = ManyOf<TDateTime>([](TDateTime moment) { return moment; });
  return moments;
}

std::string PutByHand(TDateTime moment) {
  const TDateParts date = DecodeDate(moment);
  char text[10];
  const auto put = [&text](int at, int digits, int value) {
    for (int i = at + digits - 1; i >= at; --i, value /= 10) {
      text[i] = static_cast<char>('0' + value % 10);
    }
  };
  put(0, 2, date.Day);
  put(3, 2, date.Month);
  put(6, 4, date.Year + 543);
  text[2] = text[5] = '/';
  return {text, sizeof text};
}

void BM_ShowDate_ByHand(benchmark::State& state) {
  ForEach(state, Moments(), PutByHand);
}
BENCHMARK(BM_ShowDate_ByHand);

template <std::string (*Show)(TDateTime)>
void BM_Show(benchmark::State& state) {
  ForEach(state, Moments(), Show);
}
std::string ShowDate(TDateTime date) {
  return TKovraDate::ShowDate(date, 543);
}
BENCHMARK(BM_Show<ShowDate>);
BENCHMARK(BM_Show<TKovraDate::yyyymmdd25>);
BENCHMARK(BM_Show<TKovraDate::ddmmyyyysl25>);

// Fixed places, no questions asked.
TDateTime ReadByHand(const std::string& text) {
  const auto read = [&text](std::size_t at, std::size_t digits) {
    int value = 0;
    for (std::size_t i = at; i < at + digits; ++i) value = value * 10 + (text[i] - '0');
    return value;
  };
  return EncodeDate(read(6, 4) - 543, read(3, 2), read(0, 2));
}

const std::array<std::string, kMoments>& Typed() {
  static const auto texts = ManyOf<std::string>(ShowDate);
  return texts;
}

void BM_StrToKovraDate_ByHand(benchmark::State& state) {
  ForEach(state, Typed(), ReadByHand);
}
BENCHMARK(BM_StrToKovraDate_ByHand);

void BM_StrToKovraDate(benchmark::State& state) {
  ForEach(state, Typed(), [](const std::string& text) {
    TDateTime date;
    TKovraDate::StrToKovraDate(text, 543, date);
    return date;
  });
}
BENCHMARK(BM_StrToKovraDate);

}  // namespace
}  // namespace kvshare
