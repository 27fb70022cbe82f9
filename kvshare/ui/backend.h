// What shows messages, prints and sees the screen: the console or, for tests and servers, a script.
// Windows come with a back end of their own.
#pragma once

#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "kvshare/export.h"
#include "kvshare/ui/bitmap.h"
#include "kvshare/ui/messages.h"
#include "kvshare/ui/printing.h"

namespace kvshare {

class KVSHARE_API TUserInterface {
 public:
  TUserInterface() = default;
  virtual ~TUserInterface() = default;
  TUserInterface(const TUserInterface&) = delete;
  TUserInterface& operator=(const TUserInterface&) = delete;

  // Shows the message and returns the answer, an mr value.
  virtual int ShowMessage(const TMessageBox& message) = 0;

  // The whole screen. Throws EOSError when there is none.
  virtual TPicture CaptureScreen();

  // The system's dialog that formats a drive (0 is A:), with the answers of the platform: -1 error,
  // -2 cancelled, -3 the drive cannot be formatted, which is what a back end without one says.
  virtual int FormatDrive(int drive);

  virtual TSpooler& Spooler();  // the folder spooler unless a back end has another
};

// Prints `Caption: text` on standard error in UTF-8 and answers as Esc does: nobody is there to
// ask, so that nothing is confirmed by itself. In force from the start.
class KVSHARE_API TConsoleInterface : public TUserInterface {
 public:
  int ShowMessage(const TMessageBox& message) override;
};

// Records the messages and answers from a script; as Esc does when the script has run out.
class KVSHARE_API THeadlessInterface : public TUserInterface {
 public:
  int ShowMessage(const TMessageBox& message) override;

  std::vector<TMessageBox> messages;
  std::deque<int> answers;
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
