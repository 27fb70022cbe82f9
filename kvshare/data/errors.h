// Errors of the database layer.
#pragma once

#include <string>
#include <string_view>

#include "kvshare/data/driver.h"
#include "kvshare/export.h"
#include "kvshare/rtl/component.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare {

// What a database server, or the client library in front of it, refused. The message is
// `SQL Server Error: ` and the server's own text.
class KVSHARE_API EServerError : public EDatabaseError {
 public:
  EServerError(std::string_view message, data::DriverError::Kind kind)
      : EDatabaseError(message), kind_(kind) {}
  ~EServerError() override;

  // The server went away; the connection has to be closed and opened again.
  bool ConnectionLost() const { return kind_ == data::DriverError::Kind::ConnectionLost; }
  // Somebody else holds what is needed: the same may succeed later.
  bool Busy() const { return kind_ == data::DriverError::Kind::Busy; }
  // The transaction was undone in favour of another one.
  bool Conflict() const { return kind_ == data::DriverError::Kind::Conflict; }

 private:
  data::DriverError::Kind kind_;
};

// Throws EDatabaseError with `message`, behind `Name: ` where the component has a name.
[[noreturn]] KVSHARE_API void DatabaseError(std::string_view message, const TComponent* component);

}  // namespace kvshare
