#include "apps/kvshare/system/process.h"

#include <atomic>
#include <cstdlib>

#include "kvshare/os/win32/handle.h"
#include "kvshare/os/win32/names.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare::app {

namespace {

namespace win32 = os::win32;

std::atomic<bool> asked = false;

bool IsKey(DWORD event) {
  return event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT;
}

// Runs in a thread of its own. A window that is closed, a user who leaves and a machine that stops
// end the process as soon as this returns, and at the latest after some seconds, which the system
// sets: the work has that time for its step.
BOOL WINAPI Ask(DWORD event) {
  if (asked.exchange(true)) return FALSE;
  if (!IsKey(event)) Sleep(INFINITE);
  return TRUE;
}

// Whether the system lets this user make a file in the folder.
bool MayAddFile(const std::wstring& folder) {
  const win32::Handle handle(CreateFileW(
      folder.c_str(), FILE_ADD_FILE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
      nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
  return handle.IsOpen();
}

}  // namespace

// Nothing to do: on this system a write to a reader that has gone never does more than fail.
void KeepRunningWithoutReaders() {}

void SetEnvironment(const std::string& name, const std::string& value) {
  const std::wstring wideName = win32::Wide(name);
  const std::wstring wideValue = win32::Wide(value);
  // The C run-time has a copy, which this changes with the system's. It takes an empty value for
  // the wish to have none.
  _wputenv_s(wideName.c_str(), wideValue.c_str());
  if (value.empty()) SetEnvironmentVariableW(wideName.c_str(), L"");
}

bool MayWriteInto(const std::filesystem::path& folder) {
  try {
    return MayAddFile(win32::CallName(win32::Utf8(folder.native())));
  } catch (const EConvertError&) {
    return false;  // half a surrogate pair
  } catch (const EInOutError&) {
    return false;  // a name that no file can have
  }
}

Interruption::Interruption() {
  asked = false;
  SetConsoleCtrlHandler(Ask, TRUE);
}

Interruption::~Interruption() {
  SetConsoleCtrlHandler(Ask, FALSE);
}

bool Interruption::Asked() const {
  return asked;
}

}  // namespace kvshare::app
