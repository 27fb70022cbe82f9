#include "kvshare/os/commandline.h"

#include <gtest/gtest.h>

namespace kvshare::os {
namespace {

TEST(CommandLine, Arguments) {
  struct Case {
    std::string_view text;
    std::vector<std::string> want;
    const char* why;
  };
  const Case cases[] = {
      {"", {}, "none"},
      {" \t ", {}, "only blanks"},
      {"a  b\tc ", {"a", "b", "c"}, "blanks and tabs"},
      {R"("a b" c"d e"f)", {"a b", "cd ef"}, "quotes group, also within"},
      {R"("" x)", {"", "x"}, "an empty argument"},
      {R"(C:\dir\ \\h\s)", {R"(C:\dir\)", R"(\\h\s)"}, "backslashes before other letters"},
      {R"(\" \\" x" \\\"y)", {"\"", R"(\ x)", R"(\"y)"}, "odd and even runs before a quote"},
      {R"("a\\" b)", {"a\\", "b"}, "a folder in quotes"},
      {R"("a\" b)", {"a\" b"}, "its usual mistake"},
      {R"("a""b" c)", {"a\"b", "c"}, "a doubled quote within quotes"},
      {R"(a""b)", {"ab"}, "outside of quotes they are empty"},
      {R"("open end )", {"open end "}, "a quote that is not closed"},
      {R"(x\)", {"x\\"}, "a backslash at the end"},
      {R"(\\\)", {R"(\\\)"}, "only backslashes"},
      {"$HOME;`id`|*", {"$HOME;`id`|*"}, "no shell"},
  };
  for (const Case& c : cases) EXPECT_EQ(SplitArguments(c.text), c.want) << c.why;
}

TEST(CommandLine, Program) {
  struct Reading {
    std::string name, rest;
    bool operator==(const Reading&) const = default;
  };
  struct Case {
    std::string text;
    std::vector<Reading> want;
    const char* why;
  };
  const std::string longName(250, 'x');
  const Case cases[] = {
      {"  ", {}, "blank"},
      {" tool a b", {{"tool", " a b"}}, "a bare name ends at a blank"},
      {R"("my tool" /a)", {{"my tool", " /a"}}, "quotes"},
      {R"("C:\dir\"x y)", {{R"(C:\dir\x)", " y"}}, "a backslash is itself"},
      {R"(C:\A B\x.exe /q)",
       {{R"(C:\A)", R"( B\x.exe /q)"}, {R"(C:\A B\x.exe)", " /q"}, {R"(C:\A B\x.exe /q)", ""}},
       "blanks in a name without quotes"},
      {R"(C:\A B "q")", {{R"(C:\A)", R"( B "q")"}, {R"(C:\A B)", R"( "q")"}}, "up to a quote"},
      {"/" + longName + " 3456789 1",
       {{"/" + longName, " 3456789 1"}, {"/" + longName + " 3456789", " 1"}},
       "260 bytes at most"},
  };
  for (const Case& c : cases) {
    std::vector<Reading> got;
    for (const ProgramReading& reading : ReadProgram(c.text)) {
      got.push_back({reading.name, std::string(reading.rest)});
    }
    EXPECT_EQ(got, c.want) << c.why;
  }
}

}  // namespace
}  // namespace kvshare::os
