// Version information of programs.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "kvshare/export.h"
#include "kvshare/rtl/stringlist.h"

namespace kvshare {

// The named values of the running program's version resource that have been asked for, `name=value`
// each; nullptr before Initialize and after Finalize. It begins with "CompanyName=" and the
// program's company name, which is empty for a program without a version resource.
extern KVSHARE_API TStringList* NamedInfoList;

// What NamedInfoList holds at start.
std::unique_ptr<TStringList> MakeNamedInfoList();

// `major.minor.release.build` of a file; "" when it has no version resource or does not exist. A
// file that cannot be read shows a message box and gives "".
KVSHARE_API std::string GetThisResourceFileVersion(std::string_view fileName);

// The product version in the suite's other style: 5.1.2.3 gives 05.010203. "" for a missing file
// and for one without a version resource; "Cannot get version information " and the reason for one
// that cannot be read.
KVSHARE_API std::string GetThisResourceProductVersion(std::string_view fileName);

// A named string of the running program's version resource, "" when it has none. Values that were
// found are kept in NamedInfoList.
KVSHARE_API std::string GetNamedInfo(std::string_view name);

}  // namespace kvshare
