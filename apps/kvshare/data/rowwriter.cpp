#include "apps/kvshare/data/rowwriter.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "apps/kvshare/data/printedvalue.h"
#include "apps/kvshare/terminal/legible.h"
#include "apps/kvshare/terminal/outputrow.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare::app {

namespace {

// One way to print rows. What is printed is appended as UTF-8.
class RowPrinter {
 public:
  explicit RowPrinter(const TDataSet& set) {
    for (int i = 0; i < set.FieldCount(); ++i) fields_.push_back(&set.Fields(i));
  }
  virtual ~RowPrinter() = default;
  RowPrinter(const RowPrinter&) = delete;
  RowPrinter& operator=(const RowPrinter&) = delete;

  virtual void Begin(std::string& /*out*/) {}
  virtual void Print(std::string& out) = 0;  // the current row
  virtual void End(std::string& /*out*/) {}

 protected:
  const std::vector<const TField*>& Fields() const { return fields_; }

  // In code page 874, valid until the next call.
  const std::string& Value(const TField& field) {
    value_.clear();
    AppendField(value_, field);
    return value_;
  }

 private:
  std::vector<const TField*> fields_;
  std::string value_;
};

class TablePrinter : public RowPrinter {
 public:
  explicit TablePrinter(const TDataSet& set) : RowPrinter(set) {
    Cells names;
    for (const TField* field : Fields()) {
      names.push_back(Legible(field->FieldName(), ' '));
      widths_.push_back(DisplayWidth(names.back()));
    }
    first_.push_back(std::move(names));
  }

  void Print(std::string& out) override {
    Cells cells;
    for (const TField* field : Fields()) cells.push_back(Legible(Value(*field), ' '));
    if (!measuring_) return PrintCells(out, cells);
    for (std::size_t i = 0; i < cells.size(); ++i) {
      widths_[i] = std::max(widths_[i], DisplayWidth(cells[i]));
    }
    first_.push_back(std::move(cells));
    if (first_.size() > kMeasured) PrintFirst(out);
  }

  void End(std::string& out) override {
    if (measuring_) PrintFirst(out);
  }

 private:
  using Cells = std::vector<std::string>;
  static constexpr std::size_t kMeasured = 500;

  // The names, a line, and the rows that were measured.
  void PrintFirst(std::string& out) {
    measuring_ = false;
    PrintCells(out, first_.front());
    for (std::size_t i = 0; i < widths_.size(); ++i) {
      out.append(i == 0 ? "" : "  ").append(widths_[i], '-');
    }
    out += '\n';
    for (std::size_t i = 1; i < first_.size(); ++i) PrintCells(out, first_[i]);
    first_.clear();
  }

  void PrintCells(std::string& out, const Cells& cells) const {
    for (std::size_t i = 0; i < cells.size(); ++i) {
      const std::size_t blanks = widths_[i] - std::min(DisplayWidth(cells[i]), widths_[i]);
      const bool toTheRight = IsNumeric(Fields()[i]->DataType());
      const bool last = i + 1 == cells.size();
      if (i != 0) out += "  ";
      if (toTheRight) out.append(blanks, ' ');
      AppendUtf8(out, cells[i]);
      if (!toTheRight && !last) out.append(blanks, ' ');
    }
    out += '\n';
  }

  bool measuring_ = true;
  std::vector<Cells> first_;
  std::vector<std::size_t> widths_;
};

class CsvPrinter : public RowPrinter {
 public:
  using RowPrinter::RowPrinter;

  void Begin(std::string& out) override {
    PrintLine(out, [this](std::string& line, const TField& field) {
      AppendText(line, field.FieldName());
    });
  }

  void Print(std::string& out) override {
    PrintLine(out, [this](std::string& line, const TField& field) {
      // A line of nothing would be no row to a reader.
      if (!field.IsNull() || Fields().size() == 1) AppendText(line, Value(field));
    });
  }

