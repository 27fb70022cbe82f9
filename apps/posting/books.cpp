#include "apps/posting/books.h"

#include <memory>
#include <string>
#include <vector>

#include "apps/posting/eposting.h"
#include "apps/posting/paperrules.h"
#include "apps/receipts/amounts.h"
#include "apps/receipts/usertexts.h"
#include "kvshare/data/sql/sqlquery.h"
#include "kvshare/database/sqldialect.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/formatdatetime.h"

namespace kvshare::posting {

namespace {

using receipts::Document;
using receipts::Line;
using receipts::LineAmounts;
using receipts::Receipt;

// By the plain column the server finds its index, by the dialect's it respects letter case. The
// number is a parameter: how a literal spells a quote or a backslash is each server's own.
std::string IsNumber(std::string_view column) {
  return Format("%s = :NO AND %s = :NO", {column, SQLFieldFormat(column, true)});
}

// With a point, whatever separator the user's locale has.
std::string Literal(Currency amount) {
  std::string text;
  receipts::AppendFourDecimals(text, amount);
  return text;
}

std::string HasHead(const Document& document, const Receipt& receipt) {
  return Format(
      "DOC_DATE = %s AND DOC_LINES = %d AND %s AND %s AND %s",
      {DateTimeToSQLDate(document.date), static_cast<int>(document.lines.size()),
       SQLNumEqual("DOC_NET", Literal(receipt.net)), SQLNumEqual("DOC_VAT", Literal(receipt.vat)),
       SQLNumEqual("DOC_ROUNDING", Literal(receipt.rounding))});
}

void OpenFor(TSQLQuery& query, TSQLConnection& connection, std::string_view number,
             std::string_view sql) {
  query.SetSQLConnection(&connection);
  query.SQL().Add(sql);
  query.ParamByName("NO").SetAsString(number);
  query.Open();
}

// Long texts are compared here: few servers have conditions on them.
bool SameHead(TSQLConnection& connection, const Document& document, const Receipt& receipt) {
  TSQLQuery query;
  OpenFor(query, connection, document.number,
          Format("SELECT DOC_CUSTOMER FROM DOCUMENT WHERE %s AND %s",
                 {IsNumber("DOC_NO"), HasHead(document, receipt)}));
  return !query.Eof() && query.Fields(0).AsString() == document.customer;
}

bool SameLine(const TSQLQuery& row, const Line& line, const LineAmounts& amounts) {
  const Currency numbers[] = {line.quantity, line.price,  line.discount,
                              line.vatRate,  amounts.net, amounts.vat};
  if (row.Fields(0).AsString() != line.item) return false;
  for (int i = 0; i < static_cast<int>(std::size(numbers)); ++i) {
    if (row.Fields(i + 1).AsCurrency() != numbers[i]) return false;
  }
  return true;
}

std::string LinesOfDocument() {
  return Format(
      "SELECT LIN_ITEM, LIN_QTY, LIN_PRICE, LIN_DISCOUNT, LIN_VATRATE, LIN_NET, LIN_VAT"
      " FROM DOCLINE WHERE %s ORDER BY LIN_NO",
      {IsNumber("LIN_DOC")});
}

bool SameLines(TSQLConnection& connection, const Document& document, const Receipt& receipt) {
  TSQLQuery query;
  OpenFor(query, connection, document.number, LinesOfDocument());
  for (std::size_t i = 0; i < document.lines.size(); ++i, query.Next()) {
    if (query.Eof() || !SameLine(query, document.lines[i], receipt.lines[i])) return false;
  }
  return query.Eof();
}

constexpr std::string_view kPaper =
    "SELECT PAP_RULES, PAP_ADDRESS, PAP_TAXID, PAP_BRANCH, PAP_REFERENCE, PAP_REFDATE, PAP_REASON"
    " FROM DOCPAPER WHERE %s";

receipts::Particulars ParticularsIn(const TSQLQuery& row) {
  receipts::Particulars found;
  found.address = row.Fields(1).AsString();
  found.taxId = row.Fields(2).AsString();
  found.branch = row.Fields(3).AsString();
  found.reference = row.Fields(4).AsString();
  if (!row.Fields(5).IsNull()) found.referenceDate = row.Fields(5).AsDateTime();
  found.reason = row.Fields(6).AsString();
  return found;
}

receipts::Particulars ParticularsOf(const Document& document) {
  return document.particulars ? *document.particulars : receipts::Particulars();
}

// True as well where another program has written the document without a paper.
bool SameParticulars(TSQLConnection& connection, const Document& document) {
  TSQLQuery row;
  OpenFor(row, connection, document.number, Format(kPaper, {IsNumber("PAP_DOC")}));
  return row.Eof() || ParticularsIn(row) == ParticularsOf(document);
}

// Two values of one kind, as a person reads them.
class Differences {
 public:
  void Compare(std::string_view what, std::string_view there, std::string_view here) {
    if (there == here) return;
    text_.append(text_.empty() ? "" : "; ");
    text_.append(receipts::Say("%s%s: %s there, %s here", {place_, what, there, here}));
  }
  void Compare(std::string_view what, Currency there, Currency here) {
    Compare(what, Shown(there), Shown(here));
  }
  void CompareText(std::string_view what, const std::string& there, const std::string& here) {
    Compare(what, "'" + there + "'", "'" + here + "'");
  }
  void Compare(std::string_view what, TDateTime there, TDateTime here) {
    Compare(what, FormatDateTime("yyyy-mm-dd", there), FormatDateTime("yyyy-mm-dd", here));
  }
  void EnterLine(std::size_t index) {
    place_ = receipts::Say("line %d, ", {static_cast<std::int64_t>(index) + 1});
  }
  const std::string& Text() const { return text_; }

