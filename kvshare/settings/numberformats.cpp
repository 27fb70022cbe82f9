#include "kvshare/settings/numberformats.h"

#include "kvshare/rtl/format.h"
#include "kvshare/settings/globals.h"

namespace kvshare {

namespace {

constexpr std::string_view kEditMask = "###########0.00";
constexpr std::string_view kDisplayMask = "###,###,###,##0.00";
constexpr std::string_view kFormatPattern = "%%12.%dn";

// What belongs to one kind of number.
struct Kind {
  const Word* digits;
  std::string *editMask, *displayMask, *zeroMask, *formatPattern;
};

constexpr Kind kKinds[] = {
    {&QtyDigit, &editQtyEditMask, &dsplQtyEditMask, &ZeroQtyEditMask, &dsplQtyFmtStr},
    {&UPrcDigit, &editUPrcEditMask, &dsplUPrcEditMask, &ZeroUPrcEditMask, &dsplUPrcFmtStr},
    {&BahtDigit, &editBahtEditMask, &dsplBahtEditMask, &ZeroBahtEditMask, &dsplBahtFmtStr},
    {&WeightDigit, &editWeightEditMask, &dsplWeightEditMask, &ZeroWeightEditMask,
     &dsplWeightFmtStr},
    {&PercentDigit, &editPercentEditMask, &dsplPercentEditMask, &ZeroPercentEditMask,
     &dsplPercentFmtStr},
};

}  // namespace

std::string SetDecimalDigit(std::string_view mask, Word digits) {
  std::string made(mask.substr(0, mask.find('.') + 1));  // npos + 1 is 0
  return made.append(digits, '0');
}

std::string SetZeroDigit(Word digits) {
  return SetDecimalDigit("0.", digits);
}

void BuildNumberFormats() {
  for (const Kind& kind : kKinds) {
    const Word digits = *kind.digits;
    *kind.editMask = SetDecimalDigit(kEditMask, digits);
    *kind.displayMask = SetDecimalDigit(kDisplayMask, digits);
    *kind.zeroMask = SetZeroDigit(digits);
    *kind.formatPattern = Format(kFormatPattern, {digits});
  }
  dsplPercentEditMask += '%';
  dsplMinusBahtFmtStr = "(" + dsplBahtFmtStr + ")";
  dsplPercentFmtStr += "%%";
}

}  // namespace kvshare
