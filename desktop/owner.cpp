#include "desktop/owner.h"

#include <QApplication>
#include <QEventLoop>
#include <QWindow>

#include "kvshare/ui/application.h"
#include "kvshare/ui/controls.h"

namespace kvshare::desktop {

namespace {

QWidget* MainWindow() {
  const WId main = static_cast<WId>(Application.MainFormHandle());
  return main == 0 ? nullptr : QWidget::find(main);
}

QWidget* OwnerOf(const QWidget& window) {
  for (QWidget* candidate : {QApplication::activeModalWidget(), QApplication::activeWindow()}) {
    if (candidate != nullptr && candidate != &window && candidate->isVisible()) return candidate;
  }
  return MainWindow();
}

}  // namespace

OverOwner::OverOwner(QWidget& dialog) : owner_(OwnerOf(dialog)) {
  dialog.winId();  // makes the system's window
  if (owner_ == nullptr || owner_ == &dialog || owner_->windowHandle() == nullptr) return;
  dialog.windowHandle()->setTransientParent(owner_->windowHandle());
}

OverOwner::~OverOwner() {
  if (owner_ != nullptr && owner_->isVisible()) owner_->activateWindow();
}

int RunModal(QDialog& dialog) {
  dialog.setWindowModality(Qt::ApplicationModal);
  const OverOwner over(dialog);
  QEventLoop loop;
  QObject::connect(&dialog, &QDialog::finished, &loop, &QEventLoop::quit);
  dialog.show();
  loop.exec();
  return dialog.result();
}

}  // namespace kvshare::desktop
