#include "drivers/firebird/handles.h"

#include <algorithm>
#include <array>

#include "drivers/common/valuetexts.h"

namespace kvshare::firebird {
namespace {

std::string TransactionBlock(data::Isolation isolation, std::int32_t lockMilliseconds) {
  std::string block = {isc_tpb_version3, isc_tpb_write};
  const bool snapshot =
      isolation == data::Isolation::RepeatableRead || isolation == data::Isolation::Custom;
  if (snapshot) {
    block += isc_tpb_concurrency;
  } else {  // the server shows uncommitted rows to nobody
    block += {isc_tpb_read_committed, isc_tpb_rec_version};
  }
  if (lockMilliseconds <= 0) {
    block += isc_tpb_nowait;
    return block;
  }
  const auto seconds = (static_cast<std::uint32_t>(lockMilliseconds) + 999) / 1000;
  block += {isc_tpb_wait, isc_tpb_lock_timeout, 4};
  for (unsigned shift = 0; shift < 32; shift += 8)
    block += static_cast<char>(seconds >> shift & 0xFFU);
  return block;
}

// The value of `item` in an answer of items, each with two bytes of length; -1 where it is not.
std::int64_t InfoValue(std::string_view answer, char item) {
  while (answer.size() >= 3 && answer[0] != isc_info_end) {
    const auto length = static_cast<std::size_t>(isc_vax_integer(answer.data() + 1, 2));
    if (answer[0] == item && answer.size() >= 3 + length) {
      return isc_vax_integer(answer.data() + 3, static_cast<short>(length));
    }
    answer.remove_prefix(std::min(answer.size(), 3 + length));
  }
  return -1;
}

}  // namespace

Transaction::Transaction(isc_db_handle& database, data::Isolation isolation,
                         std::int32_t lockMilliseconds) {
  const std::string block = TransactionBlock(isolation, lockMilliseconds);
  Status status;
  isc_start_transaction(status.Vector(), &handle_, 1, &database,
                        static_cast<unsigned short>(block.size()), block.data());
  status.Check();
}

void Transaction::Commit() {
  if (!Active()) return;
  Status status;
  isc_commit_transaction(status.Vector(), &handle_);
  status.Check();
}

void Transaction::Rollback() {
  if (!Active()) return;
  Status status;
  isc_rollback_transaction(status.Vector(), &handle_);
  status.Check();
}

void Transaction::Abandon() noexcept {
  Status status;
  if (Active()) isc_rollback_transaction(status.Vector(), &handle_);
  handle_ = 0;
}

Descriptor::Descriptor(ISC_SHORT room)
    : memory_(std::make_unique<std::byte[]>(sizeof(XSQLDA) +
                                            static_cast<std::size_t>(room) * sizeof(XSQLVAR))),
      values_(static_cast<std::size_t>(room)),
      nulls_(static_cast<std::size_t>(room)) {
  Get()->version = SQLDA_VERSION1;
  Get()->sqln = room;
}

void Descriptor::Allocate(std::size_t i, std::size_t bytes) {
  values_[i] = std::make_unique<std::byte[]>(bytes + 1);
  (*this)[i].sqldata = reinterpret_cast<ISC_SCHAR*>(values_[i].get());
  (*this)[i].sqlind = &nulls_[i];
}

Statement::Statement(isc_db_handle& database, Transaction& transaction, std::string_view sql,
                     int dialect)
    : columns_(16) {
  drivers::RefuseZeroByte(sql);
  const std::string text(sql);
  Status status;
  isc_dsql_allocate_statement(status.Vector(), &database, &handle_);
  status.Check();
  isc_dsql_prepare(status.Vector(), transaction.Handle(), &handle_, 0, text.c_str(),
                   static_cast<unsigned short>(dialect), columns_.Get());
  if (!status.Failed() && columns_.Needed() > columns_.Get()->sqln) {
    columns_ = Descriptor(columns_.Needed());
    isc_dsql_describe(status.Vector(), &handle_, SQLDA_VERSION1, columns_.Get());
  }
  if (status.Failed()) {
    Free();
    status.Fail();
  }
}

void Statement::Free() noexcept {
  Status status;
  if (handle_ != 0) isc_dsql_free_statement(status.Vector(), &handle_, DSQL_drop);
  handle_ = 0;
}

bool Statement::IsSelect() {
  const char item = isc_info_sql_stmt_type;
  std::array<char, 16> answer{};
  Status status;
  isc_dsql_sql_info(status.Vector(), &handle_, 1, &item, answer.size(), answer.data());
  status.Check();
  const std::int64_t type = InfoValue({answer.data(), answer.size()}, item);
  return type == isc_info_sql_stmt_select || type == isc_info_sql_stmt_select_for_upd;
}

std::int64_t Statement::RowsChanged() {
  const char item = isc_info_sql_records;
  std::array<char, 64> answer{};
  Status status;
  isc_dsql_sql_info(status.Vector(), &handle_, 1, &item, answer.size(), answer.data());
  if (status.Failed() || answer[0] != item) return 0;
  std::int64_t changed = 0;
  const std::string_view counts(answer.data() + 3, answer.size() - 3);
  for (const int count :
       {isc_info_req_insert_count, isc_info_req_update_count, isc_info_req_delete_count}) {
    changed += std::max<std::int64_t>(0, InfoValue(counts, static_cast<char>(count)));
  }
  return changed;
}

std::string ReadBlob(isc_db_handle& database, Transaction& transaction, ISC_QUAD id) {
  Status status;
  isc_blob_handle blob = 0;
  isc_open_blob2(status.Vector(), &database, transaction.Handle(), &blob, &id, 0, nullptr);
  status.Check();
  std::string bytes;
  std::array<char, 32'768> segment;  // NOLINT: filled by the client
  for (;;) {
    unsigned short size = 0;
    const ISC_STATUS got =
        isc_get_segment(status.Vector(), &blob, &size, segment.size() - 1, segment.data());
    if (got != 0 && got != isc_segment) break;
    bytes.append(segment.data(), size);
  }
  const bool whole = status.Vector()[1] == isc_segstr_eof;
  Status closing;
  isc_close_blob(closing.Vector(), &blob);
  if (!whole) status.Fail();
  return bytes;
}

ISC_QUAD WriteBlob(isc_db_handle& database, Transaction& transaction, std::string_view bytes,
                   bool text) {
  // What kind of text the bytes are: the server converts them to the column's.
  const std::array<char, 10> textBlock = {isc_bpb_version1,
                                          isc_bpb_source_type,
                                          1,
                                          isc_blob_text,
                                          isc_bpb_source_interp,
                                          1,
                                          kUtf8,
                                          isc_bpb_target_type,
                                          1,
                                          isc_blob_text};
  Status status;
  isc_blob_handle blob = 0;
  ISC_QUAD id{};
  isc_create_blob2(status.Vector(), &database, transaction.Handle(), &blob, &id,
                   text ? static_cast<short>(textBlock.size()) : short{0}, textBlock.data());
  status.Check();
  constexpr std::size_t kSegment = 32'000;
  for (; !bytes.empty(); bytes.remove_prefix(std::min(kSegment, bytes.size()))) {
    const std::string_view part = bytes.substr(0, kSegment);
    isc_put_segment(status.Vector(), &blob, static_cast<unsigned short>(part.size()), part.data());
    if (status.Failed()) break;
  }
  if (status.Failed()) {
    Status cancelling;
    isc_cancel_blob(cancelling.Vector(), &blob);
    status.Fail();
  }
  isc_close_blob(status.Vector(), &blob);
  status.Check();
  return id;
}

}  // namespace kvshare::firebird
