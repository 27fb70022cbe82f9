// Which window a dialog belongs to, and dialogs that wait.
#pragma once

#include <QDialog>
#include <QPointer>

namespace kvshare::desktop {

// While it lives, the dialog is over the window that the user works with, else over the main
// form's, without being given away: it stays whose it is. Then that window has the keyboard again.
class OverOwner {
 public:
  explicit OverOwner(QWidget& dialog);
  ~OverOwner();
  OverOwner(const OverOwner&) = delete;
  OverOwner& operator=(const OverOwner&) = delete;

 private:
  QPointer<QWidget> owner_;
};

// Shows the dialog until it is answered and returns what its `done` was given.
int RunModal(QDialog& dialog);

}  // namespace kvshare::desktop
