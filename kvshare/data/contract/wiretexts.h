// Texts between code page 874 and the UTF-8 of the driver contract.
// Internal header.
#pragma once

#include <string>
#include <string_view>

#include "kvshare/rtl/component.h"

namespace kvshare::data {

// A statement as it goes to the driver. Throws EDatabaseError
// `Invalid byte XX at position P for code page 874` for a zero byte and one that is no letter.
std::string StatementText(std::string_view cp874, const TComponent* component);

// What a server says, for a person: letters that the code page lacks, and bytes that are no UTF-8,
// become `?`.
std::string ServerText(std::string_view utf8);

}  // namespace kvshare::data
