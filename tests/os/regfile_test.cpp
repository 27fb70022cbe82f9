#include "kvshare/os/registry/regfile.h"

#include <gmock/gmock.h>

#include <cstdlib>

#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "tests/support.h"

namespace kvshare::os {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr ValueKind kMulti = ValueKind::MultiText;

std::string Bytes(std::initializer_list<int> bytes) {
  std::string text;
  for (const int byte : bytes) text += static_cast<char>(byte);
  return text;
}

std::string Utf16(std::string_view cp874) {
  std::string bytes = "\xFF\xFE";
  for (const char c : cp874) {
    const auto byte = static_cast<unsigned char>(c);
    const char16_t known = Cp874ToUnicode(byte);
    const char16_t letter = known != 0 ? known : byte == 0xFF ? u'\xF8C8' : byte;
    bytes += {static_cast<char>(letter & 0xFF), static_cast<char>(letter >> 8)};
  }
  return bytes;
}

std::string Version5(std::string_view lines) {
  return Utf16("Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER\\K]\r\n" +
               std::string(lines));
}
std::string RegEdit4(std::string_view lines) {
  return "REGEDIT4\n\n[HKCU\\K]\n" + std::string(lines);
}

TEST(RegFile, Values) {
  struct Case {
    std::string file;
    RegChange change;
    const char* why;
  };
  const auto set = [](std::string_view name, ValueKind kind, std::string_view data) {
    return RegChange{{std::string(name), kind, std::string(data)}, false};
  };
  constexpr auto kText = ValueKind::Text;
  constexpr std::string_view kThai = "บาท"_th;
  const Case cases[] = {
      {RegEdit4("\"a\"=\"b\""), set("a", kText, "b"), "no line end at the end"},
      {RegEdit4("@=\"\""), set("", kText, ""), "the key's default value"},
      {RegEdit4(R"("C:\\x\"="="\\\"")"), set("C:\\x\"=", kText, "\\\""), "escapes"},
      {RegEdit4("\"a\" = \"b\" ; why"), set("a", kText, "b"), "blanks and a comment"},
      {RegEdit4("\"a\"=\"x\r\n;y\n[z]\"\r"), set("a", kText, "x\r\n;y\n[z]"), "several lines"},
      {RegEdit4("\"a\"=DWORD:80000001"), set("a", ValueKind::Integer, Bytes({1, 0, 0, 128})), ""},
      {RegEdit4("\"a\"=dword:a"), set("a", ValueKind::Integer, Bytes({10, 0, 0, 0})), "one digit"},
      {RegEdit4("\"a\"=hex:"), set("a", ValueKind::Binary, ""), "no byte"},
      {RegEdit4("\"a\"=hex:0,FF, \\ \r\n  07 , \\\n\\\n 8"),
       set("a", ValueKind::Binary, Bytes({0, 255, 7, 8})), "lines that go on"},
      {RegEdit4("\"a\"=hex(1):e0,00,00"), set("a", kText, Bytes({0xE0, 0})), "one end mark goes"},
      {RegEdit4("\"a\"=hex(2):25,41"), set("a", ValueKind::ExpandText, "%A"), "or is not there"},
      {Version5("\"a\"=hex(2):1a,0e,00,00"), set("a", ValueKind::ExpandText, "บ"_th), "UTF-16"},
      {Version5("\"a\"=hex(7):1a,0e,00,00,00,00"), set("a", kMulti, Bytes({0xBA, 0, 0})), ""},
      {RegEdit4("\"a\"=hex(7):ba,00,00"), set("a", kMulti, Bytes({0xBA, 0, 0})), "the same"},
      {Version5("\"a\"=hex(b):01,00,00,00,00,00,00,00"),
       set("a", ValueKind::Integer64, Bytes({1, 0, 0, 0, 0, 0, 0, 0})), ""},
      {Version5("\"a\"=hex(4):01"), set("a", ValueKind::Integer, Bytes({1})), "a short integer"},
      {RegEdit4("\"a\"=hex(000000fe):01"), set("a", ValueKind{0xFE}, Bytes({1})), "unknown kind"},
      {RegEdit4("\"a\"=-"), {{"a", kText, ""}, true}, "a deletion"},
      {Version5("\"" + std::string(kThai) + "\"=\"\x80\xFF\x9F\""),
       set(kThai, kText, "\x80\xFF\x9F"), "bytes without a letter"},
      {RegEdit4(R"("a"="x\r\ny")"), set("a", kText, "x\r\ny"), "line breaks as escapes"},
      {RegEdit4("\"\xBA\xD2\xB7\"=\"\xE0\xB8\""), set(kThai, kText, "\xE0\xB8"), "no UTF-8"},
      {"REGEDIT4\n[HKCU\\K]\n\"บาท\"=\"€\"", set(kThai, kText, "\x80"), "UTF-8 without a mark"},
      {"\xEF\xBB\xBFREGEDIT4\n; ä😀\n[HKCU\\K]\n\"บาท\"=\"€\"", set(kThai, kText, "\x80"), "UTF-8"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.file) + " " + c.why);
    EXPECT_THAT(ParseRegFile(c.file),
                ElementsAre(RegSection{Hive::CurrentUser, "K", false, {c.change}}));
  }
}

