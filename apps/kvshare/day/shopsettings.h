// The shop that receipts name, in the settings store.
#pragma once

#include "apps/receipts/party.h"

namespace kvshare::app {

// What is stored; a seller without a name where nothing is. Throws EConvertError for a stored tax
// number or branch that cannot be one.
receipts::Seller StoredSeller();

// Replaces what is stored, whole or not at all. Throws Exception where the store refuses it.
void StoreSeller(const receipts::Seller& seller);

}  // namespace kvshare::app
