#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "kvshare/os/version/versionresourcebuilder.h"
#include "kvshare/rtl/filebytes.h"
#include "tests/apps/tempfile.h"
#include "tests/os/images.h"
#include "tests/support.h"

namespace kvshare::app {
namespace {

namespace vb = versionblock;

constexpr vb::Text kThai[] = {{u"CompanyName", u"บริษัท เอก"}, {u"Comments", u"a\r\n\u001B[2J"}};
constexpr vb::Text kEnglish[] = {{u"CompanyName", u"Aek"}, {u"ProductName", u""}};
constexpr vb::Table kTables[] = {{1054, 874, kThai}, {1033, 1252, kEnglish}};
constexpr vb::Source kSource{{5, 1, 2, 3}, {10, 0, 0, 12}, kTables};
constexpr auto kBlock = vb::MakeBlock<kSource>();

TEST(VersionCommand, ShowsWhatAFileTells) {
  const TemporaryFolder folder;
  const std::string name = folder.File("ledger.exe");
  const std::string bytes = os::MakePe({kBlock.data(), kBlock.size()}, true).bytes;
  WriteFileBytes(name, bytes);
  setenv("KVSHARE_HOME", folder.Path().c_str(), 1);
  std::filesystem::create_directory(folder.File("drive_c"));
  WriteFileBytes("C:\\ledger.exe", bytes);
  const std::string facts =
      "\n"
      "  file version     5.1.2.3\n"
      "  product version  10.000012\n"
      "  company          บริษัท เอก\n"
      "  product\n"
      "  language         1054, code page 874\n"
      "    CompanyName: บริษัท เอก\n"
      "    Comments: a   [2J\n"
      "  language         1033, code page 1252\n"
      "    CompanyName: Aek\n"
      "    ProductName:\n"
      "\n";
  const Outcome plain = Kvshare({"version", name, "C:\\ledger.exe"});
  EXPECT_EQ(plain.out, name + facts + "C:\\ledger.exe" + facts);
  EXPECT_EQ(plain.status, 0);
  EXPECT_EQ(
      Kvshare({"version", "--json"}, "C:\\ledger.exe\n").out,
      "{\"file\":\"C:\\\\ledger.exe\",\"file_version\":\"5.1.2.3\",\"product_version\":\"10."
      "000012\","
      "\"company\":\"บริษัท เอก\",\"product\":\"\","
      "\"translations\":[{\"language\":1054,\"code_page\":874},{\"language\":1033,\"code_page\":"
      "1252}],"
      "\"strings\":[{\"language\":1054,\"code_page\":874,\"name\":\"CompanyName\",\"value\":\"บริษัท "
      "เอก\"},"
      "{\"language\":1054,\"code_page\":874,\"name\":\"Comments\",\"value\":\"a\\r\\n\\u001b[2J\"},"
      "{\"language\":1033,\"code_page\":1252,\"name\":\"CompanyName\",\"value\":\"Aek\"},"
      "{\"language\":1033,\"code_page\":1252,\"name\":\"ProductName\",\"value\":\"\"}]}\n");
  unsetenv("KVSHARE_HOME");
}

TEST(VersionCommand, FilesWithoutAResource) {
  const TemporaryFolder folder;
  const std::string plain = folder.File("plain");
  WriteFileBytes(plain, "#!/bin/sh\n");
  MakeUnreadableFile(folder.File("socket"));
  const Outcome got = Kvshare({"version", plain, folder.File("none"), folder.File("socket")});
  EXPECT_EQ(got.out, "\n\n\n");
  EXPECT_EQ(got.err, "argument 1: '" + plain + "' has no version resource\nargument 2: '" +
                         folder.File("none") +
                         "' is no file\nargument 3: No such device or address\n");
  EXPECT_EQ(got.status, 1);
}

}  // namespace
}  // namespace kvshare::app
