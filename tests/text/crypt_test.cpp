#include "kvshare/text/crypt.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "kvshare/rtl/cp874.h"

namespace kvshare {
namespace {

constexpr std::string_view kAlphabet =
    "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz+/";
constexpr std::string_view kKey = "0123456789ABCDEF";
constexpr std::string_view kLongKey = "0123456789ABCDEFGHIJ";
constexpr std::string_view kFailure = TKovraCrypt::kFailureMarker;

// What a decoder keeps of a text.
std::string LettersOf(std::string_view text, std::string_view key) {
  std::string kept(text);
  std::erase_if(kept, [&](char c) { return key.find(c) == std::string_view::npos; });
  return kept;
}

TEST(Crypt, KnownTexts) {
  struct Case {
    std::string_view letters, key, value, why;
  };
  // With the key 0..F, turned right r times, the digit at place p is p - r modulo 16.
  constexpr Case kCases[] = {
      {"13", kKey, "A", "41h: low 1 unturned, high 4 turned once"},
      {"1301", kKey, "AB", "42h goes on at two turns"},
      {"AA", kKey, "บ"_th, "BAh, a Thai letter"},
      {"13F1DFBD9B79573513", kKey, "AAAAAAAAA", "the wheel comes round after 16"},
      {"0J", kLongKey, std::string_view("\0", 1), "a longer key turns its own length"},
      {"", kKey, "", "nothing"},
  };
  const TKovraCrypt crypt;
  for (const Case& c : kCases) {
    EXPECT_EQ(crypt.DecodePWDEx(c.letters, c.key), c.value) << c.why;
    EXPECT_EQ(LettersOf(crypt.EncodePWDEx(c.value, c.key, 2, 9), c.key), c.letters) << c.why;
  }
}

TEST(Crypt, DecodesOnly) {
  struct Case {
    std::string_view text, key, want, why;
  };
  constexpr Case kCases[] = {
      {"x1y\r\n3\xA1z ", kKey, "A", "what is not in the key is passed over"},
      {"131", kKey, kFailure, "an odd number of letters"},
      {"GG", kLongKey, " ", "places past 16: 16 + 16 * 17 modulo 256"},
      {"13", kAlphabet, "A", "a key of the whole alphabet decodes"},
  };
  const TKovraCrypt crypt;
  for (const Case& c : kCases) EXPECT_EQ(crypt.DecodeToString(c.text, c.key), c.want) << c.why;
  EXPECT_EQ(crypt.EncodeString("A", kAlphabet), "") << "no fillers are left";
  // Too short, a letter twice, one that is not in the alphabet, none.
  for (const std::string_view key :
       {"0123456789ABCDE", "0123456789ABCDE0", "0123456789ABCDE-", ""}) {
    EXPECT_EQ(crypt.DecodePWDEx("13", key), kFailure) << key;
    EXPECT_EQ(crypt.EncodePWDExL("A", key, 100, 0, 5), "") << key;
  }
}

TEST(Crypt, DrawsWithoutRepetition) {
  const TKovraCrypt crypt;
  for (int i = 0; i < 50; ++i) {
    const std::string key = crypt.GeneratePWDSecutityString();
    EXPECT_EQ(std::set<char>(key.begin(), key.end()).size(), 16u) << key;
    EXPECT_EQ(crypt.DecodeToString(crypt.EncodeString("รหัสผ่าน"_th, key), key), "รหัสผ่าน"_th);
  }

  std::string all = crypt.MakeRNDString("abc", 99);
  std::ranges::sort(all);
  EXPECT_EQ(all, "abc") << "no more than there are";
  EXPECT_EQ(crypt.MakeRNDString("abc", -1) + crypt.MakeRNDString("", 2), "");
  int counts[3] = {};
  for (int i = 0; i < 3000; ++i) ++counts[crypt.MakeRNDString("abc", 1)[0] - 'a'];
  for (const int count : counts) EXPECT_NEAR(count, 1000, 150) << "each as often as the others";
}

TEST(Crypt, RunsOfFillers) {
  struct Case {
    std::string_view key;
    int minPad, maxPad;
    std::size_t leadingLeast, leadingMost, least, most;
    const char* why;
  };
  const std::string_view narrow = kAlphabet.substr(0, 61);  // leaves three fillers
  const Case kCases[] = {
      {kKey, 0, 5, 1, 5, 0, 4, "the typed encoders' bounds"},
      {kKey, 7, 3, 4, 7, 3, 6, "turned round"},
      {kKey, 4, 4, 5, 5, 4, 4, "equal bounds"},
      {kKey, -2, 300, 1, 48, 0, 48, "clamped to 0 .. 100, then to the fillers"},
      {kKey, 150, 300, 48, 48, 48, 48, "both above"},
      {kKey, -9, -3, 1, 1, 0, 0, "both below"},
      {narrow, 2, 9, 3, 3, 2, 3, "few fillers"},
  };
  const TKovraCrypt crypt;
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.why);
    std::set<std::size_t> leading;
    std::set<std::size_t> others;
    for (int i = 0; i < 2000; ++i) {  // every length of a run comes up, but for 1 in 10^18
      const std::string text = crypt.EncodePWDEx("AB", c.key, c.minPad, c.maxPad);
      std::size_t start = 0;
      for (std::size_t at = 0; at <= text.size(); ++at) {
        if (at < text.size() && c.key.find(text[at]) == std::string_view::npos) continue;
        const std::set<char> run(text.begin() + static_cast<std::ptrdiff_t>(start),
                                 text.begin() + static_cast<std::ptrdiff_t>(at));
        EXPECT_EQ(run.size(), at - start) << "a filler twice in a run of " << text;
        (start == 0 ? leading : others).insert(run.size());
        start = at + 1;
      }
    }
    EXPECT_EQ(*leading.begin(), c.leadingLeast);
    EXPECT_EQ(*leading.rbegin(), c.leadingMost);
    EXPECT_EQ(*others.begin(), c.least);
    EXPECT_EQ(*others.rbegin(), c.most);
  }
}

