// The library as its host sees it: an entry in the host's module list from load to unload. The
// entry owns the language resource that the library loaded, so that unloading frees it.
// Internal header.
#pragma once

#include <memory>

#include "kvshare/messages/language.h"

namespace kvshare {

// nullptr while the Thai that is built in is in force.
const TLanguage* LanguageResource();
void ReplaceLanguageResource(std::unique_ptr<const TLanguage> language);

// The path of the library's file, "" where the system cannot tell it.
const std::string& LibraryPath();

}  // namespace kvshare
