// The picture of a run: what it shows of a log, and that any log can be drawn.
#include "timeline/timeline.h"

#include <algorithm>
#include <expat.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "log/saved_log.h"
#include "timeline/write_timeline.h"

namespace lanvoss::timeline {
namespace {

struct Line {
  int ms;
  int thread;
  std::string message;
};

Timeline TimelineOf(const std::vector<Line>& lines) {
  std::vector<Notification> notifications;
  for (const Line& line : lines) {
    notifications.push_back({line.ms * std::int64_t{1000}, line.thread, "info", line.message});
  }
  return BuildTimeline(notifications);
}

// The headline, and "LANE ROW: LABEL BEGIN-END" of every span, with "!" when it ended badly and "?"
// when it did not end.
std::string TextOf(const Timeline& timeline) {
  std::string text = timeline.headline;
  for (const Span& span : timeline.spans) {
    text += "\n" + timeline.lanes.at(span.lane).label + " " + std::to_string(span.row) + ": " +
            span.label + " " + std::to_string(span.beginUs / 1000) + "-" +
            std::to_string(span.endUs / 1000) +
            (span.ending == Ending::kBad          ? "!"
             : span.ending == Ending::kUnfinished ? "?"
                                                  : "");
  }
  return text;
}

bool IsXml(const std::string& text) {
  XML_Parser parser = XML_ParserCreate("UTF-8");
  const auto status = XML_Parse(parser, text.data(), static_cast<int>(text.size()), 1);
  XML_ParserFree(parser);
  return status == XML_STATUS_OK;
}

const std::string kUp =
    "(watch) Devices connected on L2 layer, connecting to name(Cam),time:1ms(1),watch:3ms(1),"
    "fromid:7ms(2) IPAddress: loc:10.0.0.1 remote:10.0.0.2";

TEST(Timeline, ShowsAConnectFromTheLogAlone) {
  const std::string log = R"([2026-11-23 23:59:58.000] (watch) Start Watcher...for Cam
[2026-11-23 23:59:58.000] watch start...
[2026-11-23 23:59:58.001] (watch) Start Watcher done
[2026-11-23 23:59:58.300] 1-1 WatchDeviceAdded:Cam id:x
[2026-11-23 23:59:58.300] (watch) ConnDevice... name=Cam id=x
[2026-11-23 23:59:58.300] PairAsync... GoIntent:14
OnPairingRequested:1
 [2026-11-23 23:59:58.800] PairAsync Status: Failed
[2026-11-23 23:59:59.300] (watch) RequestPairDeviceAsync done
[2026-11-23 23:59:59.300] (watch) FromIdAsync ...
[2026-11-23 23:59:59.500] (watch) FromIdAsync done dt:200ms
[2026-11-23 23:59:59.700] (watch) wfdDevice is null,Re FromIdAsync:1 Cam
[2026-11-23 23:59:59.900] (watch) FromIdAsync done dt:200ms
[2026-11-31 23:59:59.900] no such day
[2026-11-23 23:59:59.900] )" +
                          kUp + R"(
{"time":"2026-11-24T00:00:00.000000","kind":"info","message":"(watch) DeviceWatcher stopped."}
10.0.0.1,10.0.0.2)";
  EXPECT_EQ(TextOf(BuildTimeline(log::ReadSavedLog(log))), R"(Cam: connected after 1.9 s
watcher 0: pass 1, devices: 1 0-2000
host 0: request Cam 0-1900
host 1: waits for its end 1-1900
connection 0: connect Cam 300-1900
connection 1: pair: Failed 300-800!
connection 1: pause 800-1300
connection 1: open 1: none 1300-1500!
connection 1: pause 1500-1700
connection 1: open 2 1700-1900
link 0: Cam: 10.0.0.1 to 10.0.0.2 1900-2000)");
}

// What a host's logger makes of the library's messages.
std::string Logged(const std::string& before, const std::string& after = "\n") {
  std::string log;
  for (const char* const message : {"(watch) Start Watcher...for Cam",
                                    "1-1 WatchDeviceAdded:(watch) ping ... id:02:11:22:33:44:55",
                                    "PairAsync Status: Failed", kUp.c_str()}) {
    log += before + message + after;
  }
  return log;
}

std::string InUtf16(const std::string& text, bool isBigEndian) {
  std::string wide = isBigEndian ? "\xFE\xFF" : "\xFF\xFE";
  for (const char character : text) {
    wide += isBigEndian ? std::string{'\0', character} : std::string{character, '\0'};
  }
  return wide;
}

