// What a document comes to. Every sum is exact; each rounding happens once, on the exact value.
#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "apps/receipts/daycolumns.h"
#include "apps/receipts/model.h"
#include "kvshare/money/money.h"

namespace kvshare::receipts {

struct Rules {
  TKovraMoneyRound lineMode = mrTwoDigits;                  // of quantity x price
  TKovraMoneyRound vatMode = mrTwoDigits;                   // of each VAT amount
  std::optional<TKovraMoneyRound> cashStep = std::nullopt;  // of the total
  bool vatPerLine = false;  // else once for each rate of the document
  bool priceIncludesVat = false;
};

struct LineAmounts {
  Currency gross;   // quantity x price, rounded
  Currency amount;  // gross less the discount: with VAT when prices include it
  Currency net;     // without VAT
  Currency vat;     // its own, or its part of the document's
};

struct RateAmounts {
  Currency rate;
  Currency net;
  Currency vat;
};

// One document, which always closes:
//   sum of the lines' net = net, sum of the lines' VAT = vat, net + vat + rounding = total,
// and the total is whole satang. The same document with every quantity negated gives exactly the
// negated amounts.
struct Receipt {
  std::vector<LineAmounts> lines;  // as the document's
  std::vector<RateAmounts> rates;  // in the order of their first line
  Currency gross;
  Currency discount;
  Currency net;
  Currency vat;
  Currency rounding;
  Currency total;

  bool Closes() const;
};

// A document that cannot be computed: a discount above its line's amount, an amount out of range.
class UnprintableDocument : public std::runtime_error {
 public:
  // `what` is UTF-8.
  UnprintableDocument(const std::string& what, std::uint64_t row, Column column)
      : std::runtime_error(what), row_(row), column_(column) {}
  std::uint64_t Row() const { return row_; }
  receipts::Column Column() const { return column_; }

 private:
  std::uint64_t row_;
  receipts::Column column_;
};

// Throws UnprintableDocument.
Receipt Calculate(const Document& document, const Rules& rules);

// Sums over the documents of a day. Add throws EIntOverflow and then leaves all as it was.
struct DayTotal {
  std::uint64_t documents = 0;
  Currency net;
  Currency vat;
  Currency rounding;
  Currency total;

  void Add(const Receipt& receipt);
};

}  // namespace kvshare::receipts
