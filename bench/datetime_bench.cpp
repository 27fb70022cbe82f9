#include <benchmark/benchmark.h>

#include <array>
#include <cstdlib>
#include <ctime>
#include <string>

#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/formatdatetime.h"

namespace kvshare {
namespace {

constexpr std::size_t kCount = 1024;  // different values, a power of two
constexpr int kFirstDay = 20'000;     // 1954-10-03
constexpr int kStep = 37;
constexpr int kUnixDay = 25'569;  // 1970-01-01

const std::array<TDateTime, kCount>& Moments() {
  static const auto moments = [] {
    std::array<TDateTime, kCount> made;
    for (std::size_t i = 0; i < kCount; ++i) {
      made[i] = TDateTime(kFirstDay + kStep * static_cast<double>(i) + 0.58);
    }
    return made;
  }();
  return moments;
}

const TFormatSettings& Formats() {
  static const TFormatSettings formats = [] {
    TFormatSettings made = TFormatSettings::UsEnglish();
    made.ShortDateFormat = "dd/mm/yyyy";
    return made;
  }();
  return formats;
}

void BM_FormatDate(benchmark::State& state) {
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(FormatDateTime("dd/mm/yyyy", Moments()[i++ % kCount], Formats()));
  }
}
BENCHMARK(BM_FormatDate);

void BM_AppendFormatDate(benchmark::State& state) {
  std::size_t i = 0;
  std::string out;
  for (auto _ : state) {
    out.clear();
    AppendFormatDateTime(out, "dd/mm/yyyy", Moments()[i++ % kCount], Formats());
    benchmark::DoNotOptimize(out.data());
  }
}
BENCHMARK(BM_AppendFormatDate);

// The same text from the C library, whose moments are seconds.
void BM_FormatDate_Strftime(benchmark::State& state) {
  std::size_t i = 0;
  for (auto _ : state) {
    const std::time_t seconds =
        (kFirstDay - kUnixDay + kStep * static_cast<std::time_t>(i++ % kCount)) * 86'400 + 50'112;
    std::tm parts{};
    ::gmtime_r(&seconds, &parts);
    char text[16];
    benchmark::DoNotOptimize(
        std::string(text, std::strftime(text, sizeof text, "%d/%m/%Y", &parts)));
  }
}
BENCHMARK(BM_FormatDate_Strftime);

void BM_FormatMoment(benchmark::State& state) {
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        FormatDateTime("dd/mm/yyyy hh:nn:ss", Moments()[i++ % kCount], Formats()));
  }
}
BENCHMARK(BM_FormatMoment);

void BM_FormatMoment_Strftime(benchmark::State& state) {
  std::size_t i = 0;
  for (auto _ : state) {
    const std::time_t seconds =
        (kFirstDay - kUnixDay + kStep * static_cast<std::time_t>(i++ % kCount)) * 86'400 + 50'112;
    std::tm parts{};
    ::gmtime_r(&seconds, &parts);
    char text[32];
    benchmark::DoNotOptimize(
        std::string(text, std::strftime(text, sizeof text, "%d/%m/%Y %H:%M:%S", &parts)));
  }
}
BENCHMARK(BM_FormatMoment_Strftime);

const std::array<std::string, kCount>& DateTexts() {
  static const auto texts = [] {
    std::array<std::string, kCount> made;
    for (std::size_t i = 0; i < kCount; ++i) made[i] = DateToStr(Moments()[i], Formats());
    return made;
  }();
  return texts;
}

void BM_StrToDate(benchmark::State& state) {
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(StrToDate(DateTexts()[i++ % kCount], Formats()));
  }
}
BENCHMARK(BM_StrToDate);

// Only the three numbers, unchecked.
void BM_StrToDate_Strtol(benchmark::State& state) {
  std::size_t i = 0;
  for (auto _ : state) {
    char* at = nullptr;
    const long day = std::strtol(DateTexts()[i++ % kCount].c_str(), &at, 10);
    const long month = std::strtol(at + 1, &at, 10);
    const long year = std::strtol(at + 1, &at, 10);
    benchmark::DoNotOptimize(day + month + year);
  }
}
BENCHMARK(BM_StrToDate_Strtol);

const std::array<std::string, kCount>& AmountTexts() {
  static const auto texts = [] {
    std::array<std::string, kCount> made;
    for (std::size_t i = 0; i < kCount; ++i) {
      made[i] = std::to_string(i * i * i * 7) + "." + std::to_string(10 + i % 90);
    }
    return made;
  }();
  return texts;
}

void BM_StrToCurr(benchmark::State& state) {
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(StrToCurr(AmountTexts()[i++ % kCount], Formats()));
  }
}
BENCHMARK(BM_StrToCurr);

void BM_StrToCurr_Strtod(benchmark::State& state) {
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(std::strtod(AmountTexts()[i++ % kCount].c_str(), nullptr));
  }
}
BENCHMARK(BM_StrToCurr_Strtod);

// Only the whole part.
void BM_StrToCurr_Strtoll(benchmark::State& state) {
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(std::strtoll(AmountTexts()[i++ % kCount].c_str(), nullptr, 10));
  }
}
BENCHMARK(BM_StrToCurr_Strtoll);

}  // namespace
}  // namespace kvshare
