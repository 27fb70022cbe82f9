// `kvshare dataset`.
#include <exception>
#include <memory>

#include "apps/kvshare/commands/commands.h"
#include "apps/kvshare/data/datasetcompare.h"
#include "apps/kvshare/data/datasetfile.h"
#include "apps/kvshare/data/fieldspecs.h"
#include "apps/kvshare/data/rowwriter.h"
#include "apps/kvshare/terminal/legible.h"
#include "apps/kvshare/terminal/outputrow.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::app {

namespace {

constexpr std::string_view kFiles =
    "A file's end tells what it is: .xml and .cds a data packet, .csv, .json and .jsonl; else its\n"
    "first letter does, or an option. - is standard input or output.\n";

constexpr std::string_view kShowExamples =
    "  kvshare dataset show items.xml              the records, as a table\n"
    "  kvshare dataset show --changes items.xml    what was changed, before and after\n"
    "  kvshare dataset show --fields items.xml     the fields, as convert --fields reads them\n";
constexpr std::string_view kConvertExamples =
    "  kvshare dataset convert items.xml items.csv\n"
    "  kvshare dataset convert --fields CODE:string:10,PRICE:fixed:19:4,DAY:date day.csv day.xml\n"
    "                                              columns that are not named are strings\n";
constexpr std::string_view kCompareExamples =
    "  kvshare dataset compare --key CODE old.xml new.xml\n"
    "A line begins with - for what only the first has, + for what only the second has, * for what\n"
    "is another. Exit status: 0 no difference, 1 differences, 2 trouble.\n";

struct Options {
  std::string file, to;
  std::string from, toFormat;
  std::string fields;
  std::string key;
  bool showFields = false;
  bool changes = false;
  bool csv = false;
};

std::optional<DataFormat> UsageFormat(std::string_view option, const std::string& name) {
  if (name.empty()) return std::nullopt;
  const auto format = FormatOfName(name);
  if (!format) RefuseUsage(option, "is packet, csv or json");
  return format;
}

std::vector<TFieldDef> UsageFields(const std::string& specs) {
  try {
    return ParseFieldSpecs(UsageText("--fields", specs));
  } catch (const EConvertError& e) {
    RefuseUsage("--fields", Cp874ToUtf8Lossy(e.Message()));
  }
}

// --- show

void PrintFields(const TClientDataSet& set, bool json, const Stdio& stdio) {
  BlockWriter out(stdio.out, "standard output");
  Row row(json);
  for (const TFieldDef& field : set.FieldDefs().All()) {
    row.Clear();
    row.Cell("field") = Legible(FieldSpec(field));
    row.AppendTo(out.Buffer());
    out.EndLine();
  }
  out.Flush();
}

// Adds the record that `changed` stands on, as it is or as it was.
void AddRecord(TClientDataSet& list, std::string_view status, const TClientDataSet& changed,
               bool before) {
  list.Append();
  list.Fields(0).SetAsString(status);
  for (int i = 0; i < changed.FieldCount(); ++i) {
    const TField& field = changed.Fields(i);
    list.Fields(i + 1).SetValue(before ? field.OldValue() : field.Value());
  }
  list.Post();
}

// A field that takes what another one has, whatever its length: it cuts and rounds nothing.
TFieldDef FieldForValuesOf(TFieldDef def) {
  if (FormOf(def.DataType) == TFieldForm::Decimal) def.DataType = TFieldType::ftCurrency;
  if (IsSized(def.DataType)) {
    const bool bytes = FormOf(def.DataType) == TFieldForm::Bytes;
    def.DataType = bytes ? TFieldType::ftBlob : TFieldType::ftMemo;
    def.Size = 0;
  }
  def.Required = false;
  def.Kind = TFieldKind::fkData;
  return def;
}

// The log as records: of one that was changed there are two.
void ListChanges(TClientDataSet& list, TClientDataSet& changed) {
  list.FieldDefs().Add("STATUS", TFieldType::ftMemo);
  for (const TFieldDef& def : changed.FieldDefs().All()) {
    list.FieldDefs().Add(FieldForValuesOf(def));
  }
  list.LogChanges = false;
  list.CreateDataSet();
  changed.SetStatusFilter({.usModified = true, .usInserted = true, .usDeleted = true});
  for (changed.First(); !changed.Eof(); changed.Next()) {
    switch (changed.UpdateStatus()) {
      case TUpdateStatus::usInserted:
        AddRecord(list, "inserted", changed, false);
        break;
      case TUpdateStatus::usDeleted:
        AddRecord(list, "deleted", changed, true);
        break;
      case TUpdateStatus::usModified:
        AddRecord(list, "before", changed, true);
        AddRecord(list, "after", changed, false);
        break;
      case TUpdateStatus::usUnmodified:
        break;
    }
  }
  list.First();
}

int Show(const Options& options, bool json, const Stdio& stdio) {
  const auto format = UsageFormat("--from", options.from);
  TClientDataSet set;
  LoadDataset(set, options.file, format, {}, stdio);
  if (options.showFields) {
    PrintFields(set, json, stdio);
    return kDone;
  }
  const RowForm form = json ? RowForm::Json : options.csv ? RowForm::Csv : RowForm::Table;
  BlockWriter out(stdio.out, "standard output");
  if (!options.changes) {
    WriteRows(set, form, out);
    return kDone;
  }
  TClientDataSet list;
  ListChanges(list, set);
  WriteRows(list, form, out);
  return kDone;
}

// --- convert

int Convert(const Options& options, bool /*json*/, const Stdio& stdio) {
  const auto from = UsageFormat("--from", options.from);
  const std::vector<TFieldDef> fields = UsageFields(options.fields);
  auto to = UsageFormat("--to", options.toFormat);
  if (!to) to = FormatOfFile(options.to);
  if (!to) RefuseUsage("--to", "is needed: the end of the file's name does not tell what it is");
  TClientDataSet set;
  LoadDataset(set, options.file, from, fields, stdio);
  SaveDataset(set, options.to, *to, stdio);
  return kDone;
}

// --- compare

class DifferencePrinter {
 public:
  DifferencePrinter(bool json, const Stdio& stdio)
      : json_(json), row_(json), out_(stdio.out, "standard output") {}

