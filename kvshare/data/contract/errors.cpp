#include "kvshare/data/contract/errors.h"

#include "kvshare/data/contract/named.h"

namespace kvshare {

EServerError::~EServerError() = default;
EDBEditError::~EDBEditError() = default;

void DatabaseError(std::string_view message, const TComponent* component) {
  throw EDatabaseError(NamedMessage(message, component));
}

}  // namespace kvshare
