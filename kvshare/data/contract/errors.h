// Errors of the database layer.
#pragma once

#include <string>
#include <string_view>

#include "kvshare/data/contract/driver.h"
#include "kvshare/export.h"
#include "kvshare/rtl/component.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare {

// What a database server, or the client library in front of it, refused. The message is
// `SQL Server Error: ` and the server's own text.
class KVSHARE_API EServerError : public EDatabaseError {
 public:
  EServerError(std::string_view message, const data::DriverError& error)
      : EDatabaseError(message), kind_(error.What()), code_(error.Code()) {}
  ~EServerError() override;

  // The server went away; the connection has to be closed and opened again.
  bool ConnectionLost() const { return kind_ == data::DriverError::Kind::ConnectionLost; }
  // Somebody else holds what is needed: the same may succeed later.
  bool Busy() const { return kind_ == data::DriverError::Kind::Busy; }
  // The transaction was undone in favour of another one.
  bool Conflict() const { return kind_ == data::DriverError::Kind::Conflict; }
  // The server's own number of the failure; 0 where it has none.
  int Code() const { return code_; }

 private:
  data::DriverError::Kind kind_;
  int code_;
};

// A text that a user typed through a mask and that lacks what the mask requires.
class KVSHARE_API EDBEditError : public Exception {
 public:
  EDBEditError() : Exception("Invalid input value.  Use escape key to abandon changes") {}
  ~EDBEditError() override;
};

// Throws EDatabaseError with `message`, behind `Name: ` where the component has a name.
[[noreturn]] KVSHARE_API void DatabaseError(std::string_view message, const TComponent* component);

}  // namespace kvshare
