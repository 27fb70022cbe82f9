// Values of a data packet between the text of an attribute and a record.
// Internal header.
#pragma once

#include <string>
#include <string_view>

#include "kvshare/data/packet/packetfields.h"
#include "kvshare/data/records/record.h"

namespace kvshare::data {

// Puts what the text says, in code page 874, into a column. "" is a text; of other types it is
// Null. False, and nothing put, for a text that is no value of the column's type. `scratch` is room
// for bytes, kept from one call to the next.
bool PutPacketValue(RecordBuffer& buffer, int at, const PacketColumn& column, std::string_view text,
                    std::string& scratch);

// What the text of a column should have been: "a whole number".
std::string_view KindOfValue(const PacketColumn& column);

// A value that is not Null as a packet has it, escaped. False, with a part of it appended, for what
// a packet cannot hold: a date past the year 9999, NaN, what is no value of its type.
bool AppendPacketValue(std::string& out, TFieldForm form, const Cell& value);

// A text inside an attribute: letters above ASCII and control characters by number, `&` and the
// other marks by name.
void AppendEscaped(std::string& out, std::string_view text);

}  // namespace kvshare::data
