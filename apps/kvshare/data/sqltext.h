// What the text of a statement tells of it, so far as the command has to know before it runs. Code
// page 874.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "kvshare/rtl/stringlist.h"

namespace kvshare::app {

enum class SqlKind : std::uint8_t {
  Query,           // gives rows
  ChangeWithRows,  // changes something and may give rows: CALL, INSERT ... RETURNING
  Change,          // INSERT, UPDATE, DELETE, MERGE, REPLACE: changes rows, gives none
  Other,           // gives none: CREATE, SET
};

// By its first word behind blanks, remarks and parentheses; of a WITH by the word behind the named
// queries.
SqlKind KindOfSql(std::string_view sql);

// Why the rule that cuts a line before its first `;` would lose a part of the statement or end it
// in its middle, for a person; nothing where it does not. A remark behind the `;` may be lost.
// `sql` is all that one statement has.
std::optional<std::string> LossInStatement(std::string_view sql);

// The same for the lines of a batch: `line 5: ...`, the first that loses something. Lines that are
// nothing but a remark (`-- ...`) become empty ones, so that a `;` in them ends no statement.
std::optional<std::string> PrepareBatch(TStrings& lines);

}  // namespace kvshare::app
