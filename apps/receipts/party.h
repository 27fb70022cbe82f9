// Who sells and who buys, as tax papers name them. Texts are code page 874.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kvshare/ui/bitmap.h"

namespace kvshare::receipts {

// The shop. Without a name it is not known, and papers name no seller.
struct Seller {
  std::string name;
  std::vector<std::string> address;  // its lines
  std::string taxId;                 // 13 digits; "" for a shop that is not registered for VAT
  std::string branch;                // 5 digits, 00000 is the head office; may be ""
  std::string phone;
  std::shared_ptr<const TPicture> logo;  // none where it is not set, or not asked for
};

// The 13 digits of a tax number; blanks and dashes between them do not count, Thai digits do. A
// number of 12 digits has lost its leading zero in a spreadsheet. Throws EConvertError for another
// count of digits and for a wrong check digit, which is (11 - sum mod 11) mod 10 over the first
// twelve digits weighted 13 down to 2.
std::string ParseTaxId(std::string_view text);

// 0105561000003 as 0-1055-61000-00-3.
std::string ShownTaxId(std::string_view taxId);

// The 5 digits of a branch; leading zeros may be missing, and the words for a head office are
// 00000. Throws EConvertError.
std::string ParseBranch(std::string_view text);

// Both languages; "" for "".
std::string ShownBranch(std::string_view branch);

}  // namespace kvshare::receipts
