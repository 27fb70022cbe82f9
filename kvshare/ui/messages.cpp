#include "kvshare/ui/messages.h"

#include <algorithm>
#include <iterator>
#include <span>

#include "kvshare/ui/application.h"
#include "kvshare/ui/backend.h"

namespace kvshare {

namespace {

struct ButtonRow {
  TMsgDlgBtn button;
  int result;
};

// In the order of a box. Help does not close it and so answers nothing.
constexpr ButtonRow kButtons[] = {
    {TMsgDlgBtn::mbYes, mrYes},         {TMsgDlgBtn::mbNo, mrNo},
    {TMsgDlgBtn::mbOK, mrOk},           {TMsgDlgBtn::mbCancel, mrCancel},
    {TMsgDlgBtn::mbAbort, mrAbort},     {TMsgDlgBtn::mbRetry, mrRetry},
    {TMsgDlgBtn::mbIgnore, mrIgnore},   {TMsgDlgBtn::mbAll, mrAll},
    {TMsgDlgBtn::mbNoToAll, mrNoToAll}, {TMsgDlgBtn::mbYesToAll, mrYesToAll},
    {TMsgDlgBtn::mbHelp, mrNone},
};

constexpr ButtonRow kOfEnter[] = {
    {TMsgDlgBtn::mbOK, mrOk}, {TMsgDlgBtn::mbYes, mrYes}, {TMsgDlgBtn::mbRetry, mrRetry}};

constexpr ButtonRow kOfEscape[] = {
    {TMsgDlgBtn::mbCancel, mrCancel}, {TMsgDlgBtn::mbNo, mrNo}, {TMsgDlgBtn::mbOK, mrOk}};

// The result of the first row whose button is there.
int FirstPresent(std::span<const ButtonRow> rows, TMsgDlgButtons buttons) {
  const auto row = std::ranges::find_if(
      rows, [buttons](const ButtonRow& candidate) { return buttons.Has(candidate.button); });
  return row == rows.end() ? mrNone : row->result;
}

}  // namespace

std::string TMessageBox::Caption() const {
  switch (type) {
    case TMsgDlgType::mtWarning:
      return "Warning";
    case TMsgDlgType::mtError:
      return "Error";
    case TMsgDlgType::mtInformation:
      return "Information";
    case TMsgDlgType::mtConfirmation:
      return "Confirm";
    case TMsgDlgType::mtCustom:
      break;
  }
  return Application.Title;
}

int TMessageBox::EnterResult() const {
  const int usual = FirstPresent(kOfEnter, buttons);
  return usual != mrNone ? usual : FirstPresent(kButtons, buttons);
}

int TMessageBox::EscapeResult() const {
  return FirstPresent(kOfEscape, buttons);
}

int MessageDlg(std::string_view text, TMsgDlgType type, TMsgDlgButtons buttons,
               std::int32_t helpContext) {
  return UserInterface().ShowMessage({std::string(text), type, buttons, helpContext});
}

}  // namespace kvshare
