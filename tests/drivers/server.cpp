#include "tests/drivers/server.h"

#include <dlfcn.h>

#include <algorithm>
#include <stdexcept>

#include "tests/servers/serverprocess.h"

namespace kvshare {

data::DriverEntry CurrentDriverEntry() {
  const std::string file = std::string(KVSHARE_DRIVERS "/") + CurrentDialect().library;
  void* library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) throw std::runtime_error(dlerror());
  void* entry = dlsym(library, CurrentDialect().entry);
  if (entry == nullptr) throw std::runtime_error("no " + std::string(CurrentDialect().entry));
  return reinterpret_cast<data::DriverEntry>(entry);
}

ConnectionParameters ParametersOfFile(const std::string& name) {
  ConnectionParameters parameters = ServerLines(name);
  std::erase_if(parameters, [](const auto& item) { return item.first == "ServerPid"; });
  return parameters;
}

ConnectionParameters ServerParameters() {
  return ParametersOfFile(ServerFile());
}

ConnectionPointer MakeConnection() {
  static const data::DriverEntry entry = CurrentDriverEntry();
  return entry(data::kDriverContract)->MakeConnection();
}

ConnectionPointer Connected() {
  ConnectionPointer connection = MakeConnection();
  connection->Connect(ServerParameters());
  return connection;
}

std::string TextOf(const data::Cursor& cursor, int column) {
  if (cursor.IsNull(column)) return "NULL";
  switch (cursor.Columns()[static_cast<std::size_t>(column)].kind) {
    case data::ColumnKind::Integer:
    case data::ColumnKind::Largeint:
    case data::ColumnKind::Boolean:
      return std::to_string(cursor.Integer(column));
    case data::ColumnKind::Float: {
      char text[64];
      std::snprintf(text, sizeof text, "%.17g", cursor.Float(column));
      return text;
    }
    default:
      return std::string(cursor.Text(column));
  }
}

data::StatementParts WithPlaces(std::string_view sql) {
  data::StatementParts parts;
  for (;;) {
    const std::size_t place = sql.find('?');
    parts.texts.emplace_back(sql.substr(0, place));
    if (place == std::string_view::npos) return parts;
    parts.places.push_back(parts.places.size());
    sql.remove_prefix(place + 1);
  }
}

std::vector<std::vector<std::string>> RowsOf(data::Connection& connection, const std::string& sql,
                                             std::span<const data::ParameterValue> values) {
  const auto cursor =
      values.empty() ? connection.Query(sql) : connection.Query(WithPlaces(sql), values);
  if (!cursor) throw std::logic_error("no rows: " + sql);
  std::vector<std::vector<std::string>> rows;
  while (cursor->Next()) {
    auto& row = rows.emplace_back();
    for (std::size_t i = 0; i < cursor->Columns().size(); ++i) {
      row.push_back(TextOf(*cursor, static_cast<int>(i)));
    }
  }
  return rows;
}

void CreateTable(data::Connection& connection, const std::string& name,
                 const std::string& columns) {
  const std::vector<std::string> names = connection.TableNames(false);
  const auto same = [&name](const std::string& known) {
    return std::ranges::equal(known, name, {}, ::toupper, ::toupper);
  };
  if (std::ranges::any_of(names, same)) connection.Execute("DROP TABLE " + name);
  connection.Execute("CREATE TABLE " + name + " (" + columns + ")");
}

}  // namespace kvshare
