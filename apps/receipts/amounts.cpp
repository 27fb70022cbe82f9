#include "apps/receipts/amounts.h"

#include <algorithm>

#include "apps/receipts/usertexts.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/formatfloat.h"
#include "kvshare/rtl/strutils.h"
#include "kvshare/text/strings.h"

namespace kvshare::receipts {

namespace {

std::size_t DigitsAt(std::string_view text, std::size_t from) {
  const std::size_t end = text.find_first_not_of("0123456789", from);
  return std::min(end, text.size()) - from;
}

// Whether commas stand before three digits each, behind one to three, and none behind the point: in
// another place one may well be meant as the point.
bool HasThousands(std::string_view amount) {
  const std::size_t sign = amount.starts_with('-') || amount.starts_with('+') ? 1 : 0;
  std::size_t at = sign + DigitsAt(amount, sign);
  if (at == sign || at > sign + 3) return false;
  while (at < amount.size() && amount[at] == ',') {
    if (DigitsAt(amount, at + 1) != 3) return false;
    at += 4;
  }
  const bool whole = at == amount.size() || amount[at] == '.';
  return whole && amount.find(',', at) == std::string_view::npos;
}

}  // namespace

std::optional<Currency> TryParseAmount(std::string_view text) {
  const std::string_view trimmed = Trim(text);
  Currency amount;
  const bool accepted =
      trimmed.find(',') == std::string_view::npos
          ? TryStrToCurr(trimmed, amount)
          : HasThousands(trimmed) && TryStrToCurr(TKovraString::RemoveComma(trimmed), amount);
  return accepted ? std::optional(amount) : std::nullopt;
}

Currency ParseAmount(std::string_view text) {
  if (const auto amount = TryParseAmount(text)) return *amount;
  throw EConvertError(Say("'%s' is no amount", {Trim(text).substr(0, 80)}));
}

void AppendFourDecimals(std::string& out, Currency amount) {
  AppendFormat(out, "%.4f", {amount});
}

void AppendDecimals(std::string& out, Currency amount) {
  AppendFormatFloat(out, "0.00##", amount);
}

}  // namespace kvshare::receipts
