#include "kvshare/rtl/localtime.h"

namespace kvshare::inline rtl {

std::tm LocalTimeOf(std::time_t moment) {
  std::tm local{};
  ::localtime_r(&moment, &local);
  return local;
}

}  // namespace kvshare::inline rtl
