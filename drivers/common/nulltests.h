#pragma once

#include <cstddef>

#include "kvshare/data/contract/driver.h"

namespace kvshare::drivers {

// Whether nothing is done with the value in a place but to test it for Null: `:P IS NULL`,
// `:P IS NOT NULL`. In doubt it is not so: `A = :P IS NULL` compares.
bool IsNullTest(const data::StatementParts& statement, std::size_t place);

}  // namespace kvshare::drivers
