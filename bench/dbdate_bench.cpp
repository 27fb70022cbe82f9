// Fields of dates, times and years: the handlers beside what the field itself costs.
#include <benchmark/benchmark.h>

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include "kvshare/data/client/clientdataset.h"
#include "kvshare/data/fields/editmask.h"
#include "kvshare/dates/dbdate.h"
#include "kvshare/rtl/formatsettings.h"
#include "kvshare/settings/globals.h"

namespace kvshare {
namespace {

using D = TKovraDbDate;
using Attach = void (*)(TClientDataSet&, std::string_view);

// A record that is being edited, with one field and the handlers on it.
class OneField {
 public:
  OneField(TFieldType type, Attach attach) {
    FormatSettings = TFormatSettings::UsEnglish();
    FormatSettings.ShortDateFormat = "dd/mm/yyyy";
    YearBase = 543;
    set_.FieldDefs().Add("DAY", type);
    set_.CreateDataSet();
    set_.Append();
    attach(set_, "DAY");
  }
  TField& Field() { return set_.Fields(0); }

 private:
  TClientDataSet set_;
};

struct Screen {
  TFieldType type;
  Attach attach;
  std::string_view typed;
};
constexpr Screen kDate{TFieldType::ftDate, D::SetDateField, "15/03/2567"};
constexpr Screen kMoment{TFieldType::ftDateTime, D::SetDateTimeField, "15/03/2567 09:05"};
constexpr Screen kTime{TFieldType::ftTime, D::SetTimeField, "09:05"};
constexpr Screen kYear{TFieldType::ftInteger, D::SetYearField, "2567"};

template <const Screen& screen>
void BM_GetText(benchmark::State& state) {
  OneField one(screen.type, screen.attach);
  TField& field = one.Field();
  field.SetText(screen.typed);
  std::string text;
  for (auto _ : state) {
    field.OnGetText(field, text, true);
    benchmark::DoNotOptimize(text);
  }
}
BENCHMARK(BM_GetText<kDate>);
BENCHMARK(BM_GetText<kMoment>);
BENCHMARK(BM_GetText<kTime>);
BENCHMARK(BM_GetText<kYear>);

template <const Screen& screen>
void BM_SetText(benchmark::State& state) {
  OneField one(screen.type, screen.attach);
  TField& field = one.Field();
  for (auto _ : state) {
    field.SetText(screen.typed);
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_SetText<kDate>);
BENCHMARK(BM_SetText<kMoment>);
BENCHMARK(BM_SetText<kTime>);
BENCHMARK(BM_SetText<kYear>);

// What the field itself costs: a date read and stored without a handler.
void BM_AsDateTime(benchmark::State& state) {
  OneField one(kDate.type, kDate.attach);
  one.Field().SetText(kDate.typed);
  for (auto _ : state) benchmark::DoNotOptimize(one.Field().AsDateTime());
}
BENCHMARK(BM_AsDateTime);

void BM_SetAsDateTime(benchmark::State& state) {
  OneField one(kDate.type, kDate.attach);
  for (auto _ : state) {
    one.Field().SetAsDateTime(TDateTime(45'366));
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_SetAsDateTime);

void BM_EditMask_Read(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(TEditMask("00/00/0000;1;_"));
}
BENCHMARK(BM_EditMask_Read);

void BM_EditMask_TypeDate(benchmark::State& state) {
  TMaskedText text{TEditMask("00/00/0000;1;_")};
  for (auto _ : state) {
    text.SetCursor(0);
    for (const char key : std::string_view("15032567")) text.Type(key);
    benchmark::DoNotOptimize(text.Value());
  }
}
BENCHMARK(BM_EditMask_TypeDate);

}  // namespace
}  // namespace kvshare