  void Print(const DatasetDifference& difference) {
    any_ = true;
    row_.Clear();
    row_.Cell("side") = Mark(difference.side);
    row_.Cell("what") = difference.record ? "record" : "field";
    if (difference.record) row_.Cell("key") = Shown(difference.key);
    if (!difference.field.empty()) row_.Cell("field") = Shown(difference.field);
    PrintValue("before", difference.before, difference);
    PrintValue("after", difference.after, difference);
    row_.AppendTo(out_.Buffer());
    out_.EndLine();
  }
  bool Any() const { return any_; }
  void Flush() { out_.Flush(); }

 private:
  static std::string_view Mark(DatasetDifference::Side side) {
    switch (side) {
      case DatasetDifference::Side::First:
        return "-";
      case DatasetDifference::Side::Second:
        return "+";
      case DatasetDifference::Side::Both:
        break;
    }
    return "*";
  }
  std::string Shown(const std::string& text) const { return json_ ? text : Legible(text, ' '); }

  void PrintValue(std::string_view name, const std::optional<std::string>& value,
                  const DatasetDifference& difference) {
    if (value) {
      row_.Cell(name) = Shown(*value);
    } else if (json_ && difference.side == DatasetDifference::Side::Both) {
      row_.JsonMember(name) = "null";
    } else if (difference.side == DatasetDifference::Side::Both) {
      row_.Cell(name);
    }
  }

