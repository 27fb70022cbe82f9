#include "desktop/controlparts.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "desktop/border.h"
#include "desktop/gridpart.h"
#include "desktop/look.h"
#include "desktop/toolkit.h"
#include "desktop/typedletters.h"
#include "kvshare/ui/stdcontrols.h"
#include "kvshare/ui/stringgrid.h"

namespace kvshare::desktop {

namespace {

// What the toolkit answers with what it shows. A setter of the same value would lose a selection.
template <typename Value, typename Setter>
void PutIfOther(const Value& shown, const Value& wanted, Setter set) {
  if (shown != wanted) set(wanted);
}

// A control and its widget, which shows what changes and reports what a user does.
template <typename Kind, typename WidgetType>
class Part : public ControlPart {
 public:
  Part(Kind& control, QWidget& window, FormEvents& events)
      : ControlPart(control),
        control_(control),
        widget_(MakeWidget<WidgetType>(&window)),
        events_(events) {
    widget_->setObjectName(Shown(control.Name()));
  }
  QWidget& Widget() const override { return *widget_; }

 protected:
  Kind& control_;
  WidgetPtr<WidgetType> widget_;
  FormEvents& events_;
};

class LabelPart : public Part<TLabel, QLabel> {
 public:
  LabelPart(TLabel& label, QWidget& window, FormEvents& events) : Part(label, window, events) {
    widget_->setTextFormat(Qt::PlainText);  // a server's text among them
  }
  std::vector<QWidget*> Stops() const override { return {}; }

 protected:
  void RefreshContent() override {
    PutIfOther(widget_->text(), Shown(control_.Caption()),
               [this](const QString& text) { widget_->setText(text); });
  }
  // As wide and high as its text needs, when that is more than its bounds.
  QRect Place() const override {
    const QRect bounds = Part::Place();
    return {bounds.topLeft(), bounds.size().expandedTo(widget_->sizeHint())};
  }
};

class ImagePart : public Part<TImage, QLabel> {
 public:
  ImagePart(TImage& image, QWidget& window, FormEvents& events) : Part(image, window, events) {
    const int size = std::min(image.Width(), image.Height());
    widget_->setPixmap(IconFor(TMsgDlgType::mtError, size, window.devicePixelRatio()));
    widget_->setAccessibleName("Error");
  }
  std::vector<QWidget*> Stops() const override { return {}; }
};

class ButtonPart : public Part<TButton, QPushButton> {
 public:
  ButtonPart(TButton& button, QWidget& window, FormEvents& events) : Part(button, window, events) {
    widget_->setAutoDefault(false);  // Enter is the form's
    QObject::connect(widget_.get(), &QPushButton::clicked, &window,
                     [this] { events_.Do([&button = control_] { button.Click(); }); });
  }

 protected:
  void RefreshContent() override {
    PutIfOther(widget_->text(), Shown(control_.Caption()),
               [this](const QString& text) { widget_->setText(text); });
    widget_->setDefault(control_.Parent()->DefaultButton() == &control_);
  }
};

class CheckBoxPart : public Part<TCheckBox, QCheckBox> {
 public:
  CheckBoxPart(TCheckBox& box, QWidget& window, FormEvents& events) : Part(box, window, events) {
    QObject::connect(widget_.get(), &QCheckBox::clicked, &window,
                     [this] { events_.Do([&box = control_] { box.Click(); }); });
  }

 protected:
  void RefreshContent() override {
    PutIfOther(widget_->text(), Shown(control_.Caption()),
               [this](const QString& text) { widget_->setText(text); });
    widget_->setChecked(control_.Checked());
  }
};

class RadioGroupPart : public Part<TRadioGroup, QGroupBox> {
 public:
  RadioGroupPart(TRadioGroup& group, QWidget& window, FormEvents& events)
      : Part(group, window, events) {
    widget_->setLayout(&rows_);
    rows_.setContentsMargins(8, 0, 4, 0);
    rows_.setSpacing(0);
  }
  ~RadioGroupPart() override { items_.clear(); }

