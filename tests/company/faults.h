// Tables and reports for the tests of what goes wrong.
#pragma once

#include <initializer_list>
#include <string>

#include "kvshare/rtl/filebytes.h"
#include "kvshare/rtl/stringlist.h"
#include "tests/company/company.h"

namespace kvshare {

class Faults : public ServerCompany {
 protected:
  Faults() {
    if (connection_->Connected()) MakeTable("T", "ID INTEGER NOT NULL PRIMARY KEY, N VARCHAR(40)");
  }
  static TStringList Lines(std::initializer_list<std::string_view> lines) {
    TStringList list;
    for (const std::string_view line : lines) list.Add(line);
    return list;
  }
  std::string Log() const {
    return home_.Has("Log/event.log") ? ReadFileBytes("C:\\Log\\event.log") : "";
  }
};

}  // namespace kvshare
