#include "apps/kvshare/system/descriptors.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <vector>

#include "kvshare/os/console.h"
#include "kvshare/os/win32/errors.h"
#include "kvshare/os/win32/handle.h"
#include "kvshare/os/win32/names.h"
#include "kvshare/os/win32/streams.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"

// Descriptors are the C run-time's numbers, but its reading and writing are passed by: in its text
// mode they change line ends and stop at Ctrl-Z.

namespace kvshare::app {

namespace {

namespace win32 = os::win32;

constexpr std::size_t kMostOfACall = std::size_t{1} << 30;

// What of a typed line has not been read yet.
std::string typed;

[[noreturn]] void Throw(const std::string& stream, win32::SystemError error) {
  throw StreamError(stream + ": " + win32::MessageOf(error));
}

bool TellsThatTheReaderHasGone(win32::SystemError error) {
  return error == ERROR_NO_DATA || error == ERROR_BROKEN_PIPE || error == ERROR_PIPE_NOT_CONNECTED;
}

bool EndsALine(const INPUT_RECORD& event) {
  return event.EventType == KEY_EVENT && event.Event.KeyEvent.bKeyDown != 0 &&
         event.Event.KeyEvent.uChar.UnicodeChar == L'\r';
}

// Keys alone are no input yet: they can still be taken back.
bool LineIsTyped(HANDLE console) {
  DWORD count = 0;
  if (GetNumberOfConsoleInputEvents(console, &count) == 0) return false;
  std::vector<INPUT_RECORD> events(count);
  if (PeekConsoleInputW(console, events.data(), count, &count) == 0) return false;
  events.resize(count);
  return std::ranges::any_of(events, EndsALine);
}

std::size_t ReadTyped(int descriptor, char* to, std::size_t size) {
  if (typed.empty()) {
    const std::optional<std::string> line = os::Console(descriptor, descriptor).ReadLine();
    if (!line) return 0;
    typed = *line + '\n';
  }
  const std::size_t n = std::min(size, typed.size());
  std::ranges::copy_n(typed.begin(), static_cast<std::ptrdiff_t>(n), to);
  typed.erase(0, n);
  return n;
}

// Older consoles show the sequences that steer them unless they are asked to obey; those before
// Windows 10 always do.
void ObeySequences(HANDLE console) {
  DWORD mode = 0;
  if (GetConsoleMode(console, &mode) == 0) return;
  SetConsoleMode(console, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

// Letters must come whole: a half that another call brings is shown as a mark.
void WriteToConsole(int descriptor, HANDLE console, std::string_view bytes) {
  constexpr char kEscape = '\x1B';
  if (bytes.find(kEscape) != std::string_view::npos) ObeySequences(console);
  os::Console(descriptor, descriptor).Write(bytes);
}

// Opened so that others may go on writing, renaming and deleting it.
HANDLE OpenSharing(const std::string& path, DWORD access) {
  return CreateFileW(win32::CallName(path).c_str(), access,
                     FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                     FILE_FLAG_BACKUP_SEMANTICS, nullptr);
}

int OpenDescriptor(const std::string& path) {
  HANDLE file = INVALID_HANDLE_VALUE;
  try {
    file = OpenSharing(path, GENERIC_READ);
  } catch (const EInOutError& e) {
    throw StreamError(path + ": " + Cp874ToUtf8Lossy(e.Message()));
  }
  if (file == INVALID_HANDLE_VALUE) Throw(path, GetLastError());
  const int descriptor = _open_osfhandle(reinterpret_cast<std::intptr_t>(file), 0);
  if (descriptor >= 0) return descriptor;
  CloseHandle(file);
  Throw(path, ERROR_TOO_MANY_OPEN_FILES);
}

// Nothing for what is no file on a disk.
std::optional<BY_HANDLE_FILE_INFORMATION> FactsOf(HANDLE file) {
  BY_HANDLE_FILE_INFORMATION facts{};
  if (GetFileInformationByHandle(file, &facts) == 0) return std::nullopt;
  return facts;
}

bool IsFolder(HANDLE file) {
  const auto facts = FactsOf(file);
  return facts && (facts->dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool AreOne(const BY_HANDLE_FILE_INFORMATION& a, const BY_HANDLE_FILE_INFORMATION& b) {
  return a.dwVolumeSerialNumber == b.dwVolumeSerialNumber && a.nFileIndexHigh == b.nFileIndexHigh &&
         a.nFileIndexLow == b.nFileIndexLow;
}

}  // namespace

bool IsTerminal(int descriptor) {
  return win32::IsConsoleHandle(win32::StreamHandle(descriptor));
}

bool ReadWouldWait(int descriptor) {
  const HANDLE input = win32::StreamHandle(descriptor);
  if (win32::IsConsoleHandle(input)) return typed.empty() && !LineIsTyped(input);
  DWORD waiting = 0;
  return GetFileType(input) == FILE_TYPE_PIPE &&
         PeekNamedPipe(input, nullptr, 0, nullptr, &waiting, nullptr) != 0 && waiting == 0;
}

std::size_t ReadSome(int descriptor, char* to, std::size_t size) {
  const HANDLE input = win32::StreamHandle(descriptor);
  if (win32::IsConsoleHandle(input)) return ReadTyped(descriptor, to, size);
  DWORD n = 0;
  const auto most = static_cast<DWORD>(std::min(size, kMostOfACall));
  if (ReadFile(input, to, most, &n, nullptr) != 0) return n;
  const win32::SystemError error = GetLastError();
  if (error == ERROR_BROKEN_PIPE || error == ERROR_HANDLE_EOF) return 0;  // the writer has gone
  if (error == ERROR_MORE_DATA) return n;
  Throw("input", error);
}

void WriteAll(int descriptor, std::string_view bytes, const std::string& stream) {
  const HANDLE output = win32::StreamHandle(descriptor);
  if (win32::IsConsoleHandle(output)) return WriteToConsole(descriptor, output, bytes);
  while (!bytes.empty()) {
    DWORD n = 0;
    const auto size = static_cast<DWORD>(std::min(bytes.size(), kMostOfACall));
    if (WriteFile(output, bytes.data(), size, &n, nullptr) == 0) {
      const win32::SystemError error = GetLastError();
      if (TellsThatTheReaderHasGone(error)) throw ReaderGone();
      Throw(stream, error);
    }
    if (n == 0) Throw(stream, ERROR_WRITE_FAULT);  // a full pipe that does not wait
    bytes.remove_prefix(n);
  }
}

InputFile::InputFile(const std::string& path) : InputFile() {
  descriptor_ = OpenDescriptor(path);
  if (IsFolder(win32::StreamHandle(descriptor_))) throw StreamError(path + ": this is a folder");
}

InputFile::~InputFile() {
  if (descriptor_ >= 0) _close(descriptor_);
}

std::uint64_t InputFile::Size() const {
  LARGE_INTEGER size{};
  if (GetFileSizeEx(win32::StreamHandle(descriptor_), &size) == 0) Throw("input", GetLastError());
  return static_cast<std::uint64_t>(size.QuadPart);
}

void InputFile::SeekTo(std::uint64_t position) const {
  LARGE_INTEGER place{};
  place.QuadPart = static_cast<std::int64_t>(position);
  if (SetFilePointerEx(win32::StreamHandle(descriptor_), place, nullptr, FILE_BEGIN) == 0) {
    Throw("input", GetLastError());
  }
}

bool InputFile::WasReplacedAt(const std::string& path) const {
  try {
    constexpr DWORD kFactsAlone = 0;
    const win32::Handle file(OpenSharing(path, kFactsAlone));
    const auto own = FactsOf(win32::StreamHandle(descriptor_));
    const auto named = FactsOf(file.Value());
    return own && named && !AreOne(*own, *named);
  } catch (const EInOutError&) {
    return false;  // a name that no file can have
  }
}

}  // namespace kvshare::app
