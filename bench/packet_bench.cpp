// Data packets beside the bare parser on the same text, in the same run.
#include <benchmark/benchmark.h>
#include <expat.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "kvshare/data/client/clientdataset.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/datetime.h"

namespace kvshare {
namespace {

constexpr int kRecords = 1'000'000;

// A million lines of a ledger.
const TClientDataSet& Ledger() {
  static TClientDataSet set;
  static const bool filled = [] {
    set.FieldDefs().Add("ID", TFieldType::ftInteger, 0, true);
    set.FieldDefs().Add("CODE", TFieldType::ftString, 12);
    set.FieldDefs().Add("NAME", TFieldType::ftString, 40);
    set.FieldDefs().Add("QTY", TFieldType::ftFMTBcd, 4);
    set.FieldDefs().Add("AMOUNT", TFieldType::ftFMTBcd, 4);
    set.FieldDefs().Add("DAY", TFieldType::ftDateTime);
    set.FieldDefs().Add("RATE", TFieldType::ftFloat);
    set.FieldDefs().Add("PAID", TFieldType::ftBoolean);
    set.FieldDefs().Add("NOTE", TFieldType::ftString, 40);
    set.CreateDataSet();
    set.LogChanges = false;
    const std::string_view name = "สมุดบัญชีแยกประเภท"_th;
    const TDateTime day = EncodeDate(2026, 11, 25);
    for (int i = 0; i < kRecords; ++i) {
      set.Append();
      set.Fields(0).SetAsInteger(i);
      set.Fields(1).SetAsString("AR-" + std::to_string(i));
      set.Fields(2).SetAsString(name);
      set.Fields(3).SetAsInteger(i % 1000);
      set.Fields(4).SetAsCurrency(Currency::FromRaw(std::int64_t{i} * 12'345));
      set.Fields(5).SetAsDateTime(day + i % 365 + 0.5);
      set.Fields(6).SetAsFloat(i * 0.07);
      set.Fields(7).SetAsBoolean(i % 3 == 0);
      if (i % 4 == 0) set.Fields(8).SetAsString("paid in cash & \"on time\"");
      set.Post();
    }
    return true;
  }();
  benchmark::DoNotOptimize(filled);
  return set;
}

const std::string& LedgerPacket() {
  static const std::string packet = Ledger().XMLData();
  return packet;
}

void BM_LoadPacket_BareParser(benchmark::State& state) {
  const std::string& packet = LedgerPacket();
  for (auto _ : state) {
    XML_Parser parser = XML_ParserCreate("UTF-8");
    std::int64_t attributes = 0;
    XML_SetUserData(parser, &attributes);
    XML_SetStartElementHandler(parser, [](void* count, const XML_Char*, const XML_Char** list) {
      for (; *list != nullptr; list += 2) ++*static_cast<std::int64_t*>(count);
    });
    const auto status = XML_Parse(parser, packet.data(), static_cast<int>(packet.size()), 1);
    if (status != XML_STATUS_OK) state.SkipWithError("no XML");
    benchmark::DoNotOptimize(attributes);
    XML_ParserFree(parser);
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(packet.size()));
}
BENCHMARK(BM_LoadPacket_BareParser)->Unit(benchmark::kMillisecond)->MinTime(2);

void BM_LoadPacket(benchmark::State& state) {
  const std::string& packet = LedgerPacket();
  for (auto _ : state) {
    TClientDataSet set;
    set.SetXMLData(packet);
    if (set.RecordCount() != kRecords) state.SkipWithError("records are missing");
    state.PauseTiming();
    set.Close();
    state.ResumeTiming();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(packet.size()));
}
BENCHMARK(BM_LoadPacket)->Unit(benchmark::kMillisecond)->MinTime(2);

void BM_SavePacket(benchmark::State& state) {
  const TClientDataSet& set = Ledger();
  std::size_t size = 0;
  for (auto _ : state) {
    const std::string packet = set.XMLData();
    size = packet.size();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(size));
}
BENCHMARK(BM_SavePacket)->Unit(benchmark::kMillisecond)->MinTime(2);

// With the flush to the disk.
void BM_SavePacketToFile(benchmark::State& state) {
  const TClientDataSet& set = Ledger();
  std::string folder = (std::filesystem::temp_directory_path() / "kvshare-bench-XXXXXX").string();
  if (mkdtemp(folder.data()) == nullptr) return state.SkipWithError("no folder");
  const std::string file = folder + "/ledger.xml";
  for (auto _ : state) set.SaveToFile("Z:" + file);
  state.SetBytesProcessed(state.iterations() *
                          static_cast<std::int64_t>(std::filesystem::file_size(file)));
  std::filesystem::remove_all(folder);
}
BENCHMARK(BM_SavePacketToFile)->Unit(benchmark::kMillisecond)->MinTime(2);

}  // namespace
}  // namespace kvshare
