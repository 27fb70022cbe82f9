// The shop that receipts name, in the settings store.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "apps/receipts/party.h"

namespace kvshare::app {

// What is stored; a seller without a name where nothing is. Throws EConvertError for a stored tax
// number or branch that cannot be one.
receipts::Seller StoredSeller();

// Replaces what is stored, whole or not at all. Throws Exception where the store refuses it.
void StoreSeller(const receipts::Seller& seller);

// The shop's logo; none where it has none. Throws Exception with the file's name where its copy
// cannot be read.
std::shared_ptr<const TPicture> StoredLogo();

// Where the copy of the logo stands, or "".
std::string StoredLogoFile();

// Keeps a copy of a Windows bitmap or PNG file, named as the interface names files; "" takes the
// logo away. Throws EInvalidGraphic for what is no picture or has more than kMostPictureSide pixels
// to a side, EInOutError for a file that cannot be read or written.
void StoreLogo(std::string_view fileName);

}  // namespace kvshare::app
