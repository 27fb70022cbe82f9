#include "apps/receipts/calc.h"

#include <gtest/gtest.h>

#include <random>

#include "kvshare/rtl/exceptions.h"

namespace kvshare::receipts {
namespace {

Document Doc(std::vector<Line> lines) {
  Document document;
  document.lines = std::move(lines);
  return document;
}

constexpr Currency kVat = 7_baht;

Line Item(Currency quantity, Currency price, Currency discount = {}, Currency vat = kVat) {
  return {"item", quantity, price, discount, vat, 2};
}

TEST(Calc, RoundsOnceOnTheExactValue) {
  const struct {
    Currency quantity, price, want;
    TKovraMoneyRound mode;
    const char* why;
  } cases[] = {
      {0.333_baht, 3.018_baht, 1_baht, mrTwoDigits,
       "1.004994: to four decimals first it would be 1.0050 and 1.01"},
      {0.335_baht, 3_baht, 1.01_baht, mrTwoDigits, "1.005, a tie goes up"},
      {0.01_baht, 0.0001_baht, 1_baht, mrUpToBaht, "any fraction goes up, the sixth decimal too"},
      {0.0001_baht, 0.5_baht, 0_baht, mrNoRound, "stored half to even"},
      {0.0003_baht, 0.5_baht, 0.0002_baht, mrSixDigits, "stored half to even"},
  };
  for (const auto& c : cases) {
    for (const bool negative : {false, true}) {
      const Currency quantity = negative ? -c.quantity : c.quantity;
      const Receipt receipt = Calculate(Doc({Item(quantity, c.price)}), {.lineMode = c.mode});
      EXPECT_EQ(receipt.gross, negative ? -c.want : c.want) << c.why;
    }
  }
}

TEST(Calc, Documents) {
  const Document two = Doc({Item(1_baht, 0.5_baht), Item(1_baht, 0.5_baht)});  // 0.035 VAT each
  const Document mixed = Doc({Item(2_baht, 100_baht, 10_baht), Item(1_baht, 50_baht, {}, 0_baht)});
  const struct {
    const Document& document;
    Rules rules;
    Currency net, vat, rounding, total;
    const char* why;
  } cases[] = {
      {two, {}, 1_baht, 0.07_baht, 0_baht, 1.07_baht, "VAT of the document"},
      {two, {.vatPerLine = true}, 1_baht, 0.08_baht, 0_baht, 1.08_baht, "VAT of each line"},
      {two, {.priceIncludesVat = true}, 0.93_baht, 0.07_baht, 0_baht, 1_baht, "VAT inside"},
      {mixed, {}, 240_baht, 13.30_baht, 0_baht, 253.30_baht, "a discount; two rates"},
      {mixed, {.cashStep = mrDownTo25}, 240_baht, 13.30_baht, -0.05_baht, 253.25_baht, "cash step"},
      {mixed, {.cashStep = mrUpToBaht}, 240_baht, 13.30_baht, 0.70_baht, 254_baht, "cash step up"},
      {mixed, {.vatMode = mrDownToBaht}, 240_baht, 13_baht, 0_baht, 253_baht, "VAT mode"},
  };
  for (const auto& c : cases) {
    const Receipt got = Calculate(c.document, c.rules);
    EXPECT_EQ(got.net, c.net) << c.why;
    EXPECT_EQ(got.vat, c.vat) << c.why;
    EXPECT_EQ(got.rounding, c.rounding) << c.why;
    EXPECT_EQ(got.total, c.total) << c.why;
  }
}

TEST(Calc, RefusesWhatItCannotPrint) {
  const Line huge = Item(1'000'000'000_baht, 1'000'000_baht);
  const struct {
    std::vector<Line> lines;
    Column column;
  } cases[] = {
      {{Item(1_baht, 5_baht, 5.01_baht)}, Column::Discount},
      {{Item(0_baht, 5_baht, 1_baht)}, Column::Discount},
      {{huge}, Column::Price},
      {{Item(1_baht, 900'000'000'000'000_baht), Item(1_baht, 900'000'000'000'000_baht)},
       Column::Price},
      {{Item(1_baht, Currency::Max())}, Column::Price},  // its VAT
  };
  for (const auto& c : cases) {
    try {
      Calculate(Doc(c.lines), {});
      ADD_FAILURE() << "accepted";
    } catch (const UnprintableDocument& e) {
      EXPECT_EQ(e.Column(), c.column) << e.what();
      EXPECT_EQ(e.Row(), 2u);
    }
  }
  DayTotal day;
  const Receipt large = Calculate(Doc({Item(1_baht, 600'000'000'000'000_baht)}), {});
  day.Add(large);
  EXPECT_THROW(day.Add(large), EIntOverflow);
  EXPECT_EQ(day.documents, 1u);
  EXPECT_EQ(day.total, large.total);
}

class RandomDocuments {
 public:
  Document Next() {
    std::vector<Line> lines(static_cast<std::size_t>(1 + Below(6)));
    for (Line& line : lines) {
      const bool cheap = Below(2) == 0;
      line.quantity = Currency::FromRaw(Below(cheap ? 100'000 : 100'000'000));
      if (Below(5) == 0) line.quantity = -line.quantity;  // a line taken back
      line.price = Currency::FromRaw(Below(cheap ? 100'000 : 1'000'000'000));
      constexpr Currency kRates[] = {7_baht, 0_baht, 10_baht, 7.5_baht, 0.0001_baht, 100_baht};
      line.vatRate = kRates[Below(std::size(kRates))];
    }
    return Doc(lines);
  }

  Rules NextRules() {
    Rules rules;
    rules.lineMode = static_cast<TKovraMoneyRound>(Below(kRoundModes));
    rules.vatMode = static_cast<TKovraMoneyRound>(Below(kRoundModes));
    if (Below(2) == 0) rules.cashStep = static_cast<TKovraMoneyRound>(Below(kRoundModes));
    rules.vatPerLine = Below(2) == 0;
    rules.priceIncludesVat = Below(2) == 0;
    return rules;
  }

  // A discount no greater than the line's amount under the rules.
  void Discount(Document& document, const Rules& rules) {
    const Receipt plain = Calculate(document, rules);
    for (std::size_t i = 0; i < document.lines.size(); ++i) {
      const std::int64_t gross = plain.lines[i].gross.Raw();
      if (Below(2) == 0) document.lines[i].discount = Currency::FromRaw(gross / (1 + Below(9)));
    }
  }

 private:
  std::int64_t Below(std::int64_t n) {
    return static_cast<std::int64_t>(engine_() % static_cast<std::uint64_t>(n));
  }
  std::mt19937_64 engine_{874};
};

TEST(Calc, EveryDocumentClosesAndACreditNoteIsMinusItsInvoice) {
  RandomDocuments random;
  for (int i = 0; i < 20'000; ++i) {
    Document invoice = random.Next();
    const Rules rules = random.NextRules();
    random.Discount(invoice, rules);
    Document note = invoice;
    for (Line& line : note.lines) {
      line.quantity = -line.quantity;
      line.discount = -line.discount;
    }
    const Receipt a = Calculate(invoice, rules);
    const Receipt b = Calculate(note, rules);
    ASSERT_TRUE(a.Closes()) << i;
    ASSERT_TRUE(b.Closes()) << i;
    ASSERT_EQ(b.total, -a.total) << i;
    ASSERT_EQ(b.rounding, -a.rounding) << i;
    for (std::size_t k = 0; k < a.lines.size(); ++k) {
      ASSERT_EQ(b.lines[k].net, -a.lines[k].net) << i;
      ASSERT_EQ(b.lines[k].vat, -a.lines[k].vat) << i;
    }
  }
}

}  // namespace
}  // namespace kvshare::receipts
