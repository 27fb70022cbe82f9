#include "kvshare/data/errors.h"

#include "kvshare/data/named.h"

namespace kvshare {

EServerError::~EServerError() = default;
EDBEditError::~EDBEditError() = default;

void DatabaseError(std::string_view message, const TComponent* component) {
  throw EDatabaseError(NamedMessage(message, component));
}

}  // namespace kvshare
