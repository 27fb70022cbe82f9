// The fields of a data packet: its FIELD elements and what they mean.
// Internal header.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "kvshare/data/packet/packet.h"
#include "kvshare/data/records/fieldtypes.h"

namespace kvshare::data {

// A field, and how rows have its values.
struct PacketColumn {
  TFieldDef def;
  std::string attribute;  // its name in rows
  TFieldForm form = TFieldForm::None;
  std::int64_t least = 0;  // of integers
  std::int64_t most = 0;
};

// Throws PacketError: no such type, a width that is no number, a name that is missing.
PacketColumn ColumnOf(const PacketNode& field);

// The columns of a FIELDS element. Throws PacketError besides for nested fields, for two of a name,
// and for none or more than kMostFields.
inline constexpr std::size_t kMostFields = 4096;
std::vector<PacketColumn> ColumnsOf(const PacketNode& fields);

// The element of a field: as it was read where `earlier` has one of it, else a new one. Its columns
// are found by the attribute that ColumnOf gives. Throws EDBClient for a type that has no form.
std::vector<PacketNode> FieldNodes(const std::vector<TFieldDef>& fields, const PacketNode* earlier);

// Whether a row can have an attribute of that name.
bool CanBeAttribute(std::string_view name);

}  // namespace kvshare::data
