// `kvshare printers`.
#include <algorithm>
#include <cstdlib>
#include <memory>
#include <optional>
#include <utility>

#include "apps/kvshare/commands/commands.h"
#include "apps/kvshare/system/process.h"
#include "kvshare/platform/printbmp.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/environment.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/filebytes.h"
#include "kvshare/rtl/filenames.h"
#include "kvshare/ui/paper.h"

namespace kvshare::app {

namespace {

constexpr std::string_view kListExamples =
    "  kvshare printers list                     the system's, the default one marked\n"
    "  kvshare printers list --folders           the folders in KVSHARE_HOME/spool\n";
constexpr std::string_view kPrintExamples =
    "  kvshare printers print label.prn          the bytes as they are, to the default printer\n"
    "  kvshare printers print --printer Label *.prn\n";
constexpr std::string_view kPictureExamples =
    "  kvshare printers picture screen.bmp --title 'Sales, November'\n"
    "  kvshare printers picture screen.bmp --pdf screen.pdf\n";

struct Options {
  std::string printer;
  bool folders = false;
  std::vector<std::string> files;
  std::string title;
  std::string pdf;
};

// The spooler that the options name.
class Spooler {
 public:
  explicit Spooler(const Options& options) {
    if (options.folders) folders_ = MakeFolderSpooler();
  }
  TSpooler& operator*() const { return folders_ ? *folders_ : Paper().Spooler(); }
  TSpooler* operator->() const { return &**this; }

 private:
  std::unique_ptr<TSpooler> folders_;
};

void RequireAnswer(const TSpooler& spooler) {
  if (const std::string trouble = spooler.Trouble(); !trouble.empty()) throw EPrinter(trouble);
}

RowPrinter PrintList(const Options& options) {
  return [&options](const auto& print, Row& row) {
    const Spooler spooler(options);
    const std::vector<std::string> printers = spooler->Printers();
    RequireAnswer(*spooler);
    const std::string usual = spooler->DefaultPrinter();
    for (const std::string& printer : printers) {
      row.Clear();
      row.Cell("printer") = printer;
      if (row.Json()) {
        row.Flag("default", printer == usual);
      } else if (printer == usual) {
        row.Cell("default") = "default";
      }
      print(row);
    }
  };
}

std::string ChosenPrinter(const Options& options, TSpooler& spooler) {
  if (!options.printer.empty()) return UsageText("--printer", options.printer);
  std::string usual = spooler.DefaultPrinter();
  RequireAnswer(spooler);
  if (usual.empty()) throw EPrinter("There is no default printer currently selected");
  return usual;
}

bool SendBytes(TPrinterHandle& printer, std::string_view title, std::string_view bytes) {
  constexpr std::size_t kBlock = 16384;
  if (!printer.StartDoc(title) || !printer.StartPage()) return false;
  for (; !bytes.empty(); bytes.remove_prefix(std::min(kBlock, bytes.size()))) {
    if (!printer.Write(bytes.substr(0, kBlock))) return false;
  }
  return printer.EndPage() && printer.EndDoc();
}

// What is wrong with printing the file, or "".
std::string PrintOne(TSpooler& spooler, const std::string& printer, const std::string& file) {
  try {
    const std::string name = UsageText("FILE", file);
    const std::string bytes = ReadFileBytes(name);
    const auto handle = spooler.Open(printer);
    if (!handle) {
      const std::string trouble = spooler.Trouble();
      return trouble.empty() ? "there is no printer " + printer : trouble;
    }
    if (SendBytes(*handle, ExtractFileName(name), bytes)) return {};
    const std::string trouble = handle->Trouble();
    return "the printer " + printer + " refuses it" + (trouble.empty() ? "" : ": " + trouble);
  } catch (const EInOutError& e) {
    return e.Message();
  }
}

int Print(const Options& options, const Stdio& stdio) {
  const Spooler spooler(options);
  const std::string printer = ChosenPrinter(options, *spooler);
  BlockWriter err(stdio.err, "standard error");
  int status = kDone;
  for (const std::string& file : options.files) {
    const std::string problem = PrintOne(*spooler, printer, file);
    if (problem.empty()) continue;
    err.Buffer().append(file).append(": ").append(Cp874ToUtf8Lossy(problem));
    err.EndLine();
    status = kBadInput;
  }
  err.Flush();
  return status;
}

// Pages go to the given printer while this lives.
class OnPrinter : public TConsoleInterface {
 public:
  explicit OnPrinter(TPrinter& printer) : printer_(printer) {}
  TPrinter& Printer() override { return printer_; }

