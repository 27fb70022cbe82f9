#include "desktop/gridpart.h"

#include <QAbstractTableModel>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QScrollBar>
#include <QStyle>
#include <QStyledItemDelegate>
#include <QTableView>
#include <utility>

#include "desktop/border.h"
#include "desktop/toolkit.h"
#include "desktop/typedletters.h"

namespace kvshare::desktop {

namespace {

// How many of the fixed rows or columns are headings.
int Headings(int fixed) {
  return fixed > 0 ? 1 : 0;
}

}  // namespace

// The grid's cells behind its headings, as the toolkit asks for them.
class GridPart::Model : public QAbstractTableModel {
 public:
  Model(TStringGrid& grid, FormEvents& events)
      : grid_(grid), events_(events), rows_(RowsNow()), cols_(ColsNow()) {}

  int HeadCols() const { return Headings(grid_.FixedCols()); }
  int HeadRows() const { return Headings(grid_.FixedRows()); }
  QModelIndex Selected() const { return index(grid_.Row() - HeadRows(), grid_.Col() - HeadCols()); }
  bool Select(const QModelIndex& at) {
    return grid_.SelectCell(at.column() + HeadCols(), at.row() + HeadRows());
  }

  int rowCount(const QModelIndex& parent = {}) const override {
    return parent.isValid() ? 0 : rows_;
  }
  int columnCount(const QModelIndex& parent = {}) const override {
    return parent.isValid() ? 0 : cols_;
  }

  QVariant data(const QModelIndex& at, int role) const override {
    if (role != Qt::DisplayRole && role != Qt::EditRole && role != Qt::AccessibleTextRole) {
      return {};
    }
    return Shown(grid_.Cells(at.column() + HeadCols(), at.row() + HeadRows()));
  }

  QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
    if (role == Qt::TextAlignmentRole) return int{Qt::AlignLeft | Qt::AlignVCenter};
    if (role != Qt::DisplayRole && role != Qt::AccessibleTextRole) return {};
    if (orientation == Qt::Vertical) return Shown(grid_.Cells(0, section + HeadRows()));
    return Shown(grid_.Cells(section + HeadCols(), 0));
  }

  Qt::ItemFlags flags(const QModelIndex& at) const override {
    const bool fixed =
        at.column() + HeadCols() < grid_.FixedCols() || at.row() + HeadRows() < grid_.FixedRows();
    if (fixed) return Qt::ItemIsEnabled;
    const bool typeable = grid_.Options.goEditing && at == Selected();
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable |
           (typeable ? Qt::ItemIsEditable : Qt::NoItemFlags);
  }

  bool setData(const QModelIndex& /*at*/, const QVariant& value, int role) override {
    const QString text = value.toString();
    if (role != Qt::EditRole || !Fits(text)) return false;
    if (text == Shown(grid_.Cells(grid_.Col(), grid_.Row()))) return true;  // nothing was typed
    events_.Do([this, text] { grid_.TypeText(TypedText(text)); });
    return true;
  }

  // Everything may be another.
  void Refresh() {
    if (rows_ != RowsNow() || cols_ != ColsNow()) {
      beginResetModel();
      rows_ = RowsNow();
      cols_ = ColsNow();
      endResetModel();
      return;
    }
    emit dataChanged(index(0, 0), index(rows_ - 1, cols_ - 1));
    emit headerDataChanged(Qt::Horizontal, 0, cols_ - 1);
    emit headerDataChanged(Qt::Vertical, 0, rows_ - 1);
  }

 private:
  int RowsNow() const { return grid_.RowCount() - HeadRows(); }
  int ColsNow() const { return grid_.ColCount() - HeadCols(); }

  TStringGrid& grid_;
  FormEvents& events_;
  int rows_;
  int cols_;
};

// The line that a cell is edited in.
class GridPart::Editing : public QStyledItemDelegate {
 public:
  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                        const QModelIndex& at) const override {
    QWidget* editor = QStyledItemDelegate::createEditor(parent, option, at);
    if (auto* line = qobject_cast<QLineEdit*>(editor)) {
      line->setValidator(std::make_unique<LetterValidator>(*line).release());  // the line's child
    }
    return editor;
  }
};

class GridPart::View : public QTableView {
 public:
  View(TStringGrid& grid, Model& model, FormEvents& events, QWidget* window)
      : QTableView(window), grid_(grid), model_(model), events_(events) {
    setModel(&model);
    setTabKeyNavigation(false);
    setCornerButtonEnabled(false);
    setSelectionMode(SingleSelection);
    setWordWrap(false);
    setHorizontalScrollMode(ScrollPerPixel);
    for (QHeaderView* header : {horizontalHeader(), verticalHeader()}) {
      header->setSectionResizeMode(QHeaderView::Fixed);
      header->setMinimumSectionSize(1);
      header->setHighlightSections(false);
      header->setSectionsClickable(false);
    }
    corner_.setIndent(4);
    connect(this, &QTableView::doubleClicked, this, [this] { Choose(); });
  }

