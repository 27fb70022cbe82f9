// Where the parameters of a statement for SQLite stand.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "kvshare/data/contract/driver.h"

namespace kvshare::drivers::sqlite {

// What a place is compared by, as far as the text around it tells.
enum class PlaceKind : std::uint8_t {
  Stored,   // behind the `=` of SET
  AtLeast,  // x >= place, x < place, x BETWEEN place; place <= x, place > x
  Above,    // x > place, x <= place, x BETWEEN y AND place; place < x, place >= x
  Equal,    // x = place, and nothing that binds closer behind it
  Unequal,  // x <> place, likewise
  Listed,   // x IN (place, place)
  Other,
};

struct Place {
  PlaceKind kind = PlaceKind::Other;
  std::size_t operatorAt = 0;  // of Equal and Unequal: in the text before the place
};

// Of the places, in order. Quoted texts and names, and comments, are passed over.
std::vector<Place> PlacesOf(const data::StatementParts& statement);

// Whether rows of several SELECTs are put together (UNION and the like): the server tells the types
// of the first one alone.
bool IsCompound(std::string_view sql);

}  // namespace kvshare::drivers::sqlite
