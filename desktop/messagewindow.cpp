#include "desktop/messagewindow.h"

#include <QApplication>
#include <QClipboard>
#include <QDialog>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QVBoxLayout>
#include <algorithm>
#include <iterator>
#include <memory>
#include <vector>

#include "desktop/border.h"
#include "desktop/look.h"
#include "desktop/owner.h"
#include "desktop/toolkit.h"

namespace kvshare::desktop {

namespace {

struct ButtonRow {
  TMsgDlgBtn button;
  int result;  // mrNone: the box stays
  const char* caption;
};

// In the order of the platform's boxes, whatever the desktop's own habit is.
constexpr ButtonRow kButtons[] = {
    {TMsgDlgBtn::mbYes, mrYes, "&Yes"},
    {TMsgDlgBtn::mbNo, mrNo, "&No"},
    {TMsgDlgBtn::mbOK, mrOk, "OK"},
    {TMsgDlgBtn::mbCancel, mrCancel, "Cancel"},
    {TMsgDlgBtn::mbAbort, mrAbort, "&Abort"},
    {TMsgDlgBtn::mbRetry, mrRetry, "&Retry"},
    {TMsgDlgBtn::mbIgnore, mrIgnore, "&Ignore"},
    {TMsgDlgBtn::mbAll, mrAll, "&All"},
    {TMsgDlgBtn::mbNoToAll, mrNoToAll, "N&o to All"},
    {TMsgDlgBtn::mbYesToAll, mrYesToAll, "Yes to &All"},
    {TMsgDlgBtn::mbHelp, mrNone, "&Help"},
};

class MessageWindow : public QDialog {
 public:
  explicit MessageWindow(const TMessageBox& message) : message_(message) {
    setObjectName("MessageBox");
    setWindowTitle(Shown(message.Caption()));
    setFont(WindowFont());
    setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                   Qt::WindowCloseButtonHint);
    rows_.setSizeConstraint(QLayout::SetFixedSize);
    rows_.addLayout(&body_);
    rows_.addLayout(&buttonRow_);
    PutIcon();
    PutText();
    PutButtons();
  }

 protected:
  void keyPressEvent(QKeyEvent* event) override {
    if (event->matches(QKeySequence::Copy)) {
      QApplication::clipboard()->setText(text_.text());
    } else if (event->matches(QKeySequence::Cancel)) {
      Dismiss();
    } else if (!Scroll(event->key())) {
      QDialog::keyPressEvent(event);
    }
  }
  void closeEvent(QCloseEvent* event) override {
    event->ignore();
    Dismiss();
  }

 private:
  // While the keyboard is at a button, which has no use for these keys.
  bool Scroll(int key) {
    struct KeyRow {
      int key;
      QAbstractSlider::SliderAction action;
    };
    constexpr KeyRow kKeys[] = {{Qt::Key_PageUp, QAbstractSlider::SliderPageStepSub},
                                {Qt::Key_PageDown, QAbstractSlider::SliderPageStepAdd},
                                {Qt::Key_Home, QAbstractSlider::SliderToMinimum},
                                {Qt::Key_End, QAbstractSlider::SliderToMaximum}};
    const auto* row = std::ranges::find(kKeys, key, &KeyRow::key);
    if (row == std::end(kKeys)) return false;
    scrolled_.verticalScrollBar()->triggerAction(row->action);
    return true;
  }

  void Dismiss() {
    if (message_.EscapeResult() != mrNone || buttons_.empty()) done(message_.EscapeResult());
  }

  void PutIcon() {
    if (message_.type == TMsgDlgType::mtCustom) return;
    icon_.setPixmap(IconFor(message_.type, kIconSize, devicePixelRatio()));
    icon_.setAccessibleName(Shown(message_.Caption()));
    body_.setSpacing(kIconSize / 2);
    body_.addWidget(&icon_, 0, Qt::AlignTop);
  }

  // Up to half the screen as it is; a longer text, a server's list of errors, is scrolled.
  void PutText() {
    const QSize most = QApplication::primaryScreen()->availableSize() / 2;
    const QString text = Shown(message_.text).replace("\r\n", "\n").replace('\r', '\n');
    text_.setObjectName("Text");
    text_.setText(text);
    text_.setTextFormat(Qt::PlainText);  // whatever a server has written
    text_.setTextInteractionFlags(Qt::TextSelectableByMouse);
    text_.setAccessibleName(text);
    const QSize size = text_.sizeHint();
    if (size.width() <= most.width() && size.height() <= most.height()) {
      body_.addWidget(&text_, 1, Qt::AlignVCenter);
      return;
    }
    text_.hide();
    scrolled_.setPlainText(text);
    scrolled_.setReadOnly(true);
    scrolled_.setFocusPolicy(Qt::StrongFocus);
    scrolled_.setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    scrolled_.setAccessibleName(text);
    scrolled_.setFixedSize(most.width(), std::min(size.height() + 2 * kIconSize, most.height()));
    body_.addWidget(&scrolled_, 1);
  }

  void PutButtons() {
    buttonRow_.addStretch();
    for (const ButtonRow& row : kButtons) {
      if (message_.buttons.Has(row.button)) PutButton(row);
    }
    buttonRow_.addStretch();
  }

  void PutButton(const ButtonRow& row) {
    QPushButton& button = *buttons_.emplace_back(std::make_unique<QPushButton>(row.caption));
    buttonRow_.addWidget(&button);
    if (row.result == mrNone) return;
    connect(&button, &QPushButton::clicked, this, [this, row] { done(row.result); });
    if (row.result != message_.EnterResult()) return;
    button.setDefault(true);
    button.setFocus();
  }

  static constexpr int kIconSize = 34;

  TMessageBox message_;
  QVBoxLayout rows_{this};
  QHBoxLayout body_;
  QHBoxLayout buttonRow_;
  QLabel icon_;
  QPlainTextEdit scrolled_;
  Border border_{scrolled_};
  QLabel text_{this};
  std::vector<std::unique_ptr<QPushButton>> buttons_;
};

}  // namespace

int ShowMessageWindow(const TMessageBox& message) {
  MessageWindow window(message);
  return RunModal(window);
}

}  // namespace kvshare::desktop
