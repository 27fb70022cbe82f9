#include "apps/posting/poster.h"

#include "apps/posting/books.h"
#include "apps/posting/company.h"
#include "apps/posting/paperrules.h"
#include "apps/receipts/usertexts.h"
#include "kvshare/database/dblog.h"
#include "kvshare/database/sqlfunc.h"
#include "kvshare/database/sqlreplication.h"
#include "kvshare/database/sqlrights.h"
#include "kvshare/database/sqltransaction.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/format.h"

namespace kvshare::posting {

namespace {

using receipts::Document;
using receipts::Receipt;

void RequireNumberThatFits(std::string_view number) {
  if (number.size() <= kLongestNumber) return;
  throw EPosting(receipts::Say("its number is longer than %d letters", {kLongestNumber}));
}

}  // namespace

// Texts and amounts travel as parameters. The runners of statements cut a line at its first `;` and
// take a line break for the end of one, in quotes too; a customer's name may have both, and quotes
// and backslashes, which each server spells its own way.
Poster::Poster(TSQLConnection& connection, const receipts::Rules& rules)
    : connection_(connection), rules_(TextOfRules(rules)) {
  document_.SetSQLConnection(&connection);
  document_.SQL().Add(
      "INSERT INTO DOCUMENT (DOC_NO, DOC_DATE, DOC_CUSTOMER, DOC_LINES, DOC_NET, DOC_VAT,"
      " DOC_ROUNDING, DOC_TOTAL, DOC_POSTED, DOC_SENDNO)"
      " VALUES (:NO, :DAY, :CUSTOMER, :LINES, :NET, :VAT, :ROUNDING, :TOTAL, :POSTED, :SENDNO)");
  paper_.SetSQLConnection(&connection);
  paper_.SQL().Add(
      "INSERT INTO DOCPAPER (PAP_DOC, PAP_NO, PAP_RULES, PAP_ADDRESS, PAP_TAXID, PAP_BRANCH,"
      " PAP_REFERENCE, PAP_REFDATE, PAP_REASON)"
      " VALUES (:DOC, 1, :RULES, :ADDRESS, :TAXID, :BRANCH, :REFERENCE, :REFDATE, :REASON)");
  line_.SetSQLConnection(&connection);
  line_.SQL().Add(
      "INSERT INTO DOCLINE (LIN_DOC, LIN_NO, LIN_ITEM, LIN_QTY, LIN_PRICE, LIN_DISCOUNT,"
      " LIN_VATRATE, LIN_NET, LIN_VAT)"
      " VALUES (:DOC, :NO, :ITEM, :QTY, :PRICE, :DISCOUNT, :VATRATE, :NET, :VAT)");
}

bool Poster::MayPost(std::int32_t position) {
  return MayICanInsert(connection_, position, kPostingTemplate);
}

bool Poster::IsPosted(const Document& document, const Receipt& receipt) {
  const Stored stored = FindInBooks(connection_, document, receipt);
  if (stored == Stored::Other) {
    throw EPosting(receipts::Say("it is posted already, with another content: %s",
                                 {DifferenceInBooks(connection_, document, receipt)}));
  }
  return stored == Stored::Same;
}

std::optional<std::string> Poster::Post(const Document& document, const Receipt& receipt) {
  RequireNumberThatFits(document.number);
  if (IsPosted(document, receipt)) return std::nullopt;
  std::string sendNumber = TakeNextRpl(connection_);
  try {
    Write(document, receipt, sendNumber);
  } catch (const EServerError& e) {
    // Another program may have posted it in the meantime: its document, not the refusal, counts.
    if (e.ConnectionLost() || !IsPosted(document, receipt)) throw;
    return std::nullopt;
  }
  return sendNumber;
}

void Poster::Log(const Document& document, const Receipt& receipt, std::string_view sendNumber) {
  TKovraDbLog::WriteLogFile(
      nullptr, "Posting", "Post", document.number,
      Format("%d lines, total %s, send number %s",
             {static_cast<int>(document.lines.size()), CurrToStr(receipt.total), sendNumber}));
}

void Poster::Write(const Document& document, const Receipt& receipt, std::string_view sendNumber) {
  StatementTransaction transaction(connection_);  // all of a document or nothing of it
  WriteHead(document, receipt, sendNumber);
  WritePaper(document);
  for (std::size_t i = 0; i < document.lines.size(); ++i) WriteLine(document, receipt, i);
  transaction.Commit();
}

void Poster::WriteHead(const Document& document, const Receipt& receipt,
                       std::string_view sendNumber) {
  TParams& values = document_.Params();
  values.ParamByName("NO").SetAsString(document.number);
  values.ParamByName("DAY").SetAsDate(document.date);
  values.ParamByName("CUSTOMER").SetAsString(document.customer);
  values.ParamByName("LINES").SetAsInteger(static_cast<std::int64_t>(document.lines.size()));
  values.ParamByName("NET").SetAsCurrency(receipt.net);
  values.ParamByName("VAT").SetAsCurrency(receipt.vat);
  values.ParamByName("ROUNDING").SetAsCurrency(receipt.rounding);
  values.ParamByName("TOTAL").SetAsCurrency(receipt.total);
  values.ParamByName("POSTED").SetAsDateTime(ServerDateTime(connection_, SQLServerDateTime));
  values.ParamByName("SENDNO").SetAsString(sendNumber);
  document_.ExecSQL();
}

void Poster::WritePaper(const Document& document) {
  const receipts::Particulars none;
  const receipts::Particulars& particulars = document.particulars ? *document.particulars : none;
  TParams& values = paper_.Params();
  const auto put = [&values](std::string_view name, const std::string& text) {
    TParam& value = values.ParamByName(name);
    text.empty() ? value.Clear() : value.SetAsString(text);
  };
  values.ParamByName("DOC").SetAsString(document.number);
  values.ParamByName("RULES").SetAsString(rules_);
  put("ADDRESS", particulars.address);
  put("TAXID", particulars.taxId);
  put("BRANCH", particulars.branch);
  put("REFERENCE", particulars.reference);
  TParam& date = values.ParamByName("REFDATE");
  particulars.referenceDate ? date.SetAsDate(*particulars.referenceDate) : date.Clear();
  put("REASON", particulars.reason);
  paper_.ExecSQL();
}

void Poster::WriteLine(const Document& document, const Receipt& receipt, std::size_t index) {
  const receipts::Line& line = document.lines[index];
  const receipts::LineAmounts& amounts = receipt.lines[index];
  TParams& values = line_.Params();
  values.ParamByName("DOC").SetAsString(document.number);
  values.ParamByName("NO").SetAsInteger(static_cast<std::int64_t>(index) + 1);
  values.ParamByName("ITEM").SetAsString(line.item);
  values.ParamByName("QTY").SetAsCurrency(line.quantity);
  values.ParamByName("PRICE").SetAsCurrency(line.price);
  values.ParamByName("DISCOUNT").SetAsCurrency(line.discount);
  values.ParamByName("VATRATE").SetAsCurrency(line.vatRate);
  values.ParamByName("NET").SetAsCurrency(amounts.net);
  values.ParamByName("VAT").SetAsCurrency(amounts.vat);
  line_.ExecSQL();
}

}  // namespace kvshare::posting
