// What the tests of several layers share.
#pragma once

#include <unistd.h>

#include <filesystem>
#include <string>

namespace kvshare {

// The message of the error that `action` throws.
template <typename Error, typename Action>
std::string MessageOf(Action action) {
  try {
    action();
  } catch (const Error& e) {
    return e.Message();
  }
  return "no error";
}

// A folder of one test, removed with all that is in it.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "kvshare-test-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::filesystem::filesystem_error("mkdtemp", {});
    path_ = name;
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::filesystem::path& Path() const { return path_; }
  std::string File(const std::string& name) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_;
};

}  // namespace kvshare
