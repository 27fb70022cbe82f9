#include "desktop/eventguard.h"

#include <utility>

#include "kvshare/rtl/exceptions.h"
#include "kvshare/ui/messages.h"

namespace kvshare::desktop {

namespace {

std::exception_ptr& Kept() {
  static std::exception_ptr kept;
  return kept;
}

}  // namespace

void RunGuarded(TForm& form, const std::function<void()>& action) {
  try {
    action();
  } catch (const EAbort&) {
    form.ModalResult = mrNone;  // the handler has said all
  } catch (const Exception& e) {
    form.ModalResult = mrNone;  // a button that has failed closes nothing
    MessageDlg(e.Message(), TMsgDlgType::mtError, {TMsgDlgBtn::mbOK}, 0);
  } catch (...) {
    Kept() = std::current_exception();
  }
}

bool HasKept() {
  return Kept() != nullptr;
}

void ThrowKept() {
  if (HasKept()) std::rethrow_exception(std::exchange(Kept(), nullptr));
}

}  // namespace kvshare::desktop
