#include <gmock/gmock.h>

#include <cstdlib>

#include "kvshare/os/registry/registry.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/filebytes.h"
#include "tests/apps/tempfile.h"
#include "tests/support.h"

namespace kvshare::app {
namespace {

using ::testing::HasSubstr;

class Settings : public ::testing::Test {
 protected:
  Settings() { UseHome("home"); }
  ~Settings() override { ::unsetenv("KVSHARE_HOME"); }
  void UseHome(const std::string& name) { ::setenv("KVSHARE_HOME", folder_.File(name).c_str(), 1); }
  static Outcome Run(std::vector<std::string> arguments, std::string_view input = "") {
    arguments.insert(arguments.begin(), "settings");
    return Kvshare(std::move(arguments), input);
  }
  const TemporaryFolder folder_;
};

TEST_F(Settings, SetGetListDelete) {
  const struct {
    std::vector<std::string> arguments;
    std::string out, err;
    int status;
  } steps[] = {
      {{"get", "Software\\Acme", "x"}, "", "kvshare: there is no key HKCU\\Software\\Acme\n", 1},
      {{"list"}, "HKCU\nHKLM\n", "", 0},
      {{"set", "Software\\บัญชี", "ชื่อ", "-.5  "}, "", "", 2},
      {{"set", "Software\\บัญชี", "ชื่อ", "--", "-.5  "}, "", "", 0},
      {{"set", "hkcu\\software\\บัญชี\\Main", "Top", "-5", "--integer"}, "", "", 0},
      {{"set", "--integer", "HKEY_CURRENT_USER\\Software\\บัญชี\\Main\\", "", "4294967295"},
       "",
       "",
       0},
      {{"set", "HKLM\\A", "t", "a\tb\n\x1B"}, "", "", 0},
      {{"get", "Software\\บัญชี", "ชื่อ"}, "-.5  \n", "", 0},
      {{"get", "\\Software\\บัญชี\\MAIN", "", "--json"},
       "{\"key\":\"HKCU\\\\Software\\\\บัญชี\\\\MAIN\",\"name\":\"\",\"kind\":\"integer\",\"value\":-"
       "1}\n",
       "",
       0},
      {{"get", "HKLM\\A", "t"}, "a\tb\n\x1B\n", "", 0},
      {{"get", "HKLM\\A", "ท"}, "", "kvshare: HKLM\\A has no value 'ท'\n", 1},
      {{"list"}, "HKCU\nHKCU\\Software\nHKLM\nHKLM\\A\n", "", 0},
      {{"list", "HKLM", "--recursive"}, "HKLM\nHKLM\\A\nHKLM\\A\tt\ttext\ta\\tb\\n\\x1B\n", "", 0},
      {{"list", "Software\\บัญชี\\Main", "--json"},
       "{\"key\":\"HKCU\\\\Software\\\\บัญชี\\\\Main\"}\n"
       "{\"key\":\"HKCU\\\\Software\\\\บัญชี\\\\Main\",\"name\":\"Top\",\"kind\":\"integer\","
       "\"value\":-5}\n"
       "{\"key\":\"HKCU\\\\Software\\\\บัญชี\\\\Main\",\"name\":\"\",\"kind\":\"integer\",\"value\":-"
       "1}\n",
       "",
       0},
      {{"delete", "HKLM\\A"},
       "",
       "kvshare: HKLM\\A is not empty; --recursive deletes it with all below it\n",
       1},
      {{"delete", "HKLM\\A", "T"}, "", "", 0},
      {{"delete", "HKLM\\A", "T"}, "", "kvshare: HKLM\\A has no value 'T'\n", 1},
      {{"delete", "HKLM\\A"}, "", "", 0},
      {{"delete", "Software", "--recursive"}, "", "", 0},
      {{"delete", "Software", "--recursive"}, "", "kvshare: there is no key HKCU\\Software\n", 1},
      {{"list", "--recursive"}, "HKCU\nHKLM\n", "", 0},
  };
  for (const auto& step : steps) {
    SCOPED_TRACE(::testing::PrintToString(step.arguments));
    const Outcome got = Run(step.arguments);
    EXPECT_EQ(got.out, step.out);
    EXPECT_TRUE(step.status == 2 || got.err == step.err) << got.err;
    EXPECT_EQ(got.status, step.status);
  }
}

TEST_F(Settings, EveryKindIsShown) {
  using os::ValueKind;
  const struct {
    ValueKind kind;
    std::string data, shown, json;
  } cases[] = {
      {ValueKind::Binary, std::string("\0\xFF", 2), "binary\t00 FF", "\"00 FF\""},
      {ValueKind::MultiText, std::string("a\0b\0\0", 5), "multi\ta;b", "\"a;b\""},
      {ValueKind::Integer64, std::string(8, '\xFF'), "integer64\t-1", "-1"},
      {ValueKind::Integer, "x", "integer\t78", "\"78\""},
      {ValueKind::ExpandText, "%T%\xFF", "expand\t%T%\uFFFD", "\"%T%\uFFFD\""},
      {ValueKind{9}, "", "kind 9\t", "\"\""},
  };
  for (const auto& c : cases) {
    os::TRegistry().WriteValue({"v", c.kind, c.data});
    EXPECT_EQ(Run({"list", "HKCU"}).out, "HKCU\nHKCU\tv\t" + c.shown + "\n");
    EXPECT_THAT(Run({"get", "HKCU", "v", "--json"}).out, HasSubstr("\"value\":" + c.json + "}\n"));
  }
}

TEST_F(Settings, WrongUsage) {
  const std::vector<std::string> cases[] = {
      {},
      {"list", "HKEY_USERS\\x"},
      {"set", "HKXX\\x", "Name", "Value"},
      {"set", "hkcr\\x", "Name", "Value"},
      {"list", "HKCU\\😀"},
      {"get", "HKCU"},
      {"set", "K", "n"},
      {"set", "K", "n", "4294967296", "--integer"},
      {"set", "K", "n", "ten", "--integer"},
      {"delete", "HKLM\\", "--recursive"},
      {"delete", "K", "n", "--recursive"},
      {"import"},
  };
  for (const auto& arguments : cases) {
    EXPECT_EQ(Run(arguments).status, 2) << ::testing::PrintToString(arguments);
  }
  EXPECT_FALSE(std::filesystem::exists(folder_.File("home"))) << "nothing was made";
}

TEST_F(Settings, ExportsAreImported) {
  Run({"set", "Software\\บัญชี", "ชื่อ", "ร้าน\n\"ดี\""});
  Run({"set", "HKLM\\Software\\Acme", "ReportPath", "D:\\Reports"});
  const std::string file = folder_.File("all.reg");
  const Outcome wide = Run({"export"});
  EXPECT_EQ(Run({"export", "--output", file}).status, 0);
  EXPECT_EQ(ReadFileBytes(file), wide.out);
  EXPECT_EQ(Run({"export", "--regedit4", "HKLM\\Software\\Acme"}).out,
            "REGEDIT4\r\n\r\n[HKEY_LOCAL_MACHINE\\Software\\Acme]\r\n"
            "\"ReportPath\"=\"D:\\\\Reports\"\r\n\r\n");

  UseHome("new");
  EXPECT_EQ(Run({"import", "-"}, wide.out).status, 0);
  EXPECT_EQ(Run({"export"}).out, wide.out);
  UseHome("newer");
  EXPECT_EQ(Run({"import", file}).status, 0);
  EXPECT_EQ(Run({"export"}).out, wide.out);

  const struct {
    std::vector<std::string> arguments;
    std::string input, err;
  } failures[] = {
      {{"import", "-"},
       "REGEDIT4\n[HKCU\\K]\n\"a\"=1\n",
       "kvshare: standard input, line 3: no text"},
      {{"import", folder_.File("none.reg")}, "", "none.reg: No such file or directory\n"},
      {{"export", "None"}, "", "kvshare: there is no key HKCU\\None\n"},
      {{"export", "--output", "/nonexistent/x"}, "", "kvshare: /nonexistent/x: "},
  };
  for (const auto& c : failures) {
    const Outcome got = Run(c.arguments, c.input);
    EXPECT_EQ(got.status, 1);
    EXPECT_THAT(got.err, HasSubstr(c.err));
    EXPECT_EQ(got.out, "");
  }
  EXPECT_EQ(Run({"export"}).out, wide.out) << "nothing was changed";
}

TEST_F(Settings, ADamagedStoreIsTold) {
  std::filesystem::create_directory(folder_.File("home"));
  WriteFileBytes(folder_.File("home/registry.db"), "damaged");
  const std::string err = "kvshare: " + folder_.File("home/registry.db") +
                          ": it is no settings store, or it is damaged\n";
  const std::vector<std::string> commands[] = {
      {"list"},        {"get", "K", "n"}, {"set", "K", "n", "v"},
      {"delete", "K"}, {"export"},        {"import", "-"}};
  for (const auto& command : commands) {
    const Outcome got = Run(command, "REGEDIT4\n[HKCU\\K]\n");
    EXPECT_EQ(got.status, 1) << command.front();
    EXPECT_EQ(got.err, err) << command.front();
  }
}

TEST_F(Settings, EveryCommandTeachesByExample) {
  for (const std::string name : {"list", "get", "set", "delete", "export", "import"}) {
    EXPECT_THAT(Run({name, "--help"}).out, HasSubstr("  kvshare settings " + name));
  }
}

}  // namespace
}  // namespace kvshare::app
