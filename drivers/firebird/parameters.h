#pragma once

#include <ibase.h>

#include <span>
#include <string>

#include "drivers/common/statements.h"
#include "drivers/firebird/handles.h"
#include "kvshare/data/contract/driver.h"

namespace kvshare::firebird {

// The statement with a `?` in each place. The server takes a parameter for what stands beside it,
// and rounds 1.5 for an integer: an amount, a day or a moment is put so that it stays what it is.
drivers::TypedStatement TypedFor(const data::StatementParts& statement,
                                 std::span<const data::ParameterValue> parameters);

// The statement's parameters with their values, blobs written in `transaction`. Throws DriverError
// for an amount with more decimals than its place takes.
Descriptor BoundParameters(isc_db_handle& database, Transaction& transaction, Statement& statement,
                           std::span<const data::ParameterValue> parameters);

}  // namespace kvshare::firebird
