// What the tests of several layers share.
#pragma once

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>

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

// An environment variable of one test; nullptr takes it away. The earlier value comes back.
class WithVariable {
 public:
  WithVariable(const char* name, const char* value) : name_(name) {
    if (const char* earlier = std::getenv(name); earlier != nullptr) earlier_ = earlier;
    Set(value);
  }
  ~WithVariable() { Set(earlier_ ? earlier_->c_str() : nullptr); }
  WithVariable(const WithVariable&) = delete;
  WithVariable& operator=(const WithVariable&) = delete;

 private:
  void Set(const char* value) const {
    if (value != nullptr) {
      setenv(name_, value, 1);
    } else {
      unsetenv(name_);
    }
  }

  const char* name_;
  std::optional<std::string> earlier_;
};

// A number that whoever runs the tests gives by a variable, to make a test longer.
inline int Asked(const char* name, int usual) {
  const char* asked = std::getenv(name);
  return asked == nullptr ? usual : std::atoi(asked);
}

// A file at `path` that is there and that nobody, the superuser neither, can open: a socket. Its
// open fails with "No such device or address".
inline void MakeUnreadableFile(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  const int handle = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const int failed = bind(handle, reinterpret_cast<const sockaddr*>(&address), sizeof address);
  close(handle);
  if (failed != 0) throw std::filesystem::filesystem_error(path, {});
}

// A folder of one test, removed with all that is in it.
class TemporaryFolder {
 public:
  explicit TemporaryFolder(
      const std::filesystem::path& parent = std::filesystem::temp_directory_path()) {
    std::string name = (parent / "kvshare-test-XXXXXX").string();
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

// Drives, registry and folders of one test, with its drive C:.
class TemporaryHome {
 public:
  explicit TemporaryHome(
      const std::filesystem::path& parent = std::filesystem::temp_directory_path())
      : folder_(parent) {
    std::filesystem::permissions(Path(),
                                 std::filesystem::perms{0755});  // an ordinary user looks too
    std::filesystem::create_directory(Drive());
  }
  const std::filesystem::path& Path() const { return folder_.Path(); }
  std::filesystem::path Drive() const { return Path() / "drive_c"; }

  // A file below C:, with its folders.
  void Make(const std::string& name, std::string_view bytes = "x") const {
    std::filesystem::create_directories((Drive() / name).parent_path());
    std::ofstream(Drive() / name, std::ios::binary) << bytes;
  }
  bool Has(const std::string& name) const {
    return std::filesystem::exists(std::filesystem::symlink_status(Drive() / name));
  }

 private:
  TemporaryFolder folder_;
  WithVariable variable_{"KVSHARE_HOME", folder_.Path().c_str()};
};

}  // namespace kvshare
