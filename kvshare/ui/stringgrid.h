// A table of texts, with fixed columns and rows at its left and top as headings.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "kvshare/export.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/ui/controls.h"

namespace kvshare {

class KVSHARE_API EInvalidGridOperation : public Exception {
 public:
  using Exception::Exception;
  ~EInvalidGridOperation() override;
};

struct TGridOptions {
  bool goEditing = false;  // the user may type into cells
};

// Cells are named by column and row, from 0. Sizes are pixels, any integers. A column or row that
// is not there throws EInvalidGridOperation `Grid index out of range`, unless said otherwise.
class KVSHARE_API TStringGrid : public TWinControl {
 public:
  using TWinControl::TWinControl;

  // Text and object of a cell: "" and nullptr until they are set. Also cells past the counts have
  // them, unseen, and show them when the grid grows; only a negative index throws. The grid does
  // not own the objects.
  const std::string& Cells(int col, int row) const;
  void SetCells(int col, int row, std::string_view text);
  TObject* Objects(int col, int row) const;
  void SetObjects(int col, int row, TObject* object);
  void Clear();  // all texts and objects

  // 5 each at first, and 1 of them fixed. A count below 1 is 1. One that is not more than the fixed
  // ones throws EInvalidGridOperation `Fixed column count must be less than column count`, `Fixed
  // row count must be less than row count`, as too many fixed ones do, and nothing changes. New
  // ones have the default size.
  int ColCount() const { return cols_.count; }
  int RowCount() const { return rows_.count; }
  void SetColCount(int count) { SetCount(cols_, count); }
  void SetRowCount(int count) { SetCount(rows_, count); }
  int FixedCols() const { return cols_.fixed; }
  int FixedRows() const { return rows_.fixed; }
  void SetFixedCols(int count) { SetFixed(cols_, count); }
  void SetFixedRows(int count) { SetFixed(rows_, count); }

  int DefaultColWidth() const { return cols_.defaultSize; }   // 64 at first
  int DefaultRowHeight() const { return rows_.defaultSize; }  // 24 at first
  void SetDefaultColWidth(int width) {
    SetAll(cols_, width);
  }  // of all, also those that had another
  void SetDefaultRowHeight(int height) { SetAll(rows_, height); }
  int ColWidths(int col) const { return cols_.SizeAt(col); }
  int RowHeights(int row) const { return rows_.SizeAt(row); }
  void SetColWidths(int col, int width) { Set(cols_.SizeAt(col), width); }
  void SetRowHeights(int row, int height) { Set(rows_.SizeAt(row), height); }

  TGridOptions Options;

  // The selected cell, never a fixed one: at first the one behind those.
  int Col() const { return cols_.current; }
  int Row() const { return rows_.current; }

  // Runs when the user goes to a cell, before the move, also when it is selected already; `can` is
  // true and may be made false, and the cell stays where it was. Options may change meanwhile.
  std::function<void(int col, int row, bool& can)> OnSelectCell;
  // Runs after an edit of the user has changed the cell.
  std::function<void(int col, int row, const std::string& text)> OnSetEditText;

  // Runs when the user chooses the selected cell: by a double click, or by the space bar where he
  // cannot type into it.
  TNotifyEvent OnDblClick;

  // The user goes to a cell; false for a fixed one, one that is not there, or one refused.
  bool SelectCell(int col, int row);
  // The user types, and the selected cell holds `text` instead of its own; false without goEditing.
  bool TypeText(std::string_view text);
  bool DoubleClick();  // the user's, on the selected cell

 private:
  struct Axis {
    std::string_view tooManyFixed;
    int defaultSize;
    std::vector<int> sizes;  // one for each
    int count = 5;
    int fixed = 1;
    int current = 1;

    const int& SizeAt(int index) const;
    int& SizeAt(int index);
    bool Selectable(int index) const { return index >= fixed && index < count; }
  };
  struct Cell {
    std::string text;
    TObject* object = nullptr;
  };

  void SetCount(Axis& axis, int count);
  void SetFixed(Axis& axis, int count);
  void SetAll(Axis& axis, int size);
  const Cell& At(int col, int row) const;
  Cell& At(int col, int row);

  Axis cols_{"Fixed column count must be less than column count", 64, std::vector<int>(5, 64)};
  Axis rows_{"Fixed row count must be less than row count", 24, std::vector<int>(5, 24)};
  std::map<std::pair<int, int>, Cell> cells_;  // by column and row
};

}  // namespace kvshare
