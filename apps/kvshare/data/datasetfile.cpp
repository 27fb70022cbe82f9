#include "apps/kvshare/data/datasetfile.h"

#include <algorithm>

#include "apps/kvshare/data/printedvalue.h"
#include "apps/kvshare/data/rowwriter.h"
#include "apps/kvshare/data/texttable.h"
#include "apps/kvshare/terminal/inputfile.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/filebytes.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/strutils.h"
#include "kvshare/rtl/utf8mark.h"

namespace kvshare::app {

namespace {

struct FormatName {
  std::string_view name;
  DataFormat format;
};
constexpr FormatName kNames[] = {
    {"packet", DataFormat::Packet}, {"csv", DataFormat::Csv}, {"json", DataFormat::Json}};
constexpr FormatName kEnds[] = {{".xml", DataFormat::Packet}, {".cds", DataFormat::Packet},
                                {".csv", DataFormat::Csv},    {".json", DataFormat::Json},
                                {".jsonl", DataFormat::Json}, {".ndjson", DataFormat::Json}};

constexpr std::string_view kStandard = "-";

DataFormat FormatOfText(std::string_view text) {
  text = TrimLeft(WithoutUtf8Mark(text));
  if (text.starts_with('<') || text.starts_with('\xFF') || text.starts_with('\xFE')) {
    return DataFormat::Packet;
  }
  return text.starts_with('{') || text.starts_with('[') ? DataFormat::Json : DataFormat::Csv;
}

std::string ReadAll(const std::string& file, const Stdio& stdio) {
  if (file != kStandard) return ReadFileBytes(Utf8ToCp874(file));
  std::string bytes;
  AppendRest(bytes, stdio.in);
  return bytes;
}

// A text or bytes without a size get the size of the longest value; a string past what strings have
// is a memo.
void SizeByColumn(TFieldDef& def, std::size_t longest) {
  if (!IsSized(def.DataType) || def.Size > 0) return;
  const bool hexadecimal = FormOf(def.DataType) == TFieldForm::Bytes;
  def.Size = static_cast<int>(std::max<std::size_t>(hexadecimal ? longest / 2 : longest, 1));
  if (HasValidSize(def)) return;
  def.DataType = hexadecimal ? TFieldType::ftBlob : TFieldType::ftMemo;
  def.Size = 0;
}

// The fields of a table: those that were named, with all others as strings.
void DefineFields(TClientDataSet& set, const TextTable& table,
                  const std::vector<TFieldDef>& fields) {
  std::vector<TFieldDef> defs;
  for (const auto& name : table.Names()) {
    TFieldDef def;
    def.Name = name;
    def.DataType = TFieldType::ftString;
    defs.push_back(std::move(def));
  }
  for (const TFieldDef& field : fields) {
    const auto named = std::ranges::find_if(
        defs, [&](const TFieldDef& def) { return SameText(def.Name, field.Name); });
    if (named == defs.end()) throw Exception(Format("there is no column '%s'", {field.Name}));
    *named = field;
  }
  for (std::size_t i = 0; i < defs.size(); ++i) SizeByColumn(defs[i], table.LongestOf(i));
  set.FieldDefs().Clear();
  for (const TFieldDef& def : defs) set.FieldDefs().Add(def);
}

void FillRow(TClientDataSet& set, const TextTable& table, std::size_t row) {
  set.Append();
  for (int i = 0; i < set.FieldCount(); ++i) {
    const auto text = table.At(row, static_cast<std::size_t>(i));
    if (!text) continue;
    try {
      StoreField(set.Fields(i), *text);
    } catch (const Exception& e) {
      throw Exception(Format("field '%s': %s", {set.Fields(i).FieldName(), e.Message()}));
    }
  }
  set.Post();
}

void LoadTable(TClientDataSet& set, const TextTable& table, const std::vector<TFieldDef>& fields) {
  DefineFields(set, table, fields);
  set.LogChanges = false;
  set.CreateDataSet();
  for (std::size_t row = 0; row < table.Rows(); ++row) {
    try {
      FillRow(set, table, row);
    } catch (const Exception& e) {
      throw Exception("line " + std::to_string(table.Line(row)) + ": " + e.Message());
    }
  }
  set.First();
}

std::string TextOf(TClientDataSet& set, DataFormat format) {
  if (format == DataFormat::Packet) return set.XMLData();
  set.First();
  return TextOfRows(set, format == DataFormat::Csv ? RowForm::Csv : RowForm::Json);
}

}  // namespace

std::optional<DataFormat> FormatOfName(std::string_view name) {
  const auto found = std::ranges::find(kNames, name, &FormatName::name);
  return found == std::end(kNames) ? std::nullopt : std::optional(found->format);
}

std::optional<DataFormat> FormatOfFile(std::string_view file) {
  for (const FormatName& end : kEnds) {
    const bool longer = file.size() > end.name.size();
    if (longer && SameText(file.substr(file.size() - end.name.size()), end.name)) {
      return end.format;
    }
  }
  return std::nullopt;
}

void LoadDataset(TClientDataSet& set, const std::string& file, std::optional<DataFormat> format,
                 const std::vector<TFieldDef>& fields, const Stdio& stdio) {
  try {
    const std::string bytes = ReadAll(file, stdio);
    if (!format) format = FormatOfFile(file);
    if (!format) format = FormatOfText(bytes);
    switch (*format) {
      case DataFormat::Packet:
        if (!fields.empty()) throw Exception("a packet has its own fields");
        return set.SetXMLData(bytes);
      case DataFormat::Csv:
        return LoadTable(set, ReadCsvTable(bytes), fields);
      case DataFormat::Json:
        return LoadTable(set, ReadJsonTable(bytes), fields);
    }
  } catch (const Exception& e) {
    throw StreamError(file + ": " + Cp874ToUtf8Lossy(e.Message()));
  }
}

void SaveDataset(TClientDataSet& set, const std::string& file, DataFormat format,
                 const Stdio& stdio) {
  try {
    const std::string text = TextOf(set, format);
    if (file != kStandard) return WriteFileBytes(Utf8ToCp874(file), text);
    BlockWriter out(stdio.out, "standard output");
    out.Buffer() = text;
    out.Flush();
  } catch (const Exception& e) {
    throw StreamError(file + ": " + Cp874ToUtf8Lossy(e.Message()));
  }
}

}  // namespace kvshare::app
