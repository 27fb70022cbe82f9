#include "kvshare/ui/backend.h"

#include <utility>

#include "kvshare/os/console.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/ui/consoleform.h"
#include "kvshare/ui/consoletext.h"

namespace kvshare {

namespace {

// Stands where there is no printer for pages.
class TNoPrinter : public TPrinter {
 public:
  TSize PageSize() override { Refuse(); }
  TSize PixelsPerInch() override { Refuse(); }
  TCanvas& Canvas() override { Refuse(); }

 protected:
  void StartJob() override { Refuse(); }
  void StartPage() override { Refuse(); }
  void FinishJob() override { Refuse(); }
  void ThrowAway() noexcept override {}

 private:
  [[noreturn]] static void Refuse() {
    throw EPrinter("There is no default printer currently selected");
  }
};

TUserInterface*& InForce() {
  static TConsoleInterface console;
  static TUserInterface* inForce = &console;
  return inForce;
}

}  // namespace

void TUserInterface::PrepareForm(TForm& /*form*/) {}

int TUserInterface::ShowModalForm(TForm& form) {
  form.Dismiss();
  return form.ModalResult;
}

void TUserInterface::ProcessMessages() {}

void TUserInterface::RunUntilHidden(TForm& /*form*/) {}

TBounds TUserInterface::WorkArea() {
  const TSize screen = ScreenSize();
  return {0, 0, screen.Width, screen.Height};
}

TSize TUserInterface::ScreenSize() {
  return {};
}

int TUserInterface::TextHeight(std::string_view /*text*/) {
  constexpr int kUsual = 13;
  return kUsual;
}

TPicture TUserInterface::CaptureScreen() {
  throw EOSError("There is no screen");
}

int TUserInterface::FormatDrive(int /*drive*/) {
  constexpr int kCannotBeFormatted = -3;
  return kCannotBeFormatted;
}

TSpooler& TUserInterface::Spooler() {
  static const std::unique_ptr<TSpooler> folders = MakeFolderSpooler();
  return *folders;
}

TPrinter& TUserInterface::Printer() {
  static TNoPrinter none;
  return none;
}

std::unique_ptr<TPrinter> TUserInterface::PdfPrinter(std::string_view /*fileName*/) {
  throw EPrinter("PDF files need the library kvshare-paper");
}

int TConsoleInterface::ShowMessage(const TMessageBox& message) {
  std::string shown;
  if (const std::string caption = message.Caption(); !caption.empty()) {
    AppendLines(shown, caption);
    shown += ": ";
  }
  AppendLines(shown, message.text);
  if (!shown.ends_with('\n')) shown += '\n';
  os::Console(input_, output_).Write(Cp874ToUtf8Lossy(shown));
  return message.EscapeResult();
}

int TConsoleInterface::ShowModalForm(TForm& form) {
  const os::Console console(input_, output_);
  if (console.IsTerminal()) return TalkAboutForm(form, console);
  console.Write(ShownForm(form));
  form.Dismiss();
  return form.ModalResult;
}

int THeadlessInterface::ShowMessage(const TMessageBox& message) {
  messages.push_back(message);
  if (answers.empty()) return message.EscapeResult();
  const int answer = answers.front();
  answers.pop_front();
  return answer;
}

int THeadlessInterface::ShowModalForm(TForm& form) {
  shown.push_back(form.Caption());
  if (!steps.empty()) {
    const auto step = std::move(steps.front());
    steps.pop_front();
    step(form);
  }
  if (form.ModalResult == mrNone) form.Dismiss();
  return form.ModalResult;
}

TUserInterface& UserInterface() {
  return *InForce();
}

TUseInterface::TUseInterface(TUserInterface& backEnd) : earlier_(InForce()) {
  InForce() = &backEnd;
}

TUseInterface::~TUseInterface() {
  InForce() = earlier_;
}

}  // namespace kvshare
