// The XML of a packet.
#include <algorithm>

#include "kvshare/data/packet/packet.h"
#include "kvshare/data/packet/packetfields.h"
#include "kvshare/data/packet/packetlog.h"
#include "kvshare/data/packet/packetvalues.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/format.h"

namespace kvshare::data {

namespace {

void AppendAttribute(std::string& out, std::string_view name, std::string_view value) {
  out.append(" ").append(name).append("=\"");
  AppendEscaped(out, value);
  out.push_back('"');
}

class RowWriter {
 public:
  RowWriter(std::string& out, const PacketSource& source, const std::vector<PacketNode>& fields)
      : out_(out), source_(source), layout_(source.table.Layout()) {
    for (const PacketNode& field : fields) {
      openings_.push_back(" " + ColumnOf(field).attribute + "=\"");
    }
  }

  void WriteAll() {
    const RecordTable& table = source_.table;
    const std::size_t begin = out_.size();
    for (RowId row = 0; row < table.Rows(); ++row) {
      if (row == kSample) ReserveFor(table.Rows(), out_.size() - begin);
      if (!table.At(row)) continue;
      switch (table.Status(row)) {
        case TUpdateStatus::usUnmodified:
          Write(row, table.At(row), 0);
          break;
        case TUpdateStatus::usInserted:
          Write(row, table.At(row), RowState::kInserted);
          break;
        case TUpdateStatus::usModified:
          Write(row, *table.Original(row), RowState::kOriginal);
          Write(row, table.At(row), RowState::kModified);
          break;
        case TUpdateStatus::usDeleted:
          Write(row, *table.Original(row), RowState::kDeleted);
          break;
      }
    }
  }

 private:
  static constexpr RowId kSample = 1000;

  // Room for all rows, as the first ones are: a text that grows is copied again and again.
  void ReserveFor(std::size_t rows, std::size_t sizeOfSample) {
    const std::size_t expected = sizeOfSample / kSample * rows;
    out_.reserve(out_.size() + expected + expected / 8);
  }

  void Write(RowId row, const Record& record, unsigned state) {
    out_ += "<ROW";
    if (state != 0) out_.append(" RowState=\"").append(std::to_string(state)).append("\"");
    for (int i = 0; i < layout_.Columns(); ++i) {
      if (record.IsNull(i)) continue;
      out_ += openings_[static_cast<std::size_t>(i)];
      const Cell value = record.At(layout_, i);
      if (!IsInRange(i, value) || !AppendPacketValue(out_, layout_.Form(i), value)) {
        RefuseValue(i, value);
      }
      out_.push_back('"');
    }
    if (!source_.shape.rows.empty()) WriteExtras(row, state);
    out_ += "/>";
  }

  void WriteExtras(RowId row, unsigned state) {
    const auto found = source_.shape.rows.find(row);
    if (found == source_.shape.rows.end()) return;
    const PacketShape::OfRow& extras = found->second;
    for (const auto& [name, value] :
         state == RowState::kOriginal ? extras.original : extras.present) {
      AppendAttribute(out_, name, value);
    }
  }

  // A server may have greater numbers than the type that a program has declared.
  bool IsInRange(int column, const Cell& value) const {
    const bool whole = layout_.Form(column) == TFieldForm::Integer;
    const auto at = static_cast<std::size_t>(column);
    return !whole || WholeRangeOf(source_.fields[at].DataType).Has(value.integer);
  }

  [[noreturn]] void RefuseValue(int column, const Cell& value) const {
    const std::string& name = source_.fields[static_cast<std::size_t>(column)].Name;
    const bool real = value.kind == CellKind::Real;
    const std::string text = real                              ? FloatToStr(value.real)
                             : value.kind == CellKind::Integer ? IntToStr(value.integer)
                                                               : Shown(value.text);
    throw EDBClient(Format("Field '%s': %s is no value that a data packet can hold", {name, text}),
                    0);
  }

  std::string& out_;
  const PacketSource& source_;
  const RecordLayout& layout_;
  std::vector<std::string> openings_;  // ` NAME="`
};

std::string NumbersOfFields(const std::vector<int>& columns) {
  std::string numbers;
  for (const int column : columns) {
    if (!numbers.empty()) numbers += ' ';
    numbers += std::to_string(column + 1);
  }
  return numbers;
}

void SetOrRemove(PacketNode& params, std::string_view attribute, std::string value) {
  if (value.empty()) {
    params.Remove(attribute);
  } else {
    params.Set(attribute, std::move(value));
  }
}

// The elements around the rows, with what is true of them now.
PacketNode TreeOf(const PacketSource& source) {
  PacketNode root = source.shape.root;
  if (root.name.empty()) {
    root.name = "DATAPACKET";
    root.Set("Version", "2.0");
  }
  PacketNode& metadata = root.ChildOrNew("METADATA");
  PacketNode& fields = metadata.ChildOrNew("FIELDS");
  fields.children = FieldNodes(source.fields, &fields);
  PacketNode& params = metadata.ChildOrNew("PARAMS");
  SetOrRemove(params, kChangeLog, ChangeLogOf(source.table));
  SetOrRemove(params, kLastChanges, LastChangesOf(source.table));
  SetOrRemove(params, kPrimaryKey, NumbersOfFields(source.primaryKey));
  SetOrRemove(params, kDefaultOrder, NumbersOfFields(source.defaultOrder));
  params.Remove(kDelta);  // every row is written whole
  root.ChildOrNew(kRowData);
  return root;
}

template <typename Rows>
void AppendNode(std::string& out, const PacketNode& node, Rows rows) {
  out.append("<").append(node.name);
  for (const auto& [name, value] : node.attributes) AppendAttribute(out, name, value);
  const bool holdsRows = node.name == kRowData;
  if (node.children.empty() && !holdsRows) {
    out += "/>";
    return;
  }
  out.push_back('>');
  for (const PacketNode& child : node.children) AppendNode(out, child, rows);
  if (holdsRows) rows();
  out.append("</").append(node.name).append(">");
}

}  // namespace

const std::string* PacketNode::Attribute(std::string_view attribute) const {
  for (const auto& [key, value] : attributes) {
    if (key == attribute) return &value;
  }
  return nullptr;
}

void PacketNode::Set(std::string_view attribute, std::string value) {
  for (auto& [key, present] : attributes) {
    if (key == attribute) {
      present = std::move(value);
      return;
    }
  }
  attributes.emplace_back(attribute, std::move(value));
}

void PacketNode::Remove(std::string_view attribute) {
  std::erase_if(attributes, [attribute](const auto& entry) { return entry.first == attribute; });
}

const PacketNode* PacketNode::Child(std::string_view child) const {
  const auto found = std::ranges::find(children, child, &PacketNode::name);
  return found == children.end() ? nullptr : &*found;
}

PacketNode& PacketNode::ChildOrNew(std::string_view child) {
  const auto found = std::ranges::find(children, child, &PacketNode::name);
  if (found != children.end()) return *found;
  children.push_back({std::string(child), {}, {}, 0});
  return children.back();
}

std::string WritePacket(const PacketSource& source) {
  const PacketNode root = TreeOf(source);
  const PacketNode& fields = *root.Child("METADATA")->Child("FIELDS");
  std::string out = R"(<?xml version="1.0" standalone="yes"?>  )";
  AppendNode(out, root, [&] { RowWriter(out, source, fields.children).WriteAll(); });
  return out;
}

}  // namespace kvshare::data
