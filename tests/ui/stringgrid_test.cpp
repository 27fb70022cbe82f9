#include "kvshare/ui/stringgrid.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <vector>

#include "tests/support.h"

namespace kvshare {
namespace {

constexpr const char* kColumns = "Fixed column count must be less than column count";
constexpr const char* kRows = "Fixed row count must be less than row count";
constexpr const char* kIndex = "Grid index out of range";

std::string ErrorOf(const std::function<void()>& action) {
  return MessageOf<EInvalidGridOperation>(action);
}

TEST(StringGrid, CountsStayAboveTheFixedOnes) {
  TStringGrid grid(nullptr);
  EXPECT_EQ(ErrorOf([&] { grid.SetColCount(1); }), kColumns);
  EXPECT_EQ(ErrorOf([&] { grid.SetRowCount(-3); }), kRows) << "which is 1";
  EXPECT_EQ(ErrorOf([&] { grid.SetFixedCols(5); }), kColumns);
  EXPECT_EQ(ErrorOf([&] { grid.SetFixedRows(INT_MAX); }), kRows);
  EXPECT_EQ(ErrorOf([&] { grid.SetFixedRows(-1); }), kIndex);
  EXPECT_EQ(std::vector({grid.ColCount(), grid.RowCount(), grid.FixedCols(), grid.FixedRows()}),
            std::vector({5, 5, 1, 1}))
      << "as before";
  grid.SetFixedCols(0);
  grid.SetColCount(0);
  EXPECT_EQ(grid.ColCount(), 1);
  EXPECT_EQ(grid.Col(), 0) << "the selected cell stays inside";
  grid.SetFixedRows(4);
  EXPECT_EQ(grid.Row(), 4);
}

TEST(StringGrid, CellsOutliveTheCounts) {
  TStringGrid grid(nullptr);
  TObject object;
  grid.SetCells(4, 4, "kept");
  grid.SetObjects(40, 400, &object);
  grid.SetRowCount(2);
  grid.SetRowCount(9);
  EXPECT_EQ(grid.Cells(4, 4), "kept");
  EXPECT_EQ(grid.Objects(40, 400), &object);
  EXPECT_EQ(grid.Cells(40, 400), "");
  EXPECT_EQ(grid.Objects(0, 0), nullptr);
  EXPECT_EQ(ErrorOf([&] { grid.SetCells(-1, 0, ""); }), kIndex);
  EXPECT_EQ(ErrorOf([&] { grid.Objects(0, -1); }), kIndex);
  grid.Clear();
  EXPECT_EQ(grid.Cells(4, 4), "");
  EXPECT_EQ(grid.Objects(40, 400), nullptr);
}

TEST(StringGrid, SizesFollowTheDefault) {
  TStringGrid grid(nullptr);
  grid.SetRowHeights(1, 7);
  grid.SetDefaultRowHeight(20);
  grid.SetColWidths(1, 7);
  grid.SetRowCount(7);
  EXPECT_EQ(grid.RowHeights(1), 20) << "of all rows";
  EXPECT_EQ(grid.RowHeights(6), 20) << "a new one too";
  EXPECT_EQ(grid.ColWidths(1) + grid.ColWidths(4), 7 + 64);
  EXPECT_EQ(ErrorOf([&] { grid.ColWidths(5); }), kIndex);
  EXPECT_EQ(ErrorOf([&] { grid.SetRowHeights(-1, 3); }), kIndex);
  grid.SetWidth(504);
  grid.SetFrame({20, 4});
  EXPECT_EQ(grid.ClientWidth(), 484) << "a scroll bar takes from the inside";
}

TEST(StringGrid, TheUserIsAskedForEachMoveAndEditsWhereHeMay) {
  TStringGrid grid(nullptr);
  std::vector<std::string> events;
  const auto Note = [&events](const std::string& what, int col, int row) {
    events.push_back(what + " " + std::to_string(col) + "," + std::to_string(row));
  };
  grid.OnSelectCell = [&](int col, int row, bool& can) {
    Note("from " + std::to_string(grid.Col()) + " to", col, row);
    can = row != 3;
    grid.Options.goEditing = col == 2;
    if (row == 4) grid.SetRowCount(4);
  };
  grid.OnSetEditText = [&](int col, int row, const std::string& text) {
    EXPECT_EQ(grid.Cells(col, row), text) << "the cell first";
    grid.Clear();
    Note(text, col, row);
  };
  struct Case {
    int col, row;
    bool moves, types;
    const char* why;
  };
  constexpr Case kCases[] = {
      {1, 1, true, false, "the cell where it is"},
      {2, 1, true, true, "the editable column"},
      {1, 3, false, false, "refused; what the handler says of editing holds"},
      {2, 3, false, true, "refused, and typed into the cell before"},
      {0, 2, false, true, "a fixed column asks nobody"},
      {2, 0, false, true, "a fixed row"},
      {5, 1, false, true, "not there"},
      {2, 4, false, true, "gone while asked"},
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(grid.SelectCell(c.col, c.row), c.moves);
    EXPECT_EQ(grid.TypeText("x"), c.types);
  }
  EXPECT_THAT(events, testing::ElementsAre("from 1 to 1,1", "from 1 to 2,1", "x 2,1",
                                           "from 2 to 1,3", "from 2 to 2,3", "x 2,1", "x 2,1",
                                           "x 2,1", "x 2,1", "from 2 to 2,4", "x 2,1"));
  grid.SetEnabled(false);
  EXPECT_FALSE(grid.SelectCell(1, 1) || grid.TypeText("y"));
  EXPECT_EQ(grid.Cells(2, 1), "");
}

}  // namespace
}  // namespace kvshare