TEST(SavedLog, FindsMessagesInTheLogsOfHosts) {
  const std::string journal = "Nov 24 10:00:00 host prog[123]: ";
  const std::string timed = "From 10:00:00.000, 0 ms, 4 notifications";
  const std::string dated = "From 2026-11-24 10:00:00.250, 0 ms, 4 notifications";
  const std::string bare = "has no times";
  const std::pair<std::string, std::string> logs[] = {
      {Logged(""), bare},
      {Logged("INFO 4711 1 --- [main] ", "\r\n"), bare},
      {"\xEF\xBB\xBF" + Logged("I "), bare},
      {Logged(journal), timed},
      {Logged(journal + "[2026-11-24 10:00:00.250] "), dated},
      {InUtf16(Logged("2026/11/24T10:00:00,250999Z <7> ", "\r\n"), false), dated},
      {InUtf16(Logged("[2026-11-24 10:00:00.250] [info] "), true), dated},
      {Logged(R"({"id":"02:11:22:33:44:55","fields":{"msg":")", "\"},\"t\":\"10:00:00\"}\n"),
       timed},
      {Logged(journal + R"({"time":"2026-11-24T10:00:00.250000","kind":"info","message":")",
              "\"}\n"),
       dated},
  };
  for (const auto& [text, times] : logs) {
    const log::SavedLog saved = log::ReadSavedLog(text + "\n a line of the host's own\n");
    EXPECT_EQ(saved.lines, 5U) << text;
    EXPECT_EQ(saved.unclear, 0U) << text;
    const Timeline timeline = BuildTimeline(saved);
    EXPECT_EQ(timeline.headline.substr(0, 14), "Cam: connected") << text;
    EXPECT_EQ(timeline.verdict, Verdict::kGood) << text;
    EXPECT_EQ(timeline.reading, "understood 4 of 5 lines");
    EXPECT_NE(DrawSvg(timeline).find(times), std::string::npos) << text;
  }
}

TEST(SavedLog, JudgesNothingByHalfOfALog) {
  const Timeline cut = BuildTimeline(
      log::ReadSavedLog("(watch) Start Watcher...for Cam\n" + kUp.substr(0, 60) + "\n"));
  EXPECT_EQ(cut.verdict, Verdict::kUnknown);
  EXPECT_EQ(cut.reading, "understood 1 of 2 lines");
  EXPECT_EQ(BuildTimeline(log::ReadSavedLog("watch start...\n")).verdict, Verdict::kUnknown);
  for (const char* const none :
       {"", "no log\n{\"kind\":\"result\"}\n", "\x1F\x8B\x08", "\xFF\xFE"}) {
    EXPECT_THROW(log::ReadSavedLog(none), std::runtime_error);
  }
}

// A time of day after midnight is of the next day.
TEST(SavedLog, FollowsTimesOfDayAcrossMidnight) {
  const auto saved =
      log::ReadSavedLog("watch start...\n23:59:59.5 watch start...\n00:00:00,25 watch start...\n");
  EXPECT_EQ(saved.notifications.at(0).timeUs, saved.notifications.at(1).timeUs);
  EXPECT_EQ(saved.notifications.at(2).timeUs - saved.notifications.at(1).timeUs, 750'000);
}

// The recovery is one thread's, another begins a second attempt; the clock is set back by an hour.
TEST(Timeline, ShowsARecoveryAndOfTwoAttemptsAtOnce) {
  const Timeline timeline =
      TimelineOf({{3'600'000, 1, "(watch) ping ..."},
                  {3'612'000, 1, "(watch) ping done ret:0 dt:12000ms DisConnect:0"},
                  {3'612'000, 1, "(watch) Ping Failed,Unpair,Re Pair... Cam"},
                  {3'612'000, 1, "(watch) ConnDevice... name=Cam id=x"},
                  {12'000, 1, "(watch) UnpairAsync ..."},
                  {12'500, 2, "(watch) ConnDevice... name=Cam id=x"},
                  {12'600, 2, "(watch) Connection status changed: Connected"},
                  {13'000, 1, "(watch) RequestPairDeviceAsync ..."},
                  {13'000, 1, "(watch) wfdDevice is null, return"}});
  EXPECT_EQ(TextOf(timeline), R"(Cam: silent, not recovered
host thread 1 0: check, replies: 0 0-12000!
host thread 1 0: recover Cam 12000-13000!
host thread 1 1: connect Cam 12000-13000!
host thread 1 2: unpair 12000-13000
platform thread 2 0: connect Cam 12500-13000?)");
}

TEST(Timeline, KeepsSpansApartWhereThreadsAreNotKnown) {
  const Timeline timeline = TimelineOf({{0, 0, "(watch) ConnDevice... name=Cam id=x"},
                                        {10, 0, "(watch) ConnDevice... name=B id=y"},
                                        {20, 0, kUp},
                                        {30, 0, "(watch) wfdDevice is null, return"}});
  EXPECT_EQ(TextOf(timeline), R"(Nothing was asked for
connection 0: connect Cam 0-20
connection 1: connect B 10-30!
link 0: Cam: 10.0.0.1 to 10.0.0.2 20-30)");
  EXPECT_NE(timeline.spans.at(0).track, timeline.spans.at(1).track) << "no viewer could nest them";
}

TEST(Timeline, TakesAnyName) {
  const std::string name = "\xFF</text>&\"'\x01\x1B[2m\xE2\x80\xAE id:y name(|";
  const Timeline timeline = TimelineOf({{0, 1, "(watch) Start Watcher...for " + name},
                                        {5, 2, "(watch) ConnDevice... name=" + name + " id=x"}});
  EXPECT_EQ(TextOf(timeline), name +
                                  ": still without a link after 5 ms\nhost thread 1 0: request " +
                                  name + " 0-5?\nhost thread 2 0: connect " + name + " 5-5?");
  const std::string svg = DrawSvg(timeline);
  EXPECT_TRUE(IsXml(svg));
  EXPECT_EQ(svg.find('\x1B'), std::string::npos);
  EXPECT_EQ(svg.find("\xE2\x80\xAE"), std::string::npos) << "it would turn the text around";
  EXPECT_TRUE(nlohmann::json::accept(WriteTraceEvents(timeline)));
}

}  // namespace
}  // namespace lanvoss::timeline
