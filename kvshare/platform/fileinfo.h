// Version information of the running program.
#pragma once

#include <memory>

#include "kvshare/export.h"
#include "kvshare/rtl/stringlist.h"

namespace kvshare {

// The named values of the running program's version resource that have been asked for, `name=value`
// each; nullptr before Initialize and after Finalize. It begins with "CompanyName=" and the
// program's company name, which is empty for a program without a version resource. Version
// resources themselves are not read yet, so every program counts as one without.
extern KVSHARE_API TStringList* NamedInfoList;

// What NamedInfoList holds at start.
std::unique_ptr<TStringList> MakeNamedInfoList();

}  // namespace kvshare