TEST(Crypt, LimitedLength) {
  struct Case {
    int maxLen, minPad, maxPad;
    std::size_t least, most;
    const char* why;
  };
  constexpr Case kCases[] = {
      {0, 0, 5, 21, 105, "no limit"},
      {20, 0, 5, 0, 0, "below the shortest text"},
      {-1, 0, 5, 0, 0, "negative"},
      {21, 0, 5, 21, 21, "the shortest alone"},
      {22, 0, 5, 21, 22, "hardly ever drawn"},
      {62, 2, 90, 0, 0, "least padding"},
      {70, 2, 90, 63, 70, "never drawn"},
      {5000, 60, 99, 1028, 1028, "runs at their longest"},
  };
  const TKovraCrypt crypt;
  for (const Case& c : kCases) {
    for (int i = 0; i < 100; ++i) {
      const std::string text = crypt.EncodePWDExL("0123456789", kKey, c.maxLen, c.minPad, c.maxPad);
      EXPECT_GE(text.size(), c.least) << c.why;
      EXPECT_LE(text.size(), c.most) << c.why;
      EXPECT_EQ(crypt.DecodePWDEx(text, kKey), c.most == 0 ? "" : "0123456789") << c.why;
    }
  }
}

TEST(Crypt, EachTextOwnEachKeyOwn) {
  const TKovraCrypt crypt;
  const std::string a = crypt.EncodeString(" \tpassword\r\n", kKey);
  const std::string b = crypt.EncodeString("password", kKey);
  EXPECT_NE(a, b);
  EXPECT_EQ(crypt.DecodeToString(a, kKey), "password") << "blanks at the ends are dropped";
  EXPECT_EQ(crypt.DecodeToString(b, kKey), "password");
  EXPECT_NE(crypt.DecodeToString(a, "FEDCBA9876543210"), "password");
}

TEST(Crypt, TypedValues) {
  const TKovraCrypt crypt;
  for (const std::int32_t n : {0, -1, 874, INT32_MAX, INT32_MIN}) {
    EXPECT_EQ(crypt.DecodeToInteger(crypt.EncodeInteger(n, kKey), kKey), n);
  }
  struct Amount {
    Currency value;
    std::string_view text;
  };
  constexpr Amount kAmounts[] = {
      {0_baht, "0.0000"}, {-12.5_baht, "-12.5000"}, {Currency::Min(), "-922337203685477.5808"}};
  for (const Amount& c : kAmounts) {
    const std::string text = crypt.EncodeCurrency(c.value, kKey);
    EXPECT_EQ(crypt.DecodeToString(text, kKey), c.text);
    EXPECT_EQ(crypt.DecodeToCurrency(text, kKey), c.value);
  }
  const std::string day = crypt.EncodeDatetime(EncodeDate(2024, 2, 29) + 0.75, kKey);
  EXPECT_EQ(crypt.DecodeToString(day, kKey), "20240229");
  EXPECT_EQ(crypt.DecodeToDatetime(day, kKey), EncodeDate(2024, 2, 29));
}

TEST(Crypt, TypedFailures) {
  const TKovraCrypt crypt;
  const auto decodesToToday = [&](std::string_view text, std::string_view key) {
    const TDateTime before = Date();
    const TDateTime decoded = crypt.DecodeToDatetime(text, key);
    return decoded == before || decoded == Date();
  };
  for (const std::string_view value : {"20240230", "202402", "xxxx0101", ""}) {
    EXPECT_TRUE(decodesToToday(crypt.EncodeString(value, kKey), kKey)) << value;
  }
  const std::string words = crypt.EncodeString("12 apples", kKey);
  EXPECT_EQ(crypt.DecodeToCurrency(words, kKey), 0_baht);
  EXPECT_EQ(crypt.DecodeToInteger(words, "no key"), 0);
  EXPECT_TRUE(decodesToToday(words, "no key"));
}

}  // namespace
}  // namespace kvshare
