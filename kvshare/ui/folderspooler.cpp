// A spooler whose jobs become numbered files in a folder.
#include <algorithm>
#include <cstddef>
#include <optional>

#include "kvshare/os/jobfile.h"
#include "kvshare/os/paths.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/environment.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/strutils.h"
#include "kvshare/ui/printing.h"

namespace kvshare {

namespace {

// A title as a part of a file name on this system and on those that mount its folders.
std::string JobName(std::string_view title) {
  constexpr std::size_t kLongest = 200;  // bytes of UTF-8: names end at 255
  constexpr std::string_view kUnsafe = "/\\:*?\"<>|";
  std::string name;
  for (const char c : title) {
    const auto byte = static_cast<unsigned char>(c);
    const bool safe = byte >= 0x20 && byte != 0x7F && Cp874ToUnicode(byte) != 0 &&
                      kUnsafe.find(c) == std::string_view::npos;
    const std::string letter = Cp874ToUtf8({safe ? &c : "_", 1});
    if (name.size() + letter.size() > kLongest) break;
    name += letter;
  }
  return (name.empty() ? "job" : name) + ".prn";
}

class FolderPrinter : public TOrderedPrinterHandle {
 public:
  explicit FolderPrinter(std::string folder) : folder_(std::move(folder)) {}

 private:
  bool BeginJob(std::string_view title) override {
    job_.emplace(folder_);
    name_ = JobName(title);
    return job_->IsOpen();
  }

  bool WriteJob(std::string_view bytes) override { return job_->Write(bytes); }

  bool FinishJob() override {
    const bool published = job_->Publish(name_);
    job_.reset();
    return published;
  }

  std::string folder_;
  std::string name_;
  std::optional<os::JobFile> job_;
};

class FolderSpooler : public TSpooler {
 public:
  std::vector<std::string> Printers() override {
    std::vector<std::string> printers;
    for (const std::string& folder : os::FoldersIn(Folder())) {
      if (auto name = TryUtf8ToCp874(folder)) printers.push_back(*std::move(name));
    }
    return printers;
  }

  std::string DefaultPrinter() override {
    // A printer that is named and missing is not replaced by another: a cheque would come out
    // somewhere else.
    if (const std::string_view chosen = Environment("KVSHARE_PRINTER"); !chosen.empty()) {
      return TryUtf8ToCp874(chosen).value_or("");
    }
    const std::vector<std::string> printers = Printers();
    return printers.empty() ? "" : printers.front();
  }

  std::unique_ptr<TPrinterHandle> Open(std::string_view printer) override {
    const std::vector<std::string> printers = Printers();  // no other folder is ever written
    auto found = std::ranges::find(printers, printer);
    if (found == printers.end()) {
      found = std::ranges::find_if(
          printers, [printer](const std::string& name) { return SameText(name, printer); });
    }
    if (found == printers.end()) return nullptr;
    return std::make_unique<FolderPrinter>(Folder() + "/" + Cp874ToUtf8(*found));
  }

 private:
  static std::string Folder() {
    try {
      return os::HomeFolder() + "/spool";
    } catch (const EInOutError&) {
      return {};  // no home, no printers
    }
  }
};

}  // namespace

std::unique_ptr<TSpooler> MakeFolderSpooler() {
  return std::make_unique<FolderSpooler>();
}

}  // namespace kvshare
