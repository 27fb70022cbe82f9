// Statements with parameters in the form that a client wants them.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "kvshare/data/driver.h"

namespace kvshare::drivers {

// With a `?` in each place.
std::string MarkedByQuestions(const data::StatementParts& statement);
// With `$1`, `$2` and so on, the number of the parameter in each of its places.
std::string MarkedByNumbers(const data::StatementParts& statement);

// With a `?` in each place, inside a CAST to the type that `typeOf` gives for the place's value; ""
// is none.
std::string MarkedByTypes(const data::StatementParts& statement,
                          std::span<const data::ParameterValue> valuesByPlace,
                          std::string (*typeOf)(const data::ParameterValue&));

// A value for each place, for clients that know no parameter with several places. Throws
// DriverError where there are not as many values as the statement takes.
std::vector<data::ParameterValue> ValuesByPlace(const std::vector<std::size_t>& places,
                                                std::span<const data::ParameterValue> parameters);

// Throws likewise.
void CheckParameters(std::size_t wanted, std::size_t given);

}  // namespace kvshare::drivers
