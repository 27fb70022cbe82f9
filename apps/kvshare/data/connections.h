// Connections of the connection file, as the commands use them.
#pragma once

#include <functional>
#include <string>

#include "apps/kvshare/terminal/commandline.h"
#include "kvshare/data/sql/sqlconnection.h"

namespace kvshare::app {

// Adds `--connect NAME`, which a command needs.
void AddConnect(Command command, std::string& name);

// Whether the connection file has that name (code page 874). Where it has not, throws with the
// machine's own name of the file and with what to do: it is missing, is not in code page 874, or
// has other names.
void RequireConnection(const std::string& alias);
// The first two of these.
void RequireConnectionFile();

// Opens the connection of that name (UTF-8, as typed). Throws Exception with the text of the
// library's error box, or as RequireConnection.
void OpenConnection(TSQLConnection& connection, const std::string& name);

// What the library showed in error boxes while `work` ran is thrown as one Exception; the statuses
// of the commands come from there.
void WithoutBoxes(const std::function<void()>& work);

}  // namespace kvshare::app
