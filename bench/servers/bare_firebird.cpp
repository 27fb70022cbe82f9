#include <ibase.h>

#include <array>
#include <charconv>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <memory>

#include "bench/servers/bare.h"

namespace kvshare::bench {
namespace {

// The decimal and the date as texts, which the other clients give ready.
std::size_t TextSizes(const XSQLVAR& decimal, const XSQLVAR& date) {
  ISC_INT64 units = 0;
  std::memcpy(&units, decimal.sqldata, sizeof units);
  std::array<char, 32> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), units).ptr;
  ISC_DATE day = 0;
  std::memcpy(&day, date.sqldata, sizeof day);
  std::tm parts{};
  isc_decode_sql_date(&day, &parts);
  constexpr std::size_t kDate = 10;
  return static_cast<std::size_t>(end - text.data()) + 1 + (parts.tm_year > 0 ? kDate : 0);
}

}  // namespace

std::size_t ReadByFirebird(const ConnectionParameters& parameters, const std::string& sql) {
  std::string block = {isc_dpb_version1};
  const auto add = [&block](char item, const std::string& value) {
    block += item;
    block += static_cast<char>(value.size());
    block += value;
  };
  add(isc_dpb_user_name, Value(parameters, "User_Name"));
  add(isc_dpb_password, Value(parameters, "Password"));
  add(isc_dpb_lc_ctype, "UTF8");
  const std::string name = "127.0.0.1/" + Port(parameters) + ":ledger";
  std::array<ISC_STATUS, ISC_STATUS_LENGTH> status{};
  isc_db_handle database = 0;
  isc_tr_handle transaction = 0;
  isc_stmt_handle statement = 0;
  isc_attach_database(status.data(), 0, name.c_str(), &database, static_cast<short>(block.size()),
                      block.data());
  isc_start_transaction(status.data(), &transaction, 1, &database, 0, nullptr);
  isc_dsql_allocate_statement(status.data(), &database, &statement);
  const auto memory = std::make_unique<std::byte[]>(sizeof(XSQLDA) + 4 * sizeof(XSQLVAR));
  auto* row = reinterpret_cast<XSQLDA*>(memory.get());
  row->version = SQLDA_VERSION1;
  row->sqln = 4;
  isc_dsql_prepare(status.data(), &transaction, &statement, 0, sql.c_str(), 3, row);
  std::array<std::array<char, 512>, 4> values{};
  std::array<ISC_SHORT, 4> nulls{};
  for (std::size_t i = 0; i < 4; ++i) {
    row->sqlvar[i].sqldata = values[i].data();
    row->sqlvar[i].sqlind = &nulls[i];
  }
  isc_dsql_execute(status.data(), &transaction, &statement, 1, nullptr);
  std::size_t sum = 0;
  while (isc_dsql_fetch(status.data(), &statement, 1, row) == 0) {
    ISC_LONG number = 0;
    std::memcpy(&number, values[0].data(), sizeof number);
    unsigned short size = 0;
    std::memcpy(&size, values[1].data(), sizeof size);
    sum += static_cast<std::size_t>(number) + size + TextSizes(row->sqlvar[2], row->sqlvar[3]);
  }
  isc_dsql_free_statement(status.data(), &statement, DSQL_drop);
  isc_commit_transaction(status.data(), &transaction);
  isc_detach_database(status.data(), &database);
  return sum;
}

}  // namespace kvshare::bench
