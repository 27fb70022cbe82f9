#include "desktop/windows.h"

#include <QApplication>
#include <QFontMetrics>
#include <QImage>
#include <QPixmap>
#include <QScreen>
#include <algorithm>
#include <memory>

#include "desktop/eventguard.h"
#include "desktop/formwindow.h"
#include "desktop/look.h"
#include "desktop/messagewindow.h"
#include "desktop/toolkit.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare::desktop {

namespace {

// The form's window if it is one of ours: a form may have been prepared by another back end.
FormWindow* WindowOf(const TForm& form) {
  return dynamic_cast<FormWindow*>(form.Window());
}

TPicture PictureOf(const QImage& image) {
  const QImage bytes = image.convertToFormat(QImage::Format_BGR888);
  TPicture picture{bytes.width(), bytes.height(), {}};
  picture.pixels.resize(static_cast<std::size_t>(picture.width) *
                        static_cast<std::size_t>(picture.height));
  auto row = picture.pixels.begin();
  for (int y = 0; y < picture.height; ++y, row += picture.width) {
    const auto* line = reinterpret_cast<const TPixel*>(bytes.constScanLine(y));
    std::copy_n(line, picture.width, row);
  }
  return picture;
}

}  // namespace

int WindowsInterface::ShowMessage(const TMessageBox& message) {
  return ShowMessageWindow(message);
}

void WindowsInterface::PrepareForm(TForm& form) {
  if (WindowOf(form) == nullptr) form.SetWindow(std::make_unique<FormWindow>(form));
  form.SetFrame(WindowOf(form)->FrameSize());
}

int WindowsInterface::ShowModalForm(TForm& form) {
  WindowOf(form)->RunModal();
  form.SetWindow(nullptr);
  ThrowKept();
  return form.ModalResult;
}

void WindowsInterface::ProcessMessages() {
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (auto* form = FormWindow::Of(*window)) form->Refresh();
  }
  QApplication::processEvents();
  ThrowKept();
}

void WindowsInterface::RunUntilHidden(TForm& form) {
  while (form.Showing() && !HasKept()) {
    QApplication::processEvents(QEventLoop::WaitForMoreEvents);
  }
  ThrowKept();
}

TSize WindowsInterface::ScreenSize() {
  const QScreen* screen = QApplication::primaryScreen();
  return screen == nullptr ? TSize{} : TSize{screen->size().width(), screen->size().height()};
}

TBounds WindowsInterface::WorkArea() {
  const QScreen* screen = QApplication::primaryScreen();
  if (screen == nullptr) return {};
  const QRect free = screen->availableGeometry().translated(-screen->geometry().topLeft());
  return {free.x(), free.y(), free.width(), free.height()};
}

int WindowsInterface::TextHeight(std::string_view /*text*/) {
  return QFontMetrics(WindowFont()).height();
}

TPicture WindowsInterface::CaptureScreen() {
  QScreen* screen = QApplication::primaryScreen();
  const QPixmap shot = screen == nullptr ? QPixmap() : screen->grabWindow(0);
  if (shot.isNull()) throw EOSError("The screen cannot be seen");
  return PictureOf(shot.toImage());
}

}  // namespace kvshare::desktop
