#include "kvshare/os/locale.h"

#include <string_view>

#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/environment.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::os {

std::string EraText() {
  constexpr std::string_view kBuddhistEra = "พ.ศ."_th;
  const std::string_view chosen = Environment("KVSHARE_ERA");
  const bool thai = SameText(UserLocale().substr(0, 2), "th");
  const bool buddhist = chosen == "543" || (chosen != "0" && thai);
  return std::string(buddhist ? kBuddhistEra : std::string_view());
}

}  // namespace kvshare::os
