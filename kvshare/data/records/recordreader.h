// Where the fields of a dataset read their values.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "kvshare/export.h"

namespace kvshare {

// The current record of a dataset: where its fields read their values, each in the form of its
// type (TFieldForm). Columns count from 0.
class KVSHARE_API TRecordReader {
 public:
  TRecordReader() = default;
  virtual ~TRecordReader() = default;
  TRecordReader(const TRecordReader&) = default;
  TRecordReader& operator=(const TRecordReader&) = default;

  virtual bool IsNull(int column) const = 0;  // true as well where there is no record
  virtual std::int64_t Integer(int column) const = 0;
  virtual double Float(int column) const = 0;
  // Valid until the record changes.
  virtual std::string_view Text(int column) const = 0;
  // Appends a column of characters in code page 874. Throws EConvertError where it cannot hold one.
  virtual void AppendCharacters(std::string& out, int column) const = 0;
};

}  // namespace kvshare
