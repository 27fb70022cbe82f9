// `kvshare files`.
#include <filesystem>
#include <memory>
#include <system_error>

#include "apps/kvshare/commands/commands.h"
#include "apps/kvshare/terminal/legible.h"
#include "kvshare/os/drives.h"
#include "kvshare/os/files.h"
#include "kvshare/os/paths.h"
#include "kvshare/os/tree.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/filenames.h"

namespace kvshare::app {

namespace {

constexpr std::string_view kCountExamples =
    "  kvshare files count 'C:\\Ledger\\'\n"
    "  kvshare files count --recursive --mask '*.csv' /srv/ledger\n";

constexpr std::string_view kListExamples =
    "  kvshare files list 'C:\\Ledger\\'\n"
    "  kvshare files list --recursive /srv/ledger | sort\n";

constexpr std::string_view kCopyExamples =
    "  kvshare files copy --recursive 'C:\\Ledger\\' /media/backup/ledger\n"
    "  kvshare files copy --mask '*.txt' . 'D:\\Texts\\'\n";

constexpr std::string_view kDeleteExamples =
    "  kvshare files delete --recursive /tmp/old         what would go\n"
    "  kvshare files delete --recursive --yes /tmp/old   does it\n";

struct FilesOptions {
  std::string folder;
  std::string target;
  std::string mask = "*.*";
  bool recurse = false;
  bool yes = false;
};

// A folder as it was typed: a name of the interface when it begins with a drive or a share, else
// the system's.
class Folder {
 public:
  explicit Folder(std::string typed) : typed_(std::move(typed)) {
    const bool drive = typed_.size() >= 2 && typed_[1] == ':';
    isWindows_ = drive || typed_.starts_with("\\\\");
    if (!isWindows_) {
      native_ = typed_;
      return;
    }
    windows_ = IncludeTrailingBackslash(UsageText("FOLDER", typed_));
    try {
      native_ = os::NativePath(windows_);
    } catch (const EInOutError&) {
      throw StreamError(typed_ + ": there is no such drive or share");
    }
  }

  const std::string& Native() const { return native_; }
  bool IsWindows() const { return isWindows_; }

  void RequireThere() const {
    std::error_code error;
    const auto status = std::filesystem::status(native_, error);
    if (std::filesystem::is_directory(status)) return;
    const bool missing = status.type() == std::filesystem::file_type::not_found;
    throw StreamError(typed_ + ": " +
                      (missing ? "there is no such folder"
                       : error ? error.message()
                               : "that is no folder"));
  }

  // With all that lead to it.
  void Make() const {
    if (isWindows_) {
      if (!os::ForceDirectories(windows_)) throw StreamError(typed_ + ": cannot be created");
      return;
    }
    std::error_code error;
    const std::string plain = native_.ends_with('/') ? native_ + "." : native_;
    std::filesystem::create_directories(plain, error);
    if (error) throw StreamError(typed_ + ": " + error.message());
  }

  // An entry's whole name in the same manner, UTF-8.
  void AppendName(std::string& out, const os::TreeEntry& entry) const {
    if (isWindows_) {
      AppendUtf8(out, windows_);
      out += Cp874ToUtf8Lossy(entry.listed);
      return;
    }
    out += native_;
    if (!entry.native.empty() && !native_.ends_with('/')) out.push_back('/');
    out += entry.native;
  }

 private:
  std::string typed_;
  bool isWindows_;
  std::string windows_;
  std::string native_;
};

// One run of a command: lines on standard output, failures on standard error.
class FilesRun {
 public:
  FilesRun(const FilesOptions& options, bool json, const Stdio& stdio)
      : folder_(options.folder),
        scope_{folder_.Native(), UsageText("--mask", options.mask), options.recurse},
        json_(json),
        out_(stdio.out, "standard output"),
        err_(stdio.err, "standard error") {
    if (folder_.IsWindows()) ReportDriveErrors();
    folder_.RequireThere();
  }

  int Count() {
    const std::uint64_t count = os::CountTree(scope_, Failures());
    Result({{"files", count}}, std::to_string(count));
    return Finish();
  }

  int List() {
    os::ListTree(scope_, Names(), Failures());
    return Finish();
  }

  int Copy(const std::string& target) {
    const Folder to(target);
    to.Make();
    const std::uint64_t copied = os::CopyTree(scope_, to.Native(), Failures());
    Result({{"copied", copied}, {"failed", failed_}}, Plural(copied, "file") + " copied");
    return Finish();
  }

  int ListDeletion() {
    os::ListDeletion(scope_, Names(), Failures());
    const int status = Finish();
    if (!json_) err_.Buffer() += "Nothing was deleted; --yes deletes.\n";
    err_.Flush();
    return status;
  }

