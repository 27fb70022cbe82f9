// Connections of the connection file, as the commands use them.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <string>

#include "kvshare/data/sqlconnection.h"

namespace kvshare::app {

// Adds `--connect NAME`, which a command needs.
void AddConnect(CLI::App& command, std::string& name);

// Opens the connection of that name (UTF-8, as typed). Throws Exception with the text of the
// library's error box, or that the connection file has no such name.
void OpenConnection(TSQLConnection& connection, const std::string& name);

// What the library showed in error boxes while `work` ran is thrown as one Exception; the statuses
// of the commands come from there.
void WithoutBoxes(const std::function<void()>& work);

}  // namespace kvshare::app
