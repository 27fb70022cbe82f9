// What a shop's support asks for first.
#pragma once

#include <string>

namespace kvshare::companion {

// One line: the computer's name, the user's, the version of the library, the era of dates, the
// folder that KVSHARE_HOME names.
std::string SysInfo();

}  // namespace kvshare::companion
