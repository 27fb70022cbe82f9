#include "kvshare/os/sharedlibrary.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

#include "kvshare/os/loadedlibrary.h"
#include "kvshare/os/paths.h"
#include "kvshare/os/win32/environment.h"
#include "kvshare/os/win32/errors.h"
#include "kvshare/os/win32/folderlist.h"
#include "kvshare/os/win32/handle.h"
#include "kvshare/os/win32/names.h"
#include "kvshare/os/win32/programfolder.h"
#include "kvshare/os/win32/quieterrors.h"
#include "kvshare/os/win32/systemnames.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::os {

namespace {

constexpr int kNotFound = 1157;
constexpr int kNotLoadable = 193;

constexpr std::string_view kExtension = ".dll";

// Position behind the last separator of a name of the interface.
std::size_t BaseBegin(std::string_view name) {
  return name.find_last_of("\\/:") + 1;  // npos + 1 is 0
}

bool HasDot(std::string_view fileName) {
  return fileName.find('.') != std::string_view::npos;
}

// The file names of a library, in UTF-8: NAME.dll and libNAME.dll. One with another extension is
// looked for as it is before.
std::vector<std::string> FileNames(std::string_view name) {
  const bool spelledOut = name.size() >= kExtension.size() &&
                          SameText(name.substr(name.size() - kExtension.size()), kExtension);
  if (spelledOut) name.remove_suffix(kExtension.size());
  if (name.empty()) return {};
  const std::string base = Cp874ToUtf8(name);
  const std::string file = base + std::string(kExtension);
  std::vector<std::string> names{file, "lib" + file};
  if (!spelledOut && HasDot(base)) names.insert(names.begin(), base);
  return names;
}

// The folders in which a bare name is looked for, in order.
std::vector<std::string> Folders() {
  static const char inThisLibrary = 0;
  std::vector<std::string> folders = win32::FoldersOf(win32::Variable("KVSHARE_LIBRARY_PATH"));
  folders.push_back(win32::RunningProgramFolder());
  const std::string own = LibraryOfAddress(&inThisLibrary).path;
  const std::string ownFolder = own.substr(0, own.rfind('\\') + 1);
  if (!ownFolder.empty()) {
    folders.push_back(ownFolder.substr(0, ownFolder.size() - 1));
    folders.push_back(ownFolder + "kvshare");
  }
  std::erase(folders, "");
  return folders;
}

// The first file of these names in these folders; "" when there is none.
std::string FirstFile(const std::vector<std::string>& folders,
                      const std::vector<std::string>& names) {
  for (const std::string& folder : folders) {
    for (const std::string& name : names) {
      if (std::string file = win32::FileIgnoringCase(folder, name); !file.empty()) return file;
    }
  }
  return {};
}

struct Search {
  std::vector<std::string> folders, names;
  bool bySystem = false;  // at the end
};

// Throws EConvertError or EInOutError for a name that no file can have.
Search SearchFor(std::string_view name) {
  const std::size_t begin = BaseBegin(name);
  const std::string_view base = name.substr(begin);
  std::vector<std::string> names = FileNames(base);
  if (begin == 0) return {Folders(), std::move(names), true};
  std::string file = Cp874ToUtf8(base);
  const auto isFile = [&file](const std::string& other) { return SameText(file, other); };
  if (!file.empty() && std::ranges::none_of(names, isFile)) names.push_back(std::move(file));
  return {{NativePath(name.substr(0, begin))}, std::move(names), false};
}

struct Loading {
  void* handle = nullptr;
  int error = kNotFound;
  std::string text;
};

// The system has the first for what a library needs, too.
bool TellsNoLibrary(win32::SystemError error) {
  constexpr win32::SystemError kCodes[] = {
      ERROR_MOD_NOT_FOUND, ERROR_FILE_NOT_FOUND, ERROR_PATH_NOT_FOUND, ERROR_INVALID_NAME,
      ERROR_INVALID_PARAMETER};  // of a search it does not know
  return std::ranges::find(kCodes, error) != std::end(kCodes);
}

Loading Load(const std::wstring& callName, const std::string& shownName, DWORD flags) {
  const win32::QuietErrors quiet;
  const HMODULE handle = LoadLibraryExW(callName.c_str(), nullptr, flags);
  if (handle != nullptr) return {handle, 0, ""};
  const win32::SystemError error = GetLastError();
  return {nullptr, TellsNoLibrary(error) ? kNotFound : kNotLoadable,
          shownName + ": " + win32::MessageOf(error)};
}

// What the library needs is looked for in its own folder first. May throw EInOutError.
Loading LoadFile(const std::string& file) {
  const std::string fullName = win32::FullNativeName(file);
  std::wstring callName = win32::CallName(fullName);
  // The system would append an extension.
  if (!HasDot(std::string_view(fullName).substr(BaseBegin(fullName)))) callName += L'.';
  Loading loading = Load(callName, fullName, LOAD_WITH_ALTERED_SEARCH_PATH);
  if (loading.handle == nullptr) loading.error = kNotLoadable;  // the file itself is there
  return loading;
}

// The system's folders, then those of PATH. The system's customary search would come to the current
// folder, where anybody may have put a library.
Loading LoadFromSystem(const std::vector<std::string>& names) {
  Loading missing;
  for (const std::string& name : names) {
    Loading loading = Load(win32::Wide(name), name, LOAD_LIBRARY_SEARCH_DEFAULT_DIRS);
    if (loading.error != kNotFound) return loading;
    if (missing.text.empty()) missing = std::move(loading);
  }
  const std::string file = FirstFile(win32::FoldersOf(win32::Variable("PATH")), names);
  return file.empty() ? missing : LoadFile(file);
}

// Throws EConvertError or EInOutError for a name that no file can have.
Loading LoadByName(std::string_view name) {
  if (name.find('\0') != std::string_view::npos) return {nullptr, kNotFound, "a zero byte"};
  const win32::QuietErrors quiet;
  const Search search = SearchFor(name);
  const std::string file = FirstFile(search.folders, search.names);
  if (!file.empty()) return LoadFile(file);
  if (search.bySystem && !search.names.empty()) return LoadFromSystem(search.names);
  return {nullptr, kNotFound, Cp874ToUtf8(name) + ": no such library"};
}

HMODULE ModuleOf(void* handle) {
  return static_cast<HMODULE>(handle);
}

}  // namespace

