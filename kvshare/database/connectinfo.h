// The company that a program works on: from its name to everything that the shared settings tell of
// it.
#pragma once

#include <string>
#include <string_view>

#include "kvshare/export.h"

namespace kvshare {

// The list of companies: "BConnect.TXT" in the folder of TKovraRegistry's
// GetKovraAppDataPath, a data packet with one record a company.
KVSHARE_API std::string GetCompanyListFileName();

// Fills the connection globals (globals.h) for a company, loads its SQL dialect and makes its log
// folder. `name` is looked for letter by letter in the list; the first of doubles counts. Without a
// list the name is a connection of the connection file, and everything else lies in the program's
// folder.
//
// A message box reports a company that is not in the list, and one whose connection is not in the
// connection file. The globals then keep their values, except that a missing connection leaves
// KovraDataBaseName and KovraAliasName set to the new names.
//
// Throws EDBClient and EInOutError for a list that cannot be read, EDatabaseError
// `Field '%s' not found` for one that lacks a field, EInOutError for a folder that cannot be made.
KVSHARE_API void ReadDbmsConnectInfo(std::string_view name);

// Empties what is known of the company and its user. The user's name, the driver's name, the
// workstation, the key generator and the SQL dialect stay.
KVSHARE_API void ClearDBMSConnectInfo();

}  // namespace kvshare
