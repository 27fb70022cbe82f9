#include "kvshare/platform/fileinfo.h"

#include <gtest/gtest.h>

#include "kvshare/os/folders.h"
#include "kvshare/os/version/versionresource.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/filebytes.h"
#include "kvshare/start/package.h"
#include "kvshare/ui/backend.h"
#include "tests/os/images.h"
#include "tests/support.h"

namespace kvshare {
namespace {

TEST(FileInfo, NamesOfThisProgram) {
  struct Case {
    std::string_view name, value;
  };
  constexpr Case kCases[] = {
      {"CompanyName", "บริษัท ตัวอย่าง จำกัด"_th},
      {"productname", "สมุดบัญชี"_th},
      {"FileVersion", "5.1.2.3"},
      {"ProductVersion", "5.2"},
      {"LegalCopyright", "a\\b \"c\"; @d@ ${e}\n2569"},
      {"Own Name", "own value"},
      {"Comments", ""},
      {"FileDescription", ""},
      {"", ""},
  };
  ASSERT_EQ(NamedInfoList, nullptr);
  for (const Case& c : kCases) EXPECT_EQ(GetNamedInfo(c.name), c.value) << "without a list";
  Initialize();
  for (int time = 1; time <= 2; ++time) {
    for (const Case& c : kCases) EXPECT_EQ(GetNamedInfo(c.name), c.value) << c.name;
  }
  EXPECT_EQ(
      NamedInfoList->Text(),
      "CompanyName=บริษัท ตัวอย่าง จำกัด\r\nProductName=สมุดบัญชี\r\nProductVersion=5.2\r\n"
      "FileVersion=5.1.2.3\r\nLegalCopyright=a\\b \"c\"; @d@ ${e}\n2569\r\nOwn Name=own value\r\n"_th)
      << "each once, absent ones not at all";
  NamedInfoList->SetText("CompanyName=First\r\nCompanyName=Second");
  EXPECT_EQ(GetNamedInfo("companyname"), "First");
  Finalize();
}

TEST(FileInfo, Versions) {
  const std::string program = os::ProgramFile();
  EXPECT_EQ(GetThisResourceFileVersion(program), "5.1.2.3");
  EXPECT_EQ(GetThisResourceProductVersion(program), "05.020000");

  const TemporaryFolder folder;
  std::string block = os::VersionBlockOfFile(program);
  const std::size_t product = block.find("\xBD\x04\xEF\xFE") + 16;
  struct Case {
    std::string numbers;
    const char* want;
  };
  const Case cases[] = {{os::Words(0x50001, 0x20003), "05.010203"},
                        {os::Words(0xA0000, 12), "10.000012"},
                        {os::Words(0xFFFF0064, 0x3E803E8), "65535.10010001000"}};
  for (const Case& c : cases) {
    block.replace(product, 8, c.numbers);
    WriteFileBytes(folder.File("x.exe"), os::MakePe(block, false).bytes);
    EXPECT_EQ(GetThisResourceProductVersion(folder.File("x.exe")), c.want);
    EXPECT_EQ(GetThisResourceFileVersion(folder.File("x.exe")), "5.1.2.3");
  }
}

TEST(FileInfo, FilesWithoutAResource) {
  THeadlessInterface script;
  const TUseInterface use(script);
  const TemporaryFolder folder;
  const std::string plain = folder.File("plain");
  WriteFileBytes(plain, "MZ");
  for (const std::string& name :
       {plain, folder.File("none"), folder.Path().string(), std::string()}) {
    EXPECT_EQ(GetThisResourceFileVersion(name), "") << name;
    EXPECT_EQ(GetThisResourceProductVersion(name), "") << name;
  }
  EXPECT_TRUE(script.messages.empty());

  const std::string unreadable = folder.File("socket");
  MakeUnreadableFile(unreadable);
  EXPECT_EQ(GetThisResourceProductVersion(unreadable),
            "Cannot get version information No such device or address");
  EXPECT_TRUE(script.messages.empty());
  EXPECT_EQ(GetThisResourceFileVersion(unreadable), "");
  const TMessageBox want{
      "Cannot get version information for file " + unreadable + "\r\nNo such device or address",
      TMsgDlgType::mtError,
      {TMsgDlgBtn::mbOK}};
  EXPECT_EQ(script.messages, std::vector<TMessageBox>{want});
}

}  // namespace
}  // namespace kvshare
