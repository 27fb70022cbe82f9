// Parameters of a statement, for servers that number them.
#pragma once

#include <string>
#include <string_view>

namespace kvshare::drivers {

// Every `?` that stands for a parameter becomes `$1`, `$2` and so on. Literals ('..', E'..',
// $tag$..$tag$), quoted names and comments stay as they are, by PostgreSQL's rules.
std::string NumberedPlaceholders(std::string_view sql);

}  // namespace kvshare::drivers
