#include "kvshare/database/recerror.h"

namespace kvshare {

namespace {

constexpr std::string_view kReconcileForm = "ReconcileErrorForm";
constexpr std::string_view kReconcileCaption = "Update Error";

using Shown = TErrorChoice::Shown;

constexpr TErrorChoice Choice(TReconcileAction action, Shown modified, bool originalIsServer,
                              bool needsConflict) {
  const auto number = static_cast<std::size_t>(action);
  return {TReconcileErrorForm::ActionStr[number], static_cast<int>(number), modified,
          originalIsServer, needsConflict};
}

constexpr TErrorChoice kReconcileChoices[] = {
    Choice(TReconcileAction::raSkip, Shown::NewValue, false, false),
    Choice(TReconcileAction::raCancel, Shown::Unchanged, false, false),
    Choice(TReconcileAction::raCorrect, Shown::EditValue, false, false),
    Choice(TReconcileAction::raRefresh, Shown::Unchanged, true, true),
    Choice(TReconcileAction::raMerge, Shown::NewValue, true, true),
};

}  // namespace

TReconcileErrorForm::TReconcileErrorForm()
    : TUpdateErrorForm(kReconcileForm, kReconcileCaption, kReconcileChoices, {}) {}

TReconcileErrorForm::TReconcileErrorForm(TDataSet& DataSet, TUpdateKind UpdateKind,
                                         const EReconcileError& Error)
    : TUpdateErrorForm(kReconcileForm, kReconcileCaption, kReconcileChoices,
                       {&DataSet, UpdateKind, Error.Message(), Error.Context()}) {}

TReconcileAction HandleReconcileError(TDataSet& DataSet, TUpdateKind UpdateKind,
                                      const EReconcileError& ReconcileError) {
  TReconcileErrorForm form(DataSet, UpdateKind, ReconcileError);
  form.Create();
  return form.Ask() ? static_cast<TReconcileAction>(form.Action()) : TReconcileAction::raAbort;
}

}  // namespace kvshare
