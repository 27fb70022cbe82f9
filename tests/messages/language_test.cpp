#include "kvshare/messages/language.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <cstdio>
#include <cstdlib>

#include <filesystem>

#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/filebytes.h"
#include "tests/support.h"

namespace kvshare {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

// Warnings of lines, without warnings of messages that have no translation.
std::vector<TLanguageWarning> LineWarnings(const TLanguage& language) {
  std::vector<TLanguageWarning> lines;
  for (const TLanguageWarning& warning : language.Warnings) {
    if (warning.Line != 0) lines.push_back(warning);
  }
  return lines;
}

TEST(Language, LinesThatCount) {
  struct Case {
    std::string_view line;
    TMessage message;
    std::string_view want;
    const char* why;
  };
  constexpr Case kCases[] = {
      {"65525 rstrCash = \"Cash\"", rstrCash, "Cash", "the plain form"},
      {"65525=\"Cash\"", rstrCash, "Cash", "without name and blanks"},
      {"\t 65525  rstrCash\t=\t\"Cash\" # money", rstrCash, "Cash", "blanks and a comment"},
      {"65525 rstrCash = \" # \"", rstrCash, " # ", "blanks kept, no comment inside"},
      {R"(65525 rstrCash = "a\"b\\c\r\nd")", rstrCash, "a\"b\\c\r\nd", "escapes"},
      {"65525 rstrCash = \"เงิน…\"", rstrCash, "เงิน…"_th, "Thai letters and an ellipsis"},
      {"65476 rstrEInvalidTime = \"bad time %S:%s\"", rstrEInvalidTime, "bad time %S:%s",
       "%S is %s"},
      {"65410 = \"SuMoTuWeThFrSa\"", rstrThaiDayAbbrev, "SuMoTuWeThFrSa", "two letters a day"},
      {"\xEF\xBB\xBF"
       "65525 = \"Cash\"\r\n# end",
       rstrCash, "Cash", "byte-order mark and CR LF"},
      {"65525 = \"%\"\n65525 = \"Cash\"", rstrCash, "Cash",
       "a refused line does not stand in the way"},
  };
  for (const Case& c : kCases) {
    const TLanguage language = ParseLanguage(c.line);
    const std::string* text = language.Find(c.message);
    ASSERT_NE(text, nullptr) << c.why;
    EXPECT_EQ(*text, c.want) << c.why;
  }
}

TEST(Language, LinesThatAreRefused) {
  using namespace std::string_view_literals;
  struct Case {
    std::string_view line, warning;
  };
  constexpr Case kCases[] = {
      {"rstrCash = \"Cash\"", "begins with an identifier"},
      {"-65525 = \"Cash\"", "begins with an identifier"},
      {"\0"sv, "begins with an identifier"},
      {"65518 = \"x\"", "no message has this identifier"},
      {"131061 = \"x\"", "no message has this identifier"},
      {"99999999999999999999 = \"x\"", "no message has this identifier"},
      {"65525 rstrCancel = \"Cash\"", "65525 is rstrCash, not rstrCancel"},
      {"65525 rstrCash Cash", "expected ="},
      {"65525 rstrCash = Cash", "expected \""},
      {"65525 rstrCash = \"Cash", "no closing quote"},
      {"65525 rstrCash = \"Cash\\", "backslash"},
      {"65525 rstrCash = \"C\\ash\"", "backslash"},
      {"65525 rstrCash = \"Cash\" x", "something follows"},
      {"65525 rstrCash = \"\"", "is empty"},
      {"65525 rstrCash = \"Ca\0sh\""sv, "control character"},
      {"65525 rstrCash = \"caf\u00E9\"", "No letter U+00E9"},
      {"65525 rstrCash = \"\xE0\xB8\"", "Invalid UTF-8"},
      {"65525 rstrCash = \"100%\"", "placeholders of rstrCash (65525)"},
      {"65525 rstrCash = \"100%%\"", "placeholders"},
      {"65476 rstrEInvalidTime = \"%s\"", "placeholders"},
      {"65476 rstrEInvalidTime = \"%s %d\"", "placeholders"},
      {"65476 rstrEInvalidTime = \"%s %s %s\"", "placeholders"},
      {"65476 rstrEInvalidTime = \"%1:s %0:s\"", "placeholders"},
      {"65460 rstrNoOfRecord = \"%s\"", "placeholders"},
      {"65513 rstrECantDeleteWText = \"%10s\"", "placeholders"},
      {"65410 = \"SunMonTueWedThuFriSat\"", "two letters a day"},
  };
  for (const Case& c : kCases) {
    const TLanguage language = ParseLanguage("# first\n" + std::string(c.line) + "\n\n");
    EXPECT_EQ(language.Count(), 0) << c.line;
    const auto lines = LineWarnings(language);
    ASSERT_THAT(lines, SizeIs(1)) << c.line;
    EXPECT_EQ(lines[0].Line, 2);
    EXPECT_THAT(lines[0].Text, HasSubstr(c.warning)) << c.line;
  }
}

TEST(Language, TheFirstOfTwoLinesCounts) {
  const TLanguage language = ParseLanguage("65525 = \"Cash\"\n65525 = \"Coin\"\n");
  EXPECT_EQ(*language.Find(rstrCash), "Cash");
  EXPECT_THAT(LineWarnings(language).at(0).Text, HasSubstr("twice"));
  EXPECT_THAT(language.Warnings, SizeIs(Messages().size())) << "the line, and all but one missing";
}

