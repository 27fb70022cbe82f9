// What a program of the suite finds on this machine, and what keeps it from working.
#pragma once

#include <string>
#include <vector>

namespace kvshare::app {

// One fact. Texts are UTF-8.
struct Finding {
  std::string topic;  // "drive C:"
  std::string value;  // as it is now
  std::string mend;   // what to do about it; "" when nothing needs to be done
};

// Everything, in the order in which a program meets it. Nothing is changed on the disk.
std::vector<Finding> Examine();

}  // namespace kvshare::app
