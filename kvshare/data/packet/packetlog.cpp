#include "kvshare/data/packet/packetlog.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace kvshare::data {

namespace {

constexpr std::size_t kPerChange = 3;  // row, the row before it, kind

// What the log says of a row of the packet. Rows count from 1, 0 is no row.
struct Link {
  std::size_t earlier = 0;  // the row that it took the place of
  std::size_t later = 0;
  std::size_t newest = 0;  // the last of all that took its place
  bool inserted = false;
  bool deleted = false;
  bool logged = false;
};

class LogReader {
 public:
  LogReader(const PacketNode& params, const PacketRows& rows);

  bool IsEmpty() const { return numbers_.empty(); }
  const Link& Of(std::size_t row) const { return links_[row]; }
  std::size_t OldestOf(std::size_t row) const;
  // The newest rows of what the log tells of, in its order, each once.
  std::vector<std::size_t> Changed();
  // The rows in the order of their last changes, where the packet tells it.
  const std::vector<std::size_t>& LastChanges() const { return lastChanges_; }

 private:
  [[noreturn]] void Refuse(std::size_t row, std::string_view why) const;
  void Chain(std::size_t row, std::size_t before);
  void FindNewest(std::size_t newest);

  std::size_t line_;
  const std::vector<unsigned char>& states_;
  std::vector<std::size_t> numbers_;
  std::vector<std::size_t> lastChanges_;
  std::vector<Link> links_;
};

void LogReader::Refuse(std::size_t row, std::string_view why) const {
  throw PacketError(line_, "CHANGE_LOG: row " + std::to_string(row) + " " + std::string(why));
}

LogReader::LogReader(const PacketNode& params, const PacketRows& rows)
    : line_(params.line), states_(rows.states) {
  const std::string* log = params.Attribute(kChangeLog);
  if (log != nullptr) numbers_ = NumbersOf(*log, line_);
  if (numbers_.empty()) return;
  if (numbers_.size() % kPerChange != 0) throw PacketError(line_, "CHANGE_LOG is not in threes");
  links_.resize(states_.size() + 1);
  for (std::size_t i = 0; i < numbers_.size(); i += kPerChange) {
    const std::size_t row = numbers_[i];
    const std::size_t before = numbers_[i + 1];
    const std::size_t kind = numbers_[i + 2];
    if (row < 1 || row > states_.size()) Refuse(row, "is not there");
    if (before > states_.size()) Refuse(before, "is not there");
    if (before != 0) Chain(row, before);
    if (kind == RowState::kInserted) {
      links_[row].inserted = true;
    } else if (kind == RowState::kDeleted) {
      links_[row].deleted = true;
    } else if (kind != RowState::kModified) {
      Refuse(row, "has an unknown kind of change");
    } else if (before == 0) {
      Refuse(row, "is a change of none");
    }
  }
  for (std::size_t row = 1; row < links_.size(); ++row) {
    if (links_[row].later == 0) FindNewest(row);
  }
  // Another program may have changed the log and left this behind: what it names is there or not.
  if (const std::string* last = params.Attribute(kLastChanges)) {
    lastChanges_ = NumbersOf(*last, line_);
    std::erase_if(lastChanges_,
                  [this](std::size_t row) { return row < 1 || row > states_.size(); });
  }
}

// The one that is marked as the original comes first, whichever way round they are named.
void LogReader::Chain(std::size_t row, std::size_t before) {
  const auto original = [this](std::size_t of) {
    return (states_[of - 1] & RowState::kOriginal) != 0;
  };
  if (original(row) && !original(before)) std::swap(row, before);
  if (row == before || links_[row].earlier != 0 || links_[before].later != 0) {
    Refuse(row, "is named twice");
  }
  links_[row].earlier = before;
  links_[before].later = row;
}

// What goes round in a circle has no newest row, and keeps none.
void LogReader::FindNewest(std::size_t newest) {
  for (std::size_t row = newest; row != 0; row = links_[row].earlier) {
    links_[row].newest = newest;
    links_[newest].inserted = links_[newest].inserted || links_[row].inserted;
    links_[newest].deleted = links_[newest].deleted || links_[row].deleted;
  }
  if ((states_[newest - 1] & RowState::kDeleted) != 0) links_[newest].deleted = true;
}

std::size_t LogReader::OldestOf(std::size_t row) const {
  while (links_[row].earlier != 0) row = links_[row].earlier;
  return row;
}

std::vector<std::size_t> LogReader::Changed() {
  std::vector<std::size_t> changed;
  for (std::size_t i = 0; i < numbers_.size(); i += kPerChange) {
    const std::size_t newest = links_[numbers_[i]].newest;
    if (newest == 0) Refuse(numbers_[i], "is a change of itself");
    if (std::exchange(links_[newest].logged, true)) continue;
    changed.push_back(newest);
  }
  return changed;
}

// Changes alone say only what became different.
void FillGaps(PacketRows& rows, const RecordLayout& layout, const LogReader& log) {
  RecordBuffer buffer;
  buffer.Resize(layout.Columns());
  for (const auto& [at, given] : rows.given) {
    std::size_t before = log.IsEmpty() ? 0 : log.Of(at + 1).earlier;
    const bool behind = at > 0 && (rows.states[at - 1] & RowState::kOriginal) != 0;
    if (before == 0 && behind) before = at;
    if (before == 0) continue;
    buffer.Load(layout, rows.records[before - 1]);
    for (const int column : given) buffer.Put(column, rows.records[at].At(layout, column));
    rows.records[at] = Record(layout, buffer);
  }
}

class TableBuilder {
 public:
  TableBuilder(Packet& packet, PacketRows& rows, LogReader& log)
      : packet_(packet), rows_(rows), log_(log), ids_(rows.records.size(), kNoRow) {}

