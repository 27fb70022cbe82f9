#include "kvshare/os/process.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "kvshare/os/commandline.h"
#include "kvshare/os/paths.h"
#include "kvshare/os/win32/environment.h"
#include "kvshare/os/win32/folderlist.h"
#include "kvshare/os/win32/handle.h"
#include "kvshare/os/win32/names.h"
#include "kvshare/os/win32/programfolder.h"
#include "kvshare/os/win32/quieterrors.h"
#include "kvshare/os/win32/streams.h"
#include "kvshare/os/win32/systemnames.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::os {

bool IsConsole = true;

namespace {

using win32::Handle;

bool HasExtension(std::string_view name, std::string_view extension) {
  return name.size() > extension.size() &&
         SameText(name.substr(name.size() - extension.size()), extension);
}

// As the system tries them: `.exe` belongs to a name without an extension. One that has it counts
// without it too.
std::vector<std::string> Spellings(std::string_view name) {
  constexpr std::string_view kExtension = ".exe";
  const std::string spelled(name);
  const std::string longer = spelled + std::string(kExtension);
  if (HasExtension(name, kExtension)) {
    return {spelled, spelled.substr(0, spelled.size() - kExtension.size())};
  }
  const std::size_t base = name.find_last_of("\\/:") + 1;  // npos + 1 is 0
  if (name.find('.', base) != std::string_view::npos) return {spelled, longer};
  return {longer, spelled};
}

// The running program's folder, then the folders of PATH.
std::vector<std::string> SearchFolders() {
  std::vector<std::string> folders = win32::FoldersOf(win32::Variable("PATH"));
  folders.insert(folders.begin(), win32::RunningProgramFolder());
  std::erase(folders, "");
  return folders;
}

std::string FindInFolders(std::string_view name) {
  for (const std::string& folder : SearchFolders()) {
    for (const std::string& spelling : Spellings(name)) {
      std::string file = win32::FileIgnoringCase(folder, Cp874ToUtf8(spelling));
      if (!file.empty()) return file;
    }
  }
  return {};
}

// The system's name of a program, "" when there is none. May throw for a name that no file can
// have. Every file counts: the system knows no permission that makes a program of one.
std::string FindProgram(std::string_view name) {
  if (name.empty()) return {};
  if (name.find_first_of("\\/:") == std::string_view::npos) return FindInFolders(name);
  for (const std::string& spelling : Spellings(name)) {
    std::string file = win32::FileIgnoringCase("", NativePath(spelling));
    if (!file.empty()) return file;
  }
  return {};
}

// The system has its shell read a batch file, together with the arguments. The shell must not find
// there what it takes for more than text.
bool ShellWouldReadMore(std::string_view program, std::string_view arguments) {
  constexpr std::string_view kEvenInQuotes = "%!";
  constexpr std::string_view kSigns = "&|<>^%!\r\n";
  const bool batch = HasExtension(program, ".bat") || HasExtension(program, ".cmd");
  return batch && (program.find_first_of(kEvenInQuotes) != std::string_view::npos ||
                   arguments.find_first_of(kSigns) != std::string_view::npos);
}

// Reads as empty and swallows what is written.
Handle OpenEmptyStream() {
  SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
  return Handle(CreateFileW(L"NUL", GENERIC_READ | GENERIC_WRITE,
                            FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited, OPEN_EXISTING, 0,
                            nullptr));
}

Handle InheritableCopy(HANDLE stream) {
  if (stream == nullptr || stream == INVALID_HANDLE_VALUE) return {};
  const HANDLE self = GetCurrentProcess();
  HANDLE copy = nullptr;
  const BOOL copied = DuplicateHandle(self, stream, self, &copy, 0, TRUE, DUPLICATE_SAME_ACCESS);
  return copied != 0 ? Handle(copy) : Handle();
}

// Before Windows 8 a console's handles are numbers of their own kind. They cannot be listed, and
// are inherited without it.
bool CanBeListed(HANDLE handle) {
  constexpr std::uintptr_t kOwnKind = 3;
  return (reinterpret_cast<std::uintptr_t>(handle) & kOwnKind) != kOwnKind;
}

// The child's standard streams, open as long as it is being started.
class ChildStreams {
 public:
  explicit ChildStreams(bool inherit) : empty_(OpenEmptyStream()) {
    if (!inherit) return;
    for (int i = 0; i < win32::kStandardStreams; ++i) {
      copies_.at(static_cast<std::size_t>(i)) = InheritableCopy(win32::StreamHandle(i));
    }
  }

  bool Ready() const { return empty_.IsOpen(); }

  void GiveTo(STARTUPINFOW& start) const {
    start.dwFlags |= STARTF_USESTDHANDLES;
    start.hStdInput = OrEmpty(copies_[0]);
    start.hStdOutput = OrEmpty(copies_[1]);
    start.hStdError = OrEmpty(copies_[2]);
  }