 private:
  TPrinter& printer_;
  TUseInterface use_{*this};
};

// The default printer of this process while this lives.
class DefaultPrinter {
 public:
  explicit DefaultPrinter(const std::string& utf8) : earlier_(Environment("KVSHARE_PRINTER")) {
    if (!utf8.empty()) Set(utf8);
  }
  ~DefaultPrinter() { Set(earlier_); }
  DefaultPrinter(const DefaultPrinter&) = delete;
  DefaultPrinter& operator=(const DefaultPrinter&) = delete;

 private:
  static void Set(const std::string& name) { SetEnvironment("KVSHARE_PRINTER", name); }
  std::string earlier_;
};

int PrintPicture(const Options& options, const Stdio& /*stdio*/) {
  const std::string file = UsageText("FILE", options.files.front());
  const std::string title = UsageText("--title", options.title);
  std::unique_ptr<TPrinter> pdf;
  if (!options.pdf.empty()) pdf = Paper().PdfPrinter(UsageText("--pdf", options.pdf), kSheetA4);
  const DefaultPrinter chosen(options.printer);
  const OnPrinter use(pdf ? *pdf : Paper().DefaultPrinter());
  Printer().Title = title.empty() ? std::string(ExtractFileName(file)) : title;
  try {
    TPrintBitmap::PrintBmpFile(file, title);
  } catch (const EInvalidGraphic& e) {
    throw EInvalidGraphic(file + ": " + e.Message());
  } catch (const EInOutError& e) {
    if (options.pdf.empty()) throw;
    throw std::runtime_error(options.pdf + ": " + Cp874ToUtf8Lossy(e.Message()));
  }
  return kDone;
}

void AddPrinter(Command command, Options& options) {
  command.AddOption("--printer", options.printer, "The printer (default: the default one)")
      .TypeName("NAME");
}

void AddFolders(Command command, Options& options) {
  command.AddFlag("--folders", options.folders, "The folders in KVSHARE_HOME/spool are printers");
}

void OnCall(Command command, Plan& plan, const std::shared_ptr<Options>& options,
            int (*action)(const Options&, const Stdio&)) {
  command.OnParsed([options, action, &plan] {
    plan.action = [options, action](const Stdio& stdio) { return action(*options, stdio); };
  });
}

}  // namespace

void DeclarePrinters(Command parent, Plan& plan) {
  const Command printers = parent.AddCommand("printers", "Printers, and files for them");
  printers.RequireCommand();
  const auto options = std::make_shared<Options>();

  const Command list = AddCommand(printers, plan, "list", "The printers by name", kListExamples);
  AddFolders(list, *options);
  list.OnParsed([options, &plan] {
    plan.action = [options, run = PrintRows(plan, PrintList(*options))](const Stdio& stdio) {
      return run(stdio);
    };
  });

  const Command print = AddQuietCommand(printers, "print",
                                        "Files as they are, each a job of its own", kPrintExamples);
  print.AddOption("FILE", options->files, "The files, ready for the printer").Required();
  AddPrinter(print, *options);
  AddFolders(print, *options);
  OnCall(print, plan, options, Print);

  const Command picture = AddQuietCommand(
      printers, "picture", "A Windows bitmap with a title, as a page", kPictureExamples);
  picture.AddOption("FILE", options->files, "The bitmap").Required().TakesOne();
  picture.AddOption("--title", options->title, "What stands above it").TypeName("TEXT");
  picture.AddOption("--pdf", options->pdf, "Into that PDF file instead of onto a printer")
      .TypeName("FILE");
  AddPrinter(picture, *options);
  picture.Named("--printer").Excludes(picture.Named("--pdf"));
  OnCall(picture, plan, options, PrintPicture);
}

}  // namespace kvshare::app
