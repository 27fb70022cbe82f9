#include "apps/kvshare/rowset.h"
#include "apps/kvshare/legible.h"

#include <algorithm>
#include <string>
#include <vector>

#include "apps/kvshare/moments.h"
#include "apps/kvshare/row.h"
#include "kvshare/rtl/cp874.h"

namespace kvshare::app {

namespace {

void AppendHex(std::string& out, std::string_view bytes) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    out.push_back(kDigits[byte >> 4]);
    out.push_back(kDigits[byte & 15]);
  }
}

// A value in code page 874; "" for Null.
std::string TextOf(const TField& field) {
  std::string text;
  switch (FormOf(field.DataType())) {
    case TFieldForm::Bytes:
      AppendHex(text, field.AsString());
      break;
    case TFieldForm::Date:
    case TFieldForm::Moment:
      if (!field.IsNull()) AppendIso(text, field.AsDateTime());
      break;
    default:
      field.AppendString(text);
  }
  return text;
}

class Table {
 public:
  Table(TSQLQuery& query, BlockWriter& out) : query_(query), out_(out) {}

  void Write() {
    std::vector<std::vector<std::string>> first = TakeFirst();
    WriteHeading();
    for (const auto& cells : first) WriteCells(cells);
    for (; !query_.Eof(); query_.Next()) WriteCells(Cells());
  }

 private:
  static constexpr std::size_t kMeasured = 500;

  std::vector<std::string> Cells() const {
    std::vector<std::string> cells;
    cells.reserve(names_.size());
    for (int i = 0; i < query_.FieldCount(); ++i) {
      cells.push_back(Legible(TextOf(query_.Fields(i)), ' '));
    }
    return cells;
  }

  std::vector<std::vector<std::string>> TakeFirst() {
    for (int i = 0; i < query_.FieldCount(); ++i) {
      names_.push_back(Legible(query_.Fields(i).FieldName(), ' '));
      widths_.push_back(DisplayWidth(names_.back()));
      numeric_.push_back(IsNumeric(query_.Fields(i).DataType()));
    }
    std::vector<std::vector<std::string>> rows;
    for (; !query_.Eof() && rows.size() < kMeasured; query_.Next()) {
      rows.push_back(Cells());
      for (std::size_t i = 0; i < widths_.size(); ++i) {
        widths_[i] = std::max(widths_[i], DisplayWidth(rows.back()[i]));
      }
    }
    return rows;
  }

  void WriteHeading() {
    WriteCells(names_);
    std::string& line = out_.Buffer();
    for (std::size_t i = 0; i < widths_.size(); ++i) {
      line.append(i == 0 ? "" : "  ").append(widths_[i], '-');
    }
    out_.EndLine();
  }

  void WriteCells(const std::vector<std::string>& cells) {
    std::string& line = out_.Buffer();
    for (std::size_t i = 0; i < cells.size(); ++i) {
      const std::size_t width = DisplayWidth(cells[i]);
      const std::size_t blanks = widths_[i] - std::min(width, widths_[i]);
      const bool last = i + 1 == cells.size();
      line.append(i == 0 ? "" : "  ");
      if (numeric_[i]) line.append(blanks, ' ');
      line += Cp874ToUtf8Lossy(cells[i]);
      if (!numeric_[i] && !last) line.append(blanks, ' ');
    }
    out_.EndLine();
  }

  TSQLQuery& query_;
  BlockWriter& out_;
  std::vector<std::string> names_;
  std::vector<std::size_t> widths_;
  std::vector<bool> numeric_;
};

void AppendCsv(std::string& out, std::string_view text, bool quoted) {
  if (!quoted && text.find_first_of(",\"\r\n") == std::string_view::npos) {
    AppendUtf8(out, text);
    return;
  }
  out.push_back('"');
  for (std::size_t from = 0;;) {
    const std::size_t quote = text.find('"', from);
    AppendUtf8(out, text.substr(from, quote - from));
    if (quote == std::string_view::npos) break;
    out.append("\"\"");
    from = quote + 1;
  }
  out.push_back('"');
}

void WriteCsv(TSQLQuery& query, BlockWriter& out) {
  const int count = query.FieldCount();
  std::string& line = out.Buffer();
  for (int i = 0; i < count; ++i) {
    if (i != 0) line.push_back(',');
    AppendCsv(line, query.Fields(i).FieldName(), false);
  }
  line.append("\r\n");
  for (; !query.Eof(); query.Next()) {
    for (int i = 0; i < count; ++i) {
      if (i != 0) line.push_back(',');
      const TField& field = query.Fields(i);
      const std::string text = TextOf(field);
      if (!field.IsNull()) AppendCsv(line, text, text.empty());
    }
    line.append("\r\n");
    out.EndBlock();
  }
  out.EndBlock();
}

void AppendJsonValue(std::string& out, const TField& field) {
  if (field.IsNull()) {
    out += "null";
    return;
  }
  switch (FormOf(field.DataType())) {
    case TFieldForm::Integer:
      field.AppendString(out);
      break;
    case TFieldForm::Boolean:
      out += field.AsBoolean() ? "true" : "false";
      break;
    default:
      AppendJsonString(out, Cp874ToUtf8(TextOf(field)));
  }
}

void WriteJson(TSQLQuery& query, BlockWriter& out) {
  for (; !query.Eof(); query.Next()) {
    std::string& line = out.Buffer();
    line.push_back('{');
    for (int i = 0; i < query.FieldCount(); ++i) {
      if (i != 0) line.push_back(',');
      AppendJsonString(line, Cp874ToUtf8(query.Fields(i).FieldName()));
      line.push_back(':');
      AppendJsonValue(line, query.Fields(i));
    }
    line.push_back('}');
    out.EndLine();
  }
}

}  // namespace

void WriteRows(TSQLQuery& query, RowForm form, BlockWriter& out) {
  switch (form) {
    case RowForm::Table:
      Table(query, out).Write();
      break;
    case RowForm::Csv:
      WriteCsv(query, out);
      break;
    case RowForm::Json:
      WriteJson(query, out);
      break;
  }
}

}  // namespace kvshare::app