  // Never none and none twice: the system refuses such a list.
  std::vector<HANDLE> Inherited() const {
    std::vector<HANDLE> handles{empty_.Value()};
    for (const Handle& copy : copies_) {
      if (copy.IsOpen() && CanBeListed(copy.Value())) handles.push_back(copy.Value());
    }
    return handles;
  }

 private:
  HANDLE OrEmpty(const Handle& copy) const { return copy.IsOpen() ? copy.Value() : empty_.Value(); }

  Handle empty_;
  std::array<Handle, win32::kStandardStreams> copies_;
};

// What a child inherits, and nothing besides: a connection or a lock must not live on in another
// program.
class Inheritance {
 public:
  explicit Inheritance(std::vector<HANDLE> handles) : handles_(std::move(handles)) {
    SIZE_T size = 0;
    InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
    memory_.resize(size);
    made_ = InitializeProcThreadAttributeList(List(), 1, 0, &size) != 0;
    ready_ = made_ && UpdateProcThreadAttribute(List(), 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST,
                                                handles_.data(), handles_.size() * sizeof(HANDLE),
                                                nullptr, nullptr) != 0;
  }
  ~Inheritance() {
    if (made_) DeleteProcThreadAttributeList(List());
  }
  Inheritance(const Inheritance&) = delete;
  Inheritance& operator=(const Inheritance&) = delete;

  bool Ready() const { return ready_; }
  LPPROC_THREAD_ATTRIBUTE_LIST List() {
    return reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(memory_.data());
  }

 private:
  std::vector<HANDLE> handles_;  // the list refers to them
  std::vector<std::byte> memory_;
  bool made_ = false;
  bool ready_ = false;
};

DWORD CreationFlags(bool inheritStreams) {
  // A console of the child's own would show an empty window.
  const bool hide = !inheritStreams && GetConsoleWindow() == nullptr;
  return EXTENDED_STARTUPINFO_PRESENT | (hide ? CREATE_NO_WINDOW : 0U);
}

struct Child {
  int id = 0;                // 0 when it could not be started
  HANDLE process = nullptr;  // the caller's
};

Child Spawn(const std::string& program, const std::string& arguments, bool inheritStreams) {
  const ChildStreams streams(inheritStreams);
  Inheritance inheritance(streams.Inherited());
  if (!streams.Ready() || !inheritance.Ready()) return {};
  STARTUPINFOEXW start{};
  start.StartupInfo.cb = sizeof start;
  start.lpAttributeList = inheritance.List();
  streams.GiveTo(start.StartupInfo);
  const std::wstring name = win32::CallName(program);
  std::wstring line = win32::Wide('"' + program + '"' + arguments);  // the call may write into it
  PROCESS_INFORMATION child{};
  if (CreateProcessW(name.c_str(), line.data(), nullptr, nullptr, TRUE,
                     CreationFlags(inheritStreams), nullptr, nullptr, &start.StartupInfo,
                     &child) == 0) {
    return {};
  }
  const Handle thread(child.hThread);
  return {static_cast<int>(child.dwProcessId), child.hProcess};
}

// The arguments are passed on as they are: programs of this system take them apart themselves, by
// the same rules or by their own.
Child Start(std::string_view commandLine, bool inheritStreams) {
  if (commandLine.find('\0') != std::string_view::npos) return {};
  const win32::QuietErrors quiet;
  for (const ProgramReading& reading : ReadProgram(commandLine)) {
    const std::string file = FindProgram(reading.name);
    if (file.empty()) continue;
    const std::string program = win32::FullNativeName(file);
    const std::string arguments = Cp874ToUtf8(reading.rest);
    if (ShellWouldReadMore(program, arguments)) return {};
    return Spawn(program, arguments, inheritStreams);
  }
  return {};
}

}  // namespace

Process::Process(std::string_view commandLine, bool inheritStreams) {
  try {
    const Child child = Start(commandLine, inheritStreams);
    id_ = child.id;
    handle_ = reinterpret_cast<std::uintptr_t>(child.process);
  } catch (const EInOutError&) {
    id_ = 0;  // a name that no file can have
  } catch (const EConvertError&) {
    id_ = 0;  // a byte that stands for no letter: better not started than started with another text
  }
}

Process::~Process() {
  const Handle process(reinterpret_cast<HANDLE>(handle_));
}

int Process::Wait() {
  if (!Started() || ended_) return exitCode_;
  const HANDLE process = reinterpret_cast<HANDLE>(handle_);
  DWORD code = 0;
  const bool ended = WaitForSingleObject(process, INFINITE) == WAIT_OBJECT_0 &&
                     GetExitCodeProcess(process, &code) != 0;
  if (ended) exitCode_ = static_cast<int>(code);
  ended_ = true;
  return exitCode_;
}

}  // namespace kvshare::os
