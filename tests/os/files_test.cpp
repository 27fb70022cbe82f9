#include "kvshare/rtl/filebytes.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <vector>

#include "kvshare/os/posix/calls.h"
#include "tests/os/filesupport.h"

namespace kvshare {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> NamesIn(const fs::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) names.push_back(entry.path().filename());
  std::ranges::sort(names);
  return names;
}

TEST(Files, ReadBackWhatWasWritten) {
  const TemporaryFolder folder;
  const std::string name = folder.File("x.bin");
  for (const std::size_t size : {0u, 1u, 4095u, 4096u, 4097u, 300'000u}) {
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(i * 7);
    WriteFileBytes(name, bytes);
    EXPECT_TRUE(ReadFileBytes(name) == bytes) << size;
  }
  EXPECT_EQ(NamesIn(folder.Path()), std::vector<std::string>{"x.bin"});
  EXPECT_TRUE(FileExists(name));
  EXPECT_FALSE(FileExists(folder.Path().string())) << "a folder is no file";
  EXPECT_FALSE(ReadFileBytes("/proc/self/status").empty()) << "a file that says it holds 0 bytes";
}

TEST(Files, FailuresHaveThePlatformsCodes) {
  const TemporaryFolder folder;
  const std::string file = folder.File("file");
  const std::string loop = folder.File("loop");
  WriteFileBytes(file, "x");
  fs::create_symlink(loop, loop);
  struct Case {
    std::string name;
    int read, write;
    const char* why;
  };
  const Case cases[] = {
      {folder.File("none"), 2, 0, "missing file"},
      {folder.File("none/x"), 3, 3, "missing folder"},
      {file + "/x", 3, 3, "a file in place of a folder"},
      {folder.Path().string(), 5, 5, "a folder"},
      {folder.File(std::string(300, 'x')), 206, 206, "name too long"},
      {loop, 3, 3, "a link to itself"},
      {"", 3, 3, "no name"},
      {"/dev/null", 0, 5, "a device is not replaced by a file"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(CodeOf([&] { ReadFileBytes(c.name); }), c.read);
    EXPECT_EQ(CodeOf([&] { WriteFileBytes(c.name, "y"); }), c.write);
  }
}

TEST(Files, PermissionsAndLinksStay) {
  const TemporaryFolder folder;
  const std::string file = folder.File("file");
  const std::string link = folder.File("link");
  WriteFileBytes(file, "old");
  fs::permissions(file, fs::perms{0640});
  fs::create_directory(folder.File("sub"));
  fs::create_symlink("../file", folder.File("sub/near"));
  fs::create_symlink("sub/near", link);

  WriteFileBytes(link, "new");
  EXPECT_EQ(ReadFileBytes(file), "new");
  EXPECT_EQ(fs::status(file).permissions(), fs::perms{0640});
  EXPECT_TRUE(fs::is_symlink(link));

  fs::create_symlink("fresh", folder.File("dangling"));
  WriteFileBytes(folder.File("dangling"), "x");
  EXPECT_TRUE(fs::is_regular_file(folder.File("fresh")));

  fs::permissions(file, fs::perms{0440});
  const bool mayWriteAll = access(file.c_str(), W_OK) == 0;  // the superuser may
  EXPECT_EQ(CodeOf([&] { WriteFileBytes(file, "x"); }), mayWriteAll ? 0 : 5);
}

// Each call of a save fails in turn.
TEST(Files, AFailedSaveLeavesTheEarlierFile) {
  using os::posix::Calls;
  const auto fullDisk = [](int, const void*, std::size_t) -> ssize_t {
    errno = ENOSPC;
    return -1;
  };
  const auto fullDiskMidway = [](int file, const void* bytes, std::size_t size) -> ssize_t {
    if (size > 4) return ::write(file, bytes, size / 2);
    errno = ENOSPC;
    return -1;
  };
  const auto noSync = [](int) { return errno = EIO, -1; };
  const auto noRename = [](int, const char*, int, const char*) { return errno = EACCES, -1; };
  struct Case {
    Calls calls;
    int code;
    const char* why;
  };
  const Case cases[] = {
      {{.write = fullDisk}, 101, "first write"},
      {{.write = fullDiskMidway}, 101, "a later write"},
      {{.sync = noSync}, 31, "flush"},
      {{.rename = noRename}, 5, "rename"},
  };
  const TemporaryFolder folder;
  const std::string file = folder.File("ledger");
  WriteFileBytes(file, "earlier");
  for (const Case& c : cases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(CodeOf([&] { os::posix::ReplaceFile(file, "a new ledger", c.calls); }), c.code);
    EXPECT_EQ(ReadFileBytes(file), "earlier");
    EXPECT_EQ(CodeOf([&] { os::posix::ReplaceFile(folder.File("new"), "text", c.calls); }), c.code);
    EXPECT_EQ(NamesIn(folder.Path()), std::vector<std::string>{"ledger"}) << "nothing left over";
  }
  Calls interrupted;
  interrupted.write = [](int handle, const void* bytes, std::size_t) -> ssize_t {
    static int calls = 0;
    if (++calls % 2 == 1) return errno = EINTR, -1;
    return ::write(handle, bytes, 1);
  };
  os::posix::ReplaceFile(file, "byte by byte", interrupted);
  EXPECT_EQ(ReadFileBytes(file), "byte by byte");
}

}  // namespace
}  // namespace kvshare
