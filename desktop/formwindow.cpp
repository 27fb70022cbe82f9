#include "desktop/formwindow.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDialog>
#include <QKeyEvent>
#include <QScreen>
#include <QTimer>
#include <QWindow>
#include <algorithm>
#include <utility>

#include "desktop/eventguard.h"
#include "desktop/look.h"
#include "desktop/owner.h"
#include "desktop/toolkit.h"
#include "kvshare/ui/stdcontrols.h"

namespace kvshare::desktop {

namespace {

struct StyleRow {
  TFormBorderStyle style;
  Qt::WindowFlags flags;
  bool sizeable;
};
constexpr auto kTitle = Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint;
constexpr auto kButtons = Qt::WindowMinimizeButtonHint | Qt::WindowMaximizeButtonHint;
const StyleRow kStyles[] = {
    {TFormBorderStyle::bsNone, Qt::Window | Qt::FramelessWindowHint, false},
    {TFormBorderStyle::bsSingle, Qt::Window | kTitle | Qt::WindowMinimizeButtonHint, false},
    {TFormBorderStyle::bsSizeable, Qt::Window | kTitle | kButtons, true},
    {TFormBorderStyle::bsDialog, Qt::Dialog | kTitle, false},
    {TFormBorderStyle::bsToolWindow, Qt::Tool | kTitle, false},
    {TFormBorderStyle::bsSizeToolWin, Qt::Tool | kTitle, true},
};

const StyleRow& StyleOf(const TForm& form) {
  return *std::ranges::find(kStyles, form.BorderStyle, &StyleRow::style);
}

QPoint MainScreenOrigin() {
  const QScreen* screen = QApplication::primaryScreen();
  return screen == nullptr ? QPoint() : screen->geometry().topLeft();
}

TWindowState StateOf(const QWidget& window) {
  if (window.isMinimized()) return TWindowState::wsMinimized;
  return window.isMaximized() ? TWindowState::wsMaximized : TWindowState::wsNormal;
}

Qt::WindowStates ShownState(TWindowState state) {
  if (state == TWindowState::wsMinimized) return Qt::WindowMinimized;
  return state == TWindowState::wsMaximized ? Qt::WindowMaximized : Qt::WindowNoState;
}

}  // namespace

// The toolkit's window: its keys and moves are the form's.
class FormWindow::Frame : public QDialog {
 public:
  explicit Frame(FormWindow& window) : window_(window) {}

  FormWindow& Window() { return window_; }

 protected:
  void keyPressEvent(QKeyEvent* event) override {
    TForm& form = window_.form_;
    switch (event->key()) {
      case Qt::Key_Return:
      case Qt::Key_Enter:
        return window_.Do([&form] { form.PressEnter(); });
      case Qt::Key_Escape:
        return window_.Do([&form] { form.PressEsc(); });
      default:
        QDialog::keyPressEvent(event);
    }
  }
  void closeEvent(QCloseEvent* event) override {
    event->ignore();  // the form decides
    window_.Do([this] { window_.form_.Close(); });
  }
  void moveEvent(QMoveEvent* event) override {
    QDialog::moveEvent(event);
    window_.TakeBounds();
  }
  void resizeEvent(QResizeEvent* event) override {
    QDialog::resizeEvent(event);
    window_.TakeBounds();
  }
  void changeEvent(QEvent* event) override {
    QDialog::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange) window_.TakeBounds();
  }

 private:
  FormWindow& window_;
};

FormWindow::FormWindow(TForm& form) : form_(form), frame_(std::make_unique<Frame>(*this)) {
  frame_->setObjectName(Shown(form.Name()));
  frame_->setFont(WindowFont());
  frame_->setWindowFlags(StyleOf(form).flags);
  soon_.setSingleShot(true);
  QObject::connect(&soon_, &QTimer::timeout, frame_.get(), [this] { Refresh(); });
  QObject::connect(qApp, &QApplication::focusChanged, frame_.get(), [this] { TakeFocus(); });
  Refresh();
}

FormWindow::~FormWindow() {
  DropParts();
}

