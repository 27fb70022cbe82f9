// The two file helpers that talk to the user's machine: the dialog that formats a drive, and the
// printer.
#include <algorithm>

#include "kvshare/platform/filehelpers.h"
#include "kvshare/rtl/filebytes.h"
#include "kvshare/ui/backend.h"
#include "kvshare/ui/messages.h"
#include "kvshare/ui/printing.h"

namespace kvshare {

namespace {

struct FormatAnswer {
  int code;
  std::string_view text;
};
constexpr FormatAnswer kFailures[] = {
    {-3, "No Format"},
    {-2, "User canceled formatting the drive"},
    {-1, "Error formatting the drive"},
};

bool WriteInBlocks(TPrinterHandle& printer, std::string_view bytes) {
  constexpr std::size_t kBlock = 16384;
  for (; !bytes.empty(); bytes.remove_prefix(std::min(kBlock, bytes.size()))) {
    if (!printer.Write(bytes.substr(0, kBlock))) return false;
  }
  return true;
}

}  // namespace

bool FormatDriveA() {
  const int answer = UserInterface().FormatDrive(0);
  for (const FormatAnswer& failure : kFailures) {
    if (failure.code != answer) continue;
    MessageDlg(failure.text, TMsgDlgType::mtError, {TMsgDlgBtn::mbOK}, 0);
    return false;
  }
  return true;
}

// The file is read first, so that one that cannot be read leaves no empty document.
void PrintFile(std::string_view fileName) {
  const std::string bytes = ReadFileBytes(fileName);
  TSpooler& spooler = UserInterface().Spooler();
  const auto printer = spooler.Open(spooler.DefaultPrinter());
  // A document that is not ended is thrown away.
  if (!printer || !printer->StartDoc("MyDocument") || !printer->StartPage()) return;
  // The page is ended only when a write failed, by contract.
  if (!WriteInBlocks(*printer, bytes)) printer->EndPage();
  printer->EndDoc();
}

}  // namespace kvshare
