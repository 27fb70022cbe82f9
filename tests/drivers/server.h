// The driver and the server that a test runs against.
#pragma once

#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "kvshare/data/contract/driver.h"
#include "tests/drivers/dialect.h"

namespace kvshare {

using ConnectionParameters = std::vector<std::pair<std::string, std::string>>;
using ConnectionPointer = std::unique_ptr<data::Connection>;

data::DriverEntry CurrentDriverEntry();

// Of a file that tests/servers/with-server or scripts/check-cluster has written.
ConnectionParameters ParametersOfFile(const std::string& name);

// Of the server that this program runs beside.
ConnectionParameters ServerParameters();

ConnectionPointer MakeConnection();  // closed
ConnectionPointer Connected();

// The statement with each `?` taken out as the place of a parameter of its own.
data::StatementParts WithPlaces(std::string_view sql);

// The rows of a query, each value as its text; "NULL" for a null.
std::vector<std::vector<std::string>> RowsOf(data::Connection& connection, const std::string& sql,
                                             std::span<const data::ParameterValue> values = {});
std::string TextOf(const data::Cursor& cursor, int column);

// A new table `name` with these columns; one of that name that an earlier test left goes first.
void CreateTable(data::Connection& connection, const std::string& name, const std::string& columns);

// The kind of the DriverError that `action` throws; its text is put into `text`.
template <typename Action>
data::DriverError::Kind KindOfFailure(Action action, std::string* text = nullptr) {
  try {
    action();
  } catch (const data::DriverError& e) {
    if (text != nullptr) *text = e.what();
    return e.What();
  }
  throw std::logic_error("no error");
}

}  // namespace kvshare
