#include "kvshare/messages/loadentry.h"

#include "kvshare/os/loadedlibrary.h"
#include "kvshare/rtl/modules.h"

namespace kvshare {

namespace {

class LoadEntry {
 public:
  LoadEntry() {
    os::LoadedLibrary library = os::LibraryOfAddress(this);
    module_.Name = std::move(library.path);
    module_.Instance = module_.ResInstance = library.base;
    RegisterModule(module_);
  }
  LoadEntry(const LoadEntry&) = delete;
  LoadEntry& operator=(const LoadEntry&) = delete;
  ~LoadEntry() { UnregisterModule(module_); }

  const TLanguage* Language() const { return language_.get(); }
  const std::string& Path() const { return module_.Name; }

  void Replace(std::unique_ptr<const TLanguage> language) {
    module_.ResInstance = language ? language.get() : module_.Instance;
    language_ = std::move(language);
  }

 private:
  TLibModule module_;
  std::unique_ptr<const TLanguage> language_;
};

LoadEntry loadEntry;

}  // namespace

const TLanguage* LanguageResource() {
  return loadEntry.Language();
}

void ReplaceLanguageResource(std::unique_ptr<const TLanguage> language) {
  loadEntry.Replace(std::move(language));
}

const std::string& LibraryPath() {
  return loadEntry.Path();
}

}  // namespace kvshare
