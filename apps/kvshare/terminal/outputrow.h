// One line of output under construction.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kvshare::app {

// What a command makes of one item: cells for a reader, who gets them with tabs between, and
// members for a program, which gets them and the cells as one JSON object. Texts are code page 874
// while they are put together and leave as UTF-8. A row is used again for every item, so that a
// long column allocates nothing.
class Row {
 public:
  explicit Row(bool json) : json_(json) {}

  // Whether members are wanted at all.
  bool Json() const { return json_; }

  // A new empty text; append to it before the next one is asked for.
  std::string& Cell(std::string_view name) { return Add(name, Kind::Text, true); }
  std::string& Member(std::string_view name) { return Add(name, Kind::Text, false); }

  // A whole number, shown; it stands in JSON without quotes.
  void Number(std::string_view name, std::int64_t value);
  void Flag(std::string_view name, bool value);

  // A member that is made as JSON already (UTF-8): a list, an object.
  std::string& JsonMember(std::string_view name) { return Add(name, Kind::Bare, false); }

  // Lines for a reader instead of cells, with a break behind the last, so that an empty line
  // follows them. Not in JSON.
  std::string& Lines() { return Add({}, Kind::Lines, true); }

  // Something the reader of this line should know; the line itself stands.
  void Warn(std::string_view reason) { warning_ = reason; }
  const std::string& Warning() const { return warning_; }

  void Clear();

  // Appends the row as UTF-8, without a line break. Throws EConvertError for bytes that are no
  // letters and, outside JSON, for a text that would take more than one line; `out` is as it was.
  void AppendTo(std::string& out) const;

 private:
  enum class Kind : std::uint8_t { Text, Bare, Lines };
  struct Entry {
    std::string_view name;
    std::string text;
    Kind kind = Kind::Text;
    bool shown = true;
  };

  std::string& Add(std::string_view name, Kind kind, bool shown);
  void AppendCells(std::string& out) const;
  void AppendObject(std::string& out) const;

  bool json_;
  std::vector<Entry> entries_;
  std::size_t used_ = 0;
  std::string warning_;
};

// `text` (UTF-8) as a JSON string with its quotes. Bytes that are no UTF-8 become U+FFFD.
void AppendJsonString(std::string& out, std::string_view text);

}  // namespace kvshare::app
