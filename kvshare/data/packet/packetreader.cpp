// A packet from its XML: fields, rows, the log of changes.
#include <algorithm>
#include <charconv>
#include <cstring>
#include <optional>
#include <unordered_map>

#include "kvshare/data/packet/packet.h"
#include "kvshare/data/packet/packetfields.h"
#include "kvshare/data/packet/packetlog.h"
#include "kvshare/data/packet/packetvalues.h"
#include "kvshare/data/packet/packetxml.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::data {

namespace {

// Which column an attribute of a row belongs to. Rows have their attributes in the order of the
// fields, as a rule: the next one is looked at first.
class ColumnNames {
 public:
  explicit ColumnNames(const std::vector<PacketColumn>& columns) {
    for (const PacketColumn& column : columns) {
      byName_.emplace(UpperCase(column.attribute), static_cast<int>(names_.size()));
      names_.push_back(column.attribute);
    }
  }

  // -1: of none.
  int Find(std::string_view name) {
    constexpr std::size_t kNear = 4;  // Null has no attribute
    for (std::size_t i = next_; i < std::min(next_ + kNear, names_.size()); ++i) {
      if (names_[i] == name) return Found(i);
    }
    const auto found = byName_.find(UpperCase(name));
    return found == byName_.end() ? -1 : Found(static_cast<std::size_t>(found->second));
  }
  void Begin() { next_ = 0; }

 private:
  int Found(std::size_t column) {
    next_ = column + 1;
    return static_cast<int>(column);
  }

  std::vector<std::string> names_;
  std::unordered_map<std::string, int> byName_;
  std::size_t next_ = 0;
};

// Reads ROWDATA.
class RowReader {
 public:
  RowReader(std::vector<PacketColumn> columns, bool changesOnly)
      : columns_(std::move(columns)),
        names_(columns_),
        layout_(FormsOf(columns_)),
        changesOnly_(changesOnly) {
    buffer_.Resize(layout_.Columns());
  }

  void Read(const char** attributes, PacketText& text) {
    buffer_.Clear();
    names_.Begin();
    unsigned state = 0;
    PacketAttributes extras;
    for (; *attributes != nullptr; attributes += 2) {
      if (std::strcmp(attributes[0], kRowState.data()) == 0) {
        state = StateOf(attributes[1]);
        continue;
      }
      const int column = names_.Find(text(attributes[0]));
      if (column >= 0) {
        Put(column, text(attributes[1]));
      } else {
        std::string name(text(attributes[0]));
        extras.emplace_back(std::move(name), text(attributes[1]));
      }
    }
    const std::size_t row = rows_.records.size();
    if (!extras.empty()) rows_.extras.emplace_back(row, std::move(extras));
    if (changesOnly_ && (state & RowState::kModified) != 0) {
      rows_.given.emplace_back(row, Assigned());
    }
    rows_.records.emplace_back(layout_, buffer_);
    rows_.states.push_back(static_cast<unsigned char>(state));
  }

  const RecordLayout& Layout() const { return layout_; }
  const std::vector<PacketColumn>& Columns() const { return columns_; }
  PacketRows TakeRows() { return std::move(rows_); }

 private:
  static std::vector<TFieldForm> FormsOf(const std::vector<PacketColumn>& columns) {
    std::vector<TFieldForm> forms;
    forms.reserve(columns.size());
    for (const PacketColumn& column : columns) forms.push_back(column.form);
    return forms;
  }

  static unsigned StateOf(std::string_view text) {
    unsigned state = 0;
    const char* end = text.data() + text.size();
    const auto [last, error] = std::from_chars(text.data(), end, state);
    if (error != std::errc() || last != end || state > 0xFF) {
      throw PacketError(0, "there is no RowState " + Shown(text));
    }
    return state;
  }

  void Put(int at, std::string_view text) {
    const PacketColumn& column = columns_[static_cast<std::size_t>(at)];
    if (buffer_.Assigned(at)) {
      throw PacketError(0, "two values of the field " + Shown(column.def.Name));
    }
    if (!PutPacketValue(buffer_, at, column, text, scratch_)) {
      throw PacketError(0, "field " + Shown(column.def.Name) + ": " + Shown(text) + " is not " +
                               std::string(KindOfValue(column)));
    }
  }

  std::vector<int> Assigned() const {
    std::vector<int> columns;
    for (int i = 0; i < layout_.Columns(); ++i) {
      if (buffer_.Assigned(i)) columns.push_back(i);
    }
    return columns;
  }

  std::vector<PacketColumn> columns_;
  ColumnNames names_;
  RecordLayout layout_;
  bool changesOnly_;
  RecordBuffer buffer_;
  std::string scratch_;
  PacketRows rows_;
};

// Makes the tree of elements, except for the rows, which are read as they come.
class PacketReader : public PacketHandler {
 public:
  void Start(const char* name, const char** attributes, PacketText& text,
             const PacketPlace& place) override;
  void End() override;
  void Restart() override;

  Packet Finish();

 private:
  PacketNode& Open(std::string_view name);
  void BeginRows();

