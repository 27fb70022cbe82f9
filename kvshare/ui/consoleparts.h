// What a form shows at a terminal, in the order in which it is shown and numbered.
// Internal header.
#pragma once

#include <algorithm>
#include <vector>

#include "kvshare/ui/controls.h"
#include "kvshare/ui/stdcontrols.h"
#include "kvshare/ui/stringgrid.h"

namespace kvshare {

// The visible controls of one kind, from the top of the form down, then from the left.
template <typename Kind>
std::vector<Kind*> ShownOfKind(const TForm& form) {
  std::vector<Kind*> shown;
  for (TControl* control : form.Controls()) {
    auto* of = dynamic_cast<Kind*>(control);
    if (of != nullptr && of->Visible()) shown.push_back(of);
  }
  std::ranges::stable_sort(shown, [](const Kind* a, const Kind* b) {
    return a->Top() != b->Top() ? a->Top() < b->Top() : a->Left() < b->Left();
  });
  return shown;
}

// A part of a control that has a number of its own: they go on from control to control.
template <typename Kind>
struct NumberedPart {
  Kind* control;
  int index;
};

inline std::vector<NumberedPart<TRadioGroup>> ShownChoices(const TForm& form) {
  std::vector<NumberedPart<TRadioGroup>> choices;
  for (TRadioGroup* group : ShownOfKind<TRadioGroup>(form)) {
    for (int i = 0; i < group->Items().Count(); ++i) choices.push_back({group, i});
  }
  return choices;
}

// Rows that are not headings.
inline std::vector<NumberedPart<TStringGrid>> ShownRows(const TForm& form) {
  std::vector<NumberedPart<TStringGrid>> rows;
  for (TStringGrid* grid : ShownOfKind<TStringGrid>(form)) {
    for (int row = grid->FixedRows(); row < grid->RowCount(); ++row) rows.push_back({grid, row});
  }
  return rows;
}

}  // namespace kvshare
