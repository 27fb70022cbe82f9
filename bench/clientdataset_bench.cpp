// A million records of ten fields in memory.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>

#include "kvshare/data/client/clientdataset.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/datetime.h"

namespace kvshare {
namespace {

constexpr int kRecords = 1'000'000;

std::unique_ptr<TClientDataSet> MakeSet() {
  auto set = std::make_unique<TClientDataSet>();
  set->FieldDefs().Add("ID", TFieldType::ftInteger, 0, true);
  set->FieldDefs().Add("CODE", TFieldType::ftString, 12);
  set->FieldDefs().Add("NAME", TFieldType::ftString, 40);
  set->FieldDefs().Add("UNIT", TFieldType::ftString, 10);
  set->FieldDefs().Add("GROUP", TFieldType::ftInteger);
  set->FieldDefs().Add("QTY", TFieldType::ftInteger);
  set->FieldDefs().Add("PRICE", TFieldType::ftFloat);
  set->FieldDefs().Add("AMOUNT", TFieldType::ftFMTBcd, 4);
  set->FieldDefs().Add("DAY", TFieldType::ftDate);
  set->FieldDefs().Add("PAID", TFieldType::ftBoolean);
  set->SetPrimaryKey("");
  set->CreateDataSet();
  set->SetPrimaryKey("ID");
  return set;
}

constexpr std::string_view kCode = "AR-2026-0001";
constexpr std::string_view kName = "สมุดบัญชีแยกประเภท"_th;
constexpr std::string_view kUnit = "เล่ม"_th;
constexpr std::int64_t kAmount = 1'234'5600;
// What the values of a record take in themselves: numbers eight bytes, a Boolean one, texts theirs.
constexpr std::size_t kBytesOfValues = 4 * 8 + 1 + kCode.size() + kName.size() + kUnit.size() +
                                       std::string_view("1234.56").size() +
                                       std::string_view("2026-11-25").size();

void Fill(TClientDataSet& set) {
  const TDateTime day = EncodeDate(2026, 11, 25);
  for (int i = 0; i < kRecords; ++i) {
    set.Append();
    set.Fields(0).SetAsInteger(i);
    set.Fields(1).SetAsString(kCode);
    set.Fields(2).SetAsString(kName);
    set.Fields(3).SetAsString(kUnit);
    set.Fields(4).SetAsInteger(i % 100);
    set.Fields(5).SetAsInteger(i % 1000);
    set.Fields(6).SetAsFloat(12.5);
    set.Fields(7).SetAsCurrency(Currency::FromRaw(kAmount));
    set.Fields(8).SetAsDateTime(day);
    set.Fields(9).SetAsBoolean(i % 2 == 0);
    set.Post();
  }
}

void BM_AppendRecords(benchmark::State& state, bool logged) {
  for (auto _ : state) {
    state.PauseTiming();
    auto set = MakeSet();
    set->LogChanges = logged;
    state.ResumeTiming();
    Fill(*set);
    state.PauseTiming();
    set.reset();
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * kRecords);
}
BENCHMARK_CAPTURE(BM_AppendRecords, base, false)->Unit(benchmark::kMillisecond)->MinTime(2);
BENCHMARK_CAPTURE(BM_AppendRecords, logged, true)->Unit(benchmark::kMillisecond)->MinTime(2);

// All that the process has asked for while the set was filled, over the values themselves.
void BM_BytesOfRecords(benchmark::State& state) {
  double bytes = 0;
  for (auto _ : state) {
    const auto before = mallinfo2();
    auto set = MakeSet();
    set->LogChanges = false;
    Fill(*set);
    const auto after = mallinfo2();
    bytes = static_cast<double>(after.uordblks + after.hblkhd - before.uordblks - before.hblkhd);
  }
  state.counters["bytes_a_record"] = bytes / kRecords;
  state.counters["over_its_values"] = bytes / kRecords - static_cast<double>(kBytesOfValues);
}
BENCHMARK(BM_BytesOfRecords)->Unit(benchmark::kMillisecond)->Iterations(1);

TClientDataSet& Items() {
  static const std::unique_ptr<TClientDataSet> set = [] {
    auto made = MakeSet();
    made->LogChanges = false;
    Fill(*made);
    return made;
  }();
  return *set;
}

// Keys all over the set, and one behind the other.
template <bool kAscending>
std::int64_t NextKey(std::uint32_t& state) {
  state = kAscending ? state + 1 : state * 1'664'525 + 1'013'904'223;
  return state % kRecords;
}

template <bool kAscending>
void BM_LocateByKey_HashMap(benchmark::State& state) {
  static const auto map = [] {
    std::unordered_map<std::int64_t, std::unique_ptr<std::int64_t>> made;
    for (int i = 0; i < kRecords; ++i) made.emplace(i, std::make_unique<std::int64_t>(i));
    return made;
  }();
  std::uint32_t id = 1;
  for (auto _ : state) {
    const auto found = map.find(NextKey<kAscending>(id));
    benchmark::DoNotOptimize(*found->second);
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_LocateByKey_HashMap<false>);
BENCHMARK(BM_LocateByKey_HashMap<true>);

template <bool kAscending>
void BM_LocateByKey(benchmark::State& state) {
  TClientDataSet& set = Items();
  std::uint32_t id = 1;
  for (auto _ : state) {
    if (!set.Locate("ID", NextKey<kAscending>(id))) state.SkipWithError("a record is missing");
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_LocateByKey<false>);
BENCHMARK(BM_LocateByKey<true>);

void BM_EditAndPost(benchmark::State& state) {
  TClientDataSet& set = Items();
  set.First();
  TField& qty = set.FieldByName("QTY");
  int value = 0;
  for (auto _ : state) {
    set.Edit();
    qty.SetAsInteger(++value);
    set.Post();
    set.Next();
    if (set.Eof()) set.First();
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_EditAndPost);

// A set whose every record has been changed since it was fetched.
TClientDataSet& FillChanged(TClientDataSet& set, std::int64_t records) {
  set.FieldDefs().Add("ID", TFieldType::ftInteger, 0, true);
  set.FieldDefs().Add("QTY", TFieldType::ftInteger);
  set.SetPrimaryKey("ID");
  set.LogChanges = false;
  set.CreateDataSet();
  for (std::int64_t i = 0; i < records; ++i) {
    set.Append();
    set.Fields(0).SetAsInteger(static_cast<std::int32_t>(i));
    set.Fields(1).SetAsInteger(0);
    set.Post();
  }
  set.LogChanges = true;
  for (set.First(); !set.Eof(); set.Next()) {
    set.Edit();
    set.Fields(1).SetAsInteger(1);
    set.Post();
  }
  return set;
}

// The time of one record stays the same however many there are.
void BM_UndoEveryChange(benchmark::State& state) {
  for (auto _ : state) {
    state.PauseTiming();
    auto set = std::make_unique<TClientDataSet>();
    FillChanged(*set, state.range(0));
    state.ResumeTiming();
    while (set->UndoLastChange(true)) {
    }
    state.PauseTiming();
    set.reset();
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_UndoEveryChange)->Range(1 << 12, 1 << 18)->Unit(benchmark::kMillisecond);

void BM_PostUnderStatusFilter(benchmark::State& state) {
  TClientDataSet set;
  FillChanged(set, state.range(0)).SetStatusFilter({.usModified = true});
  int value = 1;
  for (auto _ : state) {
    set.Edit();
    set.Fields(1).SetAsInteger(++value);
    set.Post();
    set.Next();
    if (set.Eof()) set.First();
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_PostUnderStatusFilter)->Range(1 << 12, 1 << 18);

}  // namespace
}  // namespace kvshare