  void PutSelection() {
    putting_ = true;
    if (currentIndex() != model_.Selected()) setCurrentIndex(model_.Selected());
    putting_ = false;
    // A second click would start no editing at once, and swallow what is typed meanwhile.
    setEditTriggers(grid_.Options.goEditing ? AnyKeyPressed | EditKeyPressed | DoubleClicked
                                            : EditTriggers(NoEditTriggers));
  }

  // Where the headings of both sides meet.
  void PutCorner() {
    const bool both = grid_.FixedCols() > 0 && grid_.FixedRows() > 0;
    corner_.setVisible(both);
    if (!both) return;
    corner_.setText(Shown(grid_.Cells(0, 0)));
    corner_.setGeometry(frameWidth(), frameWidth(), verticalHeader()->width(),
                        horizontalHeader()->height());
    corner_.raise();
    border_.raise();
  }

  // A text that is being typed becomes the cell's.
  void CommitEditor() {
    auto* editor = viewport()->findChild<QLineEdit*>();
    if (editor == nullptr || committing_ || state() != EditingState) return;
    commitData(editor);
    closeEditor(editor, QAbstractItemDelegate::NoHint);
  }

 protected:
  void commitData(QWidget* editor) override {
    const bool outer = std::exchange(committing_, true);
    QTableView::commitData(editor);
    committing_ = outer;
  }
  void currentChanged(const QModelIndex& now, const QModelIndex& before) override {
    QTableView::currentChanged(now, before);
    if (putting_ || !now.isValid()) return;
    events_.Do([this, now] { model_.Select(now); });  // one that is refused is taken back
  }
  void keyPressEvent(QKeyEvent* event) override {
    if (event->key() == Qt::Key_Space && !grid_.Options.goEditing) return Choose();
    QTableView::keyPressEvent(event);
  }

 private:
  void Choose() {
    if (grid_.Options.goEditing) return;
    events_.Do([this] { grid_.DoubleClick(); });
  }

  TStringGrid& grid_;
  Model& model_;
  FormEvents& events_;
  QLabel corner_{this};
  Border border_{*this};
  bool putting_ = false;
  bool committing_ = false;  // the cell is given what was typed
};

GridPart::GridPart(TStringGrid& grid, QWidget& window, FormEvents& events)
    : ControlPart(grid),
      grid_(grid),
      model_(std::make_unique<Model>(grid, events)),
      editing_(std::make_unique<Editing>()),
      view_(MakeWidget<View>(grid, *model_, events, &window)) {
  view_->setObjectName(Shown(grid.Name()));
  view_->setAccessibleName(SpokenName(grid));
  view_->setItemDelegate(editing_.get());
  grid.SetFrame(GridPart::Frame());
}

// The view lives on for its last event, without the cells.
GridPart::~GridPart() {
  view_->setModel(nullptr);
  view_->setItemDelegate(nullptr);
}

QWidget& GridPart::Widget() const {
  return *view_;
}

void GridPart::Commit() {
  view_->CommitEditor();
}

bool GridPart::NeedsScrollBar() const {
  int left = grid_.Height() - 2 * view_->frameWidth();
  for (int row = 0; row < grid_.RowCount() && left >= 0; ++row) left -= grid_.RowHeights(row) + 1;
  return left < 0;
}

TSize GridPart::Frame() const {
  const int border = 2 * view_->frameWidth();
  const int bar = view_->style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, view_.get());
  return {border + (NeedsScrollBar() ? bar : 0), border};
}

// A cell is followed by the line that parts it from the next.
void GridPart::RefreshSizes() {
  constexpr int kLine = 1;
  QHeaderView& across = *view_->horizontalHeader();
  QHeaderView& down = *view_->verticalHeader();
  across.setVisible(grid_.FixedRows() > 0);
  down.setVisible(grid_.FixedCols() > 0);
  if (grid_.FixedRows() > 0) across.setFixedHeight(grid_.RowHeights(0) + kLine);
  if (grid_.FixedCols() > 0) down.setFixedWidth(grid_.ColWidths(0));
  down.setDefaultSectionSize(grid_.DefaultRowHeight() + kLine);
  for (int i = 0; i < model_->columnCount(); ++i) {
    const int width = grid_.ColWidths(i + model_->HeadCols()) + kLine;
    if (across.sectionSize(i) != width) across.resizeSection(i, width);
  }
  for (int i = 0; i < model_->rowCount(); ++i) {
    const int height = grid_.RowHeights(i + model_->HeadRows()) + kLine;
    if (down.sectionSize(i) != height) down.resizeSection(i, height);
  }
}

void GridPart::RefreshContent() {
  model_->Refresh();
  RefreshSizes();
  view_->PutCorner();
  view_->PutSelection();
}

}  // namespace kvshare::desktop
