// The values of a statement's parameters, and the types under which the server gets them.
#pragma once

#include <libpq-fe.h>

#include <span>
#include <string>
#include <vector>

#include "drivers/common/statements.h"
#include "drivers/postgres/errors.h"
#include "kvshare/data/contract/driver.h"

namespace kvshare::postgres {

// The server finds the type of a number, a text or a Null from the place where it stands: an
// integer can go into a boolean there, a text into an enumeration. The types of other values are
// sent.
inline constexpr Oid kFromPlace = 0;

// As the client takes them, one for each mark of the statement.
class Values {
 public:
  // Throws DriverError for a text with a zero byte, and where there are not as many values as the
  // statement takes. The statement outlives it.
  Values(const drivers::TypedStatement& statement,
         std::span<const data::ParameterValue> parameters);
  Values(const Values&) = delete;
  Values& operator=(const Values&) = delete;

  const std::vector<Oid>& Types() const { return types_; }
  void SetTypes(const std::vector<Oid>& types) { types_ = types; }

  // The types that the values have by themselves.
  const std::vector<Oid>& OwnTypes() const { return ownTypes_; }
  bool AnyFromPlace() const;
  // Whether a statement that was prepared with these types takes the values.
  bool Fit(const std::vector<Oid>& types) const;
  // After the server could not do with the types: gives the value that it names its own type, or
  // else all of them. False where no value has another type than before.
  bool TakeOwnTypes(const PGresult* failure);

  Result Prepare(PGconn* connection, const std::string& name) const;
  Result RunPrepared(PGconn* connection, const std::string& name) const;
  bool Send(PGconn* connection) const;

 private:
  const drivers::TypedStatement& statement_;
  std::vector<std::string> texts_;
  std::vector<const char*> pointers_;
  std::vector<int> lengths_;
  std::vector<int> formats_;
  std::vector<Oid> types_;
  std::vector<Oid> ownTypes_;
};

// Whether the server could not find a type from a place, or found one that the statement cannot
// do with.
bool IsAboutTypes(const PGresult* failure);

}  // namespace kvshare::postgres
