// The cache file, as the host meets it: loading, rewriting, and every kind of broken file.
#include <algorithm>
#include <iterator>
#include <random>
#ifdef __linux__
#include <sys/fsuid.h>
#endif

#include "scenario_test.h"

namespace lanvoss::test {
namespace {

namespace fs = std::filesystem;

class Cache : public ScenarioTest {
 protected:
  // What a new object notifies while it loads `bytes`.
  Lines LogOfLoading(const std::string& bytes) {
    WriteFile(CachePath(), bytes);
    lanvoss.reset();
    ForgetOutput();
    Open();
    return Log();
  }
  // Lets the watcher report a device, so that the table changes and is written.
  void ReportOne(const std::u16string& name, const std::u16string& id) {
    air.Add({.name = name, .id = id});
    lanvoss->StartWatch("");
    Advance(3000);
  }
};

TEST_F(Cache, NotifiesTheHostOfEveryLineBeforeTheFactoryReturns) {
  EXPECT_EQ(LogOfLoading("1|A|02:11:22:33:44:55|Cam|2024-03-01 09:05:03.040\n\n"
                         "9|B||Cam|2024-03-02 10:00:00.000\nbroken\n|C|m|100%s|never"),
            (Lines{"1 Device:Cam id:A", "3 Device:Cam id:B"}));
  EXPECT_TRUE(Printed().starts_with("<watch Cam>\n[")) << "the name, and then the line";
  ReportOne(u"New", u"AA");
  EXPECT_EQ(ReadFile(CachePath()),
            "1|A|02:11:22:33:44:55|Cam|2024-03-01 09:05:03.040\n"
            "2|AA||New|2024-03-01 09:05:03.340\n"
            "3|B||Cam|2024-03-02 10:00:00.000\n");
  air.SetHabits({.enumerationMs = 10});
  lanvoss->GetDeviceIp("\nCam");
  EXPECT_TRUE(Logged("(watch) Connect Dev for id,name=Cam id=B")) << "the later line";
}

TEST_F(Cache, ANameThatHoldsASeparatorShiftsItsFields) {
  Open();
  ReportOne(u"A|B", u"id");
  EXPECT_EQ(ReadFile(CachePath()), "1|id||A|B|2024-03-01 09:05:03.340\n");
  EXPECT_EQ(LogOfLoading(ReadFile(CachePath())), (Lines{"1 Device:A id:id"}));
}

TEST_F(Cache, BrokenFilesLoadWhatTheyHold) {
  const std::string line = "1|A|m|Cam|2024-03-01 09:05:03.040\n";
  EXPECT_EQ(LogOfLoading(""), Lines{});
  EXPECT_EQ(LogOfLoading("\n\n\n"), Lines{});
  EXPECT_EQ(LogOfLoading(line + std::string("2|B|m|x\0|y", 10) + line),
            (Lines{"1 Device:Cam id:A"}))
      << "nothing after a zero byte counts";
  for (std::size_t length = 0; length < line.size(); ++length) {
    EXPECT_LE(LogOfLoading(line.substr(0, length)).size(), 1U);
  }
  fs::resize_file(CachePath(), 0x80000000);  // sparse; a size of more than 31 bits
  ForgetOutput();
  Open();
  EXPECT_EQ(Notified(), Lines{});
  std::mt19937 random(7);
  std::string noise(100'000, '\0');
  for (char& byte : noise) {
    byte = static_cast<char>(random() % 255 + 1);
  }
  LogOfLoading(noise);
  std::string many;
  for (int i = 0; i < 100'000; ++i) {
    many += "1|id" + std::to_string(i) + "|m|Cam" + std::to_string(i % 10) + "|2024-03-01\n";
  }
  EXPECT_EQ(LogOfLoading(many).size(), 100'000U);
}

TEST_F(Cache, AFileThatCannotBeUsedIsNoCache) {
  fs::create_directory(CachePath());
  Open();
  EXPECT_EQ(Log(), Lines{});
  ReportOne(u"Cam", u"id");
  EXPECT_TRUE(fs::is_directory(CachePath()));
  fs::remove(CachePath());
  ReportOne(u"Cam2", u"id2");
  EXPECT_EQ(ReadFile(CachePath()).substr(0, 5), "1|id|") << "the next change writes it all";
}

#ifdef __linux__
TEST_F(Cache, AFileThatCannotBeWrittenIsNotLoaded) {
  WriteFile(CachePath(), "1|A|m|Cam|2024\n");
  fs::permissions(CachePath(), fs::perms::owner_read | fs::perms::others_read);
  constexpr uid_t kNobody = 65534;
  const auto before = static_cast<uid_t>(setfsuid(kNobody));  // root may write everything
  Open();
  setfsuid(before);
  EXPECT_EQ(Log(), Lines{});
}
#endif

TEST_F(Cache, ThePathIsTheHostsTextAsItIs) {
  const auto cacheIn = [&](const std::string& text) {
    lanvoss = MakeOnStage(air, nullptr, text);
    return lanvoss != nullptr;
  };
  fs::create_directory(directory.path / "sub");
  WriteFile(directory.path / "sub" / "deviceinfo.bin", "1|A|m|Cam|2024\n");
  ForgetOutput();
  EXPECT_TRUE(cacheIn((directory.path / "sub" / "").string()));
  EXPECT_NE(Printed().find("1 Device:Cam id:A"), std::string::npos) << "ends in a separator";
  time->SetCurrentDirectory((directory.path / "sub").string());
  EXPECT_TRUE(cacheIn(""));
  EXPECT_NE(Printed().find("1 Device:Cam id:A"), std::string::npos) << "current directory";

  // None of these is an error.
  const std::string inFile = (directory.path / "sub" / "deviceinfo.bin").string();
  for (const std::string& nowhere :
       {inFile, std::string(5000, 'd'), directory.path.string() + std::string("\0b", 2)}) {
    EXPECT_TRUE(cacheIn(nowhere));
    ReportOne(u"Cam", u"");
  }
  EXPECT_FALSE(fs::exists(CachePath())) << "not cut short at the zero byte";
}

TEST_F(Cache, ACurrentDirectoryThatIsTooLongIsNoPlace) {
  if constexpr (fs::path::preferred_separator == '\\') {
    GTEST_SKIP() << "the file system takes no path as long";
  }
  // The longest that the library takes, and one too long.
  const std::string parent = directory.path.string() + "/";
  for (const std::size_t length : {std::size_t{259}, std::size_t{260}}) {
    const std::string deep = parent + std::string(length - parent.size(), 'd');
    fs::create_directory(deep);
    WriteFile(deep + "/deviceinfo.bin", "1|A|m|Cam|2024\n");
    time->SetCurrentDirectory(deep);
    ForgetOutput();
    lanvoss = MakeOnStage(air, nullptr, "");
    EXPECT_EQ(Printed().find("1 Device:Cam id:A") != std::string::npos, length == 259);
  }
  const unsigned opened = air.faults().Count(Call::kOpenFile);
  ReportOne(u"Cam", u"");
  EXPECT_EQ(air.faults().Count(Call::kOpenFile), opened) << "not a file in the root directory";
}

TEST_F(Cache, OddNamesAndIdsSurvive) {
  Open();
  const std::u16string odd[] = {u"",
                                u"line\nfeed",
                                u"%n%s|",
                                std::u16string(600, u'n'),
                                std::u16string(1, char16_t{0xD800}),
                                u"\x01\x7F",
                                std::u16string(u"zero\0name", 9)};
  for (const std::u16string& text : odd) {
    air.Add({.name = text, .id = text + u"#"});
  }
  lanvoss->StartWatch("");
  Advance(3000);
  EXPECT_EQ(Notified().size(), std::size(odd) + 2);
  EXPECT_TRUE(
      Logged("4 WatchDeviceAdded:" + std::string(600, 'n') + " id:" + std::string(600, 'n') + "#"));
  EXPECT_TRUE(Logged("5 WatchDeviceAdded:\xEF\xBF\xBD id:\xEF\xBF\xBD#"));
  EXPECT_TRUE(Logged("7 WatchDeviceAdded:zero id:zero"));
  LogOfLoading(ReadFile(CachePath()));
}

TEST_F(Cache, ConcurrentWritesEndWithTheLastState) {
  air.SetHabits({.handlersOverlap = true});
  for (int i = 0; i < 50; ++i) {
    air.Add({.name = u"Cam", .id = platform::Utf8ToUtf16("id" + std::to_string(100 + i))});
  }
  Open();
  lanvoss->StartWatch("");
  Advance(3000);
  const std::string content = ReadFile(CachePath());
  EXPECT_EQ(std::count(content.begin(), content.end(), '\n'), 50);
  EXPECT_NE(content.find("\n50|id149||Cam|"), std::string::npos);
}

}  // namespace
}  // namespace lanvoss::test
