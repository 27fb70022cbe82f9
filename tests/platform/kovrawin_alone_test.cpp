// The bridge on a machine without a companion library: this program runs with a copy of the shared
// library in a folder that has nothing else.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "kvshare/platform/kovrawin.h"
#include "kvshare/ui/backend.h"

namespace kvshare {
namespace {

TEST(KovraWinAlone, TellsOfTheFileThenOfTheEntry) {
  THeadlessInterface screen;
  const TUseInterface use(screen);
  EXPECT_EQ(hKovraWin, 0u);
  constexpr TDateTime kDate(37817.25);
  EXPECT_EQ(ExecCalendar(0, kDate), kDate);
  std::string name(70, 'x'), second = "old";
  EXPECT_EQ(ExecGetUserName(0, name, second), 0);
  EXPECT_EQ(name, std::string(64, 'x'));
  EXPECT_EQ(second, "");
  TStringList list;
  ExecReadKovraSysInfo(list);
  EXPECT_EQ(list.Count(), 0);
  EXPECT_EQ(hKovraWin, 0u);

  std::vector<std::string> texts;
  for (const TMessageBox& box : screen.messages) texts.push_back(box.text);
  constexpr const char* kNoFile = "Error: 1157.Cannot find KovraWin.DLL";
  EXPECT_THAT(texts,
              testing::ElementsAre(kNoFile, "Program Calendar Not Found in KovraWin.DLL", kNoFile,
                                   "Program GetUserName Not Found in KovraWin.DLL", kNoFile));
}

}  // namespace
}  // namespace kvshare
