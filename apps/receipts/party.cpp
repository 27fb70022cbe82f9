#include "apps/receipts/party.h"

#include "apps/receipts/thaidigits.h"
#include "apps/receipts/usertexts.h"
#include "kvshare/rtl/ascii.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::receipts {

namespace {

constexpr std::size_t kTaxIdDigits = 13;
constexpr std::size_t kBranchDigits = 5;
constexpr std::string_view kHeadOffice = "สำนักงานใหญ่"_th;
constexpr std::string_view kHeadOfficeEnglish = "head office";

[[noreturn]] void Refuse(UserText text, std::string_view cell) {
  throw EConvertError(Say(text, {cell.substr(0, 80)}));
}

// Without blanks and dashes; Thai digits as Latin ones.
std::string DigitsIn(std::string_view text) {
  std::string digits;
  digits.reserve(text.size());
  for (const char c : text) {
    if (c != ' ' && c != '-') digits.push_back(LatinDigit(c));
  }
  return digits;
}

char CheckDigit(std::string_view taxId) {
  int sum = 0;
  for (int i = 0; i < 12; ++i) sum += (taxId[static_cast<std::size_t>(i)] - '0') * (13 - i);
  return static_cast<char>('0' + (11 - sum % 11) % 10);
}

}  // namespace

std::string ParseTaxId(std::string_view text) {
  std::string digits = DigitsIn(text);
  if (digits.size() == kTaxIdDigits - 1) digits.insert(0, 1, '0');
  if (digits.size() != kTaxIdDigits || !AreDigits(digits)) {
    Refuse("'%s' is no tax number: 13 digits", text);
  }
  if (digits.back() != CheckDigit(digits)) {
    Refuse("'%s' is no tax number: its check digit is wrong", text);
  }
  return digits;
}

std::string ShownTaxId(std::string_view taxId) {
  std::string shown(taxId);
  for (const std::size_t place : {12U, 10U, 5U, 1U}) {
    if (place < shown.size()) shown.insert(place, 1, '-');
  }
  return shown;
}

std::string ParseBranch(std::string_view text) {
  if (text == kHeadOffice || SameText(text, kHeadOfficeEnglish)) return "00000";
  std::string digits = DigitsIn(text);
  if (digits.empty() || digits.size() > kBranchDigits || !AreDigits(digits)) {
    Refuse("'%s' is no branch: 5 digits, 00000 for the head office", text);
  }
  return digits.insert(0, kBranchDigits - digits.size(), '0');
}

std::string ShownBranch(std::string_view branch) {
  if (branch.empty()) return {};
  if (branch == "00000") return std::string("สำนักงานใหญ่ / Head office"_th);
  return std::string("สาขาที่ "_th).append(branch).append(" / Branch ").append(branch);
}

}  // namespace kvshare::receipts
