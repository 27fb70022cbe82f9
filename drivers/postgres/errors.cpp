#include "drivers/postgres/errors.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "kvshare/data/contract/driver.h"

namespace kvshare::postgres {
namespace {

using data::DriverError;

struct KindRow {
  std::string_view state;  // or its class
  DriverError::Kind kind;
};
constexpr KindRow kKinds[] = {
    {"08", DriverError::Kind::ConnectionLost},
    {"40003", DriverError::Kind::ConnectionLost},  // whether it was done is not known
    {"40001", DriverError::Kind::Conflict},        // could not be put in an order with another one
    {"40P01", DriverError::Kind::Conflict},        // deadlock
    {"53300", DriverError::Kind::Busy},            // too many connections
    {"55P03", DriverError::Kind::Busy},            // waited too long for a lock
    {"57P01", DriverError::Kind::ConnectionLost},  // the administrator ends the connection
    {"57P02", DriverError::Kind::ConnectionLost},  // the server crashed
    {"57P03", DriverError::Kind::ConnectionLost},  // it does not take connections now
    {"57P05", DriverError::Kind::ConnectionLost},  // idle for too long
};

DriverError::Kind KindOf(PGconn* connection, std::string_view state) {
  const auto* row = std::ranges::find_if(
      kKinds, [state](const KindRow& known) { return state.starts_with(known.state); });
  if (row != std::end(kKinds)) return row->kind;
  return PQstatus(connection) == CONNECTION_BAD ? DriverError::Kind::ConnectionLost
                                                : DriverError::Kind::Other;
}

std::string WithoutLineEnd(std::string text) {
  text.erase(text.find_last_not_of("\r\n") + 1);
  return text;
}

}  // namespace

void Fail(PGconn* connection, const PGresult* result) {
  const auto field = [result](char code) {
    const char* text =
        result != nullptr ? PQresultErrorField(result, static_cast<unsigned char>(code)) : nullptr;
    return std::string(text != nullptr ? text : "");
  };
  std::string text = field(PG_DIAG_MESSAGE_PRIMARY);
  for (const char code : {PG_DIAG_MESSAGE_DETAIL, PG_DIAG_MESSAGE_HINT}) {
    if (const std::string more = field(code); !more.empty()) text += "\n" + more;
  }
  // Without a field the text is the client's own: "server closed the connection unexpectedly".
  if (text.empty()) text = WithoutLineEnd(PQerrorMessage(connection));
  throw DriverError(text, KindOf(connection, field(PG_DIAG_SQLSTATE)));
}

}  // namespace kvshare::postgres
