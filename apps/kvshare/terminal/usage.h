// Values of options and operands, read from what a user typed.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "apps/kvshare/terminal/commandline.h"
#include "kvshare/rtl/currency.h"
#include "kvshare/rtl/types.h"

namespace kvshare::app {

// Throws WrongUsage, which ends the command with exit status 2.
[[noreturn]] void RefuseUsage(std::string_view option, std::string_view reason);

// An option's or operand's value in code page 874, and as an amount. They refuse the usage.
std::string UsageText(std::string_view option, std::string_view utf8);
std::int64_t UsageInteger(std::string_view option, std::string_view utf8);  // decimal
Currency UsageAmount(std::string_view option, std::string_view utf8);

// Adds `--era` to a command.
void AddEra(Command command, std::string& era);

// The year offset of an era option: 543 or 0, the machine's for "". Refuses the usage.
Word UsageEra(std::string_view era);

}  // namespace kvshare::app
