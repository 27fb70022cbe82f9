#include "apps/kvshare/terminal/usage.h"

#include "apps/receipts/amounts.h"
#include "kvshare/dates/date.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare::app {

void RefuseUsage(std::string_view option, std::string_view reason) {
  throw WrongUsage(std::string(option).append(": ").append(reason));
}

std::string UsageText(std::string_view option, std::string_view utf8) {
  try {
    return Utf8ToCp874(utf8);
  } catch (const EConvertError& e) {
    RefuseUsage(option, e.Message());
  }
}

// The option parser would read 010 as eight.
std::int64_t UsageInteger(std::string_view option, std::string_view utf8) {
  try {
    return StrToInt64(UsageText(option, utf8));
  } catch (const EConvertError& e) {
    RefuseUsage(option, Cp874ToUtf8Lossy(e.Message()));
  }
}

Currency UsageAmount(std::string_view option, std::string_view utf8) {
  try {
    return receipts::ParseAmount(UsageText(option, utf8));
  } catch (const EConvertError& e) {
    RefuseUsage(option, Cp874ToUtf8Lossy(e.Message()));
  }
}

void AddEra(Command command, std::string& era) {
  command
      .AddOption("--era", era, "Years of the Buddhist era (543) or not (0); default: the machine's")
      .TypeName("543|0");
}

Word UsageEra(std::string_view era) {
  if (era.empty()) return static_cast<Word>(TKovraDate::YearOffset());
  if (era == "543") return kBuddhistEraOffset;
  if (era == "0") return 0;
  RefuseUsage("--era", "is 543 or 0");
}

}  // namespace kvshare::app
