// Text conversions, clock differences and status names.
#include "base/text.h"

#include <gtest/gtest.h>
#include <limits>

#include "backends/simulated/virtual_time.h"
#include "platform/unicode.h"
#include "watcher/status_names.h"

namespace lanvoss {
namespace {

TEST(Unicode, ConvertsEveryLengthBothWays) {
  const std::u16string wide = u"a\u00fc\u20ac\U0001F4F7";
  const std::string utf8 = "a\xC3\xBC\xE2\x82\xAC\xF0\x9F\x93\xB7";
  EXPECT_EQ(platform::Utf16ToUtf8(wide), utf8);
  EXPECT_EQ(platform::Utf8ToUtf16(utf8), wide);
  EXPECT_EQ(platform::Utf8ToUtf16(platform::Utf16ToUtf8(u"\uD7FF\uE000\uFFFF\U0010FFFF")),
            u"\uD7FF\uE000\uFFFF\U0010FFFF");
}

TEST(Unicode, ReplacesWhatIsMalformed) {
  const std::u16string high(1, char16_t{0xD83D});
  const std::u16string low(1, char16_t{0xDCF7});
  EXPECT_EQ(platform::Utf16ToUtf8(high + u"x" + low), "\xEF\xBF\xBDx\xEF\xBF\xBD");
  EXPECT_EQ(platform::Utf16ToUtf8(low + high), "\xEF\xBF\xBD\xEF\xBF\xBD");
  EXPECT_EQ(platform::Utf8ToUtf16("\x80"), u"\uFFFD");
  EXPECT_EQ(platform::Utf8ToUtf16("\xC3"), u"\uFFFD") << "cut short";
  EXPECT_EQ(platform::Utf8ToUtf16("\xC0\xAF"), u"\uFFFD\uFFFD") << "overlong";
  EXPECT_EQ(platform::Utf8ToUtf16("\xE0\x80\x80"), u"\uFFFD\uFFFD\uFFFD") << "overlong";
  EXPECT_EQ(platform::Utf8ToUtf16("\xED\xA0\x80"), u"\uFFFD\uFFFD\uFFFD") << "a surrogate";
  EXPECT_EQ(platform::Utf8ToUtf16("\xF5\x80\x80\x80"), u"\uFFFD\uFFFD\uFFFD\uFFFD");
  EXPECT_EQ(platform::Utf8ToUtf16("\xF4\x90\x80\x80"), u"\uFFFD\uFFFD\uFFFD\uFFFD");
}

TEST(ToAnsi, KeepsTheCountOfCharactersAndStopsAtZero) {
  const auto system = simulated::VirtualTime::Seeded(1);
  system->SetAnsiCodePage(simulated::AnsiCodePage::kLatin1);
  EXPECT_EQ(ToAnsi(*system, u""), "");
  EXPECT_EQ(ToAnsi(*system, u"B\u00fcro \u6444\u50cf"), "B\xFCro ??");
  EXPECT_EQ(ToAnsi(*system, std::u16string_view(u"ab\0cd", 5)), "ab");
  EXPECT_EQ(system->WideToUtf8(std::u16string_view(u"ab\0cd", 5)), std::string("ab\0cd", 5));
}

TEST(ElapsedMs, CrossesTheWrapOfTheClock) {
  using Limits = std::numeric_limits<std::int32_t>;
  EXPECT_EQ(ElapsedMs(Limits::max() - 99, Limits::min() + 100), 200);
  EXPECT_EQ(ElapsedMs(100, 40), -60);
}

TEST(StatusNames, HaveEveryTableAndNumbersBeyond) {
  EXPECT_EQ(WatcherStatusName(0), "Created");
  EXPECT_EQ(WatcherStatusName(5), "Aborted");
  EXPECT_EQ(WatcherStatusName(6), "6");
  EXPECT_EQ(PairingStatusName(0), "Paired");
  EXPECT_EQ(PairingStatusName(17), "RejectedByHandler");
  EXPECT_EQ(PairingStatusName(19), "Failed");
  EXPECT_EQ(PairingStatusName(20), "20");
  EXPECT_EQ(PairingStatusName(-1), "4294967295");
  EXPECT_EQ(ConnectionStatusName(1), "Connected");
  EXPECT_EQ(ConnectionStatusName(2), "2");
}

}  // namespace
}  // namespace lanvoss