  void Build() {
    const std::vector<std::size_t> changed = log_.Changed();
    packet_.table.Reserve(rows_.records.size());
    for (std::size_t i = 0; i < rows_.records.size(); ++i) {
      if (IsRow(i)) ids_[i] = packet_.table.Insert(std::move(rows_.records[i]), false);
    }
    for (const std::size_t row : changed) Log(row);
    for (const std::size_t row : log_.LastChanges()) {
      if (const std::size_t newest = log_.Of(row).newest; newest != 0) LogLast(ids_[newest - 1]);
    }
    for (auto& [row, attributes] : rows_.extras) KeepExtras(row, std::move(attributes));
  }

 private:
  // Whether a row of the packet is one of the table; others are earlier ones of these, or gone.
  bool IsRow(std::size_t at) const {
    if (!log_.IsEmpty()) {
      const Link& link = log_.Of(at + 1);
      if (link.later != 0) return false;
      if (link.logged) return !(link.inserted && link.deleted);
    }
    return (rows_.states[at] & RowState::kNotInView) == 0;
  }

  void Log(std::size_t row) {
    const RowId id = ids_[row - 1];
    if (id == kNoRow) return;
    const Link& link = log_.Of(row);
    if (link.inserted) return packet_.table.LogInserted(id);
    const std::size_t oldest = log_.OldestOf(row);
    if (oldest != row) packet_.table.LogModified(id, std::move(rows_.records[oldest - 1]));
    if (link.deleted) packet_.table.LogDeleted(id);
  }

  void LogLast(RowId id) {
    if (id != kNoRow) packet_.table.LogLast(id);
  }

  void KeepExtras(std::size_t at, PacketAttributes attributes) {
    if (ids_[at] != kNoRow) {
      packet_.shape.rows[ids_[at]].present = std::move(attributes);
      return;
    }
    if (log_.IsEmpty()) return;
    const Link& link = log_.Of(at + 1);
    const bool original = link.newest != at + 1 && link.newest != 0 && link.earlier == 0;
    if (!original) return;
    const RowId id = ids_[link.newest - 1];
    if (id != kNoRow) packet_.shape.rows[id].original = std::move(attributes);
  }

  Packet& packet_;
  PacketRows& rows_;
  LogReader& log_;
  std::vector<RowId> ids_;  // of the packet's rows
};

}  // namespace

void BuildTable(Packet& packet, const RecordLayout& layout, PacketRows rows) {
  packet.table = RecordTable(layout, {});
  const PacketNode none;
  const PacketNode* params = packet.shape.root.Child("METADATA")->Child("PARAMS");
  LogReader log(params == nullptr ? none : *params, rows);
  FillGaps(rows, layout, log);
  TableBuilder(packet, rows, log).Build();
}

namespace {

using Places = std::unordered_map<RowId, std::size_t>;

Places PlacesOfChanges(const RecordTable& table) {
  Places places;
  places.reserve(static_cast<std::size_t>(table.ChangeCount()));
  std::size_t rows = 0;
  for (RowId row = 0; row < table.Rows(); ++row) {
    if (!table.At(row)) continue;
    const TUpdateStatus status = table.Status(row);
    rows += status == TUpdateStatus::usModified ? 2 : 1;
    if (status != TUpdateStatus::usUnmodified) places.emplace(row, rows);
  }
  return places;
}

}  // namespace

std::string LastChangesOf(const RecordTable& table) {
  const std::vector<RowId> last = table.ByLastChange();
  std::vector<RowId> first;
  table.ForEachChange([&first](RowId row) { first.push_back(row); });
  if (last == first) return {};
  const Places places = PlacesOfChanges(table);
  std::string numbers;
  for (const RowId row : last) {
    if (!numbers.empty()) numbers += ' ';
    numbers += std::to_string(places.at(row));
  }
  return numbers;
}

std::string ChangeLogOf(const RecordTable& table) {
  if (table.ChangeCount() == 0) return {};
  const Places places = PlacesOfChanges(table);
  std::string log;
  const auto append = [&log](std::size_t row, std::size_t before, unsigned kind) {
    if (!log.empty()) log += ' ';
    log += std::to_string(row) + ' ' + std::to_string(before) + ' ' + std::to_string(kind);
  };
  table.ForEachChange([&](RowId row) {
    const std::size_t place = places.at(row);
    switch (table.Status(row)) {
      case TUpdateStatus::usModified:
        return append(place, place - 1, RowState::kModified);
      case TUpdateStatus::usInserted:
        return append(place, 0, RowState::kInserted);
      case TUpdateStatus::usDeleted:
        return append(place, 0, RowState::kDeleted);
      case TUpdateStatus::usUnmodified:
        return;
    }
  });
  return log;
}

}  // namespace kvshare::data
