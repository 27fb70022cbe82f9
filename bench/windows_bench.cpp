// The error dialog as a window, without a display (QT_QPA_PLATFORM=offscreen) or on one.
#include <benchmark/benchmark.h>

#include <string>

#include "kvshare/data/client/clientdataset.h"
#include "kvshare/database/recerror.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/ui/application.h"
#include "kvshare/ui/desktop.h"

namespace kvshare {
namespace {

// A changed record of so many fields.
class Wide : public TClientDataSet {
 public:
  explicit Wide(int fields) : TClientDataSet(nullptr, "WIDE") {
    for (int i = 0; i < fields; ++i) {
      FieldDefs().Add("FIELD" + IntToStr(i), TFieldType::ftString, 40);
    }
    CreateDataSet();
    Append();
    for (int i = 0; i < fields; ++i) Fields(i).SetAsString("ร้านบ้านสวนวัสดุ"_th);
    Post();
    MergeChangeLog();
    Edit();
    Fields(1).SetAsString("ร้านบ้านสวนวัสดุภัณฑ์"_th);
  }
  ~Wide() override { Close(); }
};

TReconcileErrorForm FormFor(TDataSet& set) {
  return {set, TUpdateKind::ukModify, EReconcileError("refused", "", 1, 0)};
}

// From the error to the painted window, and away again. Goal: below 50 ms with 200 fields.
void OpenDialog(benchmark::State& state) {
  const TUseInterface use(Desktop());
  Wide set(static_cast<int>(state.range(0)));
  for ([[maybe_unused]] auto step : state) {
    TReconcileErrorForm form = FormFor(set);
    form.Show();
    Application.ProcessMessages();
  }
}
BENCHMARK(OpenDialog)->Arg(20)->Arg(200)->Arg(5000)->Unit(benchmark::kMillisecond);

// Another action is chosen and what it shows is painted.
void ChooseAction(benchmark::State& state) {
  const TUseInterface use(Desktop());
  Wide set(static_cast<int>(state.range(0)));
  TReconcileErrorForm form = FormFor(set);
  form.Show();
  Application.ProcessMessages();
  int chosen = 0;
  for ([[maybe_unused]] auto step : state) {
    form.ActionGroup.Choose(chosen = 1 - chosen);
    Application.ProcessMessages();
  }
}
BENCHMARK(ChooseAction)->Arg(200)->Arg(5000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kvshare
