#include "apps/receipts/amounts.h"

#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/formatfloat.h"
#include "kvshare/rtl/strutils.h"
#include "kvshare/text/strings.h"

namespace kvshare::receipts {

Currency ParseAmount(std::string_view text) {
  const std::string_view trimmed = Trim(text);
  Currency amount;
  const bool accepted = trimmed.find(',') == std::string_view::npos
                            ? TryStrToCurr(trimmed, amount)
                            : TryStrToCurr(TKovraString::RemoveComma(trimmed), amount);
  if (!accepted) {
    throw EConvertError(
        Format("'%s' is not a valid floating point value", {trimmed.substr(0, 80)}));
  }
  return amount;
}

void AppendFourDecimals(std::string& out, Currency amount) {
  AppendFormat(out, "%.4f", {amount});
}

void AppendDecimals(std::string& out, Currency amount) {
  AppendFormatFloat(out, "0.00##", amount);
}

}  // namespace kvshare::receipts
