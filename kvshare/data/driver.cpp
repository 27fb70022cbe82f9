#include "kvshare/data/driver.h"

namespace kvshare::data {

DriverError::~DriverError() = default;

}  // namespace kvshare::data
