// The exception family. Every class derives from Exception; `A : B` below means what it says to a
// handler that catches B. Message texts are code page 874 bytes, worded as users know them.
#pragma once

#include <exception>
#include <string>
#include <string_view>

#include "kvshare/export.h"

namespace kvshare::inline rtl {

class KVSHARE_API Exception : public std::exception {
 public:
  explicit Exception(std::string_view message) : message_(message) {}
  Exception(const Exception&) = default;
  Exception& operator=(const Exception&) = default;
  ~Exception() override;

  // The message in code page 874 bytes.
  const std::string& Message() const { return message_; }
  const char* what() const noexcept override { return message_.c_str(); }

 private:
  std::string message_;
};

// Text that is no number, date or time; a format text that does not fit its arguments.
class KVSHARE_API EConvertError : public Exception {
 public:
  using Exception::Exception;
  ~EConvertError() override;
};

// A failed file call. ErrorCode is the platform's number (2 not found, 3 bad path, 5 denied, ...).
class KVSHARE_API EInOutError : public Exception {
 public:
  EInOutError(std::string_view message, int errorCode)
      : Exception(message), errorCode_(errorCode) {}
  ~EInOutError() override;
  int ErrorCode() const { return errorCode_; }

 private:
  int errorCode_;
};

class KVSHARE_API EListError : public Exception {
 public:
  using Exception::Exception;
  ~EListError() override;
};

// Not a child of EListError, as programs that catch one or the other rely on.
class KVSHARE_API EStringListError : public Exception {
 public:
  using Exception::Exception;
  ~EStringListError() override;
};

class KVSHARE_API EAssertionFailed : public Exception {
 public:
  using Exception::Exception;
  ~EAssertionFailed() override;
};

// Ends an operation without a message box.
class KVSHARE_API EAbort : public Exception {
 public:
  using Exception::Exception;
  ~EAbort() override;
};

class KVSHARE_API EOSError : public Exception {
 public:
  using Exception::Exception;
  ~EOSError() override;
};

class KVSHARE_API ERegistryException : public Exception {
 public:
  using Exception::Exception;
  ~ERegistryException() override;
};

class KVSHARE_API EIniFileException : public Exception {
 public:
  using Exception::Exception;
  ~EIniFileException() override;
};

class KVSHARE_API EVariantError : public Exception {
 public:
  using Exception::Exception;
  ~EVariantError() override;
};

class KVSHARE_API EVariantTypeCastError : public EVariantError {
 public:
  using EVariantError::EVariantError;
  ~EVariantTypeCastError() override;
};

class KVSHARE_API EStreamError : public Exception {
 public:
  using Exception::Exception;
  ~EStreamError() override;
};

class KVSHARE_API EFileStreamError : public EStreamError {
 public:
  using EStreamError::EStreamError;
  ~EFileStreamError() override;
};

class KVSHARE_API EFCreateError : public EFileStreamError {
 public:
  using EFileStreamError::EFileStreamError;
  ~EFCreateError() override;
};

class KVSHARE_API EFOpenError : public EFileStreamError {
 public:
  using EFileStreamError::EFileStreamError;
  ~EFOpenError() override;
};

class KVSHARE_API EDatabaseError : public Exception {
 public:
  using Exception::Exception;
  ~EDatabaseError() override;
};

// An error of the in-memory dataset engine; ErrorCode is the engine's number.
class KVSHARE_API EDBClient : public EDatabaseError {
 public:
  EDBClient(std::string_view message, int errorCode)
      : EDatabaseError(message), errorCode_(errorCode) {}
  ~EDBClient() override;
  int ErrorCode() const { return errorCode_; }

 private:
  int errorCode_;
};

class KVSHARE_API EUpdateError : public EDatabaseError {
 public:
  using EDatabaseError::EDatabaseError;
  ~EUpdateError() override;
};

// What the processor refuses: integer and floating point arithmetic, bad memory.
class KVSHARE_API EExternal : public Exception {
 public:
  using Exception::Exception;
  ~EExternal() override;
};

class KVSHARE_API EIntError : public EExternal {
 public:
  using EExternal::EExternal;
  ~EIntError() override;
};

class KVSHARE_API EDivByZero : public EIntError {
 public:
  EDivByZero() : EIntError("Division by zero") {}
  ~EDivByZero() override;
};

class KVSHARE_API ERangeError : public EIntError {
 public:
  ERangeError() : EIntError("Range check error") {}
  ~ERangeError() override;
};

class KVSHARE_API EIntOverflow : public EIntError {
 public:
  EIntOverflow() : EIntError("Integer overflow") {}
  ~EIntOverflow() override;
};

class KVSHARE_API EMathError : public EExternal {
 public:
  using EExternal::EExternal;
  ~EMathError() override;
};

class KVSHARE_API EInvalidOp : public EMathError {
 public:
  EInvalidOp() : EMathError("Invalid floating point operation") {}
  ~EInvalidOp() override;
};

class KVSHARE_API EZeroDivide : public EMathError {
 public:
  EZeroDivide() : EMathError("Floating point division by zero") {}
  ~EZeroDivide() override;
};

class KVSHARE_API EOverflow : public EMathError {
 public:
  EOverflow() : EMathError("Floating point overflow") {}
  ~EOverflow() override;
};

class KVSHARE_API EAccessViolation : public EExternal {
 public:
  using EExternal::EExternal;
  ~EAccessViolation() override;
};

}  // namespace kvshare::inline rtl
