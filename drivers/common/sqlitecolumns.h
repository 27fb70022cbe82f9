// What a type means that a table of SQLite declares.
#pragma once

#include <string>
#include <string_view>

#include "kvshare/data/contract/driver.h"

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

// The same for a result that is put together of several SELECTs, of which the server tells the
// types of the first one alone: there a number is a decimal without size, as in a column without a
// type.
data::Column ColumnOfType(std::string_view declared, bool compound);

// Whether the server keeps what is put into a column of that type as a text, numbers too: the words
// CHAR, CLOB and TEXT mean so anywhere in it, unless INT does.
bool KeepsTexts(std::string_view declared);

// The text of a column of decimals in the contract's form, as `text` or `scratch`. Among values
// without a declared type "007" is a code, and no number that could be given as 7. Throws
// DriverError for what is no number.
std::string_view DecimalIn(const data::Column& column, std::string_view text, std::string& scratch);

}  // namespace kvshare::drivers::sqlite
