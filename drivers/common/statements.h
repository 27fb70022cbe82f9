// Statements with parameters in the form that a client wants them.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "kvshare/data/contract/driver.h"

namespace kvshare::drivers {

// With a `?` in each place.
std::string MarkedByQuestions(const data::StatementParts& statement);

// A value for each place, for clients that know no parameter with several places. Throws
// DriverError where there are not as many values as the statement takes.
std::vector<data::ParameterValue> ValuesByPlace(const std::vector<std::size_t>& places,
                                                std::span<const data::ParameterValue> parameters);

// Throws likewise.
void CheckParameters(std::size_t wanted, std::size_t given);

// What a mark takes: a parameter's value or, for `:P IS NULL` (nulltests.h), whether it is Null.
struct Mark {
  std::size_t parameter = 0;
  bool nullTest = false;

  bool operator==(const Mark&) const = default;
};

// Whether the server wants to know the type of a parameter that is tested for Null, and finds none:
// the mark is a SMALLINT then.
enum class NullTests : bool { Plain, Typed };

// A statement for a server that wants to know the types of marks.
struct TypedStatement {
  std::string sql;
  std::vector<Mark> marks;
  std::size_t parameters = 0;
};

// The type that a value is cast to; "" where the server chooses.
using TypeOfValue = std::string (*)(const data::ParameterValue&);

// With a `?` in each place, each of them a mark of its own; with values, inside a CAST to the type
// of its value. Throws as ValuesByPlace does.
TypedStatement TypedByQuestions(const data::StatementParts& statement);
TypedStatement TypedByQuestions(const data::StatementParts& statement,
                                std::span<const data::ParameterValue> parameters,
                                TypeOfValue typeOf, NullTests nullTests = NullTests::Typed);
// With `$1`, `$2` and so on, a mark's number in each of its places.
TypedStatement TypedByNumbers(const data::StatementParts& statement);

// The value for a mark: 0 where a parameter that is tested for Null is not.
const data::ParameterValue& ValueOf(const Mark& mark,
                                    std::span<const data::ParameterValue> parameters);
// A value for each mark. Throws as ValuesByPlace does.
std::vector<data::ParameterValue> ValuesByMark(const TypedStatement& statement,
                                               std::span<const data::ParameterValue> parameters);

}  // namespace kvshare::drivers
