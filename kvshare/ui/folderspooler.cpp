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

class FolderPrinter : public TPrinterHandle {
 public:
  explicit FolderPrinter(std::string folder) : folder_(std::move(folder)) {}

  bool StartDoc(std::string_view title) override {
    if (job_) return false;
    job_.emplace(folder_);
    if (!job_->IsOpen()) job_.reset();
    name_ = JobName(title);
    return job_.has_value();
  }

  bool StartPage() override {
    if (!job_ || inPage_) return false;
    inPage_ = true;
    return true;
  }

  bool Write(std::string_view bytes) override { return inPage_ && job_->Write(bytes); }

  bool EndPage() override {
    const bool ended = inPage_;
    inPage_ = false;
    return ended;
  }

  bool EndDoc() override {
    const bool published = job_ && job_->Publish(name_);
    job_.reset();
    inPage_ = false;
    return published;
  }

 private:
  std::string folder_;
  std::string name_;
  std::optional<os::JobFile> job_;
  bool inPage_ = false;  // only while there is a job
};

class FolderSpooler : public TSpooler {
 public:
  std::vector<std::string> Printers() override {
    std::vector<std::string> printers;
    for (const std::string& folder : os::FoldersIn(Folder())) {
      if (auto name = FromUtf8(folder)) printers.push_back(*std::move(name));
    }
    return printers;
  }

  std::string DefaultPrinter() override {
    // A printer that is named and missing is not replaced by another: a cheque would come out
    // somewhere else.
    if (const std::string_view chosen = Environment("KVSHARE_PRINTER"); !chosen.empty()) {
      return FromUtf8(chosen).value_or("");
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

  // None for a name that code page 874 cannot hold.
  static std::optional<std::string> FromUtf8(std::string_view name) {
    try {
      return Utf8ToCp874(name);
    } catch (const EConvertError&) {
      return std::nullopt;
    }
  }
};

}  // namespace

std::unique_ptr<TSpooler> MakeFolderSpooler() {
  return std::make_unique<FolderSpooler>();
}

}  // namespace kvshare
