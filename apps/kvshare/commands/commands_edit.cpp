// `kvshare edit`.
#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "apps/kvshare/commands/commands.h"
#include "apps/kvshare/commands/startedlibrary.h"
#include "apps/kvshare/data/connections.h"
#include "apps/kvshare/data/recordform.h"
#include "apps/kvshare/data/recordtalk.h"
#include "apps/kvshare/data/tablerecord.h"
#include "apps/kvshare/terminal/talkinginterface.h"
#include "kvshare/database/connectinfo.h"
#include "kvshare/database/dbpost.h"
#include "kvshare/database/sqlfunc.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/settings/globals.h"
#include "kvshare/ui/desktop.h"

namespace kvshare::app {

namespace {

constexpr std::string_view kExamples =
    "  kvshare edit SHOP ITEM CODE=A1            asks for each field of the record\n"
    "  kvshare edit SHOP ITEM --key CODE A1      the same\n"
    "  kvshare edit SHOP DOCLINE --key LIN_DOC,LIN_NO IV6911-0002,3\n"
    "                                            a key of two fields\n"
    "  kvshare edit SHOP ITEM CODE=A1 --set PRICE=13.50 --set NAME= --yes\n"
    "                                            asks nothing; a text of no letters is Null\n"
    "  kvshare edit SHOP ITEM CODE=A9 --new      a new record; what is left empty the server fills "
    "in\n"
    "  kvshare edit SHOP ITEM CODE=A9 --delete   takes it away\n"
    "  kvshare edit SHOP ITEM CODE=A1 --windows  in a window, where there is a display\n"
    "At a field Enter alone keeps what is there, - takes it away, . ends, =TEXT types TEXT as it\n"
    "stands. What is typed is read as the field's screen reads it: dates in the era in force, all\n"
    "digits of amounts. The fields of the key are not asked for; --set changes them. When the "
    "server\n"
    "refuses the change, since somebody else was first, a dialog shows both, and what to do is\n"
    "chosen there. Exit status 1: no such record, or nothing was written of what was to be.\n";

struct Options {
  std::string company;
  std::string table;
  std::vector<std::string> keys;
  std::string keyFields;
  std::vector<std::string> sets;
  std::string era;
  bool yes = false;
  bool isNew = false;
  bool isDelete = false;
  bool windows = false;
};

// The order that a command line gives.
struct Order {
  std::string company;
  std::string table;
  TypedValues key;
  TypedValues sets;
  Word era = 0;
  bool yes = false;
  bool isNew = false;
  bool isDelete = false;
  bool windows = false;
};

std::vector<std::string> SplitAtCommas(const std::string& text) {
  std::vector<std::string> parts(1);
  for (const char c : text) {
    if (c == ',') {
      parts.emplace_back();
    } else {
      parts.back() += c;
    }
  }
  return parts;
}

TypedValue UsageAssignment(std::string_view option, const std::string& typed) {
  const std::size_t equals = typed.find('=');
  if (equals == std::string::npos || equals == 0) RefuseUsage(option, "is FIELD=TEXT");
  return {UsageText(option, typed.substr(0, equals)), UsageText(option, typed.substr(equals + 1))};
}

// A value with a comma needs no care where the key has one field, or where each value is an operand
// of its own.
TypedValues UsageKey(const Options& options) {
  TypedValues key;
  if (options.keyFields.empty()) {
    for (const std::string& typed : options.keys) key.push_back(UsageAssignment("KEY", typed));
    return key;
  }
  const std::vector<std::string> fields = SplitAtCommas(options.keyFields);
  std::vector<std::string> values = options.keys;
  if (values.size() == 1 && fields.size() > 1) values = SplitAtCommas(values.front());
  if (values.size() != fields.size()) RefuseUsage("KEY", "has a value for each field of --key");
  for (std::size_t i = 0; i < fields.size(); ++i) {
    key.push_back({UsageText("--key", fields[i]), UsageText("KEY", values[i])});
  }
  return key;
}

Order UsageOrder(const Options& options) {
  Order order;
  order.company = UsageText("COMPANY", options.company);
  order.table = UsageText("TABLE", options.table);
  order.key = UsageKey(options);
  for (const std::string& typed : options.sets) {
    order.sets.push_back(UsageAssignment("--set", typed));
  }
  order.era = UsageEra(options.era);
  order.yes = options.yes;
  order.isNew = options.isNew;
  order.isDelete = options.isDelete;
  order.windows = options.windows;
  if (order.key.empty() && !order.isNew) RefuseUsage("KEY", "is needed");
  return order;
}

// A company as a program of the suite opens it.
class CompanySession {
 public:
  explicit CompanySession(const Order& order) {
    YearBase = order.era;
    WithoutBoxes([&] {
      ReadDbmsConnectInfo(order.company);
      ConnectDBMS(connection_, KovraAliasName, true);
    });
  }

  TSQLConnection& Connection() { return connection_; }

 private:
  StartedLibrary library_;
  TSQLConnection connection_;  // closed before the library ends
};

// One order, from the record to the server's answer.
class RecordEdit {
 public:
  RecordEdit(TSQLConnection& connection, const Order& order, const Stdio& stdio)
      : order_(order),
        stdio_(stdio),
        console_(EchoingConsole(stdio.in, stdio.out)),
        record_(connection, order.table, order.key),
        talk_(record_, console_),
        windows_(order.windows ? &Desktop() : nullptr) {
    Set().OnReconcileError = [this](TClientDataSet& set, EReconcileError& error, TUpdateKind kind,
                                    TReconcileAction& action) {
      TKovraDbPost::ClientDataSetUserReconcileError(set, error, kind, action);
      decided_ = action;
    };
  }