  bool json_;
  bool any_ = false;
  Row row_;
  BlockWriter out_;
};

bool PrintDifferences(const Options& options, bool json, const Stdio& stdio) {
  TClientDataSet first;
  TClientDataSet second;
  LoadDataset(first, options.file, UsageFormat("--from", options.from), {}, stdio);
  LoadDataset(second, options.to, UsageFormat("--to", options.toFormat), {}, stdio);
  DifferencePrinter printer(json, stdio);
  CompareDatasets(first, second, UsageText("--key", options.key),
                  [&](const DatasetDifference& difference) { printer.Print(difference); });
  printer.Flush();
  return printer.Any();
}

// Differences have the status 1, so that trouble needs another.
int Compare(const Options& options, bool json, const Stdio& stdio) {
  std::string trouble;
  try {
    return PrintDifferences(options, json, stdio) ? kBadInput : kDone;
  } catch (const Exception& e) {
    trouble = Cp874ToUtf8Lossy(e.Message());
  } catch (const WrongUsage&) {
    throw;  // wrong usage
  } catch (const std::exception& e) {
    trouble = e.what();
  }
  BlockWriter out(stdio.err, "standard error");
  out.Buffer() = "kvshare: " + trouble;
  out.EndLine();
  out.Flush();
  return kWrongUsage;
}

using Action = int (*)(const Options&, bool, const Stdio&);

Command AddDatasetCommand(Command dataset, Plan& plan, const std::shared_ptr<Options>& options,
                          std::string_view name, std::string_view purpose,
                          std::string_view examples, Action action) {
  const Command command =
      AddQuietCommand(dataset, name, purpose, std::string(examples).append(kFiles));
  command.OnParsed([options, action, &plan] {
    plan.action = [options, action, &plan](const Stdio& stdio) {
      return action(*options, plan.json, stdio);
    };
  });
  return command;
}

void AddFormat(Command command, const std::string& option, std::string& value,
               const std::string& which) {
  command.AddOption(option, value, "What " + which + " is: packet, csv or json").TypeName("FORMAT");
}

}  // namespace

void DeclareDataset(Command parent, Plan& plan) {
  const Command dataset =
      parent.AddCommand("dataset", "Data packets: shown, converted and compared");
  dataset.RequireCommand();
  const auto options = std::make_shared<Options>();

  const Command show = AddDatasetCommand(dataset, plan, options, "show", "Records of a dataset",
                                         kShowExamples, Show);
  AddJson(show, plan);
  AddFormat(show, "--from", options->from, "FILE");
  const Option changes = show.AddFlag("--changes", options->changes, "The log of changes instead");
  show.AddFlag("--fields", options->showFields, "The fields instead").Excludes(changes);
  show.AddFlag("--csv", options->csv, "Rows as CSV");
  show.AddOption("FILE", options->file, "The dataset").Required();

  const Command convert =
      AddDatasetCommand(dataset, plan, options, "convert", "A dataset as a file of another kind",
                        kConvertExamples, Convert);
  AddFormat(convert, "--from", options->from, "FROM");
  AddFormat(convert, "--to", options->toFormat, "TO");
  convert
      .AddOption("--fields", options->fields,
                 "Types of columns, NAME:TYPE[:SIZE[:DECIMALS]][:required] with commas "
                 "between; TYPE is one of " +
                     FieldSpecTypes())
      .TypeName("LIST");
  convert.AddOption("FROM", options->file, "The dataset").Required();
  convert.AddOption("TO", options->to, "The new file; an earlier one is replaced").Required();

  const Command compare =
      AddDatasetCommand(dataset, plan, options, "compare", "What differs between two datasets",
                        kCompareExamples, Compare);
  AddJson(compare, plan);
  AddFormat(compare, "--from", options->from, "FILE1");
  AddFormat(compare, "--to", options->toFormat, "FILE2");
  compare
      .AddOption("--key", options->key,
                 "The fields that records belong together by; default: the primary key of "
                 "FILE1, or all")
      .TypeName("FIELDS");
  compare.AddOption("FILE1", options->file, "A dataset").Required();
  compare.AddOption("FILE2", options->to, "Another one").Required();
}

}  // namespace kvshare::app
