#include "kvshare/os/files.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <fstream>

#include "kvshare/rtl/filebytes.h"
#include "tests/os/filesupport.h"

namespace kvshare {
namespace {

namespace fs = std::filesystem;

TEST(FileOps, ForceDirectories) {
  const TemporaryHome home;
  home.Make("file");
  EXPECT_TRUE(os::ForceDirectories("C:\\a\\b/c\\"));
  EXPECT_TRUE(fs::is_directory(home.Drive() / "a/b/c"));
  EXPECT_TRUE(os::ForceDirectories("c:\\A\\B")) << "there already, by another case";
  EXPECT_TRUE(os::ForceDirectories("Q:")) << "too short to be looked at";
  EXPECT_FALSE(os::ForceDirectories("C:\\file\\x"));
  EXPECT_FALSE(os::ForceDirectories("Q:\\x"));
  for (const char* bad : {"", "missing\\x", "missing"}) {
    EXPECT_EQ(MessageOf<EInOutError>([&] { os::ForceDirectories(bad); }),
              "Unable to create directory");
  }
  fs::remove_all(home.Drive());
  EXPECT_TRUE(os::ForceDirectories("C:\\fresh")) << "C: comes into being";
  EXPECT_TRUE(home.Has("fresh"));
}

TEST(FileOps, FoldersAndTheirCodes) {
  const TemporaryHome home;
  home.Make("full/x");
  fs::create_directory_symlink("full", home.Drive() / "link");
  EXPECT_EQ(CodeOf([] { os::MkDir("C:\\FULL"); }), 183);
  EXPECT_EQ(CodeOf([] { os::MkDir("C:\\none\\x"); }), 3);
  EXPECT_EQ(MessageOf<EInOutError>([] { os::RmDir("C:\\full\\"); }), "I/O error 145");
  EXPECT_EQ(MessageOf<EInOutError>([] { os::RmDir("C:\\none"); }), "File not found");
  EXPECT_EQ(CodeOf([] { os::RmDir("C:\\full\\x"); }), 3) << "a file";
  EXPECT_FALSE(os::RemoveDir("C:\\full"));
  EXPECT_FALSE(os::CreateDir("Q:\\x"));
  EXPECT_TRUE(os::DirectoryExists("C:\\link\\"));
  EXPECT_FALSE(os::DirectoryExists("C:\\full\\x"));
  EXPECT_TRUE(os::RemoveDir("C:\\link"));
  EXPECT_TRUE(home.Has("full/x")) << "of a link the link alone";
  EXPECT_TRUE(os::CreateDir("C:\\new\\") && os::RemoveDir("C:\\new\\"));
}

TEST(FileOps, SizeTimeAndAttributes) {
  const TemporaryHome home;
  home.Make("File", "12345");
  home.Make(".hidden");
  EXPECT_EQ(os::FileSize("C:\\file"), 5);
  EXPECT_EQ(CodeOf([] { os::FileSize("C:\\none"); }), 2);
  EXPECT_EQ(CodeOf([] { os::FileSize("C:\\none\\x"); }), 3);
  EXPECT_EQ(CodeOf([] { os::FileSize("C:\\"); }), 5);

  const timespec times[] = {{0, 0}, {1'057'000'000, 999'000'000}};
  ASSERT_EQ(utimensat(AT_FDCWD, (home.Drive() / "File").c_str(), times, 0), 0);
  const std::time_t second = times[1].tv_sec;
  const std::tm local = *std::localtime(&second);
  EXPECT_EQ(os::FileAge("C:\\file"),
            JoinDateTime(EncodeDate(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday),
                         EncodeTime(local.tm_hour, local.tm_min, local.tm_sec, 0)));
  EXPECT_EQ(os::FileAge("C:\\"), std::nullopt);

  EXPECT_EQ(os::FileGetAttr("C:\\none"), -1);
  EXPECT_EQ(os::FileGetAttr("C:\\.hidden"), os::faHidden | os::faArchive);
  EXPECT_EQ(os::FileGetAttr("C:\\"), os::faDirectory);
  EXPECT_EQ(os::FileSetAttr("C:\\File", os::faReadOnly | os::faHidden), 0);
  EXPECT_EQ(os::FileGetAttr("C:\\File"), os::faReadOnly | os::faArchive);
  EXPECT_FALSE(os::DeleteFile("C:\\File")) << "read-only";
  EXPECT_EQ(os::FileSetAttr("C:\\File", 0), 0);
  EXPECT_TRUE(os::DeleteFile("C:\\file"));
  EXPECT_EQ(os::FileSetAttr("C:\\File", 0), 2);
  EXPECT_EQ(os::FileSetAttr("Q:\\x", 0), 3);
}

TEST(FileOps, DeleteAndRename) {
  const TemporaryHome home;
  home.Make("a", "A");
  home.Make("b", "B");
  fs::create_directory(home.Drive() / "sub");
  fs::create_directory_symlink("sub", home.Drive() / "tosub");
  fs::create_symlink("nowhere", home.Drive() / "dangling");
  EXPECT_FALSE(os::DeleteFile("C:\\sub"));
  EXPECT_FALSE(os::DeleteFile("C:\\tosub")) << "a link to a folder is a folder";
  EXPECT_TRUE(os::DeleteFile("C:\\dangling"));
  EXPECT_FALSE(os::RenameFile("C:\\a", "C:\\B")) << "never over another, whatever its case";
  EXPECT_EQ(ReadFileBytes("C:\\b"), "B");
  EXPECT_TRUE(os::RenameFile("C:\\a", "C:\\A")) << "by case alone";
  EXPECT_TRUE(home.Has("A") && !home.Has("a"));
  EXPECT_TRUE(os::RenameFile("C:\\A", "C:\\SUB\\c"));
  EXPECT_TRUE(home.Has("sub/c"));
  EXPECT_FALSE(os::RenameFile("C:\\none", "C:\\x"));
  if (fs::exists("/dev/shm")) {  // most often another disk
    const std::string other = "/dev/shm/kvshare-rename-" + std::to_string(getpid());
    EXPECT_TRUE(os::RenameFile("C:\\sub\\c", other));
    EXPECT_EQ(ReadFileBytes(other), "A");
    EXPECT_FALSE(home.Has("sub/c"));
    EXPECT_FALSE(os::RenameFile("C:\\b", other));
    EXPECT_TRUE(os::DeleteFile(other));
  }
}

TEST(FileOps, CopyFile) {
  const TemporaryHome home;
  for (const std::size_t size : {0u, 5u, 65'536u, 65'537u, 131'072u, 500'001u}) {
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(i * 7);
    home.Make("from", bytes);
    EXPECT_TRUE(os::CopyFile("C:\\From", "C:\\to"));
    EXPECT_TRUE(ReadFileBytes("C:\\to") == bytes) << size;
    EXPECT_EQ(os::FileAge("C:\\to"), os::FileAge("C:\\from"));
  }
  EXPECT_FALSE(os::CopyFile("C:\\from", "C:\\FROM")) << "onto itself";
  fs::create_hard_link(home.Drive() / "from", home.Drive() / "twin");
  EXPECT_FALSE(os::CopyFile("C:\\from", "C:\\twin"));
  EXPECT_FALSE(os::CopyFile("C:\\from", "C:\\"));
  EXPECT_FALSE(os::CopyFile("C:\\", "C:\\x"));
  EXPECT_FALSE(os::CopyFile("C:\\none", "C:\\x") || home.Has("x"));
  ASSERT_EQ(mkfifo((home.Drive() / "pipe").c_str(), 0600), 0);
  EXPECT_FALSE(os::CopyFile("C:\\pipe", "C:\\x")) << "without waiting for its writer";

  home.Make("short", "new");
  ASSERT_EQ(os::FileSetAttr("C:\\short", os::faReadOnly), 0);
  fs::create_symlink("target", home.Drive() / "link");
  EXPECT_TRUE(os::CopyFile("C:\\short", "C:\\link"));
  EXPECT_TRUE(fs::is_symlink(home.Drive() / "link"));
  EXPECT_EQ(ReadFileBytes("C:\\target"), "new");
  EXPECT_EQ(os::FileGetAttr("C:\\target"), os::faReadOnly | os::faArchive);
  EXPECT_FALSE(os::CopyFile("C:\\from", "C:\\target")) << "read-only";
  fs::permissions(home.Drive() / "to", fs::perms{0640});
  EXPECT_TRUE(os::CopyFile("C:\\short", "C:\\to"));
  EXPECT_EQ(fs::status(home.Drive() / "to").permissions(), fs::perms{0440});
  fs::create_symlink("round", home.Drive() / "round");
  EXPECT_FALSE(os::CopyFile("C:\\short", "C:\\round"));
}

TEST(FileOps, AFullDiskLosesNothing) {
  const TemporaryHome home;
  home.Make("large", std::string(300'000, 'x'));
  home.Make("earlier", "whole");
  fs::permissions(home.Drive(), fs::perms{0777});
  fs::permissions(home.Drive() / "earlier", fs::perms{0666});
  EXPECT_TRUE(HoldsForOrdinaryUser([] {
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{100'000, 100'000};  // of any file that is written
    return setrlimit(RLIMIT_FSIZE, &limit) == 0 && !os::CopyFile("C:\\large", "C:\\new") &&
           !os::CopyFile("C:\\large", "C:\\earlier");
  }));
  EXPECT_EQ(ReadFileBytes("C:\\earlier"), "whole");
  int left = 0;
  for (const auto& entry : fs::directory_iterator(home.Drive())) left += entry.exists() ? 1 : 0;
  EXPECT_EQ(left, 2) << "nothing of a failed copy";
}

TEST(FileOps, WhatAnOrdinaryUserMayNot) {
  const TemporaryHome home;
  home.Make("own/x");
  fs::permissions(home.Drive() / "own/x", fs::perms{0600});
  EXPECT_TRUE(HoldsForOrdinaryUser([] {
                return CodeOf([] { os::FileSize("C:\\own\\x"); }) == 5 &&
                       CodeOf([] { os::MkDir("C:\\own\\y"); }) == 5 &&
                       !os::DeleteFile("C:\\own\\x") &&
                       !os::CopyFile("C:\\own\\x", "/tmp/x-none") &&
                       os::FileSetAttr("C:\\own\\x", 1) == 5;
              }) ||
              geteuid() != 0)
      << "where the files are another's";
}

}  // namespace
}  // namespace kvshare
