#include "kvshare/os/machine.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <pwd.h>

#include <set>

#include "kvshare/os/locale.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/strutils.h"
#include "tests/support.h"

namespace kvshare::os {
namespace {

TEST(Machine, NamesOfTheSystemItself) {
  const WithVariable computer("KVSHARE_COMPUTER", ""), user("KVSHARE_USER", nullptr);
  char host[256] = {};
  ASSERT_EQ(gethostname(host, sizeof host - 1), 0);
  const std::string name(host);
  EXPECT_EQ(ComputerName(256), UpperCase(name.substr(0, name.find('.'))));
  const passwd* entry = getpwuid(geteuid());
  EXPECT_EQ(LoginName(256).value_or(""), entry != nullptr ? entry->pw_name : "");
}

TEST(Machine, ABufferTakesOneByteMore) {
  const WithVariable computer("KVSHARE_COMPUTER", "ร้าน.a"), user("KVSHARE_USER", "abc");
  constexpr std::string_view kShop = "ร้าน.A"_th;
  EXPECT_EQ(ComputerName(7), kShop)
      << "a name that is set keeps its point; counted in bytes of 874";
  EXPECT_EQ(ComputerName(6), std::nullopt);
  EXPECT_EQ(LoginName(4), "abc");
  EXPECT_EQ(LoginName(3), std::nullopt);
  EXPECT_EQ(LoginName(0), std::nullopt);
  const WithVariable bad("KVSHARE_USER", "a\xFF");
  EXPECT_EQ(LoginName(99), std::nullopt) << "no UTF-8";
}

TEST(Machine, TheAddressIsDottedOrNone) {
  const std::string address = HostAddress();
  in_addr parsed{};
  EXPECT_TRUE(address.empty() || inet_pton(AF_INET, address.c_str(), &parsed) == 1) << address;
}

TEST(Machine, GuidsAreRandomAndSaySo) {
  constexpr std::string_view kForm = "{xxxxxxxx-xxxx-4xxx-yxxx-xxxxxxxxxxxx}";
  std::set<std::string> seen;
  for (int i = 0; i < 1000; ++i) {
    const std::string guid = NewGuid();
    ASSERT_EQ(guid.size(), kForm.size());
    for (std::size_t at = 0; at < kForm.size(); ++at) {
      const std::string_view allowed = kForm[at] == 'x'   ? "0123456789ABCDEF"
                                       : kForm[at] == 'y' ? "89AB"
                                                          : kForm.substr(at, 1);
      ASSERT_NE(allowed.find(guid[at]), std::string_view::npos) << guid;
    }
    seen.insert(guid);
  }
  EXPECT_EQ(seen.size(), 1000u);
}

TEST(Machine, EraAndCalendarAgree) {
  struct Case {
    const char *era, *locale;
    bool buddhist;
  };
  constexpr Case kCases[] = {{"543", "C", true},
                             {"0", "th_TH.UTF-8", false},
                             {nullptr, "th_TH.UTF-8", true},
                             {nullptr, "en_US.UTF-8", false},
                             {"25", "C", false},
                             {"", "TH", true}};
  for (const Case& c : kCases) {
    const WithVariable era("KVSHARE_ERA", c.era), locale("LC_ALL", c.locale);
    EXPECT_EQ(CalendarType(), c.buddhist ? "7" : "1") << c.locale;
    EXPECT_EQ(EraText().empty(), !c.buddhist) << c.locale;
  }
}

}  // namespace
}  // namespace kvshare::os
