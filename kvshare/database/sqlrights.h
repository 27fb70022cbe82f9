// What the holder of a position may do in a screen: the table SCTYTAB, one row for each template
// (SEC_TEMPDEF, the screen) and position (SEC_POSN), one column for each right, which is granted by
// exactly "Y". Nothing is shown; the refusals for a person are rstrEGrant... in the catalogue.
#pragma once

#include <cstdint>
#include <string_view>

#include "kvshare/data/sql/sqlconnection.h"
#include "kvshare/export.h"

namespace kvshare {

// Whether the right in the column `FieldName` is granted. Position 0 and template 0 are never
// restricted; a missing row refuses. A query that fails is shown, and then throws EDatabaseError
// `Field '%s' not found`.
KVSHARE_API bool MayIdo(TSQLConnection& Connection, std::int32_t Position, std::int32_t Template,
                        std::string_view FieldName);

KVSHARE_API bool MayICanRead(TSQLConnection& Connection, std::int32_t Position,
                             std::int32_t Template);
KVSHARE_API bool MayICanWrite(TSQLConnection& Connection, std::int32_t Position,
                              std::int32_t Template);
KVSHARE_API bool MayICanInsert(TSQLConnection& Connection, std::int32_t Position,
                               std::int32_t Template);
KVSHARE_API bool MayICanDelete(TSQLConnection& Connection, std::int32_t Position,
                               std::int32_t Template);
KVSHARE_API bool MayICanExecute(TSQLConnection& Connection, std::int32_t Position,
                                std::int32_t Template);

// The second right is asked for only when the first is refused.
KVSHARE_API bool MayICanReadOrWrite(TSQLConnection& Connection, std::int32_t Position,
                                    std::int32_t Template);
KVSHARE_API bool MayICanInsertOrWrite(TSQLConnection& Connection, std::int32_t Position,
                                      std::int32_t Template);

}  // namespace kvshare
