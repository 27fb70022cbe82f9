// The language that a user chose for one program.
// Internal header.
#pragma once

#include <string>

namespace kvshare {

// The text under the running program's full name in the user's key "Software\Borland\Locales":
// "EN" asks for English. "" where there is none.
std::string ProgramLocale();

}  // namespace kvshare
