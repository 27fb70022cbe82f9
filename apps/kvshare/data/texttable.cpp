#include "apps/kvshare/data/texttable.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

#include "apps/receipts/csvrows.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/strutils.h"
#include "kvshare/rtl/utf8mark.h"

namespace kvshare::app {

namespace {

using Cells = std::vector<std::optional<std::string>>;

[[noreturn]] void Refuse(std::string_view where, std::uint64_t number, std::string_view reason) {
  throw Exception(std::string(where) + " " + std::to_string(number) + ": " + std::string(reason));
}

// The events of one object, or of a list of objects.
class ObjectReader : public nlohmann::json_sax<nlohmann::json> {
 public:
  ObjectReader(TextTable& table, std::uint64_t line) : table_(table), line_(line) {}

  bool null() override { return Take(std::nullopt); }
  bool boolean(bool value) override { return Take(value ? "true" : "false"); }
  bool number_integer(number_integer_t value) override { return Take(std::to_string(value)); }
  bool number_unsigned(number_unsigned_t value) override { return Take(std::to_string(value)); }
  bool number_float(number_float_t /*value*/, const string_t& digits) override {
    return Take(digits);
  }
  bool string(string_t& value) override { return Take(Utf8ToCp874(value)); }
  bool binary(binary_t& /*value*/) override { return false; }

  bool start_object(std::size_t /*size*/) override {
    if (inObject_) RefuseNested();
    inObject_ = true;
    std::ranges::fill(cells_, std::nullopt);
    return true;
  }
  bool key(string_t& name) override {
    column_ = table_.Column(Utf8ToCp874(name));
    cells_.resize(table_.Names().size());
    return true;
  }
  bool end_object() override {
    inObject_ = false;
    table_.AddRow(line_ != 0 ? line_ : table_.Rows() + 1, cells_);
    return true;
  }
  bool start_array(std::size_t /*size*/) override {
    if (inObject_ || inList_ || line_ != 0) RefuseNested();
    inList_ = true;
    return true;
  }
  bool end_array() override {
    inList_ = false;
    return true;
  }
  bool parse_error(std::size_t /*at*/, const std::string& /*token*/,
                   const nlohmann::detail::exception& e) override {
    throw Exception(e.what());
  }

 private:
  bool Take(std::optional<std::string> value) {
    if (!inObject_) throw Exception("a value that is no object");
    cells_[column_] = std::move(value);
    return true;
  }
  [[noreturn]] static void RefuseNested() { throw Exception("a value inside is no plain one"); }

  TextTable& table_;
  std::uint64_t line_;  // 0: in a list
  bool inList_ = false;
  bool inObject_ = false;
  std::size_t column_ = 0;
  Cells cells_;
};

void ReadJson(TextTable& table, std::string_view json, std::uint64_t line) {
  ObjectReader reader(table, line);
  try {
    nlohmann::json::sax_parse(json.begin(), json.end(), &reader);
  } catch (const Exception& e) {
    if (line != 0) Refuse("line", line, e.Message());
    Refuse("record", table.Rows() + 1, e.Message());
  }
}

class CsvReader {
 public:
  TextTable Read(std::string_view utf8) {
    auto trouble = rows_.Feed(utf8);
    if (!trouble) trouble = rows_.Finish();
    if (trouble) Refuse("line", rows_.Line(), receipts::Say(*trouble));
    if (table_.Names().empty()) throw Exception("there is no heading");
    return std::move(table_);
  }

 private:
  void Take(std::uint64_t line, std::span<const std::string> row) {
    try {
      table_.Names().empty() ? TakeNames(row) : TakeCells(line, row);
    } catch (const Exception& e) {
      Refuse("line", line, e.Message());
    }
  }

  void TakeNames(std::span<const std::string> row) {
    for (std::size_t i = 0; i < row.size(); ++i) {
      const std::string name = Utf8ToCp874(row[i]);
      if (name.empty()) throw Exception("a column without a name");
      if (table_.Column(name) != i) throw Exception("two columns " + name);
    }
  }

  void TakeCells(std::uint64_t line, std::span<const std::string> row) {
    const std::size_t columns = table_.Names().size();
    if (row.size() != columns) {
      throw Exception(std::to_string(row.size()) + " cells, the heading has " +
                      std::to_string(columns));
    }
    cells_.assign(columns, std::nullopt);
    for (std::size_t i = 0; i < columns; ++i) {
      if (!rows_.IsMissing(i)) cells_[i] = Utf8ToCp874(row[i]);
    }
    table_.AddRow(line, cells_);
  }

  TextTable table_;
  Cells cells_;
  receipts::CsvRows rows_{
      [this](std::uint64_t line, std::span<const std::string> row) { Take(line, row); }};
};

}  // namespace

std::size_t TextTable::Column(std::string_view name) {
  const auto found = std::ranges::find_if(
      names_, [name](const std::string& there) { return SameText(there, name); });
  if (found == names_.end()) {
    names_.emplace_back(name);
    longest_.push_back(0);
    return names_.size() - 1;
  }
  return static_cast<std::size_t>(found - names_.begin());
}

void TextTable::AddRow(std::uint64_t line, std::span<const std::optional<std::string>> cells) {
  rows_.push_back({line, cells_.size(), cells.size()});
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const std::string_view text = cells[i] ? std::string_view{*cells[i]} : std::string_view{};
    cells_.push_back({bytes_.size(), text.size(), !cells[i]});
    bytes_ += text;
    longest_[i] = std::max(longest_[i], text.size());
  }
}

std::optional<std::string_view> TextTable::At(std::size_t row, std::size_t column) const {
  if (column >= rows_[row].count) return std::nullopt;
  const Cell& cell = cells_[rows_[row].cells + column];
  if (cell.null) return std::nullopt;
  return std::string_view{bytes_}.substr(cell.at, cell.size);
}

TextTable ReadCsvTable(std::string_view utf8) {
  return CsvReader().Read(WithoutUtf8Mark(utf8));
}

TextTable ReadJsonTable(std::string_view utf8) {
  utf8 = WithoutUtf8Mark(utf8);
  TextTable table;
  if (TrimLeft(utf8).starts_with('[')) {
    ReadJson(table, utf8, 0);
  } else {
    for (std::uint64_t line = 1; !utf8.empty(); ++line) {
      const std::size_t end = std::min(utf8.find('\n'), utf8.size());
      const std::string_view text = utf8.substr(0, end);
      if (!Trim(text).empty()) ReadJson(table, text, line);
      utf8.remove_prefix(std::min(end + 1, utf8.size()));
    }
  }
  if (table.Names().empty()) throw Exception("there is no member that could be a field");
  return table;
}

}  // namespace kvshare::app
