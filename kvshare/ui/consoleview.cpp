// A form as lines of text.
#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/lines.h"
#include "kvshare/rtl/strutils.h"
#include "kvshare/ui/consoleform.h"
#include "kvshare/ui/consoleparts.h"
#include "kvshare/ui/consoletext.h"

namespace kvshare {

namespace {

void AppendPadded(std::string& out, std::string_view text, std::size_t width) {
  out += text;
  out.append(width - std::min(width, DisplayWidth(text)), ' ');
}

std::string ShownCaption(const TControl& control) {
  return std::string(Trim(OneLine(control.Caption())));
}

// What a user types to reach a control.
std::string KeyOf(const TWinControl& control, std::string_view prefix, std::size_t number) {
  return control.CanFocus() ? std::string(prefix) + std::to_string(number) : "-";
}

// Labels side by side share a line.
void AppendLabels(std::string& out, const TForm& form) {
  const TLabel* before = nullptr;
  for (const TLabel* label : ShownOfKind<TLabel>(form)) {
    if (label->Caption().empty()) continue;
    if (before != nullptr) out += label->Top() == before->Top() ? ' ' : '\n';
    out += OneLine(label->Caption());
    before = label;
  }
  if (before != nullptr) out += '\n';
}

void AppendMemos(std::string& out, const TForm& form) {
  std::size_t number = 0;
  for (const TMemo* memo : ShownOfKind<TMemo>(form)) {
    ++number;
    std::string_view rest = memo->Text();
    while (!rest.empty()) {
      const std::string line = OneLine(TakeLine(rest));
      out.append("  ").append(line) += '\n';
    }
    if (!memo->ReadOnly) out += "  (" + KeyOf(*memo, "m", number) + ")\n";
  }
}

// A grid in columns as wide as their cells, and the numbers of the rows before them.
class Table {
 public:
  Table(const TStringGrid& grid, std::size_t firstNumber) : headings_(grid.FixedRows()) {
    for (int row = 0; row < grid.RowCount(); ++row) {
      const int below = row - headings_;
      const std::size_t number = firstNumber + static_cast<std::size_t>(std::max(0, below));
      std::vector<Cell> cells{{below < 0 ? "" : KeyOf(grid, "", number)}};
      for (int col = 0; col < grid.ColCount(); ++col) {
        constexpr std::size_t kWidest = 40;
        cells.push_back(CellLines(grid.Cells(col, row), kWidest));
      }
      Add(std::move(cells));
    }
  }

  void AppendTo(std::string& out) const {
    int at = 0;
    for (const std::vector<Cell>& row : rows_) {
      AppendRow(out, row);
      if (++at == headings_) AppendRule(out);
    }
  }

 private:
  using Cell = std::vector<std::string>;  // its lines

  void Add(std::vector<Cell> cells) {
    widths_.resize(cells.size());
    for (std::size_t i = 0; i < cells.size(); ++i) {
      for (const std::string& line : cells[i]) {
        widths_[i] = std::max(widths_[i], DisplayWidth(line));
      }
    }
    rows_.push_back(std::move(cells));
  }

  void AppendRow(std::string& out, const std::vector<Cell>& cells) const {
    std::size_t lines = 0;
    for (const Cell& cell : cells) lines = std::max(lines, cell.size());
    for (std::size_t line = 0; line < lines; ++line) {
      for (std::size_t i = 0; i < cells.size(); ++i) {
        if (i != 0) out += " | ";
        AppendPadded(out, line < cells[i].size() ? cells[i][line] : std::string(), widths_[i]);
      }
      out.erase(out.find_last_not_of(' ') + 1);
      out += '\n';
    }
  }

  void AppendRule(std::string& out) const {
    for (std::size_t i = 0; i < widths_.size(); ++i) {
      if (i != 0) out += "-+-";
      out.append(widths_[i], '-');
    }
    out += '\n';
  }

  int headings_;
  std::vector<std::size_t> widths_;
  std::vector<std::vector<Cell>> rows_;
};

void AppendGrids(std::string& out, const TForm& form) {
  std::size_t number = 1;
  for (const TStringGrid* grid : ShownOfKind<TStringGrid>(form)) {
    out += '\n';
    Table(*grid, number).AppendTo(out);
    number += static_cast<std::size_t>(grid->RowCount() - grid->FixedRows());
  }
}

void AppendLine(std::string& out, std::string_view key, std::string_view mark,
                std::string_view text) {
  constexpr std::size_t kKeyWidth = 4;
  out.append(kKeyWidth - std::min(kKeyWidth, key.size()), ' ').append(key);
  out.append(" ").append(mark).append(" ").append(text) += '\n';
}

void AppendChoices(std::string& out, const TForm& form) {
  std::size_t number = 0;
  for (const auto& [group, index] : ShownChoices(form)) {
    if (index == 0) out.append("\n").append(ShownCaption(*group)) += '\n';
    AppendLine(out, KeyOf(*group, "", ++number), group->ItemIndex() == index ? "(*)" : "( )",
               OneLine(group->Items()[index]));
  }
}

void AppendChecks(std::string& out, const TForm& form) {
  std::size_t number = 0;
  for (const TCheckBox* box : ShownOfKind<TCheckBox>(form)) {
    if (number == 0) out += '\n';
    AppendLine(out, KeyOf(*box, "c", ++number), box->Checked() ? "[x]" : "[ ]", ShownCaption(*box));
  }
}

std::string KeysOf(const TButton& button, const TForm& form, std::size_t number) {
  const bool enter = &button == form.DefaultButton();
  const bool esc = &button == form.CancelButton();
  if (!button.CanFocus() || (!enter && !esc)) return KeyOf(button, "b", number);
  return std::string(enter ? "Enter" : "") + (enter && esc ? ", " : "") + (esc ? "q" : "");
}

void AppendEdits(std::string& out, const TForm& form) {
  std::size_t number = 0;
  for (const TEdit* edit : ShownOfKind<TEdit>(form)) {
    const std::string key = KeyOf(*edit, "e", ++number);
    AppendLine(out, edit->ReadOnly ? "-" : key, "=", OneLine(edit->Text()));
  }
}

void AppendButtons(std::string& out, const TForm& form) {
  out += '\n';
  std::size_t number = 0;
  for (const TButton* button : ShownOfKind<TButton>(form)) {
    out += KeysOf(*button, form, ++number) + ": " + ShownCaption(*button) + "   ";
  }
  if (form.CancelButton() == nullptr) out += "q: close   ";
  out += "?: help\n";
}

}  // namespace

std::string ShownForm(const TForm& form) {
  std::string out = "\n== " + ShownCaption(form) + " ==\n";
  AppendLabels(out, form);
  AppendMemos(out, form);
  AppendEdits(out, form);
  AppendGrids(out, form);
  AppendChoices(out, form);
  AppendChecks(out, form);
  AppendButtons(out, form);
  return Cp874ToUtf8Lossy(out);
}

}  // namespace kvshare
