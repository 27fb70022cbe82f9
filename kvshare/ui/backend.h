// What shows messages and forms, prints and sees the screen: the console or, for tests and servers,
// a script. Windows come with a back end of their own.
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kvshare/export.h"
#include "kvshare/ui/bitmap.h"
#include "kvshare/ui/controls.h"
#include "kvshare/ui/messages.h"
#include "kvshare/ui/printer.h"
#include "kvshare/ui/printing.h"
#include "kvshare/ui/recordingprinter.h"

namespace kvshare {

class KVSHARE_API TUserInterface {
 public:
  TUserInterface() = default;
  virtual ~TUserInterface() = default;
  TUserInterface(const TUserInterface&) = delete;
  TUserInterface& operator=(const TUserInterface&) = delete;

  // Shows the message and returns the answer, an mr value.
  virtual int ShowMessage(const TMessageBox& message) = 0;

  // Comes first in TForm::ShowModal and Show: a back end with windows makes them (TForm::SetWindow)
  // and tells what their frames take (TWinControl::SetFrame).
  virtual void PrepareForm(TForm& form);
  // Comes last there: lets the user work with the form, and returns its ModalResult once that is
  // not mrNone. A back end with a user shows him a handler's Exception, unless it is an EAbort, and
  // the form stays, also where ModalResult was set before it. A back end that shows no forms
  // answers as Esc does, then as the close box.
  virtual int ShowModalForm(TForm& form);

  // What is waiting for windows: repaints, the user's clicks and keys.
  virtual void ProcessMessages();
  // The same until the form is hidden or closed; a back end without windows returns at once.
  virtual void RunUntilHidden(TForm& form);

  // The screen's size, 0 by 0 where there is none.
  virtual TSize ScreenSize();
  // What a maximised window takes: the screen without the desktop's own bars; 0 by 0 where there is
  // no screen.
  virtual TBounds WorkArea();
  // The height of a line of the text in the system's font; 13, as is usual, where there is none.
  virtual int TextHeight(std::string_view text);

  // The whole screen. Throws EOSError when there is none.
  virtual TPicture CaptureScreen();

  // The system's dialog that formats a drive (0 is A:), with the answers of the platform: -1 error,
  // -2 cancelled, -3 the drive cannot be formatted, which is what a back end without one says.
  virtual int FormatDrive(int drive);

  virtual TSpooler& Spooler();  // the folder spooler unless a back end has another

  // The default printer for pages; where there is none, its BeginDoc throws.
  virtual TPrinter& Printer();
  // A printer whose job becomes a PDF file, whole or not at all. Throws EPrinter where pages cannot
  // be drawn; EndDoc throws EInOutError when the file cannot be written.
  virtual std::unique_ptr<TPrinter> PdfPrinter(std::string_view fileName);
};

// Speaks UTF-8 on standard error. In force from the start.
//
// A message is `Caption: text`, answered as Esc does: nobody is asked, so that nothing is confirmed
// by itself. A form is lines too. Where standard input and standard error are terminals its user
// works with it by typed lines, `?` tells which, and the end of the input is Esc; a handler's
// Exception is shown and the form stays. Elsewhere a form is shown once and dismissed.
class KVSHARE_API TConsoleInterface : public TUserInterface {
 public:
  TConsoleInterface() = default;
  // On other open files, which stay the caller's.
  TConsoleInterface(int input, int output) : input_(input), output_(output) {}

  int ShowMessage(const TMessageBox& message) override;
  int ShowModalForm(TForm& form) override;

 private:
  int input_ = 0;   // standard input
  int output_ = 2;  // standard error
};

// Records what is shown and answers from scripts; as Esc does when they have run out.
class KVSHARE_API THeadlessInterface : public TUserInterface {
 public:
  int ShowMessage(const TMessageBox& message) override;
  // Runs the next step, which does what a user would; a form that it leaves open is dismissed.
  int ShowModalForm(TForm& form) override;
  TSize ScreenSize() override { return screen; }
  TPrinter& Printer() override { return paper; }

  std::vector<TMessageBox> messages;
  std::deque<int> answers;  // one a message

  std::vector<std::string> shown;                 // the captions of the forms
  std::deque<std::function<void(TForm&)>> steps;  // one a form
  TSize screen{1024, 768};
  TRecordingPrinter paper;
};

// The back end in force.
KVSHARE_API TUserInterface& UserInterface();

// Makes another one answer while the object lives; the earlier one comes back. Not for threads.
class KVSHARE_API TUseInterface {
 public:
  explicit TUseInterface(TUserInterface& backEnd);
  ~TUseInterface();
  TUseInterface(const TUseInterface&) = delete;
  TUseInterface& operator=(const TUseInterface&) = delete;

 private:
  TUserInterface* earlier_;
};

}  // namespace kvshare
