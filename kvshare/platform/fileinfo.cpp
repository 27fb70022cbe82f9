#include "kvshare/platform/fileinfo.h"

#include "kvshare/rtl/format.h"

namespace kvshare {

TStringList* NamedInfoList = nullptr;

std::unique_ptr<TStringList> MakeNamedInfoList() {
  constexpr std::string_view kNoCompany;  // no version resource is read
  auto list = std::make_unique<TStringList>();
  list->AddObject(Format("%s=%s", {"CompanyName", kNoCompany}), nullptr);
  return list;
}

}  // namespace kvshare
