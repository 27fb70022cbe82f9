// What a declared type means.
#pragma once

#include <string_view>

#include "kvshare/data/driver.h"

namespace kvshare::drivers::sqlite {

// The column of a declared type such as `VARCHAR(40)` or `Decimal_Text(19,4)`, its name left empty.
// The first word up to a `_`, in any letter case, decides:
//   INT INTEGER SMALLINT TINYINT MEDIUMINT AUTOINC  Integer   BIGINT INT8 LARGEINT  Largeint
//   BOOLEAN BOOL BIT LOGICAL                        Boolean   REAL DOUBLE FLOAT     Float
//   DECIMAL NUMERIC NUMBER MONEY SMALLMONEY CURRENCY Decimal  (without a size four decimals)
//   DATE  TIME  DATETIME TIMESTAMP SMALLDATETIME    Date, Time, TimeStamp
//   TEXT CLOB MEMO NTEXT LONGTEXT                   Memo
//   BLOB IMAGE BINARY VARBINARY BYTEA GRAPHIC       Blob
// and every other one Text, of so many characters as stand in brackets.
data::Column ColumnOfType(std::string_view declared);

}  // namespace kvshare::drivers::sqlite
