#include "kvshare/ui/backend.h"

#include "kvshare/os/console.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare {

namespace {

TUserInterface*& InForce() {
  static TConsoleInterface console;
  static TUserInterface* inForce = &console;
  return inForce;
}

// A box's text for a terminal, in code page 874: lines end with LF alone, and no byte of a message,
// which may come from a server, steers the terminal.
void AppendShown(std::string& out, std::string_view text) {
  constexpr char kNoLetter = '\xFF';
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '\r') {
      if (i + 1 == text.size() || text[i + 1] != '\n') out += '\n';
    } else if (c == '\n' || c == '\t') {
      out += c;
    } else {
      const auto byte = static_cast<unsigned char>(c);
      out += byte < 0x20 || byte == 0x7F ? kNoLetter : c;
    }
  }
}

}  // namespace

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

int TConsoleInterface::ShowMessage(const TMessageBox& message) {
  std::string shown;
  if (const std::string caption = message.Caption(); !caption.empty()) {
    AppendShown(shown, caption);
    shown += ": ";
  }
  AppendShown(shown, message.text);
  if (!shown.ends_with('\n')) shown += '\n';
  os::WriteStandardError(Cp874ToUtf8Lossy(shown));
  return message.EscapeResult();
}

int THeadlessInterface::ShowMessage(const TMessageBox& message) {
  messages.push_back(message);
  if (answers.empty()) return message.EscapeResult();
  const int answer = answers.front();
  answers.pop_front();
  return answer;
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