  std::vector<QWidget*> Stops() const override {
    std::vector<QWidget*> stops;
    for (const auto& item : items_) stops.push_back(item.get());
    return stops;
  }
  QWidget& FocusWidget() const override {
    const int chosen = std::max(0, control_.ItemIndex());
    return items_.empty() ? Widget() : *items_[static_cast<std::size_t>(chosen)];
  }

 protected:
  void RefreshContent() override {
    PutIfOther(widget_->title(), Shown(control_.Caption()),
               [this](const QString& text) { widget_->setTitle(text); });
    if (!ShowsItems()) MakeItems();
    for (int i = 0; const auto& item : items_) {
      const bool chosen = i++ == control_.ItemIndex();
      item->setAutoExclusive(false);  // else none could be without a mark
      item->setChecked(chosen);
      item->setAutoExclusive(true);
    }
  }

 private:
  bool ShowsItems() const {
    if (items_.size() != static_cast<std::size_t>(control_.Items().Count())) return false;
    for (int i = 0; const auto& item : items_) {
      if (item->text() != Shown(control_.Items()[i++])) return false;
    }
    return true;
  }

  void MakeItems() {
    items_.clear();
    for (int i = 0; i < control_.Items().Count(); ++i) {
      auto item = MakeWidget<QRadioButton>(Shown(control_.Items()[i]), widget_.get());
      rows_.addWidget(item.get());
      QObject::connect(item.get(), &QRadioButton::clicked, widget_.get(),
                       [this, i] { events_.Do([&group = control_, i] { group.Choose(i); }); });
      items_.push_back(std::move(item));
    }
  }

  QVBoxLayout rows_;
  std::vector<WidgetPtr<QRadioButton>> items_;
};

class EditPart : public Part<TEdit, QLineEdit> {
 public:
  EditPart(TEdit& edit, QWidget& window, FormEvents& events)
      : Part(edit, window, events), letters_(*widget_) {
    widget_->setValidator(&letters_);
    widget_->setAccessibleName(SpokenName(edit));
    QObject::connect(widget_.get(), &QLineEdit::textEdited, &window, [this](const QString& text) {
      events_.Do([&edit = control_, text] { edit.TypeText(TypedText(text)); });
    });
  }

 protected:
  void RefreshContent() override {
    PutIfOther(widget_->text(), Shown(control_.Text()),
               [this](const QString& text) { widget_->setText(text); });
    widget_->setReadOnly(control_.ReadOnly);
    widget_->setBackgroundRole(control_.ReadOnly ? QPalette::Window : QPalette::Base);
    widget_->setMaxLength(control_.MaxLength > 0 ? control_.MaxLength : kToolkitsMost);
    widget_->setAlignment((control_.RightAligned ? Qt::AlignRight : Qt::AlignLeft) |
                          Qt::AlignVCenter);
  }

 private:
  static constexpr int kToolkitsMost = 32767;
  LetterValidator letters_;
};

// Leaves Enter in a memo that cannot be written, and Esc, to the form.
class MemoWidget : public QPlainTextEdit {
 public:
  using QPlainTextEdit::QPlainTextEdit;

 protected:
  void keyPressEvent(QKeyEvent* event) override {
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (event->key() == Qt::Key_Escape || (enter && isReadOnly())) return event->ignore();
    QPlainTextEdit::keyPressEvent(event);
  }

 private:
  Border border_{*this};
};

class MemoPart : public Part<TMemo, MemoWidget> {
 public:
  MemoPart(TMemo& memo, QWidget& window, FormEvents& events) : Part(memo, window, events) {
    widget_->setTabChangesFocus(true);
    widget_->setAccessibleName(SpokenName(memo));
    QObject::connect(widget_.get(), &QPlainTextEdit::textChanged, &window, [this] { Take(); });
  }

 protected:
  void RefreshContent() override {
    putting_ = true;
    QString lines = Shown(control_.Text());
    lines.replace("\r\n", "\n").replace('\r', '\n');
    PutIfOther(widget_->toPlainText(), lines,
               [this](const QString& text) { widget_->setPlainText(text); });
    widget_->setReadOnly(control_.ReadOnly);
    putting_ = false;
  }

