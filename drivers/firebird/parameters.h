#pragma once

#include <ibase.h>

#include <span>

#include "drivers/firebird/handles.h"
#include "kvshare/data/driver.h"

namespace kvshare::firebird {

// The statement's parameters with their values, blobs written in `transaction`.
Descriptor BoundParameters(isc_db_handle& database, Transaction& transaction, Statement& statement,
                           std::span<const data::ParameterValue> parameters);

}  // namespace kvshare::firebird
