#include "kvshare/os/process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <algorithm>
#include <csignal>

#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/filebytes.h"
#include "tests/support.h"

namespace kvshare::os {
namespace {

namespace fs = std::filesystem;

class Processes : public testing::Test {
 protected:
  // An executable file with a script of the shell.
  std::string Script(const std::string& name, const std::string& text) const {
    const std::string file = folder_.File(name);
    fs::create_directories(fs::path(file).parent_path());
    WriteFileBytes(Utf8ToCp874(file), "#!/bin/sh\n" + text + "\n");
    fs::permissions(file, fs::perms{0755});
    return file;
  }

  const TemporaryFolder folder_;
};

int CodeOfRun(std::string_view commandLine, bool inheritStreams = false) {
  return Process(commandLine, inheritStreams).Wait();
}

TEST_F(Processes, ExitCodes) {
  EXPECT_EQ(CodeOfRun(R"(sh -c "exit 3")"), 3);
  EXPECT_EQ(CodeOfRun(R"("Z:\bin\sh" -c "exit 255")"), 255);
  Process process("/bin/sh -c \"exit 4\"", false);
  EXPECT_TRUE(process.Started());
  EXPECT_EQ(process.Wait(), 4);
  EXPECT_EQ(process.Wait(), 4) << "the code stays";
}

TEST_F(Processes, WhatCannotRunIsNotStarted) {
  const std::string noProgram = folder_.File("data");
  WriteFileBytes(noProgram, "MZ\x90");
  const std::string foreign = folder_.File("foreign.exe");
  WriteFileBytes(foreign, "MZ\x90");
  fs::permissions(foreign, fs::perms{0755});
  const std::string refused[] = {"",
                                 "   ",
                                 "\"\"",
                                 "kv-no-such-program x",
                                 "Z:\\no\\such",
                                 "Q:\\x.exe",
                                 noProgram,
                                 foreign,
                                 folder_.Path().string(),
                                 "sh \xFF",
                                 "kv\xFF",
                                 std::string("sh\0x", 4)};
  for (const std::string& line : refused) {
    Process process(line, false);
    EXPECT_FALSE(process.Started()) << line;
    EXPECT_EQ(process.Wait(), kStillActive) << line;
  }
}

TEST_F(Processes, ArgumentsArriveByteForByte) {
  const std::string program = Script("echo", R"(for a; do printf '%s\n' "$a"; done > "$0.out")");
  constexpr std::string_view kThai = "ลูกค้า"_th;
  const std::string line = program + R"( one "two  words" "" a\"b "C:\Data Files\\" 'x' $HOME *  )";
  EXPECT_EQ(CodeOfRun(line + std::string(kThai)), 0);
  EXPECT_EQ(ReadFileBytes(program + ".out"),
            "one\ntwo  words\n\na\"b\nC:\\Data Files\\\n'x'\n$HOME\n*\nลูกค้า\n");
}

TEST_F(Processes, ProgramsAreFoundAsTheSuiteSpellsThem) {
  Script("bin/kvtool", "exit 10");
  Script("bin/KvCase", "exit 11");
  Script("bin/both.exe", "exit 12");
  Script("bin/both", "exit 13");
  Script("late/kvtool", "exit 14");
  Script("late/kvcase", "exit 15");
  WriteFileBytes(folder_.File("bin/kvlate"), "not executable");
  Script("late/kvlate", "exit 16");
  Script("Program Files/x tool", "exit $#");
  const std::string own = fs::read_symlink("/proc/self/exe").parent_path() / "kv-own-program";
  fs::copy_file(Script("own", "exit 17"), own, fs::copy_options::overwrite_existing);
  const std::string path =
      folder_.File("bin") + "::" + folder_.File("late") + ":" + std::getenv("PATH");
  const WithVariable variable("PATH", path.c_str());
  const std::string files = folder_.File("Program Files");
  struct Case {
    std::string line;
    int code;
    const char* why;
  };
  const Case cases[] = {
      {"kvtool", 10, "the first folder"},
      {"KvTool.EXE", 10, "without .exe and letter case"},
      {"both.exe", 12, "a file with .exe before one without"},
      {"KvCase", 11, "as spelled"},
      {"kvcase", 15, "as spelled, in a later folder"},
      {"kvlate", 16, "what cannot be executed is passed over"},
      {"kv-own-program", 17, "the running program's folder"},
      {folder_.File("bin\\kvtool.exe"), 10, "a full name"},
      {"\"" + files + "\\x tool\" 1 2", 2, "blanks in quotes"},
      {files + "\\x tool 1 2 3", 3, "blanks without quotes"},
  };
  for (const Case& c : cases) EXPECT_EQ(CodeOfRun(c.line), c.code) << c.why;
  fs::remove(own);
}

TEST_F(Processes, StreamsAreSharedOrEmpty) {
  testing::internal::CaptureStdout();
  EXPECT_EQ(CodeOfRun("sh -c \"echo shared\"", true), 0);
  EXPECT_EQ(CodeOfRun("sh -c \"echo lost; echo lost >&2; cat; exit 5\"", false), 5);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "shared\n");
}

TEST_F(Processes, NoOtherDescriptorLeaks) {
  constexpr int kLeaky = 77;
  const int file = open("/dev/null", O_RDONLY | O_CLOEXEC);
  ASSERT_EQ(dup2(file, kLeaky), kLeaky);  // without the mark that closes it
  for (const bool inherit : {false, true}) {
    EXPECT_EQ(CodeOfRun("sh -c \"test ! -e /proc/$$/fd/77\"", inherit), 0) << inherit;
  }
  close(file);
  close(kLeaky);
}

TEST_F(Processes, ASignalIsSeenEvenWhereTheParentBlocksIt) {
  sigset_t blocked, earlier;
  sigemptyset(&blocked);
  sigaddset(&blocked, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &blocked, &earlier);
  for (const int signal : {SIGTERM, SIGKILL}) {
    Process process("sleep 600", false);
    ASSERT_TRUE(process.Started());
    kill(process.Id(), signal);
    EXPECT_EQ(process.Wait(), 128 + signal);
  }
  pthread_sigmask(SIG_SETMASK, &earlier, nullptr);
}

TEST_F(Processes, ADestroyedOneRunsOn) {
  const std::string pipe = folder_.File("pipe"), out = folder_.File("out");
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  int id = 0;
  {
    const Process process("sh -c \"cat " + pipe + " > " + out + "\"", false);
    id = process.Id();
  }
  const int writer = open(pipe.c_str(), O_WRONLY | O_CLOEXEC);
  EXPECT_EQ(write(writer, "late", 4), 4);
  close(writer);
  int status = -1;
  EXPECT_EQ(waitpid(id, &status, 0), id);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(ReadFileBytes(out), "late");
}

TEST_F(Processes, AHostThatIgnoresItsChildrenGetsNoCode) {
  const auto earlier = std::signal(SIGCHLD, SIG_IGN);
  EXPECT_EQ(CodeOfRun("sh -c \"exit 3\""), kStillActive);
  std::signal(SIGCHLD, earlier);
}

}  // namespace
}  // namespace kvshare::os