// The keyboard goes from one to the other as they vanish, and that finds none of them here.
void FormWindow::DropParts() {
  std::vector<std::unique_ptr<ControlPart>>().swap(parts_);
}

QWidget& FormWindow::Widget() const {
  return *frame_;
}

FormWindow* FormWindow::Of(QWidget& widget) {
  auto* frame = dynamic_cast<Frame*>(&widget);
  return frame == nullptr ? nullptr : &frame->Window();
}

std::uintptr_t FormWindow::Handle() const {
  return frame_->winId();
}

TSize FormWindow::FrameSize() const {
  const QWindow* system = frame_->windowHandle();
  if (system == nullptr) return {};
  const QMargins margins = system->frameMargins();
  return {margins.left() + margins.right(), margins.top() + margins.bottom()};
}

// --- The form's side

void FormWindow::ControlsChanged() {
  DropParts();
  stale_ = true;
  RefreshLater();
}

void FormWindow::ControlChanged(const TControl& control) {
  if (&control == &form_) return FollowForm();
  // What a control's frame takes counts at once: a program asks for its inner size next.
  const auto part =
      std::ranges::find_if(parts_, [&](const auto& each) { return &each->Model() == &control; });
  if (part != parts_.end()) {
    if (auto* with = dynamic_cast<TWinControl*>(&(*part)->Model())) {
      with->SetFrame((*part)->Frame());
    }
  }
  RefreshLater();
}

void FormWindow::RefreshLater() {
  if (!refreshing_) soon_.start(0);
}

void FormWindow::FollowForm() {
  if (moving_) return;
  moving_ = true;
  frame_->setWindowTitle(Shown(form_.Caption()));
  const bool staysNormal =
      StateOf(*frame_) == form_.WindowState() && form_.WindowState() == TWindowState::wsNormal;
  // A form that was maximised before it had a window comes back to its old bounds.
  if (staysNormal || !frame_->isVisible()) {
    const TBounds& bounds = form_.NormalBounds();
    const TSize frame{form_.Width() - form_.ClientWidth(), form_.Height() - form_.ClientHeight()};
    const QRect inner = Reachable(
        {bounds.Left, bounds.Top, bounds.Width - frame.Width, bounds.Height - frame.Height});
    const QPoint place = MainScreenOrigin() + inner.topLeft();
    if (frame_->pos() != place) frame_->move(place);
    SetInnerSize(inner.size());
  }
  if (StateOf(*frame_) != form_.WindowState()) {
    frame_->setWindowState(ShownState(form_.WindowState()));
  }
  moving_ = false;
  if (frame_->isVisible()) TakeBounds();
}

void FormWindow::TakeBounds() {
  if (moving_ || !frame_->isVisible()) return;
  moving_ = true;
  const TWindowState state = StateOf(*frame_);
  if (state != TWindowState::wsMinimized) {
    TakeFrame(state);
    const QRect outer = frame_->frameGeometry().translated(-MainScreenOrigin());
    form_.SetBounds({outer.x(), outer.y(), outer.width(), outer.height()});
    if (unframed_ && state == TWindowState::wsNormal) unframed_ = form_.Bounds();
  }
  form_.SetWindowState(state);
  moving_ = false;
}

void FormWindow::SetInnerSize(QSize size) {
  if (StyleOf(form_).sizeable) {
    frame_->resize(size);
  } else {
    frame_->setFixedSize(size);
  }
}

// The system tells what its frame takes once the window is there. What the form's bounds were until
// then is with the frame, so that the window gives way; a window in the middle stays there.
void FormWindow::TakeFrame(TWindowState state) {
  const TSize frame = FrameSize();
  const bool due = unframed_ && state == TWindowState::wsNormal && frame != TSize{};
  if (frame == frameSize_ && !due) return;
  frameSize_ = frame;
  if (due) {
    form_.TWinControl::SetFrame({});
    form_.SetBounds(*std::exchange(unframed_, std::nullopt));
    form_.SetFrame(frame);
    SetInnerSize(Reachable({0, 0, form_.ClientWidth(), form_.ClientHeight()}).size());
  } else {
    form_.TWinControl::SetFrame(frame);
  }
  if (form_.Position == TPosition::poScreenCenter) CenterOnScreen();
}

