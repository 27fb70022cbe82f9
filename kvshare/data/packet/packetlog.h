// The log of changes as a data packet has it.
//
// CHANGE_LOG has three numbers a change: a row, the row that it takes the place of (0: none), and
// what happened to it, as a bit of RowState. Rows count from 1 in the order of the packet. Changes
// stand in the order of the rows' first changes, as they are applied; LAST_CHANGES has the rows in
// the order of their last ones, as they are taken back.
// Internal header.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "kvshare/data/packet/packet.h"
#include "kvshare/data/records/record.h"

namespace kvshare::data {

// The rows of a packet before their log is looked at.
struct PacketRows {
  std::vector<Record> records;
  std::vector<unsigned char> states;
  std::vector<std::pair<std::size_t, PacketAttributes>> extras;  // by row, ascending
  // Of a packet of changes alone: the columns that a changed row has, all others are as before.
  std::vector<std::pair<std::size_t, std::vector<int>>> given;
};

// Makes the table of a packet. Throws PacketError for a log that does not fit the rows.
void BuildTable(Packet& packet, const RecordLayout& layout, PacketRows rows);

// The numbers of a table's log, and where its rows stand: a changed row behind its original one.
std::string ChangeLogOf(const RecordTable& table);
// The changed rows in the order of their last changes; "" where that is the order of the log.
std::string LastChangesOf(const RecordTable& table);

}  // namespace kvshare::data
