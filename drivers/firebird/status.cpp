#include "drivers/firebird/status.h"

#include <algorithm>
#include <string>

#include "kvshare/data/contract/driver.h"

namespace kvshare::firebird {
namespace {

using data::DriverError;

struct KindRow {
  ISC_STATUS code;
  DriverError::Kind kind;
};
// The first row that is among the codes of an error counts: a lock that was waited for in vain is
// reported together with the update that it stood against.
constexpr KindRow kKinds[] = {
    {isc_network_error, DriverError::Kind::ConnectionLost},
    {isc_net_read_err, DriverError::Kind::ConnectionLost},
    {isc_net_write_err, DriverError::Kind::ConnectionLost},
    {isc_net_connect_err, DriverError::Kind::ConnectionLost},
    {isc_lost_db_connection, DriverError::Kind::ConnectionLost},
    {isc_att_shutdown, DriverError::Kind::ConnectionLost},
    {isc_shutdown, DriverError::Kind::ConnectionLost},
    {isc_lock_timeout, DriverError::Kind::Busy},
    {isc_lock_conflict, DriverError::Kind::Busy},
    {isc_deadlock, DriverError::Kind::Conflict},
    {isc_update_conflict, DriverError::Kind::Conflict},
};

bool Contains(const ISC_STATUS* vector, ISC_STATUS code) {
  while (*vector != isc_arg_end) {
    if (*vector == isc_arg_gds && vector[1] == code) return true;
    vector += *vector == isc_arg_cstring ? 3 : 2;
  }
  return false;
}

}  // namespace

void Status::Fail() const {
  std::string text;
  std::array<char, 1024> line{};
  const ISC_STATUS* at = vector_.data();
  while (fb_interpret(line.data(), line.size(), &at) != 0) {
    if (!text.empty()) text += '\n';
    text += line.data();
  }
  const auto* row = std::ranges::find_if(
      kKinds, [this](const KindRow& known) { return Contains(vector_.data(), known.code); });
  throw DriverError(text, row != std::end(kKinds) ? row->kind : DriverError::Kind::Other,
                    static_cast<int>(vector_[1]));
}

}  // namespace kvshare::firebird
