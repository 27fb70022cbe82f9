#include "kvshare/database/sqlrights.h"

#include "kvshare/database/sqlfunc.h"
#include "kvshare/rtl/format.h"

namespace kvshare {

bool MayIdo(TSQLConnection& Connection, std::int32_t Position, std::int32_t Template,
            std::string_view FieldName) {
  if (Position == 0 || Template == 0) return true;
  TSQLQuery query;
  query.SetSQLConnection(&Connection);
  RunSQL(query,
         Format("SELECT %s FROM SCTYTAB WHERE (SEC_TEMPDEF = %d) AND (SEC_POSN = %d)",
                {FieldName, Template, Position}),
         true);
  return query.FieldByName(FieldName).AsString() == "Y";
}

bool MayICanRead(TSQLConnection& Connection, std::int32_t Position, std::int32_t Template) {
  return MayIdo(Connection, Position, Template, "SEC_READ");
}

bool MayICanWrite(TSQLConnection& Connection, std::int32_t Position, std::int32_t Template) {
  return MayIdo(Connection, Position, Template, "SEC_WRITE");
}

bool MayICanInsert(TSQLConnection& Connection, std::int32_t Position, std::int32_t Template) {
  return MayIdo(Connection, Position, Template, "SEC_INSERT");
}

bool MayICanDelete(TSQLConnection& Connection, std::int32_t Position, std::int32_t Template) {
  return MayIdo(Connection, Position, Template, "SEC_DELETE");
}

bool MayICanExecute(TSQLConnection& Connection, std::int32_t Position, std::int32_t Template) {
  return MayIdo(Connection, Position, Template, "SEC_EXECUTE");
}

bool MayICanReadOrWrite(TSQLConnection& Connection, std::int32_t Position, std::int32_t Template) {
  return MayICanRead(Connection, Position, Template) ||
         MayICanWrite(Connection, Position, Template);
}

bool MayICanInsertOrWrite(TSQLConnection& Connection, std::int32_t Position,
                          std::int32_t Template) {
  return MayICanInsert(Connection, Position, Template) ||
         MayICanWrite(Connection, Position, Template);
}

}  // namespace kvshare
