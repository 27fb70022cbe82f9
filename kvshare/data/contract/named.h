// A message behind the name of the component that raises it.
// Internal header.
#pragma once

#include <string>
#include <string_view>

#include "kvshare/rtl/component.h"

namespace kvshare {

inline std::string NamedMessage(std::string_view message, const TComponent* component) {
  std::string text;
  if (component != nullptr && !component->Name().empty()) text = component->Name() + ": ";
  return text.append(message);
}

}  // namespace kvshare