 private:
  static std::string Shown(Currency amount) {
    std::string text;
    receipts::AppendDecimals(text, amount);
    return text;
  }

  std::string text_;
  std::string place_;
};

void CompareHead(Differences& found, TSQLConnection& connection, const Document& document,
                 const Receipt& receipt) {
  TSQLQuery row;
  OpenFor(row, connection, document.number,
          Format("SELECT DOC_DATE, DOC_CUSTOMER, DOC_LINES, DOC_NET, DOC_VAT, DOC_ROUNDING"
                 " FROM DOCUMENT WHERE %s",
                 {IsNumber("DOC_NO")}));
  if (row.Eof()) return;
  found.Compare("date", row.Fields(0).AsDateTime(), document.date);
  found.CompareText("customer", row.Fields(1).AsString(), document.customer);
  found.Compare("lines", row.Fields(2).AsString(), std::to_string(document.lines.size()));
  found.Compare("net", row.Fields(3).AsCurrency(), receipt.net);
  found.Compare("VAT", row.Fields(4).AsCurrency(), receipt.vat);
  found.Compare("rounding", row.Fields(5).AsCurrency(), receipt.rounding);
}

void CompareParticulars(Differences& found, TSQLConnection& connection, const Document& document) {
  TSQLQuery row;
  OpenFor(row, connection, document.number, Format(kPaper, {IsNumber("PAP_DOC")}));
  if (row.Eof()) return;
  const receipts::Particulars there = ParticularsIn(row), here = ParticularsOf(document);
  found.CompareText("address", there.address, here.address);
  found.CompareText("tax_id", there.taxId, here.taxId);
  found.CompareText("branch", there.branch, here.branch);
  found.CompareText("reference", there.reference, here.reference);
  found.Compare("reference_date", there.referenceDate.value_or(TDateTime()),
                here.referenceDate.value_or(TDateTime()));
  found.CompareText("reason", there.reason, here.reason);
}

void CompareLine(Differences& found, const TSQLQuery& row, const Line& line,
                 const LineAmounts& amounts) {
  found.CompareText("item", row.Fields(0).AsString(), line.item);
  found.Compare("quantity", row.Fields(1).AsCurrency(), line.quantity);
  found.Compare("price", row.Fields(2).AsCurrency(), line.price);
  found.Compare("discount", row.Fields(3).AsCurrency(), line.discount);
  found.Compare("VAT rate", row.Fields(4).AsCurrency(), line.vatRate);
  found.Compare("net", row.Fields(5).AsCurrency(), amounts.net);
  found.Compare("VAT", row.Fields(6).AsCurrency(), amounts.vat);
}

}  // namespace

std::string DifferenceInBooks(TSQLConnection& connection, const Document& document,
                              const Receipt& receipt) {
  Differences found;
  CompareHead(found, connection, document, receipt);
  CompareParticulars(found, connection, document);
  TSQLQuery row;
  OpenFor(row, connection, document.number, LinesOfDocument());
  for (std::size_t i = 0; i < document.lines.size() && !row.Eof(); ++i, row.Next()) {
    if (SameLine(row, document.lines[i], receipt.lines[i])) continue;
    found.EnterLine(i);
    CompareLine(found, row, document.lines[i], receipt.lines[i]);
    break;
  }
  return found.Text();
}

Stored FindInBooks(TSQLConnection& connection, const Document& document, const Receipt& receipt) {
  {
    TSQLQuery query;
    OpenFor(query, connection, document.number,
            Format("SELECT DOC_NO FROM DOCUMENT WHERE %s", {IsNumber("DOC_NO")}));
    if (query.Eof()) return Stored::Missing;
  }
  const bool same = SameHead(connection, document, receipt) &&
                    SameLines(connection, document, receipt) &&
                    SameParticulars(connection, document);
  return same ? Stored::Same : Stored::Other;
}

namespace {

// The lines as they were read from the day's file.
std::vector<Line> LinesInBooks(TSQLConnection& connection, const std::string& number) {
  TSQLQuery row;
  OpenFor(row, connection, number, LinesOfDocument());
  std::vector<Line> lines;
  for (; !row.Eof(); row.Next()) {
    lines.push_back({row.Fields(0).AsString(), row.Fields(1).AsCurrency(),
                     row.Fields(2).AsCurrency(), row.Fields(3).AsCurrency(),
                     row.Fields(4).AsCurrency(), 0});
  }
  return lines;
}

}  // namespace

std::optional<Posted> ReadFromBooks(TSQLConnection& connection, const std::string& number) {
  Posted posted;
  posted.document.number = number;
  {
    TSQLQuery head;
    OpenFor(head, connection, number,
            Format("SELECT DOC_DATE, DOC_CUSTOMER FROM DOCUMENT WHERE %s", {IsNumber("DOC_NO")}));
    if (head.Eof()) return std::nullopt;
    posted.document.date = head.Fields(0).AsDateTime();
    posted.document.customer = head.Fields(1).AsString();
  }
  posted.document.lines = LinesInBooks(connection, number);
  {
    TSQLQuery paper;
    OpenFor(paper, connection, number, Format(kPaper, {IsNumber("PAP_DOC")}));
    const auto rules = paper.Eof() ? std::nullopt : RulesOfText(paper.Fields(0).AsString());
    if (!rules)
      throw EPosting(receipts::Say("the books do not say by which rules it was computed"));
    posted.rules = *rules;
    posted.document.particulars =
        std::make_shared<const receipts::Particulars>(ParticularsIn(paper));
  }
  try {
    posted.receipt = Calculate(posted.document, posted.rules);
    if (FindInBooks(connection, posted.document, posted.receipt) == Stored::Same) return posted;
  } catch (const receipts::UnprintableDocument&) {
    // Lines that come to nothing were not posted so either.
  }
  throw EPosting(receipts::Say("its amounts in the books do not follow from its lines"));
}

std::optional<Currency> NetInBooks(TSQLConnection& connection, const std::string& number) {
  TSQLQuery row;
  OpenFor(row, connection, number,
          Format("SELECT DOC_NET FROM DOCUMENT WHERE %s", {IsNumber("DOC_NO")}));
  if (row.Eof()) return std::nullopt;
  return row.Fields(0).AsCurrency();
}

}  // namespace kvshare::posting
