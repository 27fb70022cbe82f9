// `kvshare company`.
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "apps/kvshare/commands/commands.h"
#include "apps/kvshare/commands/startedlibrary.h"
#include "apps/kvshare/data/connections.h"
#include "kvshare/data/client/clientdataset.h"
#include "kvshare/data/sql/secrets.h"
#include "kvshare/database/connectinfo.h"
#include "kvshare/database/dbxconf.h"
#include "kvshare/os/files.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/filebytes.h"
#include "kvshare/rtl/filenames.h"
#include "kvshare/rtl/strutils.h"
#include "kvshare/settings/globals.h"

namespace kvshare::app {

namespace {

constexpr std::string_view kListExamples =
    "  kvshare company list                      name, connection and event log of every company\n"
    "  kvshare company list --json               the folders too\n";
constexpr std::string_view kAddExamples =
    "  kvshare company add 'Main shop' --connection SHOP\n"
    "  kvshare company add Branch --connection SHOP2 --log 'D:\\Logs\\branch.log' \\\n"
    "      --documents 'D:\\Documents'\n";
constexpr std::string_view kEditExamples =
    "  kvshare company edit Branch --reports 'D:\\Reports'\n"
    "  kvshare company edit Branch --rename 'Second shop'\n";
constexpr std::string_view kRemoveExamples =
    "  kvshare company remove Branch             from the list; its data stay\n";
constexpr std::string_view kOpenExamples =
    "  kvshare company open 'Main shop'          what a program gets to know of it\n";

constexpr std::string_view kName = "Alias_Name";
constexpr std::string_view kConnection = "Alias_Alias";
constexpr std::string_view kLog = "Alias_LogFile";
constexpr std::string_view kDocuments = "Alias_Doc_Dir";

// What an option sets, and what a program reads.
struct ListField {
  std::string_view field;
  const char* option;
  const char* purpose;
  std::string_view member;
  int size;
  bool folder;
};
constexpr ListField kFields[] = {
    {kName, nullptr, nullptr, "name", 60, false},
    {kConnection, "--connection", "A connection of the connection file", "connection", 60, false},
    {kLog, "--log", "Its event log, with folder and name", "log", 255, false},
    {"Alias_PosB_Dir", "--pos-data", "Data of the points of sale", "pos_data", 255, true},
    {"Alias_PosH_Dir", "--pos-packing", "Packing of the points of sale", "pos_packing", 255, true},
    {"Alias_Pack_Dir", "--packing", "Packing", "packing", 255, true},
    {"Alias_Rpt_Dir", "--reports", "Reports", "reports", 255, true},
    {kDocuments, "--documents", "Documents, a folder below for each connection", "documents", 255,
     true},
};

struct Options {
  std::string list;
  std::string name;
  std::string rename;
  std::string values[std::size(kFields)];
};

// The list as it lies in its file; a new one where there is none.
class CompanyList {
 public:
  explicit CompanyList(const Options& options)
      : file_(options.list.empty() ? GetCompanyListFileName() : UsageText("--list", options.list)) {
    if (FileExists(file_)) {
      set_.LoadFromFile(file_);
    } else {
      for (const ListField& field : kFields) {
        set_.FieldDefs().Add(field.field, TFieldType::ftString, field.size);
      }
      set_.CreateDataSet();
    }
    set_.LogChanges = false;
  }

  TClientDataSet& Set() { return set_; }
  bool Find(std::string_view name) { return set_.Locate(kName, Variant(name)); }
  void Require(const std::string& name) {
    if (!Find(name)) throw Exception("no company '" + name + "' in " + file_);
  }
  void RefuseDouble(const std::string& name) {
    if (Find(name)) throw Exception("there is a company '" + name + "' already");
  }
  void Save() {
    if (const auto folder = ExtractFilePath(file_); !folder.empty()) os::ForceDirectories(folder);
    set_.SaveToFile(file_);
  }