TEST(RegFile, Keys) {
  const auto sections = ParseRegFile(
      "\r\n REGEDIT4\t\n;[HKCU\\no]\n[hkey_local_machine\\A]b\\\\C\\] \n[-HKLM\\A;] ; why\n"
      "\"a\"=\"ignored\"\n[HKCU]\t;[\n");
  EXPECT_THAT(sections, ElementsAre(RegSection{Hive::LocalMachine, "A]b\\C", false, {}},
                                    RegSection{Hive::LocalMachine, "A;", true, {}},
                                    RegSection{Hive::CurrentUser, "", false, {}}));
  EXPECT_THAT(ParseRegFile("REGEDIT4"), IsEmpty());
}

TEST(RegFile, RefusalsNameTheLine) {
  struct Case {
    std::string file, reason;
  };
  const std::string first =
      "line 1: a settings file begins with `Windows Registry Editor Version 5.00` or `REGEDIT4`";
  const Case cases[] = {
      {"", first},
      {"[HKCU\\K]", first},
      {std::string("R\0E\0", 4), first},
      {"\xFE\xFF", "line 1: the file is in UTF-16 with the higher byte first; save it as UTF-16LE"},
      {Utf16("REGEDIT4\n") + "[", "line 2: the file ends within a letter"},
      {"\xEF\xBB\xBFREGEDIT4\n\xE0\xB8", "line 2: the file is no good UTF-8"},
      {"\xEF\xBB\xBFREGEDIT4\n;\xED\xA0\x80", "line 2: the file is no good UTF-8"},
      {"REGEDIT4\n\"a\"=\"b\"", "line 2: the value has no key above it"},
      {"REGEDIT4\n[HKCR\\x]",
       "line 2: only keys of HKEY_CURRENT_USER and HKEY_LOCAL_MACHINE can be kept"},
      {"REGEDIT4\r\n\r\n[HKCU\\K\r\n[HKCU\\L]", "line 3: the `]` behind the key is missing"},
      {"REGEDIT4\r\r[-HKCU\\]", "line 3: a whole hive cannot be deleted"},
      {"REGEDIT4\n[HKCU\\" + std::string(256, 'k') + "]", "line 2: the key's name is too long"},
      {"REGEDIT4\n[HKCU\\K] why", "line 2: there is more behind the key"},
      {RegEdit4("name=1"), "line 4: neither a key nor a value nor a comment"},
      {RegEdit4("\"a\"=\"b\n\n"), "line 4: the closing quote is missing"},
      {RegEdit4("\"a\"=\"C:\\Apps\""), "line 4: a `\\` in a text is written `\\\\`"},
      {RegEdit4("\"a\":1"), "line 4: the `=` behind the value's name is missing"},
      {RegEdit4("\"a\"=1"), "line 4: no text, dword:, hex: or hex(n): behind the `=`"},
      {RegEdit4("\"a\"=dword:"), "line 4: a dword has one to eight digits 0-9, a-f"},
      {RegEdit4("\"a\"=dword:123456789"), "line 4: a dword has one to eight digits 0-9, a-f"},
      {RegEdit4("\"a\"=hex(100):"), "line 4: hex(n): needs a kind from 0 to ff"},
      {RegEdit4("\"a\"=hex(ffff0001):41"), "line 4: hex(n): needs a kind from 0 to ff"},
      {RegEdit4("\"a\"=hex:1,"), "line 4: a byte of two digits 0-9, a-f is missing"},
      {RegEdit4("\"a\"=hex:123"), "line 4: there is more behind the value"},
      {RegEdit4("\"a\"=hex:1,\\"), "line 4: no line goes on behind the `\\`"},
      {RegEdit4("\"a\"=-1"), "line 4: there is more behind the value"},
      {Version5("\"a\"=hex(1):41"), "line 4: the text ends within a letter"},
      {Version5("\"a\"=hex(1):e4,00"), "line 4: the letter U+00E4 is not in code page 874"},
      {"\xEF\xBB\xBFREGEDIT4\n[HKCU\\K]\n\"a\"=\"\nä\"",
       "line 4: the letter U+00E4 is not in code page 874"},
      {RegEdit4("\"" + std::string(16'384, 'n') + "\"=-"), "line 4: the value's name is too long"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(MessageOf<EConvertError>([&] { ParseRegFile(c.file); }), c.reason) << c.file;
  }
}

TEST(RegFile, LooksAsEditorsWriteIt) {
  const std::vector<RegSection> sections = {
      {Hive::CurrentUser,
       "Software\\Acme",
       false,
       {{{"Top", ValueKind::Integer, Bytes({12, 0, 0, 128})}, false},
        {{"", ValueKind::Text, "C:\\\"x\""}, false},
        {{"lines", ValueKind::Text, "a\nb"}, false},
        {{"bytes", ValueKind::Binary, std::string(25, '\xAB')}, false},
        {{"gone", ValueKind::Text, ""}, true}}},
      {Hive::LocalMachine, "Old", true, {}}};
  EXPECT_EQ(WriteRegFile(sections, RegFormat::RegEdit4),
            "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\Software\\Acme]\r\n"
            "\"Top\"=dword:8000000c\r\n@=\"C:\\\\\\\"x\\\"\"\r\n"
            "\"lines\"=hex(1):61,0a,62,00\r\n"
            "\"bytes\"=hex:ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,\\\r\n"
            "  ab,ab,ab\r\n\"gone\"=-\r\n\r\n[-HKEY_LOCAL_MACHINE\\Old]\r\n\r\n");
  const std::string wide = WriteRegFile(sections, RegFormat::Version5);
  EXPECT_EQ(wide.substr(0, 6), std::string("\xFF\xFEW\0i\0", 6));
  EXPECT_EQ(ParseRegFile(wide), sections);
  EXPECT_EQ(MessageOf<EConvertError>([] {
              WriteRegFile({{Hive::CurrentUser, "a\nb", false, {}}}, RegFormat::RegEdit4);
            }),
            "The key HKEY_CURRENT_USER\\a\\nb has a line break in its name, which a settings file "
            "cannot hold");
}

class RegFileStore : public ::testing::Test {
 protected:
  RegFileStore() { UseHome("first"); }
  void UseHome(const std::string& name) { ::setenv("KVSHARE_HOME", folder_.File(name).c_str(), 1); }
  static std::string Export(RegFormat format) {
    return WriteRegFile(
        CollectRegistry({{Hive::CurrentUser, ""}, {Hive::LocalMachine, "\\Software\\"}}), format);
  }
  const TemporaryFolder folder_;
};

TEST_F(RegFileStore, ExportsComeBackExactly) {
  std::string all;
  for (int i = 0; i < 256; ++i) all += static_cast<char>(i);
  std::string key = all;
  for (const char c : {'\\', '\r', '\n'}) key.erase(key.find(c), 1);
  TRegistry user;
  TRegistry machine(Hive::LocalMachine);
  for (TRegistry* registry : {&user, &machine}) {
    ASSERT_TRUE(registry->OpenKey("Software\\" + key + "\\b", true));
    for (int kind = 0; kind < 256; ++kind) {
      registry->WriteValue({"kind " + std::to_string(kind), static_cast<ValueKind>(kind), all});
    }
    registry->WriteString(all, all);
    registry->WriteString("", "end\0"), registry->WriteInteger("low", INT32_MIN);
    registry->CreateKey("\\Software\\Empty");
  }
  user.CloseKey();
  user.WriteString("at the root", "x");
  for (const RegFormat format : {RegFormat::Version5, RegFormat::RegEdit4}) {
    UseHome("first");
    const std::string file = Export(format);
    UseHome(format == RegFormat::Version5 ? "second" : "third");
    EXPECT_THAT(CollectRegistry({{Hive::CurrentUser, ""}}), IsEmpty());
    ImportRegFile(file);
    EXPECT_TRUE(Export(format) == file);
    ASSERT_TRUE(machine.OpenKey("\\Software\\" + key + "\\b", false));
    EXPECT_EQ(machine.ReadString(all), all);
    EXPECT_EQ(
        CollectRegistry({{Hive::CurrentUser, "none"}, {Hive::CurrentUser, "Software"}}).size(), 4u);
  }
}

TEST_F(RegFileStore, ImportsAreWholeOrNothing) {
  TRegistry registry;
  registry.CreateKey("Old\\below");
  registry.WriteString("kept", "1");
  const std::string file =
      "REGEDIT4\n[-HKCU\\old]\n[-HKCU\\absent]\n[HKCU\\New]\n\"a\"=\"1\"\n[HKCU]\n\"kept\"=-\n"
      "\"absent\"=-\n";
  EXPECT_EQ(MessageOf<EConvertError>([&] { ImportRegFile(file + "oops"); }),
            "line 9: neither a key nor a value nor a comment");
  EXPECT_TRUE(registry.KeyExists("Old\\below") && registry.ValueExists("kept"));
  ImportRegFile(file);
  EXPECT_FALSE(registry.KeyExists("Old") || registry.ValueExists("kept"));
  ASSERT_TRUE(registry.OpenKeyReadOnly("New"));
  EXPECT_EQ(registry.ReadString("A"), "1");
  ::setenv("KVSHARE_HOME", "/dev/null", 1);
  EXPECT_THROW(ImportRegFile(file), ERegistryException);
}

}  // namespace
}  // namespace kvshare::os
