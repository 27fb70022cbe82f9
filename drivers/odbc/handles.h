// Owners of the driver manager's handles, and errors made of what they report.
#pragma once

#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "drivers/common/exactly.h"
#include "drivers/common/filled.h"
#include "drivers/common/statements.h"
#include "kvshare/data/contract/driver.h"

namespace kvshare::odbc {

class Handle {
 public:
  Handle() = default;
  Handle(SQLSMALLINT type, SQLHANDLE parent);
  ~Handle() { Reset(); }
  Handle(Handle&& other) noexcept
      : type_(other.type_), handle_(std::exchange(other.handle_, nullptr)) {}
  Handle& operator=(Handle&& other) noexcept {
    std::swap(type_, other.type_);
    std::swap(handle_, other.handle_);
    return *this;
  }

  SQLHANDLE Get() const { return handle_; }
  explicit operator bool() const { return handle_ != nullptr; }
  void Reset() noexcept;

  // Throws DriverError where the result of a call on this handle is a failure.
  void Check(SQLRETURN result) const;

 private:
  SQLSMALLINT type_ = SQL_HANDLE_ENV;
  SQLHANDLE handle_ = nullptr;
};

// The driver manager's name for our wide characters.
inline SQLWCHAR* Units(char16_t* text) {
  return reinterpret_cast<SQLWCHAR*>(text);
}

// A number where the interface takes numbers and pointers in one argument.
inline SQLPOINTER Number(std::uintptr_t value) {
  return reinterpret_cast<SQLPOINTER>(value);  // NOLINT(performance-no-int-to-ptr)
}

inline std::string NoType(const data::ParameterValue& /*any*/) {
  return {};
}

// What ODBC leaves to each server.
struct Dialect {
  std::string_view name;            // as SQL_DBMS_NAME begins
  const char* session = "";         // sent once; "" where nothing is needed
  const char* lockTimeout = "";     // sent with the number behind it; "" where there is none
  const char* lockTimeoutToo = "";  // a second one
  drivers::ExactForms exactly = drivers::kPlainForms;
  // The type that a parameter is cast to, where its driver does not tell the server what it is.
  drivers::TypeOfValue typeOf = NoType;
  // Asks for the columns that it fills in; nullptr where the standard's catalogue has to do.
  const drivers::FilledQuery* filled = nullptr;
  const char* firstReturning = nullptr;  // the version whose inserts return columns; none
  std::int32_t leastTimeout = 0;         // where 0 would mean for ever
  bool inSeconds = false;
  bool failureEndsTransaction = false;
  bool sqlite = false;  // which has classes of values and no types
  char quote = '"';     // around names
  drivers::NullTests nullTests = drivers::NullTests::Plain;
  data::Lexis lexis = {};
};
const Dialect& DialectOf(std::string_view dbmsName);

}  // namespace kvshare::odbc
