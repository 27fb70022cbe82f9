#include "apps/receipts/dayreader.h"

#include <algorithm>
#include <utility>

#include "apps/receipts/csvhead.h"
#include "apps/receipts/party.h"
#include "apps/receipts/usertexts.h"
#include "apps/receipts/yearwarnings.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::receipts {

namespace {

bool IsBlank(std::span<const std::string> cells) {
  return std::ranges::all_of(cells, [](const std::string& cell) { return Trim(cell).empty(); });
}

// The words with which spreadsheets end a table, in UTF-8.
constexpr std::string_view kTotals[] = {
    "รวม",   "รวมเงิน", "รวมทั้งสิ้น",  "รวมทั้งหมด", "ยอดรวม",      "ยอดรวมทั้งสิ้น",
    "total", "totals", "subtotal", "sum",      "grand total",
};

bool IsTotalsWord(std::string_view cell) {
  std::string_view text = Trim(cell);
  if (text.ends_with(':')) text = Trim(text.substr(0, text.size() - 1));
  return std::ranges::any_of(kTotals, [text](auto word) { return SameText(text, word); });
}

// A rate of 7 per cent is a 7 in the file, also where a spreadsheet shows 0.07 as 7%.
std::string VatRateWarning(Currency rate) {
  if (rate <= 0_baht || rate >= 1_baht) return {};
  return SayUtf8("a VAT rate below one per cent: 7 per cent is written 7");
}

// Line breaks of any kind as LF.
std::string WithLineFeeds(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\r' && text.substr(i + 1).starts_with('\n')) continue;
    out.push_back(text[i] == '\r' ? '\n' : text[i]);
  }
  return out;
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

DayReader::DayReader(std::function<void(const Problem&)> report, const DayFormat& format,
                     TDateTime today)
    : report_(std::move(report)),
      format_(format),
      today_(today),
      decoder_(format.encoding),
      rows_([this](std::uint64_t line, Cells cells) { TakeRow(line, cells); }) {}

bool DayReader::Feed(std::string_view bytes) {
  if (stopped_) return false;
  const bool whole = decoder_.Feed(bytes, text_);
  FeedText(false);
  if (!whole && !stopped_) Stop(decoder_.Line(), decoder_.Trouble());
  return !stopped_;
}

bool DayReader::FindSeparator(bool final) {
  const auto head = ReadCsvHead(text_, final);
  if (!head) return false;
  separatorKnown_ = true;
  separatorLine_ = head->named;
  if (format_.separator == '\0' && !head->trouble.empty()) Stop(1, head->trouble);
  rows_.SetSeparator(format_.separator != '\0' ? format_.separator : head->separator);
  return true;
}

void DayReader::FeedText(bool final) {
  if (!separatorKnown_ && !FindSeparator(final)) return;
  if (!stopped_) {
    if (const auto wrong = rows_.Feed(text_)) Stop(rows_.Line(), SayUtf8(*wrong));
  }
  text_.clear();
}

std::vector<Document> DayReader::Finish() {
  if (!stopped_) {
    const bool whole = decoder_.Finish(text_);
    FeedText(true);
    if (!whole && !stopped_) Stop(decoder_.Line(), decoder_.Trouble());
  }
  if (!stopped_) {
    if (const auto wrong = rows_.Finish()) Stop(rows_.Line(), SayUtf8(*wrong));
  }
  if (!stopped_ && columns_ == 0) Report(1, SayUtf8("the header line is missing"));
  if (!stopped_ && columns_ != 0 && empty_) {
    Report(0, SayUtf8("no documents: no row follows the header"));
  }
  for (const Document& document : documents_) {
    if (document.complete) continue;
    Report(document.row,
           SayUtf8("document %s is not printed: a row of it, or beside it, is in error",
                   {document.number}));
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
  if (stopped_ || IsBlank(cells) || std::exchange(separatorLine_, false)) return;
  if (columns_ == 0) {
    TakeHeader(line, cells);
    return;
  }
  empty_ = false;
  if (IsTotals(cells)) {
    report_({line, 0, "", SayUtf8("the row of totals is left out"), true});
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

// A row whose first text is such a word. One that names a document, or has quantity and price, is a
// line whatever its item is called: left out, its receipt would be a false one.
bool DayReader::IsTotals(Cells cells) const {
  const auto first =
      std::ranges::find_if(cells, [](const std::string& cell) { return !Trim(cell).empty(); });
  if (first == cells.end() || !IsTotalsWord(*first)) return false;
  const auto text = [&](Column column) {
    const auto place = static_cast<std::size_t>(positions_[static_cast<std::size_t>(column)]) - 1;
    return place < cells.size() ? Trim(cells[place]) : std::string_view();
  };
  const std::string_view number = text(Column::Document);
  const bool line = !text(Column::Quantity).empty() && !text(Column::Price).empty();
  return !line && (number.empty() || IsTotalsWord(number));
}

void DayReader::TakeHeader(std::uint64_t line, Cells cells) {
  columns_ = cells.size();
  for (std::size_t i = 0; i < cells.size(); ++i) {
    TakeHeaderCell(line, static_cast<int>(i) + 1, cells[i]);
  }
  for (std::size_t i = 0; i < kNeededColumns; ++i) {
    if (positions_[i] == 0) {
      Report(line, SayUtf8("column %s is missing", {kColumnNames[i]}));
      stopped_ = true;
    }
  }
}

void DayReader::TakeHeaderCell(std::uint64_t line, int position, const std::string& cell) {
  const std::string name = Beginning(cell);
  const auto column = FindColumn(cell);
  if (!column) {
    report_({line, position, name, SayUtf8("the column is unknown and ignored"), true});
    return;
  }
  int& known = positions_[static_cast<std::size_t>(*column)];
  if (known != 0) {
    report_({line, position, name, SayUtf8("the column stands twice"), false});
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
    Report(line,
           SayUtf8("the row has %d cells, the header has %d",
                   {static_cast<std::int64_t>(cells.size()), static_cast<std::int64_t>(columns_)}));
    if (position != 1) return false;
  }
  return Read(Column::Document, line, cells, [&number](std::string_view cell) {
    if (cell.empty()) throw EConvertError(Say("the document has no number"));
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
                      SayUtf8("document %s comes back: its rows of line %d do not stand beside "
                              "this one",
                              {number, static_cast<std::int64_t>(first.row)})));
  }
  documents_.push_back({number, {}, "", {}, line, fresh && !spoiled});
  return documents_.back();
}

void DayReader::TakeHead(std::uint64_t line, Cells cells, Document& document, bool opened) {
  const bool date = Read(Column::Date, line, cells, [&](std::string_view cell) {
    if (!opened && cell.empty()) return;
    const TypedDate typed = ParseDate(cell, format_.era);
    if (opened) {
      document.date = typed.date;
      Warn(Column::Date, line,
           Cp874ToUtf8Lossy(DocumentDateWarning(typed.date, typed.offset, today_)));
    }
    if (typed.date != document.date)
      throw EConvertError(Say("the date differs from the document's first"));
  });
  const bool customer = Read(Column::Customer, line, cells, [&](std::string_view cell) {
    if (opened) document.customer = cell;
    if (!cell.empty() && cell != document.customer) {
      throw EConvertError(Say("the customer differs from the document's first"));
    }
  });
  const bool particulars = TakeParticulars(line, cells, document, opened);
  document.complete = document.complete && date && customer && particulars;
}

bool DayReader::TakeParticulars(std::uint64_t line, Cells cells, Document& document, bool opened) {
  Particulars found;
  bool sound = true;
  bool any = false;
  const auto take = [&](Column column, const std::function<void(std::string_view)>& read) {
    if (!Has(column)) return;
    sound = Read(column, line, cells,
                 [&](std::string_view cell) {
                   if (cell.empty()) return;
                   any = true;
                   read(cell);
                 }) &&
            sound;
  };
  const auto same = [&](auto Particulars::*member) {
    const Particulars* first = document.particulars.get();
    if (!opened && (first == nullptr || first->*member != found.*member)) {
      throw EConvertError(Say("it differs from the document's first"));
    }
  };
  const auto text = [&](std::string Particulars::*member, std::string value) {
    found.*member = std::move(value);
    same(member);
  };
  take(Column::Address, [&](auto cell) { text(&Particulars::address, WithLineFeeds(cell)); });
  take(Column::TaxId, [&](auto cell) { text(&Particulars::taxId, ParseTaxId(cell)); });
  take(Column::Branch, [&](auto cell) { text(&Particulars::branch, ParseBranch(cell)); });
  take(Column::Reference, [&](auto cell) { text(&Particulars::reference, std::string(cell)); });
  take(Column::ReferenceDate, [&](auto cell) {
    found.referenceDate = ParseDate(cell, format_.era).date;
    same(&Particulars::referenceDate);
  });
  take(Column::Reason, [&](auto cell) { text(&Particulars::reason, std::string(cell)); });
  if (opened && any) document.particulars = std::make_shared<const Particulars>(std::move(found));
  return sound;
}

void DayReader::Warn(Column column, std::uint64_t line, std::string text) {
  if (text.empty()) return;
  Problem problem = ProblemIn(column, line, std::move(text));
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
    if (cell.empty()) throw EConvertError(Say("the item has no name"));
    out.item = cell;
  });
  const DecimalMark mark = format_.decimalMark;
  read(Column::Quantity, [&](std::string_view cell) { out.quantity = ParseNumber(cell, mark); });
  read(Column::Price, [&](std::string_view cell) { out.price = ParsePrice(cell, mark); });
  read(Column::Discount,
       [&](std::string_view cell) { out.discount = ParseDiscount(cell, out.quantity, mark); });
  read(Column::Vat, [&](std::string_view cell) {
    out.vatRate = ParseVatRate(cell, mark);
    Warn(Column::Vat, line, VatRateWarning(out.vatRate));
  });
  if (document.complete) document.lines.push_back(std::move(out));
}

bool DayReader::Read(Column column, std::uint64_t line, Cells cells,
                     const std::function<void(std::string_view)>& read) {
  const auto position = static_cast<std::size_t>(positions_[static_cast<std::size_t>(column)]);
  const std::string& cell = cells[position - 1];
  if (cell.size() > kMaxText) {
    report_(ProblemIn(
        column, line,
        SayUtf8("the cell has %d bytes, at most %d are read",
                {static_cast<std::int64_t>(cell.size()), static_cast<std::int64_t>(kMaxText)})));
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