SharedLibrary::SharedLibrary(std::string_view name) {
  Loading loading;
  try {
    loading = LoadByName(name);
  } catch (const EConvertError& error) {
    loading.text = Cp874ToUtf8Lossy(error.Message());
  } catch (const EInOutError& error) {
    loading.text = Cp874ToUtf8Lossy(error.Message());
  }
  handle_ = loading.handle;
  error_ = loading.error;
  errorText_ = std::move(loading.text);
}

SharedLibrary::~SharedLibrary() {
  if (handle_ != nullptr) FreeLibrary(ModuleOf(handle_));
}

SharedLibrary::SharedLibrary(SharedLibrary&& other) noexcept
    : handle_(std::exchange(other.handle_, nullptr)),
      error_(other.error_),
      errorText_(std::move(other.errorText_)) {}

SharedLibrary& SharedLibrary::operator=(SharedLibrary&& other) noexcept {
  std::swap(handle_, other.handle_);
  std::swap(error_, other.error_);
  std::swap(errorText_, other.errorText_);
  return *this;
}

// A library's handle is the address at which it lies.
std::string SharedLibrary::File() const {
  return handle_ != nullptr ? LibraryOfAddress(handle_).path : std::string();
}

// Also one that the library passes on to another: it has the name itself.
void* SharedLibrary::Entry(std::string_view name) const {
  if (handle_ == nullptr) return nullptr;
  return reinterpret_cast<void*>(GetProcAddress(ModuleOf(handle_), std::string(name).c_str()));
}

std::vector<std::string> SharedLibrary::Candidates(std::string_view name) {
  std::vector<std::string> files;
  const Search search = SearchFor(name);
  for (const std::string& folder : search.folders) {
    const std::string begin = folder.ends_with('\\') ? folder : folder + '\\';
    for (const std::string& file : search.names) files.push_back(begin + file);
  }
  if (search.bySystem) std::ranges::copy(search.names, std::back_inserter(files));
  return files;
}

}  // namespace kvshare::os
