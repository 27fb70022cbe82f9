#include "kvshare/os/process.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "kvshare/os/commandline.h"
#include "kvshare/os/paths.h"
#include "kvshare/os/posix/programfolder.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/environment.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::os {

bool IsConsole = true;

namespace {

namespace fs = std::filesystem;

bool IsProgram(const std::string& file) {
  std::error_code error;
  return fs::is_regular_file(file, error) && ::access(file.c_str(), X_OK) == 0;
}

// As spelled, then without `.exe`.
std::vector<std::string> Spellings(std::string_view name) {
  constexpr std::string_view kExtension = ".exe";
  std::vector<std::string> spellings{std::string(name)};
  if (name.size() > kExtension.size() &&
      SameText(name.substr(name.size() - kExtension.size()), kExtension)) {
    spellings.emplace_back(name.substr(0, name.size() - kExtension.size()));
  }
  return spellings;
}

// The running program's folder, then the folders of PATH. An empty one would be the current folder,
// where anybody may have put a program.
std::vector<std::string> SearchFolders() {
  std::vector<std::string> folders{posix::RunningProgramFolder()};
  std::string_view path = Environment("PATH");
  while (!path.empty()) {
    const std::size_t end = std::min(path.find(':'), path.size());
    folders.emplace_back(path.substr(0, end));
    path.remove_prefix(std::min(end + 1, path.size()));
  }
  std::erase(folders, "");
  return folders;
}

// A file that is spelled so counts before one that differs in case, wherever it lies.
std::string FindInFolders(std::string_view name) {
  const std::vector<std::string> folders = SearchFolders();
  for (const bool ignoringCase : {false, true}) {
    for (const std::string& folder : folders) {
      for (const std::string& spelling : Spellings(name)) {
        const std::string utf8 = Cp874ToUtf8(spelling);
        std::string file = ignoringCase ? posix::FileIgnoringCase(folder, utf8)
                                        : (fs::path(folder) / utf8).string();
        if (IsProgram(file)) return file;
      }
    }
  }
  return {};
}

// The system's name of a program, "" when there is none. May throw for a name that no file can
// have.
std::string FindProgram(std::string_view name) {
  if (name.find_first_of("\\/:") == std::string_view::npos) return FindInFolders(name);
  for (const std::string& spelling : Spellings(name)) {
    std::string file = NativePath(spelling);
    if (IsProgram(file)) return file;
  }
  return {};
}

class Attributes {
 public:
  // A thread that blocks signals would make a child that nobody can end.
  Attributes() {
    sigset_t none;
    sigemptyset(&none);
    posix_spawnattr_init(&value_);
    posix_spawnattr_setsigmask(&value_, &none);
    posix_spawnattr_setflags(&value_, POSIX_SPAWN_SETSIGMASK);
  }
  ~Attributes() { posix_spawnattr_destroy(&value_); }
  Attributes(const Attributes&) = delete;
  Attributes& operator=(const Attributes&) = delete;

  const posix_spawnattr_t* Value() const { return &value_; }

 private:
  posix_spawnattr_t value_{};
};

// What the child does with the descriptors before it becomes the program.
class Descriptors {
 public:
  explicit Descriptors(bool inheritStreams) {
    posix_spawn_file_actions_init(&value_);
    if (!inheritStreams) {
      for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        posix_spawn_file_actions_addopen(&value_, stream, "/dev/null", O_RDWR, 0);
      }
    }
    // Also the descriptors of libraries that do not mark theirs: a connection or a lock must not
    // live on in another program.
    posix_spawn_file_actions_addclosefrom_np(&value_, STDERR_FILENO + 1);
  }
  ~Descriptors() { posix_spawn_file_actions_destroy(&value_); }
  Descriptors(const Descriptors&) = delete;
  Descriptors& operator=(const Descriptors&) = delete;

  const posix_spawn_file_actions_t* Value() const { return &value_; }

 private:
  posix_spawn_file_actions_t value_{};
};

// The process's id, 0 when the program could not be started.
int Spawn(const std::string& program, std::vector<std::string> arguments, bool inheritStreams) {
  arguments.insert(arguments.begin(), program);
  std::vector<char*> pointers;
  pointers.reserve(arguments.size() + 1);
  for (std::string& argument : arguments) pointers.push_back(argument.data());
  pointers.push_back(nullptr);
  const Attributes attributes;
  const Descriptors descriptors(inheritStreams);
  pid_t id = 0;
  const int error = posix_spawn(&id, program.c_str(), descriptors.Value(), attributes.Value(),
                                pointers.data(), environ);
  return error == 0 ? id : 0;
}

int Start(std::string_view commandLine, bool inheritStreams) {
  if (commandLine.find('\0') != std::string_view::npos) return 0;
  for (const ProgramReading& reading : ReadProgram(commandLine)) {
    const std::string program = FindProgram(reading.name);
    if (program.empty()) continue;
    std::vector<std::string> arguments = SplitArguments(reading.rest);
    for (std::string& argument : arguments) argument = Cp874ToUtf8(argument);
    return Spawn(program, std::move(arguments), inheritStreams);
  }
  return 0;
}

int ExitCode(int status) {
  return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

}  // namespace

Process::Process(std::string_view commandLine, bool inheritStreams) {
  try {
    id_ = Start(commandLine, inheritStreams);
  } catch (const EInOutError&) {
    id_ = 0;  // a name that no file can have
  } catch (const EConvertError&) {
    id_ = 0;  // a byte that stands for no letter: better not started than started with another text
  }
}

Process::~Process() {
  // One that has ended by now is not left to the system's table; one that runs is not waited for.
  if (Started() && !ended_) ::waitpid(id_, nullptr, WNOHANG);
}

int Process::Wait() {
  if (!Started() || ended_) return exitCode_;
  int status = 0;
  pid_t result = 0;
  do {
    result = ::waitpid(id_, &status, 0);
  } while (result < 0 && errno == EINTR);
  ended_ = true;
  if (result == id_) exitCode_ = ExitCode(status);
  return exitCode_;
}

}  // namespace kvshare::os
