// Text helpers beside the established library for the same work, or a loop written by hand.
#define PCRE2_CODE_UNIT_WIDTH 8
#include <benchmark/benchmark.h>
#include <pcre2.h>

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

#include "kvshare/text/crypt.h"
#include "kvshare/text/strings.h"

namespace kvshare {
namespace {

constexpr std::string_view kSixtyBytes =
    "Price 1,234.50 baht, Tax 86.42 baht, total TAX invoice 1,320";
static_assert(kSixtyBytes.size() == 60);
constexpr std::string_view kNoMatch =
    "Price 1,234.50 baht, VAT 86.42 baht, total VAT invoice 1,320";
static_assert(kNoMatch.size() == 60);

std::string Repeated(std::string_view text, std::int64_t times) {
  std::string out;
  for (std::int64_t i = 0; i < times; ++i) out += text;
  return out;
}

void BM_ChangeString(benchmark::State& state, std::string_view line, std::string_view with) {
  const std::string text = Repeated(line, state.range(0));
  for (auto _ : state) benchmark::DoNotOptimize(TKovraString::ChangeString(text, "tax", with));
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

// A pattern compiled once, by its just-in-time compiler, and a result buffer that is large enough.
class Pcre2Substitution {
 public:
  Pcre2Substitution(std::string_view pattern, std::size_t room) : out_(room, '\0') {
    int error = 0;
    PCRE2_SIZE at = 0;
    code_.reset(
        pcre2_compile(Bytes(pattern), pattern.size(), PCRE2_CASELESS, &error, &at, nullptr));
    pcre2_jit_compile(code_.get(), PCRE2_JIT_COMPLETE);
    match_.reset(pcre2_match_data_create_from_pattern(code_.get(), nullptr));
  }

  std::string Run(std::string_view text, std::string_view with) {
    PCRE2_SIZE size = out_.size();
    pcre2_substitute(code_.get(), Bytes(text), text.size(), 0, PCRE2_SUBSTITUTE_GLOBAL,
                     match_.get(), nullptr, Bytes(with), with.size(),
                     reinterpret_cast<PCRE2_UCHAR*>(out_.data()), &size);
    return out_.substr(0, size);
  }

 private:
  static PCRE2_SPTR Bytes(std::string_view s) { return reinterpret_cast<PCRE2_SPTR>(s.data()); }

  struct Free {
    void operator()(pcre2_code* code) const { pcre2_code_free(code); }
    void operator()(pcre2_match_data* match) const { pcre2_match_data_free(match); }
  };
  std::unique_ptr<pcre2_code, Free> code_;
  std::unique_ptr<pcre2_match_data, Free> match_;
  std::string out_;
};

void BM_ChangeString_Pcre2(benchmark::State& state, std::string_view line, std::string_view with) {
  const std::string text = Repeated(line, state.range(0));
  Pcre2Substitution substitution("tax", 2 * text.size());
  if (substitution.Run(text, with) != TKovraString::ChangeString(text, "tax", with)) {
    state.SkipWithError("the two differ");
  }
  for (auto _ : state) benchmark::DoNotOptimize(substitution.Run(text, with));
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

// "duty" stays apart from what stands beside it, "VAT" may begin another "tax", "x" may end one.
BENCHMARK_CAPTURE(BM_ChangeString, ToDuty, kSixtyBytes, "duty")->Arg(1)->Arg(1000);
BENCHMARK_CAPTURE(BM_ChangeString_Pcre2, ToDuty, kSixtyBytes, "duty")->Arg(1)->Arg(1000);
BENCHMARK_CAPTURE(BM_ChangeString, ToVat, kSixtyBytes, "VAT")->Arg(1)->Arg(1000);
BENCHMARK_CAPTURE(BM_ChangeString_Pcre2, ToVat, kSixtyBytes, "VAT")->Arg(1)->Arg(1000);
BENCHMARK_CAPTURE(BM_ChangeString, ToX, kSixtyBytes, "x")->Arg(1)->Arg(1000);
BENCHMARK_CAPTURE(BM_ChangeString_Pcre2, ToX, kSixtyBytes, "x")->Arg(1)->Arg(1000);
BENCHMARK_CAPTURE(BM_ChangeString, NoneFound, kNoMatch, "duty")->Arg(1)->Arg(1000);
BENCHMARK_CAPTURE(BM_ChangeString_Pcre2, NoneFound, kNoMatch, "duty")->Arg(1)->Arg(1000);

void BM_PadLeft(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(TKovraString::PadLeft("1,234.50", 20));
}
BENCHMARK(BM_PadLeft);

void BM_PadLeft_Printf(benchmark::State& state) {
  for (auto _ : state) {
    char out[32];
    const int size = std::snprintf(out, sizeof out, "%20s", "1,234.50");
    benchmark::DoNotOptimize(std::string(out, static_cast<std::size_t>(size)));
  }
}
BENCHMARK(BM_PadLeft_Printf);

void BM_RemoveComma(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(TKovraString::RemoveComma(kSixtyBytes));
}
BENCHMARK(BM_RemoveComma);

void BM_RemoveComma_StdErase(benchmark::State& state) {
  for (auto _ : state) {
    std::string out(kSixtyBytes);
    std::erase(out, ',');
    benchmark::DoNotOptimize(out);
  }
}
BENCHMARK(BM_RemoveComma_StdErase);

constexpr std::string_view kKey = "Kr7+uZ0pQmA9xT3e";
constexpr std::string_view kPassword = "correct horse battery";

void BM_EncodeString(benchmark::State& state) {
  const TKovraCrypt crypt;
  for (auto _ : state) benchmark::DoNotOptimize(crypt.EncodeString(kPassword, kKey));
}
BENCHMARK(BM_EncodeString);

void BM_DecodeToString(benchmark::State& state) {
  const TKovraCrypt crypt;
  const std::string text = crypt.EncodeString(kPassword, kKey);
  for (auto _ : state) benchmark::DoNotOptimize(crypt.DecodeToString(text, kKey));
}
BENCHMARK(BM_DecodeToString);

// Plain hexadecimal there and back: the same nibbles without key, wheel and padding.
std::string ToHex(std::string_view text) {
  std::string out(2 * text.size(), ' ');
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    out[2 * i] = "0123456789ABCDEF"[byte & 15];
    out[2 * i + 1] = "0123456789ABCDEF"[byte >> 4];
  }
  return out;
}

std::string FromHex(std::string_view hex) {
  const auto nibble = [](char c) { return c <= '9' ? c - '0' : c - 'A' + 10; };
  std::string out(hex.size() / 2, ' ');
  for (std::size_t i = 0; i < out.size(); ++i) {
    out[i] = static_cast<char>(nibble(hex[2 * i]) + 16 * nibble(hex[2 * i + 1]));
  }
  return out;
}

void BM_EncodeString_PlainHex(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(ToHex(kPassword));
}
BENCHMARK(BM_EncodeString_PlainHex);

void BM_DecodeToString_PlainHex(benchmark::State& state) {
  const std::string hex = ToHex(kPassword);
  for (auto _ : state) benchmark::DoNotOptimize(FromHex(hex));
}
BENCHMARK(BM_DecodeToString_PlainHex);

}  // namespace
}  // namespace kvshare