  int Delete() {
    RefuseRoot();
    os::TreeDeletion deleted;
    try {
      deleted = os::DeleteTree(scope_, Failures());
    } catch (const EInOutError&) {
      return Finish();  // the message has said which folder and why
    }
    Result(
        {{"files", deleted.files}, {"folders", deleted.folders}, {"failed", failed_}},
        Plural(deleted.files, "file") + " and " + Plural(deleted.folders, "folder") + " deleted");
    return Finish();
  }

 private:
  struct Figure {
    std::string_view name;
    std::uint64_t value;
  };

  static std::string Plural(std::uint64_t count, std::string_view what) {
    return std::to_string(count) + " " + std::string(what) + (count == 1 ? "" : "s");
  }

  void ReportDriveErrors() {
    for (const std::string& error : os::DriveTableErrors()) {
      err_.Buffer() += "warning: drives.ini: " + Legible(error);
      err_.EndLine();
    }
  }

  // Only ever a slip.
  void RefuseRoot() const {
    std::error_code ignored;
    if (scope_.recurse && std::filesystem::equivalent(folder_.Native(), "/", ignored)) {
      throw StreamError("the root folder is not deleted");
    }
  }

  os::TreeFailure Failures() {
    return [this](const std::string& path, std::string_view reason) {
      ++failed_;
      err_.Buffer() += Legible(path) + ": " + std::string(reason);
      err_.EndLine();
    };
  }

  os::TreeReader Names() {
    return [this](const os::TreeEntry& entry) {
      std::string name;
      folder_.AppendName(name, entry);
      if (json_) {
        out_.Buffer() += entry.isFolder ? "{\"folder\":" : "{\"file\":";
        AppendJsonString(out_.Buffer(), name);
        out_.Buffer().push_back('}');
      } else {
        out_.Buffer() += Legible(std::move(name));
      }
      out_.EndLine();
    };
  }

  void Result(std::initializer_list<Figure> figures, std::string_view text) {
    std::string& out = out_.Buffer();
    if (!json_) {
      out += text;
    } else {
      for (const Figure& figure : figures) {
        out += out.empty() ? "{\"" : ",\"";
        out.append(figure.name).append("\":").append(std::to_string(figure.value));
      }
      out.push_back('}');
    }
    out_.EndLine();
  }

  int Finish() {
    out_.Flush();
    err_.Flush();
    return failed_ == 0 ? kDone : kBadInput;
  }

  Folder folder_;
  os::TreeScope scope_;
  bool json_;
  BlockWriter out_;
  BlockWriter err_;
  std::uint64_t failed_ = 0;
};

using Options = std::shared_ptr<FilesOptions>;
using Work = int (*)(FilesRun&, const FilesOptions&);

Command DeclareOne(Command files, Plan& plan, std::string_view name, std::string_view purpose,
                   std::string_view examples, const Options& options, Work work) {
  const Command command = AddCommand(files, plan, name, purpose, examples);
  command
      .AddOption("FOLDER", options->folder,
                 "C:\\Data\\ or \\\\host\\share\\data for the suite's names, else a folder of the "
                 "system")
      .Required();
  command.AddOption("--mask", options->mask, "Files and folders of FOLDER itself (default *.*)")
      .TypeName("MASK");
  command.AddFlag("--recursive", options->recurse, "Subfolders too");
  command.OnParsed([options, work, &plan] {
    plan.action = [options, work, json = plan.json](const Stdio& stdio) {
      FilesRun run(*options, json, stdio);
      return work(run, *options);
    };
  });
  return command;
}

void DeclareCopy(Command files, Plan& plan) {
  const auto options = std::make_shared<FilesOptions>();
  const Command command =
      DeclareOne(files, plan, "copy", "Copy a folder's files over another folder's", kCopyExamples,
                 options, [](FilesRun& run, const FilesOptions& o) { return run.Copy(o.target); });
  command.AddOption("TARGET", options->target, "The other folder; created when it is missing")
      .Required();
}

void DeclareDelete(Command files, Plan& plan) {
  const auto options = std::make_shared<FilesOptions>();
  const Command command =
      DeclareOne(files, plan, "delete", "Show what deleting a folder's files would delete",
                 kDeleteExamples, options, [](FilesRun& run, const FilesOptions& o) {
                   return o.yes ? run.Delete() : run.ListDeletion();
                 });
  command.AddFlag("--yes", options->yes, "Delete it");
}

}  // namespace

void DeclareFiles(Command parent, Plan& plan) {
  const Command files = parent.AddCommand("files", "Folders by the suite's names or the system's");
  files.RequireCommand();
  DeclareOne(files, plan, "count", "How many files a folder has", kCountExamples,
             std::make_shared<FilesOptions>(),
             [](FilesRun& run, const FilesOptions& /*unused*/) { return run.Count(); });
  DeclareOne(files, plan, "list", "A folder's files, the subfolders' first", kListExamples,
             std::make_shared<FilesOptions>(),
             [](FilesRun& run, const FilesOptions& /*unused*/) { return run.List(); });
  DeclareCopy(files, plan);
  DeclareDelete(files, plan);
}

}  // namespace kvshare::app
