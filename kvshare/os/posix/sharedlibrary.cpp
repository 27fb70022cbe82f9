#include "kvshare/os/sharedlibrary.h"

#include <dlfcn.h>
#include <link.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <iterator>
#include <utility>

#include "kvshare/os/loadedlibrary.h"
#include "kvshare/os/paths.h"
#include "kvshare/os/posix/imagefile.h"
#include "kvshare/os/posix/programfolder.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/environment.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::os {

namespace {

namespace fs = std::filesystem;

constexpr int kNotFound = 1157;
constexpr int kNotLoadable = 193;

// Position behind the last separator of a name of the interface.
std::size_t BaseBegin(std::string_view name) {
  return name.find_last_of("\\/:") + 1;  // npos + 1 is 0
}

// The file names of a library, in UTF-8: libNAME.so and NAME.so. One that is spelled as this
// system's (libpq.so.5) stays as it is.
std::vector<std::string> FileNames(std::string_view name) {
  constexpr std::string_view kExtension = ".dll";
  if (name.ends_with(".so") || name.find(".so.") != std::string_view::npos) {
    return {Cp874ToUtf8(name)};
  }
  if (name.size() >= kExtension.size() &&
      SameText(name.substr(name.size() - kExtension.size()), kExtension)) {
    name.remove_suffix(kExtension.size());
  }
  if (name.empty()) return {};
  const std::string base = Cp874ToUtf8(name);
  return {"lib" + base + ".so", base + ".so"};
}

// The folders in which a bare name is looked for, in order.
std::vector<std::string> Folders() {
  static const char inThisLibrary = 0;
  std::vector<std::string> folders;
  std::string_view chosen = Environment("KVSHARE_LIBRARY_PATH");
  while (!chosen.empty()) {
    const std::size_t end = std::min(chosen.find(':'), chosen.size());
    folders.emplace_back(chosen.substr(0, end));
    chosen.remove_prefix(std::min(end + 1, chosen.size()));
  }
  folders.push_back(posix::RunningProgramFolder());
  const std::string own = LibraryOfAddress(&inThisLibrary).path;
  const std::string ownFolder = own.substr(0, own.rfind('/') + 1);
  if (!ownFolder.empty()) {
    folders.push_back(ownFolder.substr(0, ownFolder.size() - 1));
    folders.push_back(ownFolder + "kvshare");
  }
  std::erase(folders, "");
  return folders;
}

// The first file of these names in these folders, letter case ignored; "" when there is none.
std::string FirstFile(const std::vector<std::string>& folders,
                      const std::vector<std::string>& names) {
  for (const std::string& folder : folders) {
    for (const std::string& name : names) {
      if (std::string file = posix::FileIgnoringCase(folder, name); !file.empty()) return file;
    }
  }
  return {};
}

// What the system's own search is asked for: it knows no letter case, and its libraries are in
// lower case by custom.
std::vector<std::string> SystemNames(const std::vector<std::string>& names) {
  std::vector<std::string> all = names;
  for (const std::string& name : names) {
    if (const std::string lower = LowerCase(name); lower != name) all.push_back(lower);
  }
  return all;
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
  // What stands for a `.dll` on this system counts before a file that was copied with its folder.
  std::string file = Cp874ToUtf8(base);
  if (!file.empty() && std::ranges::find(names, file) == names.end()) {
    names.push_back(std::move(file));
  }
  return {{NativePath(name.substr(0, begin))}, std::move(names), false};
}

void* Load(const std::string& file) {
  return ::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
}

std::string LastErrorText() {
  const char* text = ::dlerror();
  return text != nullptr ? text : "";
}

// Whether the library is the one that the address belongs to.
bool HasAddress(void* handle, const void* address) {
  link_map* of = nullptr;
  void* owner = nullptr;
  Dl_info info{};
  return ::dlinfo(handle, RTLD_DI_LINKMAP, &of) == 0 &&
         ::dladdr1(address, &info, &owner, RTLD_DL_LINKMAP) != 0 && owner == of;
}

struct Loading {
  void* handle = nullptr;
  int error = kNotFound;
  std::string text;
};

Loading LoadFile(const std::string& file) {
  // The system maps what the headers promise, and a copy that was broken off would end the process.
  if (posix::FileIsCutShort(file)) return {nullptr, kNotLoadable, file + ": file too short"};
  void* handle = Load(file);
  return handle != nullptr ? Loading{handle, 0, ""}
                           : Loading{nullptr, kNotLoadable, LastErrorText()};
}

Loading LoadFromSystem(const std::vector<std::string>& names) {
  Loading result;
  for (const std::string& name : SystemNames(names)) {
    if (void* handle = Load(name); handle != nullptr) return {handle, 0, ""};
    if (result.text.empty()) result.text = LastErrorText();
  }
  return result;
}

// Throws EConvertError or EInOutError for a name that no file can have.
Loading LoadByName(std::string_view name) {
  if (name.find('\0') != std::string_view::npos) return {nullptr, kNotFound, "a zero byte"};
  const Search search = SearchFor(name);
  const std::string file = FirstFile(search.folders, search.names);
  if (!file.empty()) return LoadFile(file);
  if (search.bySystem && !search.names.empty()) return LoadFromSystem(search.names);
  return {nullptr, kNotFound, Cp874ToUtf8(name) + ": no such library"};
}

}  // namespace

SharedLibrary::SharedLibrary(std::string_view name) {
  Loading loading;
  try {
    loading = LoadByName(name);
  } catch (const EConvertError& error) {
    loading.text = error.Message();
  } catch (const EInOutError& error) {
    loading.text = error.Message();
  }
  handle_ = loading.handle;
  error_ = loading.error;
  errorText_ = std::move(loading.text);
}

SharedLibrary::~SharedLibrary() {
  if (handle_ != nullptr) ::dlclose(handle_);
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

std::string SharedLibrary::File() const {
  link_map* loaded = nullptr;
  const bool found = handle_ != nullptr && ::dlinfo(handle_, RTLD_DI_LINKMAP, &loaded) == 0;
  return found ? loaded->l_name : "";
}

void* SharedLibrary::Entry(std::string_view name) const {
  if (handle_ == nullptr) return nullptr;
  // The system also looks into what the library needs.
  void* const entry = ::dlsym(handle_, std::string(name).c_str());
  return entry != nullptr && HasAddress(handle_, entry) ? entry : nullptr;
}

std::vector<std::string> SharedLibrary::Candidates(std::string_view name) {
  std::vector<std::string> files;
  const Search search = SearchFor(name);
  for (const std::string& folder : search.folders) {
    for (const std::string& file : search.names) {
      files.push_back((fs::path(folder) / file).string());
    }
  }
  if (search.bySystem) std::ranges::copy(SystemNames(search.names), std::back_inserter(files));
  return files;
}

}  // namespace kvshare::os
