#include "companion/sysinfo.h"

#include "kvshare/dates/date.h"
#include "kvshare/os/paths.h"
#include "kvshare/platform/win32.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/format.h"

namespace kvshare::companion {

namespace {

// A text of the system, whose letters the code page may lack.
std::string Home() {
  try {
    return Utf8ToCp874(os::HomeFolder());
  } catch (const Exception& e) {
    return e.Message();
  }
}

}  // namespace

std::string SysInfo() {
  constexpr std::string_view kBuddhist = "พ.ศ."_th;
  constexpr std::string_view kChristian = "ค.ศ."_th;
  constexpr std::string_view kText = "เครื่อง %s; ผู้ใช้ %s; KvShare %s; ปีเป็น %s; โฟลเดอร์ %s"_th;
  return Format(kText, {TKovraWin32::MyComputerName(), TKovraWin32::MyLoginName(), KVSHARE_VERSION,
                        TKovraDate::YearOffset() != 0 ? kBuddhist : kChristian, Home()});
}

}  // namespace kvshare::companion