 private:
  template <typename AppendCell>
  void PrintLine(std::string& out, AppendCell append) {
    bool first = true;
    for (const TField* field : Fields()) {
      if (!first) out += ',';
      first = false;
      append(out, *field);
    }
    out += "\r\n";
  }

  void AppendText(std::string& out, std::string_view text) {
    if (IsBare(text)) {
      AppendUtf8(out, text);
      return;
    }
    quoted_ = '"';
    for (const char c : text) quoted_.append(c == '"' ? 2 : 1, c);
    quoted_ += '"';
    AppendUtf8(out, quoted_);
  }

  // Readers take blanks off the ends of a cell without quotes.
  static bool IsBare(std::string_view text) {
    const auto blank = [](char c) { return c == ' ' || c == '\t'; };
    return !text.empty() && text.find_first_of(",\"\r\n") == std::string_view::npos &&
           !blank(text.front()) && !blank(text.back());
  }

  std::string quoted_;
};

class JsonPrinter : public RowPrinter {
 public:
  explicit JsonPrinter(const TDataSet& set) : RowPrinter(set) {
    for (const TField* field : Fields()) {
      names_.emplace_back(names_.empty() ? "{" : ",");
      AppendJsonString(names_.back(), Cp874ToUtf8(field->FieldName()));
      names_.back() += ':';
    }
  }

  void Print(std::string& out) override {
    for (std::size_t i = 0; i < names_.size(); ++i) {
      out += names_[i];
      AppendValue(out, *Fields()[i]);
    }
    out += "}\n";
  }

 private:
  static bool IsBare(const TField& field) {
    switch (FormOf(field.DataType())) {
      case TFieldForm::Integer:
      case TFieldForm::Boolean:
        return true;
      case TFieldForm::Real:
        return std::isfinite(field.AsFloat());
      case TFieldForm::None:
      case TFieldForm::Text:
      case TFieldForm::Decimal:
      case TFieldForm::Date:
      case TFieldForm::Time:
      case TFieldForm::Moment:
      case TFieldForm::Bytes:
        break;
    }
    return false;
  }

  void AppendValue(std::string& out, const TField& field) {
    if (field.IsNull()) {
      out += "null";
    } else if (IsBare(field)) {
      out += Value(field);
    } else {
      AppendJsonString(out, Cp874ToUtf8(Value(field)));
    }
  }

  std::vector<std::string> names_;  // with what stands around them
};

std::unique_ptr<RowPrinter> PrinterOf(RowForm form, const TDataSet& set) {
  switch (form) {
    case RowForm::Csv:
      return std::make_unique<CsvPrinter>(set);
    case RowForm::Json:
      return std::make_unique<JsonPrinter>(set);
    case RowForm::Table:
      break;
  }
  return std::make_unique<TablePrinter>(set);
}

}  // namespace

void WriteRows(TDataSet& set, RowForm form, BlockWriter& out) {
  const std::unique_ptr<RowPrinter> printer = PrinterOf(form, set);
  std::uint64_t row = 1;
  std::size_t whole = 0;  // how much of the buffer is complete lines
  const auto keep = [&] {
    out.EndBlock();
    whole = out.Buffer().size();
  };
  try {
    printer->Begin(out.Buffer());
    for (keep(); !set.Eof(); ++row, set.Next()) {
      printer->Print(out.Buffer());
      keep();
    }
    printer->End(out.Buffer());
    out.Flush();
  } catch (const Exception& e) {
    out.Buffer().resize(whole);
    printer->End(out.Buffer());
    out.Flush();
    throw Exception("row " + std::to_string(row) + ": " + e.Message());
  }
}

std::string TextOfRows(TDataSet& set, RowForm form) {
  std::string text;
  const std::unique_ptr<RowPrinter> printer = PrinterOf(form, set);
  std::uint64_t row = 1;
  try {
    printer->Begin(text);
    for (; !set.Eof(); ++row, set.Next()) printer->Print(text);
    printer->End(text);
  } catch (const Exception& e) {
    throw Exception("row " + std::to_string(row) + ": " + e.Message());
  }
  return text;
}

}  // namespace kvshare::app