TEST(Language, HugeInput) {
  const std::string huge = "65525 = \"" + std::string(10'000'000, 'x') + "\"";
  EXPECT_THAT(LineWarnings(ParseLanguage(huge)).at(0).Text, HasSubstr("longer than"));
  std::string lines;
  for (int i = 0; i < 100'000; ++i) lines += "x\n";
  EXPECT_THAT(LineWarnings(ParseLanguage(lines)), SizeIs(kLanguageLineWarnings + 1));
}

TEST(Language, EnglishIsComplete) {
  EXPECT_THAT(LoadLanguageFile(KVSHARE_LANGUAGES "/en.lang"), IsEmpty());
  EXPECT_EQ(CurrentLanguage(), "en");
  for (const TMessageRow& row : Messages()) {
    const std::string text = LoadStr(row.Id);
    const bool english = std::ranges::all_of(text, [](char c) { return c >= ' ' && c <= '~'; });
    EXPECT_TRUE(english && !text.empty()) << row.Name;
    EXPECT_EQ(row.Text.ends_with("    "), text.ends_with("    ")) << row.Name;
  }
  EXPECT_THAT(SetLanguage(""), IsEmpty());
  EXPECT_EQ(CurrentLanguage(), "th");
  EXPECT_EQ(LoadStr(rstrCash), "เงินสด"_th);
}

TEST(Language, AFileThatCannotBeUsedLeavesThai) {
  ASSERT_THAT(LoadLanguageFile(KVSHARE_LANGUAGES "/en.lang"), IsEmpty());
  const char* const kNames[] = {"xx", "../languages/en", "en.lang", "a b"};
  for (const char* name : kNames) {
    EXPECT_THAT(SetLanguage(name), SizeIs(1)) << name;
    EXPECT_EQ(CurrentLanguage(), "th") << name;
    EXPECT_EQ(LoadStr(rstrCash), "เงินสด"_th) << name;
  }
}

TEST(Language, AFileIsARegularOneOfAtMostAMegabyte) {
  const TemporaryFolder folder;
  ASSERT_EQ(mkfifo(folder.File("pipe.lang").c_str(), 0600), 0);
  WriteFileBytes(folder.File("whole.lang"), std::string(std::size_t{1} << 20, ' '));
  WriteFileBytes(folder.File("long.lang"), std::string((std::size_t{1} << 20) + 1, ' '));
  struct Case {
    std::string file;
    const char* why;
  };
  for (const auto& [file, why] : {Case{folder.File("pipe.lang"), "It is no regular file"},
                                  {"/dev/zero", "It is no regular file"},
                                  {folder.File("long.lang"), "It has more than 1048576 bytes"},
                                  {folder.File(""), "a directory"}}) {
    const auto warnings = LoadLanguageFile(file);
    ASSERT_THAT(warnings, SizeIs(1)) << file;
    EXPECT_THAT(warnings.front().Text, testing::HasSubstr(why));
  }
  LoadLanguageFile(folder.File("whole.lang"));
  EXPECT_EQ(CurrentLanguage(), "whole");
  SetLanguage("");
}

// The environment is read once a process, so each of these runs in a process of its own.
void PrintCash(const char* language, const std::string& folder) {
  setenv("KVSHARE_LANGUAGE", language, 1);
  setenv("KVSHARE_LANGUAGE_PATH", folder.c_str(), 1);
  std::fprintf(stderr, "[%s %s]", CurrentLanguage().c_str(),
               Cp874ToUtf8(LoadStr(rstrCash)).c_str());
  std::exit(0);
}

TEST(LanguageDeathTest, TheEnvironmentChooses) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const std::string folder = testing::TempDir() + "kvshare_languages";
  std::filesystem::create_directories(folder);
  WriteFileBytes(folder + "/part.lang", "# x\n65525 = \"Cash %s\"\n65507 = \"Delete\"\n");
  const std::string chinese = testing::TempDir() + "kvshare_語";
  std::filesystem::create_directories(chinese);
  std::filesystem::copy_file(KVSHARE_LANGUAGES "/en.lang", chinese + "/en.lang",
                             std::filesystem::copy_options::overwrite_existing);
  struct Case {
    const char* language;
    std::string folder, want;
    const char* why;
  };
  const Case kCases[] = {
      {"en", KVSHARE_LANGUAGES, "^\\[en Cash\\]$", "complete: not a word of warning"},
      {"", KVSHARE_LANGUAGES, "^\\[th เงินสด\\]$", "empty"},
      {"th", folder, "^\\[th เงินสด\\]$", "built in: no file needed"},
      {"en", "", "^\\[en Cash\\]$", "found from the library's own place"},
      {"en", chinese, "^\\[en Cash\\]$", "a place with letters that the code page lacks"},
      {"part", folder,
       "^kvshare: warning: .*part.lang:2: the placeholders of rstrCash .65525. differ from the "
       "Thai "
       "text's, and 110 more; 111 of 112 messages stay Thai\n\\[part เงินสด\\]$",
       "one line for all that is wrong"},
      {"none", folder,
       "^kvshare: warning: .*none.lang: cannot be read: .*112 of 112.*\n\\[th เงินสด\\]$",
       "no such file"},
      {"../en", folder,
       "^kvshare: warning: KVSHARE_LANGUAGE: not the name of a language.*\n.*เงินสด", "no path"},
  };
  for (const Case& c : kCases) {
    EXPECT_EXIT(PrintCash(c.language, c.folder), testing::ExitedWithCode(0), c.want) << c.why;
  }
}

}  // namespace
}  // namespace kvshare
