// XML data packets: the files of client datasets.
//
// docs/datasets.md tells what a packet looks like. All texts here are code page 874.
// Internal header.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "kvshare/data/records/fieldtypes.h"
#include "kvshare/data/records/recordtable.h"

namespace kvshare::data {

using PacketAttributes = std::vector<std::pair<std::string, std::string>>;

// An element with all that is in it.
struct PacketNode {
  std::string name;
  PacketAttributes attributes;  // as they stand in the file
  std::vector<PacketNode> children;
  std::size_t line = 0;

  const std::string* Attribute(std::string_view attribute) const;
  void Set(std::string_view attribute, std::string value);
  void Remove(std::string_view attribute);
  const PacketNode* Child(std::string_view child) const;
  PacketNode& ChildOrNew(std::string_view child);
};

// What a packet has beside its records: written back with what is known here, and with what is not.
struct PacketShape {
  PacketNode root;  // DATAPACKET, without the rows
  // Attributes of rows that no field has: of the present record, of the one before its change.
  struct OfRow {
    PacketAttributes present;
    PacketAttributes original;
  };
  std::unordered_map<RowId, OfRow> rows;
};

// What is read.
struct Packet {
  std::vector<TFieldDef> fields;
  std::string primaryKey;    // names of fields, `;` between them
  std::string defaultOrder;  // likewise
  PacketShape shape;
  RecordTable table;  // with its log, without a key
};

// What is written.
struct PacketSource {
  const std::vector<TFieldDef>& fields;
  const RecordTable& table;
  const PacketShape& shape;
  const std::vector<int>& primaryKey;
  const std::vector<int>& defaultOrder;
};

// Throws EDBClient `Mismatch in datapacket.` with the line and the reason behind it.
Packet ReadPacket(std::string_view text);

// Throws EDBClient for a value and a type of field that a packet cannot hold.
std::string WritePacket(const PacketSource& source);

// --- What reader and writer share

// What is wrong with a packet, and in which line (0: in none).
class PacketError : public std::runtime_error {
 public:
  PacketError(std::size_t line, const std::string& reason)
      : std::runtime_error(reason), line_(line) {}
  ~PacketError() override;
  std::size_t Line() const { return line_; }

 private:
  std::size_t line_;
};

// Bits of a row's RowState.
struct RowState {
  static constexpr unsigned kOriginal = 1;
  static constexpr unsigned kDeleted = 2;
  static constexpr unsigned kInserted = 4;
  static constexpr unsigned kModified = 8;
  static constexpr unsigned kUnused = 32;
  static constexpr unsigned kNotInView = kOriginal | kDeleted | kUnused;
};
inline constexpr std::string_view kRowState = "RowState";
inline constexpr std::string_view kRowData = "ROWDATA";
// Attributes of PARAMS.
inline constexpr std::string_view kChangeLog = "CHANGE_LOG";
inline constexpr std::string_view kLastChanges = "LAST_CHANGES";  // ours
inline constexpr std::string_view kDelta = "DATASET_DELTA";
inline constexpr std::string_view kPrimaryKey = "PRIMARY_KEY";
inline constexpr std::string_view kDefaultOrder = "DEFAULT_ORDER";

// Whole numbers with blanks between them. Throws PacketError.
std::vector<std::size_t> NumbersOf(std::string_view text, std::size_t line);

// A text from a packet as messages show it: its beginning, in apostrophes.
std::string Shown(std::string_view text);

}  // namespace kvshare::data
