#include "apps/receipts/calc.h"

#include <algorithm>

#include "apps/receipts/usertexts.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare::receipts {

namespace {

constexpr Int128 kPercent = Int128{100} * Currency::kScale;

Currency VatOf(Currency base, Currency rate, const Rules& rules) {
  const Int128 whole = rules.priceIncludesVat ? kPercent + rate.Raw() : kPercent;
  return RoundQuotient(Int128{base.Raw()} * rate.Raw(), whole, rules.vatMode);
}

// The sums of one VAT rate. `base` is what its VAT is computed on.
struct RateState {
  RateAmounts amounts;
  Currency base;
};

class Calculation {
 public:
  explicit Calculation(const Rules& rules) : rules_(rules) {}

  void Add(const Line& line) {
    LineAmounts out;
    out.gross = RoundQuotient(Int128{line.quantity.Raw()} * line.price.Raw(), Currency::kScale,
                              rules_.lineMode);
    if (line.discount.Magnitude() > out.gross.Magnitude()) {
      throw UnprintableDocument(SayUtf8("the discount is greater than the line's amount"), line.row,
                                Column::Discount);
    }
    out.amount = out.gross - line.discount;
    RateState& rate = Rate(line.vatRate);
    out.vat = LineVat(rate, out.amount);
    out.net = rules_.priceIncludesVat ? out.amount - out.vat : out.amount;
    rate.amounts.net += out.net;
    rate.amounts.vat += out.vat;
    receipt_.gross += out.gross;
    receipt_.discount += line.discount;
    receipt_.net += out.net;
    receipt_.vat += out.vat;
    receipt_.lines.push_back(out);
  }

  Receipt Finish() {
    const Currency sum = receipt_.net + receipt_.vat;
    const Currency satang = TKovraMoney::RoundTo(sum, 2);
    receipt_.total = rules_.cashStep ? TKovraMoney::Round_Baht(satang, *rules_.cashStep) : satang;
    receipt_.rounding = receipt_.total - sum;
    for (const RateState& rate : rates_) receipt_.rates.push_back(rate.amounts);
    return std::move(receipt_);
  }

 private:
  RateState& Rate(Currency rate) {
    const auto known = std::ranges::find_if(
        rates_, [rate](const RateState& state) { return state.amounts.rate == rate; });
    if (known != rates_.end()) return *known;
    rates_.push_back({{rate, {}, {}}, {}});
    return rates_.back();
  }

  // A document's VAT is rounded once for each rate. A line's part of it is what the VAT of the
  // lines up to it grows by, so that the parts add up.
  Currency LineVat(RateState& rate, Currency amount) const {
    if (rules_.vatPerLine) return VatOf(amount, rate.amounts.rate, rules_);
    rate.base += amount;
    return VatOf(rate.base, rate.amounts.rate, rules_) - rate.amounts.vat;
  }

  const Rules& rules_;
  Receipt receipt_;
  std::vector<RateState> rates_;
};

}  // namespace

bool Receipt::Closes() const {
  LineAmounts sum;
  for (const LineAmounts& line : lines) {
    sum.gross += line.gross;
    sum.net += line.net;
    sum.vat += line.vat;
  }
  RateAmounts byRate;
  for (const RateAmounts& rate : rates) {
    byRate.net += rate.net;
    byRate.vat += rate.vat;
  }
  return sum.gross == gross && sum.net == net && sum.vat == vat && byRate.net == net &&
         byRate.vat == vat && net + vat + rounding == total && total.Raw() % 100 == 0;
}

Receipt Calculate(const Document& document, const Rules& rules) {
  std::uint64_t row = document.row;
  try {
    Calculation calculation(rules);
    for (const Line& line : document.lines) {
      row = line.row;
      calculation.Add(line);
    }
    return calculation.Finish();
  } catch (const EIntOverflow&) {
    throw UnprintableDocument(SayUtf8("the amount is out of range"), row, Column::Price);
  }
}

void DayTotal::Add(const Receipt& receipt) {
  DayTotal sum = *this;
  ++sum.documents;
  sum.net += receipt.net;
  sum.vat += receipt.vat;
  sum.rounding += receipt.rounding;
  sum.total += receipt.total;
  *this = sum;
}

}  // namespace kvshare::receipts
