// The server that a test runs beside (tests/servers/with-server), as a process that it may kill.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace kvshare {

// The lines of a file of parameters, as key and value.
std::vector<std::pair<std::string, std::string>> ServerLines(const std::string& file);

// The file of the server that this program runs beside; "" where there is none.
std::string ServerFile();

int PidOfFile(const std::string& file);

// Kills the server as a power cut would, and returns when it is gone; runs it again on its data,
// and returns when it answers.
void KillServer();
void RunServerAgain();

}  // namespace kvshare
