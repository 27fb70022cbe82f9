#include "apps/receipts/party.h"

#include <gtest/gtest.h>

#include <string_view>

#include "apps/receipts/papertitle.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare::receipts {
namespace {

using std::string_view_literals::operator""sv;

TEST(Party, TaxNumbers) {
  const struct {
    std::string_view text, digits;  // "" refused
  } cases[] = {
      {"0105561000003", "0105561000003"},
      {"0-1055-61000-00-3", "0105561000003"},
      {" 0 1055 61000 00 3", "0105561000003"},
      {"105561000003", "0105561000003"},  // a spreadsheet took the zero
      {"๐๑๐๕๕๖๑๐๐๐๐๐๓"_th, "0105561000003"},
      {"0000000000001", "0000000000001"},  // 11 - 0 is 11, of which the last digit counts
      {"0000000000010", ""},
      {"1000000000009", "1000000000009"},
      {"0105561000007", ""},
      {"0105561000030", ""},
      {"05561000003", ""},
      {"01055610000030", ""},
      {"010556100000x", ""},
      {"", ""},
  };
  for (const auto& c : cases) {
    if (c.digits.empty()) {
      EXPECT_THROW(ParseTaxId(c.text), EConvertError) << c.text;
    } else {
      EXPECT_EQ(ParseTaxId(c.text), c.digits);
    }
  }
  EXPECT_EQ(ShownTaxId("0105561000003"), "0-1055-61000-00-3");
  EXPECT_EQ(ShownTaxId(""), "");
}

// Every change of one digit is found but of the third, whose weight is 11.
TEST(Party, AWrongDigitIsFound) {
  const std::string sound = "0105561000003";
  for (std::size_t place = 0; place < sound.size(); ++place) {
    if (place == 2) continue;
    for (char digit = '0'; digit <= '9'; ++digit) {
      std::string wrong = sound;
      wrong[place] = digit;
      if (wrong == sound) continue;
      EXPECT_THROW(ParseTaxId(wrong), EConvertError) << wrong;
    }
  }
}

TEST(Party, Branches) {
  for (const std::string_view text : {"00000"sv, "0"sv, "head Office"sv, "สำนักงานใหญ่"_th}) {
    EXPECT_EQ(ParseBranch(text), "00000") << text;
  }
  EXPECT_EQ(ParseBranch("๑๒"_th), "00012");
  for (const std::string_view text : {"", "123456", "1a", "-1x"}) {
    EXPECT_THROW(ParseBranch(text), EConvertError) << text;
  }
  EXPECT_EQ(Cp874ToUtf8(ShownBranch("00012")), "สาขาที่ 00012 / Branch 00012");
}

TEST(Party, TitlesFollowWhatIsThere) {
  const Seller none;
  const Seller plain{"Shop", {"Street"}, "", "", "", nullptr};
  const Seller registered{"Shop", {"Street"}, "0105561000003", "00000", "", nullptr};
  Seller homeless = registered;
  homeless.address.clear();
  constexpr auto kReceipt = PaperTitle::Receipt, kShort = PaperTitle::AbbreviatedTaxInvoice,
                 kFull = PaperTitle::TaxInvoice, kCredit = PaperTitle::CreditNote;
  const Particulars address{"Road", "", "", "", {}, ""};
  const Particulars invoice{"", "", "", "IV1", EncodeDate(2026, 11, 1), "broken"};
  const struct {
    const Seller& seller;
    const char* customer;
    const Particulars* particulars;
    Currency quantity, vat;
    std::optional<Currency> original;
    PaperTitle title;
    const char* missing;  // "" for nothing
  } cases[] = {
      {none, "C", &address, 1_baht, 7_baht, {}, kReceipt, ""},
      {plain, "C", &address, 1_baht, 7_baht, {}, kReceipt, ""},
      {registered, "C", &address, 1_baht, 0_baht, {}, kReceipt, ""},
      {registered, "C", &address, 1_baht, 7_baht, {}, kFull, ""},
      {registered, "C", nullptr, 1_baht, 7_baht, {}, kShort, "the buyer's address"},
      {registered, "C", &invoice, 1_baht, 7_baht, {}, kShort, "the buyer's address"},
      {registered, "", nullptr, 1_baht, 7_baht, {}, kShort, ""},
      {homeless, "C", &address, 1_baht, 7_baht, {}, kShort, "the seller's address"},
      {registered, "C", &invoice, -1_baht, 7_baht, 9_baht, kCredit, ""},
      {registered,
       "C",
       &invoice,
       -1_baht,
       7_baht,
       {},
       kCredit,
       "the invoice's value, which is not in the file"},
      {registered, "C", &address, -1_baht, 7_baht, 9_baht, kCredit, "the invoice's number"},
      {plain, "C", nullptr, -1_baht, 7_baht, {}, kCredit, ""},
  };
  for (const auto& c : cases) {
    Document document;
    document.customer = c.customer;
    if (c.particulars != nullptr)
      document.particulars = std::make_shared<Particulars>(*c.particulars);
    document.lines = {{"I", c.quantity, 10_baht, 0_baht, c.vat, 2}};
    const Receipt receipt = Calculate(document, {});
    EXPECT_EQ(TitleOf(document, receipt, c.seller), c.title) << &c - cases;
    const auto missing = MissingOn(document, receipt, c.seller, c.original);
    EXPECT_EQ(missing ? missing->Row().english : "", c.missing) << &c - cases;
  }
}

}  // namespace
}  // namespace kvshare::receipts
