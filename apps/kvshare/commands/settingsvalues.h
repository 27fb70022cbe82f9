// Keys and values of the settings store as a terminal and as JSON show them.
#pragma once

#include <string>
#include <string_view>

#include "kvshare/os/registry/registry.h"

namespace kvshare::app {

// `HKCU\Software\Acme`.
std::string ShownKey(os::Hive hive, std::string_view path);

// text, integer, binary, ...; `kind 9` for one without a name.
std::string KindName(os::ValueKind kind);

// A value for a reader, in UTF-8: texts as they are, integers in decimal, bytes in hexadecimal, the
// texts of a list with `;` between. Bytes without a letter become U+FFFD.
std::string ShownData(const os::RegistryValue& value);

// The text without control characters, which would break a line or steer a terminal: \n, \t, \x1B.
std::string OnOneLine(std::string_view utf8);

// {"key":...,"name":...,"kind":...,"value":...}; an integer's value is a number.
void AppendValueObject(std::string& out, std::string_view shownKey, const os::RegistryValue& value);

}  // namespace kvshare::app