 private:
  void Take() {
    if (putting_) return;
    QString text = widget_->toPlainText();
    if (!Fits(text)) {
      TellBadLetter(*widget_, text);
      PutBack(static_cast<int>(text.size()));
      return;
    }
    text.replace('\n', "\r\n");
    events_.Do([&memo = control_, text] { memo.EditText(TypedText(text)); });
  }

  // The text as it was, and the cursor where it was in it.
  void PutBack(int typedSize) {
    QTextCursor cursor = widget_->textCursor();
    const int place = cursor.position() - typedSize;  // from the end
    RefreshContent();
    cursor.setPosition(std::max(0, static_cast<int>(widget_->toPlainText().size()) + place));
    widget_->setTextCursor(cursor);
  }

  bool putting_ = false;
};

template <typename Kind, typename PartType>
std::unique_ptr<ControlPart> MakeIf(TControl& control, QWidget& window, FormEvents& events) {
  auto* of = dynamic_cast<Kind*>(&control);
  if (of == nullptr) return nullptr;
  return std::make_unique<PartType>(*of, window, events);
}

using Maker = std::unique_ptr<ControlPart> (*)(TControl&, QWidget&, FormEvents&);
constexpr Maker kMakers[] = {
    MakeIf<TLabel, LabelPart>,
    MakeIf<TImage, ImagePart>,
    MakeIf<TButton, ButtonPart>,
    MakeIf<TCheckBox, CheckBoxPart>,
    MakeIf<TRadioGroup, RadioGroupPart>,
    MakeIf<TEdit, EditPart>,
    MakeIf<TMemo, MemoPart>,
    MakeIf<TStringGrid, GridPart>,
};

// `UpdateData` in words: `Update Data`.
QString NameInWords(std::string_view name) {
  QString words;
  for (const QChar letter : Shown(name)) {
    if (letter.isUpper() && !words.isEmpty() && words.back().isLower()) words += ' ';
    words += letter;
  }
  return words;
}

bool StandsBeside(const TControl& label, const TControl& control) {
  constexpr int kNear = 24;
  const int above = control.Top() - (label.Top() + label.Height());
  const bool isAbove = above >= 0 && above <= kNear && label.Left() >= control.Left() - kNear &&
                       label.Left() < control.Left() + control.Width();
  const bool onLine = label.Top() >= control.Top() - kNear / 2 &&
                      label.Top() < control.Top() + control.Height() &&
                      label.Left() < control.Left();
  return isAbove || onLine;
}

}  // namespace

void DestroyLater::operator()(QWidget* widget) const {
  widget->disconnect();
  widget->hide();
  widget->setParent(nullptr);
  widget->deleteLater();
}

QRect ControlPart::Place() const {
  return Reachable(model_.Bounds());
}

void ControlPart::Refresh() {
  QWidget& widget = Widget();
  RefreshContent();
  if (const QRect place = Place(); widget.geometry() != place) widget.setGeometry(place);
  if (widget.isHidden() == model_.Visible()) widget.setVisible(model_.Visible());
  widget.setEnabled(model_.Enabled());
}

std::unique_ptr<ControlPart> MakePart(TControl& control, QWidget& window, FormEvents& events) {
  for (const Maker make : kMakers) {
    if (auto part = make(control, window, events)) return part;
  }
  return nullptr;
}

QString SpokenName(const TControl& control) {
  QString caption = Shown(control.Caption()).trimmed();
  if (!caption.isEmpty()) return caption;
  const TControl* nearest = nullptr;
  for (const TControl* other : control.Parent()->Controls()) {
    const bool isLabel = dynamic_cast<const TLabel*>(other) != nullptr && !other->Caption().empty();
    if (!isLabel || !StandsBeside(*other, control)) continue;
    if (nearest == nullptr || other->Top() > nearest->Top()) nearest = other;
  }
  if (nearest == nullptr) return NameInWords(control.Name());
  QString spoken = Shown(nearest->Caption()).trimmed();
  if (spoken.endsWith(':')) spoken.chop(1);
  return spoken;
}

}  // namespace kvshare::desktop