 private:
  std::string file_;
  TClientDataSet set_;
};

void PutText(TField& field, const std::string& text) {
  const auto room = static_cast<std::size_t>(field.Size());
  if (room != 0 && text.size() > room) {
    throw Exception("'" + text + "' is longer than the list has room for");
  }
  field.SetAsString(text);
}

void PutOptions(TClientDataSet& set, const Options& options) {
  for (std::size_t i = 0; i < std::size(kFields); ++i) {
    if (options.values[i].empty()) continue;
    const ListField& known = kFields[i];
    std::string text = UsageText(known.option, options.values[i]);
    if (known.field == kConnection) RequireConnection(text);
    if (known.folder) text = IncludeTrailingBackslash(text);
    PutText(set.FieldByName(known.field), text);
  }
}

std::string UsageName(std::string_view option, const std::string& utf8) {
  std::string name = UsageText(option, utf8);
  if (Trim(name).empty()) RefuseUsage(option, "is blank");
  return name;
}

// Where a company's own things lie unless an option says it.
std::string DefaultOf(std::string_view field, const std::string& connection) {
  if (field == kLog) return GetKovraShareDataPath() + "Log\\" + connection + ".log";
  if (field == kDocuments) return GetKovraShareDataPath() + "Document\\";
  return {};
}

// One change of the list: all of it, or the file stays as it is.
int OnList(const Options& options,
           const std::function<void(CompanyList& list, const std::string& name)>& change) {
  const std::string name = UsageName("NAME", options.name);
  const StartedLibrary library;
  CompanyList list(options);
  change(list, name);
  list.Save();
  return kDone;
}

int Add(const Options& options) {
  return OnList(options, [&options](CompanyList& list, const std::string& name) {
    list.RefuseDouble(name);
    TClientDataSet& set = list.Set();
    set.Append();
    PutText(set.FieldByName(kName), name);
    PutOptions(set, options);
    const std::string connection = set.FieldByName(kConnection).AsString();
    for (const ListField& known : kFields) {
      TField* field = set.FindField(known.field);
      const bool open = field != nullptr && field->AsString().empty();
      if (open) PutText(*field, DefaultOf(known.field, connection));
    }
    set.Post();
  });
}

int Change(const Options& options) {
  return OnList(options, [&options](CompanyList& list, const std::string& name) {
    std::string renamed;
    if (!options.rename.empty()) {
      renamed = UsageName("--rename", options.rename);
      if (renamed != name) list.RefuseDouble(renamed);
    }
    list.Require(name);
    TClientDataSet& set = list.Set();
    set.Edit();
    if (!renamed.empty()) PutText(set.FieldByName(kName), renamed);
    PutOptions(set, options);
    set.Post();
  });
}

int Remove(const Options& options) {
  return OnList(options, [](CompanyList& list, const std::string& name) {
    list.Require(name);
    list.Set().Delete();
  });
}

RowPrinter PrintList(const Options& options) {
  return [options](const auto& print, Row& row) {
    const StartedLibrary library;
    CompanyList list(options);
    TClientDataSet& set = list.Set();
    for (set.First(); !set.Eof(); set.Next()) {
      row.Clear();
      for (const ListField& known : kFields) {
        std::string& text = known.folder ? row.Member(known.member) : row.Cell(known.member);
        if (const TField* field = set.FindField(known.field)) field->AppendString(text);
      }
      print(row);
    }
  };
}

RowPrinter PrintOpen(const std::string& utf8) {
  return [utf8](const auto& print, Row& row) {
    const std::string name = UsageText("NAME", utf8);
    const StartedLibrary library;
    WithoutBoxes([&] { ReadDbmsConnectInfo(name); });
    const std::pair<std::string_view, std::string> settings[] = {
        {"name", KovraDataBaseName},
        {"connection", KovraAliasName},
        {"dbms", KovraAliasTradeName},
        {"database file", data::WithoutSecrets("Database", KovraDbFileName)},
        {"login", KovraLoginName},
        {"log folder", KovraLogDatabaseName},
        {"log file", KovraLogTableName},
        {"pos data", KovraPosDataDir},
        {"pos packing", KovraPackPosDDir},
        {"packing", KovraPackDir},
        {"reports", KovraReportDir},
        {"documents", KovraDocumentDir},
        {"structure", KovraDataBaseIni},
        {"key generator", KovraGenkeyEnable ? KovraGenkeyServer : std::string()},
        {"product", KovraProductName},
        {"computer", KovraComputerName},
        {"user", KovraWindowsUserName},
        {"workstation", KovraCurrentGuid},
    };
    for (const auto& [setting, value] : settings) {
      row.Clear();
      row.Cell("setting") = setting;
      row.Cell("value") = value;
      print(row);
    }
  };
}

void AddName(Command command, const std::shared_ptr<Options>& options) {
  command.AddOption("NAME", options->name, "The company's name").Required();
}

void AddFields(Command command, const std::shared_ptr<Options>& options, bool needsConnection) {
  for (std::size_t i = 0; i < std::size(kFields); ++i) {
    const ListField& known = kFields[i];
    if (known.option == nullptr) continue;
    const char* type = known.folder ? "FOLDER" : known.field == kLog ? "FILE" : "NAME";
    const Option option =
        command.AddOption(known.option, options->values[i], known.purpose).TypeName(type);
    if (needsConnection && known.field == kConnection) option.Required();
  }
}

void AddList(Command command, const std::shared_ptr<Options>& options) {
  command.AddOption("--list", options->list, "Another program's list (BConnect.TXT)")
      .TypeName("FILE");
}

using Act = int (*)(const Options&);

// One that changes the list.
Command DeclareAct(Command company, Plan& plan, std::string_view command, std::string_view purpose,
                   std::string_view examples, const std::shared_ptr<Options>& options, Act act) {
  const Command declared = AddQuietCommand(company, command, purpose, examples);
  AddName(declared, options);
  AddList(declared, options);
  declared.OnParsed(
      [options, act, &plan] { plan.action = [=](const Stdio&) { return act(*options); }; });
  return declared;
}

}  // namespace

void DeclareCompany(Command parent, Plan& plan) {
  const Command company = parent.AddCommand("company", "The companies of the programs");
  company.RequireCommand();
  const auto options = std::make_shared<Options>();

  const Command list =
      AddCommand(company, plan, "list", "All companies of the list", kListExamples);
  AddList(list, options);
  list.OnParsed([options, &plan] { plan.action = PrintRows(plan, PrintList(*options)); });

  AddFields(
      DeclareAct(company, plan, "add", "Add a company to the list", kAddExamples, options, Add),
      options, true);
  const Command edit = DeclareAct(company, plan, "edit", "Change a company of the list",
                                  kEditExamples, options, Change);
  AddFields(edit, options, false);
  edit.AddOption("--rename", options->rename, "Its new name").TypeName("NAME");
  DeclareAct(company, plan, "remove", "Take a company off the list", kRemoveExamples, options,
             Remove);

  const Command open =
      AddCommand(company, plan, "open", "What a program gets to know of a company", kOpenExamples);
  AddName(open, options);
  open.OnParsed([options, &plan] { plan.action = PrintRows(plan, PrintOpen(options->name)); });
  DeclareCompanyCreate(company, plan);
}

}  // namespace kvshare::app
