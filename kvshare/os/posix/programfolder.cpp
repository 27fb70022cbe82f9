#include "kvshare/os/posix/programfolder.h"

#include <filesystem>
#include <system_error>

#include "kvshare/rtl/strutils.h"

namespace kvshare::os::posix {

namespace fs = std::filesystem;

std::string RunningProgramFolder() {
  std::error_code error;
  const fs::path program = fs::read_symlink("/proc/self/exe", error);
  return error ? std::string() : program.parent_path().string();
}

std::string FileIgnoringCase(const std::string& folder, const std::string& name) {
  std::error_code error;
  const fs::path asSpelled = fs::path(folder) / name;
  if (!fs::is_directory(asSpelled, error) && fs::exists(asSpelled, error))
    return asSpelled.string();

  std::string found;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    const std::string candidate = entry->path().filename().string();
    std::error_code ignored;
    if (SameText(candidate, name) && !entry->is_directory(ignored) &&
        (found.empty() || candidate < found)) {
      found = candidate;
    }
  }
  return found.empty() ? found : (fs::path(folder) / found).string();
}

}  // namespace kvshare::os::posix
