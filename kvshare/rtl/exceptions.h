// The exception family. Every class derives from Exception; `A : B` below means what it says to a
// handler that catches B. Message texts are code page 874 bytes, worded as users know them.
#pragma once

#include <exception>
#include <string>
#include <string_view>

#include "kvshare/export.h"

namespace kvshare::inline rtl {

// Base of all errors that the library throws. Catch it to show any of them to a user.
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

// An index of a list of objects or fields that lies outside of it: `List index out of bounds (%d)`.
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

// A condition that only a fault in a program can break.
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

// A call of the operating system that failed, with the system's own message: a display that does
// not answer, a program that cannot be started.
class KVSHARE_API EOSError : public Exception {
 public:
  using Exception::Exception;
  ~EOSError() override;
};

// A key of the settings store that cannot be opened, created or written.
class KVSHARE_API ERegistryException : public Exception {
 public:
  using Exception::Exception;
  ~ERegistryException() override;
};

// An INI file that cannot be written: `Unable to write to %s`.
class KVSHARE_API EIniFileException : public Exception {
 public:
  using Exception::Exception;
  ~EIniFileException() override;
};

// A Variant that does not have what an operation needs of it.
class KVSHARE_API EVariantError : public Exception {
 public:
  using Exception::Exception;
  ~EVariantError() override;
};

// A Variant whose value cannot become the type that is asked for: `Could not convert variant of
// type (%s) into type (%s)`.
class KVSHARE_API EVariantTypeCastError : public EVariantError {
 public:
  using EVariantError::EVariantError;
  ~EVariantTypeCastError() override;
};

// Reading or writing a stream failed after it was opened.
class KVSHARE_API EStreamError : public Exception {
 public:
  using Exception::Exception;
  ~EStreamError() override;
};

// The same for a stream on a file; the two below say at which step.
class KVSHARE_API EFileStreamError : public EStreamError {
 public:
  using EStreamError::EStreamError;
  ~EFileStreamError() override;
};

// `Cannot create file "%s"`, with the system's reason behind it.
class KVSHARE_API EFCreateError : public EFileStreamError {
 public:
  using EFileStreamError::EFileStreamError;
  ~EFCreateError() override;
};

// `Cannot open file "%s"`, likewise.
class KVSHARE_API EFOpenError : public EFileStreamError {
 public:
  using EFileStreamError::EFileStreamError;
  ~EFOpenError() override;
};

// A dataset, field, connection or statement that refuses what it is asked. EServerError, which
// tells the server's own number, is one.
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

// For programs that write changes to a server themselves; the library throws none.
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

// Arithmetic of whole numbers and amounts.
class KVSHARE_API EIntError : public EExternal {
 public:
  using EExternal::EExternal;
  ~EIntError() override;
};

// A division of whole numbers or amounts by zero.
class KVSHARE_API EDivByZero : public EIntError {
 public:
  EDivByZero() : EIntError("Division by zero") {}
  ~EDivByZero() override;
};

// A value outside the range of its type where it is stored.
class KVSHARE_API ERangeError : public EIntError {
 public:
  ERangeError() : EIntError("Range check error") {}
  ~ERangeError() override;
};

// A sum, product or rounding that the type cannot hold. Amounts lie between
// -922,337,203,685,477.5808 and 922,337,203,685,477.5807.
class KVSHARE_API EIntOverflow : public EIntError {
 public:
  EIntOverflow() : EIntError("Integer overflow") {}
  ~EIntOverflow() override;
};

// Arithmetic of real numbers.
class KVSHARE_API EMathError : public EExternal {
 public:
  using EExternal::EExternal;
  ~EMathError() override;
};

// A real number that is no number, or that the target type cannot hold.
class KVSHARE_API EInvalidOp : public EMathError {
 public:
  EInvalidOp() : EMathError("Invalid floating point operation") {}
  ~EInvalidOp() override;
};

// A division of real numbers by zero.
class KVSHARE_API EZeroDivide : public EMathError {
 public:
  EZeroDivide() : EMathError("Floating point division by zero") {}
  ~EZeroDivide() override;
};

// A real result past the largest one.
class KVSHARE_API EOverflow : public EMathError {
 public:
  EOverflow() : EMathError("Floating point overflow") {}
  ~EOverflow() override;
};

// Memory that is not the program's.
class KVSHARE_API EAccessViolation : public EExternal {
 public:
  using EExternal::EExternal;
  ~EAccessViolation() override;
};

}  // namespace kvshare::inline rtl
