#include "kvshare/database/posterror.h"

namespace kvshare {

namespace {

constexpr std::string_view kPostForm = "PostErrorForm";
constexpr std::string_view kPostCaption = "Post Error";

using Shown = TErrorChoice::Shown;

constexpr TErrorChoice Choice(TDataAction action, Shown modified, bool originalIsServer) {
  const auto number = static_cast<std::size_t>(action);
  return {TPostErrorForm::ActionStr[number], static_cast<int>(number), modified, originalIsServer,
          false};
}

constexpr TErrorChoice kPostChoices[] = {
    Choice(TDataAction::daFail, Shown::Unchanged, true),
    Choice(TDataAction::daAbort, Shown::Unchanged, false),
    Choice(TDataAction::daRetry, Shown::EditValue, false),
};

}  // namespace

TPostErrorForm::TPostErrorForm() : TUpdateErrorForm(kPostForm, kPostCaption, kPostChoices, {}) {}

TPostErrorForm::TPostErrorForm(TDataSet& DataSet, const EDatabaseError& Error)
    : TUpdateErrorForm(kPostForm, kPostCaption, kPostChoices,
                       {&DataSet, TUpdateKind::ukModify, Error.Message(), Error.Message()}) {}

TDataAction DoHandlePostError(TDataSet& DataSet, const EDatabaseError& E, TDataAction& /*Action*/) {
  TPostErrorForm form(DataSet, E);
  form.Create();
  return form.Ask() ? static_cast<TDataAction>(form.Action()) : TDataAction::daAbort;
}

}  // namespace kvshare