  PacketNode root_;
  std::vector<PacketNode*> path_;  // to the open element
  std::optional<RowReader> rows_;
  bool inRows_ = false;
  bool inRow_ = false;
};

void PacketReader::Start(const char* name, const char** attributes, PacketText& text,
                         const PacketPlace& place) {
  if (inRow_) throw PacketError(0, "a record inside a record");
  if (inRows_) {
    if (std::string_view(name) != "ROW") throw PacketError(0, "an element that is no ROW");
    inRow_ = true;
    return rows_->Read(attributes, text);
  }
  PacketNode& node = Open(text(name));
  node.line = place.Line();
  for (; *attributes != nullptr; attributes += 2) {
    std::string attribute(text(attributes[0]));
    node.attributes.emplace_back(std::move(attribute), text(attributes[1]));
  }
  if (path_.size() == 2 && node.name == kRowData) BeginRows();
}

PacketNode& PacketReader::Open(std::string_view name) {
  constexpr std::size_t kDeepest = 16;
  if (path_.empty()) {
    if (name != "DATAPACKET") throw PacketError(0, "no DATAPACKET but " + Shown(name));
    root_.name = name;
    path_.push_back(&root_);
    return root_;
  }
  if (path_.size() == kDeepest) throw PacketError(0, "elements too deep inside each other");
  PacketNode& parent = *path_.back();
  if (name == kRowData && path_.size() != 1) throw PacketError(0, "rows inside another element");
  const bool once = name == "METADATA" || name == "FIELDS" || name == "PARAMS" || name == kRowData;
  if (once && parent.Child(name) != nullptr) throw PacketError(0, "a second " + Shown(name));
  parent.children.push_back({std::string(name), {}, {}, 0});
  path_.push_back(&parent.children.back());
  return *path_.back();
}

void PacketReader::BeginRows() {
  const PacketNode* metadata = root_.Child("METADATA");
  const PacketNode* fields = metadata == nullptr ? nullptr : metadata->Child("FIELDS");
  if (fields == nullptr) throw PacketError(0, "no METADATA with FIELDS before the rows");
  const PacketNode* params = metadata->Child("PARAMS");
  const std::string* delta = params == nullptr ? nullptr : params->Attribute(kDelta);
  rows_.emplace(ColumnsOf(*fields), delta != nullptr && *delta == "1");
  inRows_ = true;
}

void PacketReader::End() {
  if (inRow_) {
    inRow_ = false;
    return;
  }
  inRows_ = false;
  path_.pop_back();
}

void PacketReader::Restart() {
  root_ = PacketNode();
  path_.clear();
  rows_.reset();
  inRows_ = inRow_ = false;
}

// The names of the fields whose numbers, from 1, an attribute has.
std::string NamesIn(const PacketNode& params, std::string_view attribute,
                    const std::vector<TFieldDef>& fields) {
  std::string names;
  const std::string* numbers = params.Attribute(attribute);
  if (numbers == nullptr) return names;
  for (const std::size_t number : NumbersOf(*numbers, params.line)) {
    if (number < 1 || number > fields.size()) {
      throw PacketError(params.line,
                        std::string(attribute) + " names field " + std::to_string(number));
    }
    const std::string& name = fields[number - 1].Name;
    if (name.find(';') != std::string::npos || Trim(name) != name) {
      throw PacketError(params.line, std::string(attribute) + " names the field " + Shown(name) +
                                         ", which no list of names can have");
    }
    if (!names.empty()) names += ';';
    names += name;
  }
  return names;
}

Packet PacketReader::Finish() {
  if (!rows_) BeginRows();
  Packet packet;
  packet.shape.root = std::move(root_);
  for (const PacketColumn& column : rows_->Columns()) packet.fields.push_back(column.def);
  if (const PacketNode* params = packet.shape.root.Child("METADATA")->Child("PARAMS")) {
    packet.primaryKey = NamesIn(*params, kPrimaryKey, packet.fields);
    packet.defaultOrder = NamesIn(*params, kDefaultOrder, packet.fields);
  }
  BuildTable(packet, rows_->Layout(), rows_->TakeRows());
  return packet;
}

}  // namespace

PacketError::~PacketError() = default;

std::string Shown(std::string_view text) {
  constexpr std::size_t kMost = 40;
  std::string shown = "'" + std::string(text.substr(0, kMost));
  return shown += text.size() > kMost ? "...'" : "'";
}

std::vector<std::size_t> NumbersOf(std::string_view text, std::size_t line) {
  std::vector<std::size_t> numbers;
  for (text = Trim(text); !text.empty(); text = TrimLeft(text)) {
    const std::string_view word = text.substr(0, text.find_first_of(" \t\r\n"));
    std::size_t number = 0;
    const char* end = word.data() + word.size();
    const auto [last, error] = std::from_chars(word.data(), end, number);
    if (error != std::errc() || last != end) throw PacketError(line, Shown(word) + " is no number");
    numbers.push_back(number);
    text.remove_prefix(word.size());
  }
  return numbers;
}

Packet ReadPacket(std::string_view text) {
  constexpr std::string_view kBinary = "\x96\x19\xE0\xBD";
  try {
    if (text.starts_with(kBinary)) {
      throw PacketError(0, "It is in the binary form, and only XML is read.");
    }
    PacketReader reader;
    ReadPacketXml(text, reader);
    return reader.Finish();
  } catch (const PacketError& e) {
    std::string message = "Mismatch in datapacket. ";
    if (e.Line() != 0) message += "Line " + std::to_string(e.Line()) + ": ";
    throw EDBClient(message + e.what(), 0);
  }
}

}  // namespace kvshare::data
