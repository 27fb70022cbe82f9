// What a mistyped word was meant to be.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kvshare::app {

// The word that differs the least, by at most two letters too many, missing, other or exchanged;
// "" where none is near.
std::string NearestWord(std::string_view typed, const std::vector<std::string>& words);

}  // namespace kvshare::app
