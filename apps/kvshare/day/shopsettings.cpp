#include "apps/kvshare/day/shopsettings.h"

#include "apps/receipts/usertexts.h"
#include "kvshare/platform/verinfo.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/stringlist.h"

namespace kvshare::app {

namespace {

constexpr std::string_view kKey = "Shop";  // below the command's root key
constexpr std::string_view kName = "Name";
constexpr std::string_view kAddress = "Address%d";
constexpr std::string_view kTaxId = "TaxId";
constexpr std::string_view kBranch = "Branch";
constexpr std::string_view kPhone = "Phone";

TStringList Stored() {
  TStringList values;
  TKovraRegistry().ReadRegistryStringListWKey("", "", kKey, values);
  return values;
}

}  // namespace

receipts::Seller StoredSeller() {
  const TStringList values = Stored();
  receipts::Seller seller;
  seller.name = values.Values(kName);
  for (int line = 1;; ++line) {
    std::string text(values.Values(Format(kAddress, {line})));
    if (text.empty()) break;
    seller.address.push_back(std::move(text));
  }
  seller.taxId = values.Values(kTaxId);
  if (!seller.taxId.empty()) seller.taxId = receipts::ParseTaxId(seller.taxId);
  seller.branch = values.Values(kBranch);
  if (!seller.branch.empty()) seller.branch = receipts::ParseBranch(seller.branch);
  seller.phone = values.Values(kPhone);
  return seller;
}

void StoreSeller(const receipts::Seller& seller) {
  TStringList values;
  const auto add = [&values](std::string_view name, std::string_view text) {
    if (!text.empty()) values.Add(Format("%s=%s", {name, text}));
  };
  add(kName, seller.name);
  int line = 0;
  for (const std::string& text : seller.address) add(Format(kAddress, {++line}), text);
  add(kTaxId, seller.taxId);
  add(kBranch, seller.branch);
  add(kPhone, seller.phone);
  TKovraRegistry().WriteRegistryStringListWKey("", "", kKey, values);
  // The store answers nothing; what cannot be read back was not written.
  const TStringList stored = Stored();
  bool kept = stored.Count() == values.Count();
  for (int i = 0; kept && i < values.Count(); ++i) {
    kept = stored.Values(values.Names(i)) == values.ValueFromIndex(i);
  }
  if (!kept)
    throw Exception("the settings store did not take the shop; `kvshare doctor` tells why");
}

}  // namespace kvshare::app
