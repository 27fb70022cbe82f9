#include "apps/receipts/dayreader.h"

#include <algorithm>
#include <utility>

#include "apps/receipts/amounts.h"
#include "apps/receipts/yearwarnings.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/strutils.h"
#include "kvshare/rtl/utf8mark.h"

namespace kvshare::receipts {

namespace {

bool IsBlank(std::span<const std::string> cells) {
  return std::ranges::all_of(cells, [](const std::string& cell) { return Trim(cell).empty(); });
}

// At most 80 bytes of UTF-8, not cut inside a letter.
std::string Beginning(std::string_view utf8) {
  std::size_t end = std::min<std::size_t>(utf8.size(), 80);
  while (end > 0 && end < utf8.size() && (static_cast<unsigned char>(utf8[end]) & 0xC0) == 0x80) {
    --end;
  }
  return std::string(utf8.substr(0, end));
}

}  // namespace

DayReader::DayReader(std::function<void(const Problem&)> report, TDateTime today)
    : report_(std::move(report)),
      today_(today),
      rows_([this](std::uint64_t line, Cells cells) { TakeRow(line, cells); }) {}

bool DayReader::Feed(std::string_view bytes) {
  if (stopped_) return false;
  std::string joined;
  if (!started_) {
    start_ += bytes;
    if (start_.size() < kUtf8Mark.size() && kUtf8Mark.starts_with(start_)) return true;
    started_ = true;
    joined = std::move(start_);
    bytes = joined;
    bytes = WithoutUtf8Mark(bytes);
  }
  if (const std::string_view wrong = rows_.Feed(bytes); !wrong.empty()) Stop(rows_.Line(), wrong);
  return !stopped_;
}

std::vector<Document> DayReader::Finish() {
  if (!stopped_) {
    if (!started_) rows_.Feed(start_);
    if (const auto wrong = rows_.Finish(); !wrong.empty()) Stop(rows_.Line(), wrong);
  }
  if (columns_ == 0 && !stopped_) Report(1, "the header line is missing");
  for (const Document& document : documents_) {
    if (document.complete) continue;
    Report(document.row, "document " + Cp874ToUtf8Lossy(document.number) +
                             " is not printed: a row of it, or beside it, is in error");
  }
  return std::move(documents_);
}

Problem DayReader::ProblemIn(Column column, std::uint64_t line, std::string text) const {
  const auto index = static_cast<std::size_t>(column);
  return {line, positions_[index], std::string(kColumnNames[index]), std::move(text), false};
}

void DayReader::Report(std::uint64_t line, std::string text) {
  report_({line, 0, "", std::move(text), false});
}

void DayReader::Stop(std::uint64_t line, std::string_view reason) {
  Report(line, std::string(reason));
  stopped_ = true;
  SpoilNeighbours();
}

void DayReader::SpoilNeighbours() {
  if (!documents_.empty()) documents_.back().complete = false;
  spoilNext_ = true;
}

void DayReader::TakeRow(std::uint64_t line, Cells cells) {
  if (stopped_ || IsBlank(cells)) return;
  if (columns_ == 0) {
    TakeHeader(line, cells);
    return;
  }
  std::string number;
  if (!TakeNumber(line, cells, number)) {
    SpoilNeighbours();
    return;
  }
  const std::size_t before = documents_.size();
  Document& document = Open(line, number);
  if (cells.size() != columns_) {
    document.complete = false;  // TakeNumber has said so
    return;
  }
  TakeHead(line, cells, document, documents_.size() > before);
  TakeLine(line, cells, document);
}

void DayReader::TakeHeader(std::uint64_t line, Cells cells) {
  columns_ = cells.size();
  for (std::size_t i = 0; i < cells.size(); ++i) {
    TakeHeaderCell(line, static_cast<int>(i) + 1, cells[i]);
  }
  for (std::size_t i = 0; i < kColumnNames.size(); ++i) {
    if (positions_[i] == 0) {
      Report(line, "column " + std::string(kColumnNames[i]) + " is missing");
      stopped_ = true;
    }
  }
}

void DayReader::TakeHeaderCell(std::uint64_t line, int position, const std::string& cell) {
  const std::string name = Beginning(cell);
  const auto column = FindColumn(cell);
  if (!column) {
    report_({line, position, name, "the column is unknown and ignored", true});
    return;
  }
  int& known = positions_[static_cast<std::size_t>(*column)];
  if (known != 0) {
    report_({line, position, name, "the column stands twice", false});
    stopped_ = true;
  }
  known = position;
}

// A row of another length may have lost or gained a comma anywhere: its number counts only when it
// stands before every place where the comma could be missing from or too many.
bool DayReader::TakeNumber(std::uint64_t line, Cells cells, std::string& number) {
  const auto position =
      static_cast<std::size_t>(positions_[static_cast<std::size_t>(Column::Document)]);
  const bool whole = cells.size() == columns_;
  if (!whole) {
    Report(line, "the row has " + std::to_string(cells.size()) + " cells, the header has " +
                     std::to_string(columns_));
    if (position != 1) return false;
  }
  return Read(Column::Document, line, cells, [&number](std::string_view cell) {
    if (cell.empty()) throw EConvertError("the document has no number");
    number = cell;
  });
}

Document& DayReader::Open(std::uint64_t line, const std::string& number) {
  const bool spoiled = std::exchange(spoilNext_, false);
  if (!documents_.empty() && documents_.back().number == number) return documents_.back();
  const auto [earlier, fresh] = byNumber_.try_emplace(number, documents_.size());
  if (!fresh) {
    Document& first = documents_[earlier->second];
    first.complete = false;
    report_(ProblemIn(Column::Document, line,
                      "document " + Cp874ToUtf8Lossy(number) + " comes back: its rows of line " +
                          std::to_string(first.row) + " do not stand beside this one"));
  }
  documents_.push_back({number, {}, "", {}, line, fresh && !spoiled});
  return documents_.back();
}

void DayReader::TakeHead(std::uint64_t line, Cells cells, Document& document, bool opened) {
  const bool date = Read(Column::Date, line, cells, [&](std::string_view cell) {
    if (!opened && cell.empty()) return;
    const TypedDate typed = ParseDate(cell);
    if (opened) {
      document.date = typed.date;
      WarnOfDate(line, typed);
    }
    if (typed.date != document.date)
      throw EConvertError("the date differs from the document's first");
  });
  const bool customer = Read(Column::Customer, line, cells, [&](std::string_view cell) {
    if (opened) document.customer = cell;
    if (!cell.empty() && cell != document.customer) {
      throw EConvertError("the customer differs from the document's first");
    }
  });
  document.complete = document.complete && date && customer;
}

void DayReader::WarnOfDate(std::uint64_t line, const TypedDate& typed) {
  std::string warning = DocumentDateWarning(typed.date, typed.offset, today_);
  if (warning.empty()) return;
  Problem problem = ProblemIn(Column::Date, line, std::move(warning));
  problem.warning = true;
  report_(problem);
}

void DayReader::TakeLine(std::uint64_t line, Cells cells, Document& document) {
  Line out;
  out.row = line;
  const auto read = [&](Column column, const std::function<void(std::string_view)>& reader) {
    if (!Read(column, line, cells, reader)) document.complete = false;
  };
  read(Column::Item, [&](std::string_view cell) {
    if (cell.empty()) throw EConvertError("the item has no name");
    out.item = cell;
  });
  read(Column::Quantity, [&](std::string_view cell) { out.quantity = ParseAmount(cell); });
  read(Column::Price, [&](std::string_view cell) { out.price = ParsePrice(cell); });
  read(Column::Discount,
       [&](std::string_view cell) { out.discount = ParseDiscount(cell, out.quantity); });
  read(Column::Vat, [&](std::string_view cell) { out.vatRate = ParseVatRate(cell); });
  if (document.complete) document.lines.push_back(std::move(out));
}

bool DayReader::Read(Column column, std::uint64_t line, Cells cells,
                     const std::function<void(std::string_view)>& read) {
  const auto position = static_cast<std::size_t>(positions_[static_cast<std::size_t>(column)]);
  const std::string& cell = cells[position - 1];
  if (cell.size() > kMaxText) {
    report_(ProblemIn(column, line,
                      "the cell has " + std::to_string(cell.size()) + " bytes, at most " +
                          std::to_string(kMaxText) + " are read"));
    return false;
  }
  try {
    const std::string text = Utf8ToCp874(cell);
    read(Trim(text));
    return true;
  } catch (const Exception& e) {
    report_(ProblemIn(column, line, Cp874ToUtf8Lossy(e.Message())));
    return false;
  }
}

}  // namespace kvshare::receipts
