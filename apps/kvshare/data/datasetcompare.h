// What differs between two datasets.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "kvshare/data/client/clientdataset.h"

namespace kvshare::app {

// Texts in code page 874. Of a field that differs `before` and `after` are its two forms
// (fieldspecs.h); of a value they are its texts, and Null differs from "".
struct DatasetDifference {
  enum class Side : std::uint8_t { First, Second, Both };
  Side side = Side::Both;  // where it is; Both: it is another
  bool record = false;     // or a field
  std::string key;         // of the record, `;` between its fields
  std::string field;
  std::optional<std::string> before;
  std::optional<std::string> after;
};

// Tells of fields, then of the records of the first set in its order, then of those that only the
// second has. Records belong together by the fields of `key`; without one by the primary key of the
// first set, and without that as a whole. Values are compared as they are printed. Throws
// EDatabaseError for a field of the key that is not there, and for two records with one key.
void CompareDatasets(TClientDataSet& first, TClientDataSet& second, std::string_view key,
                     const std::function<void(const DatasetDifference&)>& tell);

}  // namespace kvshare::app
