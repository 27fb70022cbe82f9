#include "kvshare/rtl/exceptions.h"

namespace kvshare::inline rtl {

// Out of line, so that each class has one home for its type information and a handler in a program
// catches what the library throws.
Exception::~Exception() = default;
EConvertError::~EConvertError() = default;
EInOutError::~EInOutError() = default;
EListError::~EListError() = default;
EStringListError::~EStringListError() = default;
EAssertionFailed::~EAssertionFailed() = default;
EAbort::~EAbort() = default;
EOSError::~EOSError() = default;
ERegistryException::~ERegistryException() = default;
EIniFileException::~EIniFileException() = default;
EVariantError::~EVariantError() = default;
EVariantTypeCastError::~EVariantTypeCastError() = default;
EStreamError::~EStreamError() = default;
EFileStreamError::~EFileStreamError() = default;
EFCreateError::~EFCreateError() = default;
EFOpenError::~EFOpenError() = default;
EDatabaseError::~EDatabaseError() = default;
EDBClient::~EDBClient() = default;
EUpdateError::~EUpdateError() = default;
EExternal::~EExternal() = default;
EIntError::~EIntError() = default;
EDivByZero::~EDivByZero() = default;
ERangeError::~ERangeError() = default;
EIntOverflow::~EIntOverflow() = default;
EMathError::~EMathError() = default;
EInvalidOp::~EInvalidOp() = default;
EZeroDivide::~EZeroDivide() = default;
EOverflow::~EOverflow() = default;
EAccessViolation::~EAccessViolation() = default;

}  // namespace kvshare::inline rtl
