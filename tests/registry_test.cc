// The table and its helpers, where a scenario would hide the fault.
#include <gtest/gtest.h>

#include "registry/cache_file.h"
#include "registry/compare_seconds.h"
#include "registry/device_table.h"
#include "registry/split_text.h"

namespace lanvoss {
namespace {

using Fields = std::vector<std::string_view>;

TEST(SplitText, OneEmptyFieldForADoubledSeparator) {
  EXPECT_EQ(SplitText("a|b", "|"), (Fields{"a", "b"}));
  EXPECT_EQ(SplitText("a||b", "|"), (Fields{"a", "", "b"}));
  EXPECT_EQ(SplitText("a|||b", "|"), (Fields{"a", "", "b"}));
  EXPECT_EQ(SplitText("a||", "|"), (Fields{"a", ""}));
  EXPECT_EQ(SplitText("|a", "|"), (Fields{"a"}));
  EXPECT_EQ(SplitText("||a|", "|"), (Fields{"a"}));
  EXPECT_EQ(SplitText("", "|"), Fields{});
  EXPECT_EQ(SplitText("|||", "|"), Fields{});
}

TEST(SplitText, EveryDelimiterSeparatesButOnlyTheFirstOneDoubles) {
  EXPECT_EQ(SplitText("a;b,c", ",;"), (Fields{"a", "b", "c"}));
  EXPECT_EQ(SplitText("a;,b", ",;"), (Fields{"a", "", "b"}));
  EXPECT_EQ(SplitText("a,;b", ",;"), (Fields{"a", "b"}));
  EXPECT_EQ(SplitText("whole", ""), (Fields{"whole"}));
}

TEST(CompareSeconds, CountsWholeSecondsAcrossTheCalendar) {
  const platform::LocalTime a{2024, 3, 1, 0, 0, 0, 0};
  EXPECT_EQ(CompareSeconds(a, {2024, 2, 28, 23, 59, 59, 999}), 24 * 3600 + 1);
  EXPECT_EQ(CompareSeconds(a, {2024, 3, 1, 0, 0, 0, 999}), 0);
  EXPECT_EQ(CompareSeconds({2024, 3, 1, 0, 0, 1, 0}, a), 1);
  EXPECT_EQ(CompareSeconds({1900, 1, 1, 0, 0, 0, 0}, {1900, 1, 1, 0, 0, 1, 0}), -1);
}

TEST(CompareSeconds, ADateThatDoesNotExistIsAlwaysOlder) {
  const platform::LocalTime real{2024, 3, 1, 9, 5, 3, 40};
  const platform::LocalTime impossible[] = {
      {},
      {2023, 2, 29, 0, 0, 0, 0},
      {1600, 12, 31, 0, 0, 0, 0},
      {30828, 1, 1, 0, 0, 0, 0},
      {2024, 13, 1, 0, 0, 0, 0},
      {2024, 3, 1, 24, 0, 0, 0},
      {2024, 3, 1, 0, 60, 0, 0},
      {2024, 3, 1, 0, 0, 60, 0},
      {2024, 3, 1, 0, 0, 0, 1000},
  };
  for (const platform::LocalTime& none : impossible) {
    EXPECT_GT(CompareSeconds(real, none), 0) << none.year;
    EXPECT_LT(CompareSeconds(none, real), 0) << none.year;
    EXPECT_EQ(CompareSeconds(none, {}), 0) << none.year;
  }
  EXPECT_GT(CompareSeconds({30827, 12, 31, 23, 59, 59, 999}, {}), 0);
}

TEST(MacOf, IsTheLast17CharactersOfTheId) {
  EXPECT_EQ(MacOf("WiFiDirect#02:11:22:33:44:55"), "02:11:22:33:44:55");
  EXPECT_EQ(MacOf("02:11:22:33:44:55"), "02:11:22:33:44:55");
  EXPECT_EQ(MacOf("2:11:22:33:44:55"), "");
}

TEST(DeviceTable, TheLatestLineOfANameWinsAndTheFirstOfAnId) {
  DeviceTable table;
  const auto at = [](std::uint16_t second, std::uint16_t ms) {
    return platform::LocalTime{2024, 3, 1, 9, 5, second, ms};
  };
  table.Load("A", {"mac", "Cam", at(3, 0)});
  table.Load("B", {"", "Cam", at(3, 999)});
  EXPECT_EQ(*table.IdOf("Cam"), "A") << "less than a second later";
  table.Load("B", {"", "Cam", at(4, 0)});
  EXPECT_EQ(*table.IdOf("Cam"), "B") << "a second later, though its record stays the first";
  EXPECT_EQ(table.AllRecords().at("B").seen, at(3, 999));
  table.Load("A", {"", "Other", at(9, 0)});
  EXPECT_EQ(table.NameOf("A"), "Cam");
  EXPECT_EQ(*table.IdOf("Other"), "A");
  EXPECT_EQ(table.IdOf("cam"), nullptr);
  EXPECT_EQ(table.NameOf("C"), "");
}

TEST(CacheLine, NeedsFiveFieldsAndIgnoresTheRest) {
  const auto line = ParseCacheLine("7|A|02:11:22:33:44:55|Cam|2024-03-01 09:05:03.040|more");
  ASSERT_TRUE(line);
  EXPECT_EQ(line->id, "A");
  EXPECT_EQ(line->record.mac, "02:11:22:33:44:55");
  EXPECT_EQ(line->record.name, "Cam");
  EXPECT_EQ(line->record.seen, (platform::LocalTime{2024, 3, 1, 9, 5, 3, 40}));

  EXPECT_FALSE(ParseCacheLine("1|A|mac|2024-03-01 09:05:03.040"));
  EXPECT_FALSE(ParseCacheLine("1|A|||2024-03-01 09:05:03.040")) << "lost both mac and name";
  EXPECT_EQ(ParseCacheLine("1|A||Cam|x")->record.mac, "");
  EXPECT_EQ(ParseCacheLine("1|A||Cam|x")->record.seen, platform::LocalTime{});
  EXPECT_EQ(ParseCacheLine("1|A||Cam|2024-03-01 09:xx:03.040")->record.seen,
            (platform::LocalTime{2024, 3, 1, 9, 0, 0, 0}));
}

TEST(CacheFile, LinesAreInIdOrderAndAsLongAsTheyMustBe) {
  const std::string longName(600, 'n');
  const std::string content = FormatCache({
      {"b", {"02:11:22:33:44:55", longName, {2024, 3, 1, 9, 5, 3, 40}}},
      {"B", {"", "100%|d", {12345, 12, 31, 23, 59, 59, 999}}},
  });
  EXPECT_EQ(content,
            "1|B||100%|d|12345-12-31 23:59:59.999\n"
            "2|b|02:11:22:33:44:55|" +
                longName + "|2024-03-01 09:05:03.040\n");
}

}  // namespace
}  // namespace lanvoss
