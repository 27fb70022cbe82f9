// The tables of a small company that sells: documents with their lines, rights, send counter.
#pragma once

#include <cstdint>

#include "kvshare/data/sql/sqlconnection.h"
#include "kvshare/database/sqlbatch.h"

namespace kvshare::posting {

// The screen that posts documents, as the table of rights knows it.
inline constexpr std::int32_t kPostingTemplate = 1001;

// A document's number as the tables keep it, in bytes of code page 874.
inline constexpr int kLongestNumber = 40;

// Whether the database has all of a company: its tables and their first rows.
bool IsCompany(TSQLConnection& connection);

// Makes the tables that are missing and then their first rows, each in one batch, with the column
// types of the dialect that is loaded: position 1 may do everything in kPostingTemplate, position 2
// may look. One that was broken off is completed by the next; a company is left as it is.
TSQLBatchReport CreateCompany(TSQLConnection& connection);

}  // namespace kvshare::posting
