#include "kvshare/os/jobfile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <system_error>
#include <utility>

namespace kvshare::os {

namespace {

namespace fs = std::filesystem;

// Names in a printer's folder: a job `000042-TITLE.prn`; the mark `.last-000042` that remembers the
// number when the job has been taken away.
constexpr std::string_view kMark = ".last-";
constexpr std::size_t kFewestDigits = 6;
constexpr std::size_t kMostDigits = 9;  // longer ones are somebody else's files
constexpr std::uint32_t kLastNumber = 999'999'999;

std::string Digits(std::uint32_t number) {
  std::string digits = std::to_string(number);
  if (digits.size() < kFewestDigits) digits.insert(0, kFewestDigits - digits.size(), '0');
  return digits;
}

// The number of a job or of a mark, 0 for another file.
std::uint32_t NumberOf(std::string_view name) {
  const bool mark = name.starts_with(kMark);
  if (mark) name.remove_prefix(kMark.size());
  const std::size_t digits = std::min(name.find_first_not_of("0123456789"), name.size());
  const bool job = digits < name.size() && name[digits] == '-';
  const bool numbered = digits >= kFewestDigits && digits <= kMostDigits;
  if (!numbered || (mark ? digits != name.size() : !job)) return 0;
  std::uint32_t number = 0;
  std::from_chars(name.data(), name.data() + digits, number);
  return number;
}

template <typename Visit>
void ForEachName(const std::string& folder, Visit visit) {
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    visit(entry->path().filename().string(), *entry);
  }
}

std::uint32_t HighestNumber(const std::string& folder) {
  std::uint32_t highest = 0;
  ForEachName(folder, [&](const std::string& name, const fs::directory_entry&) {
    highest = std::max(highest, NumberOf(name));
  });
  return highest;
}

bool CreateMark(const std::string& folder, std::uint32_t number) {
  const std::string path = folder + "/" + std::string(kMark) + Digits(number);
  const int mark = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  if (mark < 0) return false;
  ::close(mark);
  return true;
}

// Another user's marks may stay where the folder forbids removing them; only the highest counts.
void RemoveMarksBelow(const std::string& folder, std::uint32_t number) {
  ForEachName(folder, [&](const std::string& name, const fs::directory_entry&) {
    if (name.starts_with(kMark) && NumberOf(name) != 0 && NumberOf(name) < number) {
      ::unlink((folder + "/" + name).c_str());
    }
  });
}

// A number of this process alone, 0 when the folder takes none.
std::uint32_t TakeNumber(const std::string& folder) {
  std::uint32_t number = HighestNumber(folder);
  while (++number <= kLastNumber) {
    if (CreateMark(folder, number)) return number;
    if (errno != EEXIST) return 0;
  }
  return 0;
}

// Lets one process at a time name its job, so that the jobs appear in the order of their numbers.
// Some network file systems refuse to lock a folder: their numbers are still each given once, since
// a mark has one maker.
class FolderLock {
 public:
  explicit FolderLock(const std::string& folder)
      : handle_(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    while (handle_ >= 0 && ::flock(handle_, LOCK_EX) != 0 && errno == EINTR) {
    }
  }
  ~FolderLock() {
    if (handle_ >= 0) ::close(handle_);
  }
  FolderLock(const FolderLock&) = delete;
  FolderLock& operator=(const FolderLock&) = delete;

  // Makes new names survive a power cut, where the file system can.
  void Flush() const {
    if (handle_ >= 0) ::fsync(handle_);
  }

 private:
  int handle_;
};

// Never over another file, where the file system has links.
bool MoveToNewName(const std::string& from, const std::string& to) {
  if (::link(from.c_str(), to.c_str()) == 0) return ::unlink(from.c_str()) == 0;
  const bool noLinks = errno == EPERM || errno == EOPNOTSUPP || errno == ENOSYS;
  return noLinks && std::rename(from.c_str(), to.c_str()) == 0;
}

std::string TemporaryName() {
  static std::atomic<unsigned> last{0};
  return ".job-" + std::to_string(::getpid()) + "-" + std::to_string(++last) + ".tmp";
}

}  // namespace

std::vector<std::string> FoldersIn(const std::string& folder) {
  std::vector<std::string> names;
  ForEachName(folder, [&](const std::string& name, const fs::directory_entry& entry) {
    std::error_code ignored;
    if (!name.starts_with('.') && entry.is_directory(ignored)) names.push_back(name);
  });
  std::ranges::sort(names);
  return names;
}

JobFile::JobFile(std::string folder) : folder_(std::move(folder)) {
  do {  // a crashed process of the same number may have left its name behind
    temporary_ = folder_ + "/" + TemporaryName();
    file_ = ::open(temporary_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  } while (file_ < 0 && errno == EEXIST);
  if (file_ < 0) temporary_.clear();
}

JobFile::~JobFile() {
  Close();
  if (!temporary_.empty()) ::unlink(temporary_.c_str());
}

bool JobFile::Close() {
  if (file_ < 0) return false;
  return ::close(std::exchange(file_, -1)) == 0;  // some file systems report a full disk only here
}

bool JobFile::Write(std::string_view bytes) {
  while (IsOpen() && !bytes.empty()) {
    const ssize_t n = ::write(file_, bytes.data(), bytes.size());
    if (n >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(n));
    } else if (errno != EINTR) {
      Close();
    }
  }
  return IsOpen();
}

bool JobFile::Publish(std::string_view name) {
  if (!IsOpen()) return false;
  const bool flushed = ::fsync(file_) == 0;
  if (!Close() || !flushed) return false;

  const FolderLock lock(folder_);
  const std::uint32_t number = TakeNumber(folder_);
  if (number == 0) return false;
  const std::string path = folder_ + "/" + Digits(number) + "-" + std::string(name);
  if (!MoveToNewName(temporary_, path)) return false;
  temporary_.clear();
  lock.Flush();
  RemoveMarksBelow(folder_, number);
  return true;
}

}  // namespace kvshare::os
