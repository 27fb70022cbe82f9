#include "kvshare/platform/verinfo.h"

#include "kvshare/platform/fileinfo.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare {

TKovraRegistry* MyKovraRegistry = nullptr;

namespace {

std::string NamedInfoOr(std::string_view name, std::string_view fallback) {
  const std::string_view value =
      NamedInfoList == nullptr ? std::string_view() : NamedInfoList->Values(name);
  return std::string(Trim(value).empty() ? fallback : value);
}

}  // namespace

TKovraRegistry::TKovraRegistry()
    : rootKey_(Format(R"(Software\%s\%s v%s)", {NamedInfoOr("CompanyName", "Undefined CompanyName"),
                                                NamedInfoOr("ProductName", "Undefined ProductName"),
                                                NamedInfoOr("ProductVersion", "0.0")})) {}

}  // namespace kvshare
