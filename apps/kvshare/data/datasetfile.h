// Datasets in files of several kinds.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "apps/kvshare/terminal/stream.h"
#include "kvshare/data/client/clientdataset.h"

namespace kvshare::app {

enum class DataFormat : std::uint8_t { Packet, Csv, Json };

// By a name (packet, csv, json), and by a file's end: .xml and .cds, .csv, .json, .jsonl, .ndjson.
std::optional<DataFormat> FormatOfName(std::string_view name);
std::optional<DataFormat> FormatOfFile(std::string_view file);

// `-` is standard input. Without a format the file's end tells, or else its beginning: `<` is a
// packet, `{` and `[` JSON, anything else CSV. Rows of CSV and JSON get the fields of `fields`;
// columns that it does not name are strings as long as their longest text. A file is one of the
// suite (C:\Data\a.xml) or of this machine. Throws Exception and StreamError with the file's name.
void LoadDataset(TClientDataSet& set, const std::string& file, std::optional<DataFormat> format,
                 const std::vector<TFieldDef>& fields, const Stdio& stdio);

// `-` is standard output. A file is written whole or not at all.
void SaveDataset(TClientDataSet& set, const std::string& file, DataFormat format,
                 const Stdio& stdio);

}  // namespace kvshare::app
