#include "apps/posting/books.h"

#include <string>

#include "apps/receipts/amounts.h"
#include "kvshare/data/sqlquery.h"
#include "kvshare/rtl/format.h"
#include "kvshare/settings/sqldialect.h"

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

bool SameLines(TSQLConnection& connection, const Document& document, const Receipt& receipt) {
  TSQLQuery query;
  OpenFor(query, connection, document.number,
          Format("SELECT LIN_ITEM, LIN_QTY, LIN_PRICE, LIN_DISCOUNT, LIN_VATRATE, LIN_NET, LIN_VAT"
                 " FROM DOCLINE WHERE %s ORDER BY LIN_NO",
                 {IsNumber("LIN_DOC")}));
  for (std::size_t i = 0; i < document.lines.size(); ++i, query.Next()) {
    if (query.Eof() || !SameLine(query, document.lines[i], receipt.lines[i])) return false;
  }
  return query.Eof();
}

}  // namespace

Stored FindInBooks(TSQLConnection& connection, const Document& document, const Receipt& receipt) {
  {
    TSQLQuery query;
    OpenFor(query, connection, document.number,
            Format("SELECT DOC_NO FROM DOCUMENT WHERE %s", {IsNumber("DOC_NO")}));
    if (query.Eof()) return Stored::Missing;
  }
  const bool same =
      SameHead(connection, document, receipt) && SameLines(connection, document, receipt);
  return same ? Stored::Same : Stored::Other;
}

}  // namespace kvshare::posting