  int Run() {
    order_.isNew ? record_.Append() : record_.Fetch();
    if (order_.isDelete) return Delete();
    if (!order_.isNew) Set().Edit();
    if (windows_ != nullptr && order_.sets.empty()) return EditInWindow();
    if (!PostEdits()) return NothingToWrite();
    talk_.Say(record_.Title() + "\n" + talk_.Changes());
    return order_.yes || Confirm("Write it?") ? Apply() : NotWritten();
  }

 private:
  TClientDataSet& Set() { return record_.Set(); }

  bool Asks() const { return order_.sets.empty() && !talk_.InputEnded(); }

  // False where nothing was changed. A record that cannot be posted is asked for again.
  bool PostEdits() {
    for (const TypedValue& value : order_.sets) {
      StoreLine(Set().FieldByName(value.field), value.text);
    }
    if (Asks()) talk_.Say(record_.Title() + "   (? tells what can be typed)");
    for (;;) {
      if (Asks()) talk_.AskFields();
      if (!order_.isNew && talk_.Changes().empty()) return false;
      try {
        Set().Post();
        return true;
      } catch (const Exception& e) {
        if (!Asks()) throw;
        talk_.Say(e.Message());
      }
    }
  }

  // The form's OK says what is asked for elsewhere.
  int EditInWindow() {
    const TUseInterface use(*windows_);
    talk_.Say(record_.Title());
    RecordForm form(record_);
    if (!form.Edit()) return NotWritten();
    if (!order_.isNew && Set().ChangeCount() == 0) return NothingToWrite();
    talk_.Say(talk_.Changes());
    return Apply();
  }

  bool Confirm(std::string_view question) {
    if (windows_ == nullptr) return talk_.Confirm(question);
    const TUseInterface use(*windows_);
    const std::string text = record_.Title() + "\r\n" + std::string(question);
    return MessageDlg(text, TMsgDlgType::mtConfirmation, {TMsgDlgBtn::mbYes, TMsgDlgBtn::mbNo},
                      0) == mrYes;
  }

  int Delete() {
    talk_.Say(record_.Title() + "\n" + talk_.Values());
    if (!order_.yes && !Confirm("Delete it?")) return NotWritten();
    Set().Delete();
    return Apply();
  }

  int Apply() {
    const std::string typed = order_.isNew ? talk_.Values() : "";
    TalkingInterface forms(stdio_, console_);
    const TUseInterface use(windows_ != nullptr ? *windows_ : forms);
    while (Set().ApplyUpdates(0) != 0) {
      switch (decided_) {
        case TReconcileAction::raCancel:
        case TReconcileAction::raRefresh:
        case TReconcileAction::raAbort:
          return NotWritten();
        case TReconcileAction::raSkip:
        case TReconcileAction::raMerge:
        case TReconcileAction::raCorrect:
          if (!order_.isDelete) talk_.Say(record_.Title() + "\n" + talk_.Changes());
          if (!Confirm("Try again?")) return NotWritten();
      }
    }
    talk_.Say(order_.isDelete ? "deleted" : "written");
    const bool filled = order_.isNew && talk_.Values() != typed;
    if (filled) talk_.Say(talk_.Values());  // by the server
    return kDone;
  }

  int NothingToWrite() {
    talk_.Say("nothing to write");
    return kDone;
  }

  int NotWritten() {
    talk_.Say("nothing was written");
    return kBadInput;
  }

  const Order& order_;
  const Stdio& stdio_;
  const os::Console console_;
  TableRecord record_;
  RecordTalk talk_;
  TUserInterface* windows_;  // nullptr at a terminal
  TReconcileAction decided_ = TReconcileAction::raAbort;
};

int Run(const Order& order, const Stdio& stdio) {
  CompanySession session(order);
  return RecordEdit(session.Connection(), order, stdio).Run();
}

void DeclareOptions(Command command, Options& options) {
  command.AddOption("COMPANY", options.company, "A company of the list, else a connection")
      .Required();
  command.AddOption("TABLE", options.table, "The table").Required();
  command.AddOption("KEY", options.keys, "FIELD=VALUE for each field of the key; see --key");
  command.AddOption("--key", options.keyFields, "The key's fields; KEY then is values alone")
      .TypeName("FIELD,...");
  command.AddOption("--set", options.sets, "A field's new text, asking nothing; repeatable")
      .TypeName("FIELD=TEXT")
      .Repeats();
  const Option isNew = command.AddFlag("--new", options.isNew, "Add a record with this key");
  const Option isDelete = command.AddFlag("--delete", options.isDelete, "Delete the record");
  isNew.Excludes(isDelete);
  command.AddFlag("--yes", options.yes, "Write without asking");
  command.AddFlag("--windows", options.windows, "Show the record and the dialogs as windows");
  AddEra(command, options.era);
}

}  // namespace

void DeclareEdit(Command parent, Plan& plan) {
  const auto options = std::make_shared<Options>();
  const Command command =
      AddQuietCommand(parent, "edit", "Edit a record of a table, field by field", kExamples);
  DeclareOptions(command, *options);
  command.OnParsed([options, &plan] {
    plan.action = [order = UsageOrder(*options)](const Stdio& stdio) { return Run(order, stdio); };
  });
}

}  // namespace kvshare::app
