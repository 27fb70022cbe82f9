#include "apps/kvshare/day/shopsettings.h"

#include <utility>

#include "kvshare/os/files.h"
#include "kvshare/platform/verinfo.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/filebytes.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/stringlist.h"
#include "kvshare/ui/paper.h"

namespace kvshare::app {

namespace {

constexpr std::string_view kKey = "Shop";  // below the command's root key
constexpr std::string_view kName = "Name";
constexpr std::string_view kAddress = "Address%d";
constexpr std::string_view kTaxId = "TaxId";
constexpr std::string_view kBranch = "Branch";
constexpr std::string_view kPhone = "Phone";
constexpr std::string_view kLogo = "Logo";  // the name of the copy
constexpr std::string_view kLogoFolder = "C:\\KvShare";

TStringList Stored() {
  TStringList values;
  TKovraRegistry().ReadRegistryStringListWKey("", "", kKey, values);
  return values;
}

// The store answers nothing; what cannot be read back was not written.
void Store(TStringList values) {
  TKovraRegistry().WriteRegistryStringListWKey("", "", kKey, values);
  const TStringList stored = Stored();
  bool kept = stored.Count() == values.Count();
  for (int i = 0; kept && i < values.Count(); ++i) {
    kept = stored.Values(values.Names(i)) == values.ValueFromIndex(i);
  }
  if (!kept) {
    throw Exception("the settings store did not take the shop; `kvshare doctor` tells why");
  }
}

bool IsBitmap(std::string_view bytes) {
  return bytes.starts_with("BM");
}

TPicture PictureOf(std::string_view bytes) {
  if (!IsBitmap(bytes)) return Paper().ReadPng(bytes);
  TPicture picture = ReadBitmapFile(bytes);
  if (picture.width > kMostPictureSide || picture.height > kMostPictureSide) {
    throw EInvalidGraphic(Format("The picture has %d x %d pixels, and at most %d to a side fit",
                                 {picture.width, picture.height, kMostPictureSide}));
  }
  return picture;
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
  add(kLogo, StoredLogoFile());
  Store(std::move(values));
}

std::string StoredLogoFile() {
  return std::string(Stored().Values(kLogo));
}

std::shared_ptr<const TPicture> StoredLogo() {
  const std::string file = StoredLogoFile();
  if (file.empty()) return nullptr;
  try {
    return std::make_shared<const TPicture>(PictureOf(ReadFileBytes(file)));
  } catch (const Exception& e) {
    throw Exception(Format("the shop's logo %s: %s", {file, e.Message()}));
  }
}

void StoreLogo(std::string_view fileName) {
  TStringList values = Stored();
  const std::string earlier(values.Values(kLogo));
  std::string copy;
  if (!fileName.empty()) {
    const std::string bytes = ReadFileBytes(fileName);
    PictureOf(bytes);
    copy = std::string(kLogoFolder) + (IsBitmap(bytes) ? "\\logo.bmp" : "\\logo.png");
    os::ForceDirectories(kLogoFolder);
    WriteFileBytes(copy, bytes);
  }
  values.SetValue(kLogo, copy);
  Store(std::move(values));
  if (!earlier.empty() && earlier != copy) os::DeleteFile(earlier);
}

}  // namespace kvshare::app