void FormWindow::CenterOnScreen() {
  const QScreen* screen = QApplication::primaryScreen();
  const QSize left = (screen->size() - frame_->frameGeometry().size()) / 2;
  frame_->move(screen->geometry().topLeft() +
               QPoint(std::max(0, left.width()), std::max(0, left.height())));
}

// A place that was stored when there was another screen would leave the window out of reach.
void FormWindow::KeepOnScreens() {
  constexpr int kReachable = 40;
  const QRect title(frame_->pos(), QSize(frame_->width(), kReachable));
  for (const QScreen* screen : QApplication::screens()) {
    if (screen->availableGeometry().intersects(title)) return;
  }
  frame_->move(MainScreenOrigin());
}

// --- The parts

void FormWindow::BuildParts() {
  stale_ = false;
  for (TControl* control : form_.Controls()) {
    if (auto part = MakePart(*control, *frame_, *this)) parts_.push_back(std::move(part));
  }
  for (const auto& part : parts_) {
    part->Refresh();
    if (frame_->isVisible()) part->Widget().setVisible(part->Model().Visible());
  }
  ChainTabs();
}

void FormWindow::ChainTabs() {
  QWidget* before = nullptr;
  for (const TWinControl* control : form_.TabList()) {
    const auto part =
        std::ranges::find_if(parts_, [&](const auto& each) { return &each->Model() == control; });
    if (part == parts_.end()) continue;
    for (QWidget* stop : (*part)->Stops()) {
      if (before != nullptr) QWidget::setTabOrder(before, stop);
      before = stop;
    }
  }
}

void FormWindow::Refresh() {
  if (std::exchange(refreshing_, true)) return;
  soon_.stop();
  if (stale_) BuildParts();
  for (const auto& part : parts_) part->Refresh();
  FollowForm();
  PutFocus();
  refreshing_ = false;
  if (loop_ != nullptr && (form_.ModalResult != mrNone || HasKept())) {
    frame_->hide();  // a second click finds nothing to answer
    loop_->quit();
  }
}

void FormWindow::PutFocus() {
  if (!frame_->isVisible() || form_.ActiveControl() == nullptr) return;
  for (const auto& part : parts_) {
    if (&part->Model() != form_.ActiveControl()) continue;
    const QWidget* has = QApplication::focusWidget();
    if (has == &part->Widget() || (has != nullptr && part->Widget().isAncestorOf(has))) return;
    part->FocusWidget().setFocus();
  }
}

void FormWindow::TakeFocus() {
  const QWidget* has = QApplication::focusWidget();
  if (has == nullptr || refreshing_ || has->window() != frame_.get()) return;
  for (const auto& part : parts_) {
    if (has != &part->Widget() && !part->Widget().isAncestorOf(has)) continue;
    for (TWinControl* control : form_.TabList()) {
      if (control == &part->Model()) form_.SetActiveControl(control);
    }
  }
}

// --- The user's side

void FormWindow::Do(const std::function<void()>& action) {
  RunGuarded(form_, [&] {
    for (const auto& part : parts_) part->Commit();
    action();
  });
  Refresh();
}

void FormWindow::Show() {
  Refresh();
  KeepOnScreens();
  if (frameSize_ == TSize{}) unframed_ = form_.NormalBounds();
  if (form_.WindowState() != TWindowState::wsNormal) {
    frame_->setWindowState(ShownState(form_.WindowState()));
  }
  frame_->show();
  TakeBounds();
  PutFocus();
}

void FormWindow::Hide() {
  frame_->hide();
  if (loop_ != nullptr) loop_->quit();
}

void FormWindow::RunModal() {
  frame_->setWindowModality(Qt::ApplicationModal);
  const OverOwner over(*frame_);
  QEventLoop loop;
  loop_ = &loop;
  Show();
  if (form_.ModalResult == mrNone && !HasKept()) loop.exec();
  loop_ = nullptr;
  frame_->hide();
}

}  // namespace kvshare::desktop
