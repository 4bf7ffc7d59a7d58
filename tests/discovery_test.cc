// Watches: what the host sees of the passes, in each mode.
#include "scenario_test.h"

namespace lanvoss::test {
namespace {

class Discovery : public ScenarioTest {};

TEST_F(Discovery, AnUnnamedWatchListsWhatIsThereInOnePass) {
  air.Add({.name = u"Cam", .id = u"P2P#02:11:22:33:44:55", .appearMs = 300});
  air.Add({.name = u"100%d|Büro", .id = u"short", .appearMs = 700});
  Open();
  EXPECT_EQ(lanvoss->StartWatch(""), 0);
  Advance(5000);
  EXPECT_EQ(Printed(),
            "[2024-03-01 09:05:03.040] (watch) Start Watcher...for \n"
            "[2024-03-01 09:05:03.040] watch start...\n"
            "[2024-03-01 09:05:03.040] watch start ok.do:1 status:Started dt:0\n"
            "[2024-03-01 09:05:03.040] (watch) Start Watcher done\n"
            "[2024-03-01 09:05:03.340] 1 WatchDeviceAdded:Cam id:P2P#02:11:22:33:44:55\n"
            "<watch Cam>\n"
            "[2024-03-01 09:05:03.740] 2 WatchDeviceAdded:100%d|Büro id:short\n"
            "<watch 100%d|Büro>\n"
            "[2024-03-01 09:05:05.040] (watch) DeviceWatcher enumeration completed\n"
            "<watchdone DeviceWatcher enumeration completed>\n"
            "<stopdone DeviceWatcher stopped>\n"
            "[2024-03-01 09:05:05.070] (watch) DeviceWatcher stopped.\n");
  EXPECT_EQ(ReadFile(CachePath()),
            "1|P2P#02:11:22:33:44:55|02:11:22:33:44:55|Cam|2024-03-01 09:05:03.340\n"
            "2|short||100%d|Büro|2024-03-01 09:05:03.740\n");
}

TEST_F(Discovery, FindOnceGoesOnUntilTheFindAndForgetsTheName) {
  const PeerHandle cam = air.Add({.name = u"Cam", .id = u"idA", .present = false});
  air.Add({.name = u"cam", .id = u"idB", .appearMs = 100});
  air.Add({.name = u"Cam ", .id = u"idC", .appearMs = 200});
  Open();
  air.After(2500, [&] { cam.Appear(); });
  EXPECT_EQ(lanvoss->StartWatch("Cam"), 0);
  Advance(200'000);
  EXPECT_EQ(Log(),
            (Lines{"(watch) Start Watcher...for Cam", "watch start...",
                   "watch start ok.do:1 status:Started dt:0", "(watch) Start Watcher done",
                   "1-1 WatchDeviceAdded:cam id:idB", "1-2 WatchDeviceAdded:Cam  id:idC",
                   "(watch) DeviceWatcher enumeration completed",
                   "(watch) DeviceWatcher stopped,re watch", "(watch) Start Watcher...for Cam",
                   "watch start...", "watch start ok.do:1 status:Started dt:0",
                   "(watch) Start Watcher done", "2-1 WatchDeviceAdded:cam id:idB",
                   "2-2 WatchDeviceAdded:Cam  id:idC", "2-3 WatchDeviceAdded:Cam id:idA",
                   "(watch) DeviceWatcher ok Dev=Cam watch:2800ms(2) bConnectting = 0 "
                   "bDisConnect = 0",
                   "(watch) DeviceWatcher stopped."}));
  EXPECT_EQ(cam.OpenRequests(), 0U);
}

TEST_F(Discovery, KeepWatchingEndsWithTheFirstPassWithoutTheDevice) {
  const PeerHandle cam = air.Add({.name = u"Cam", .id = u"idA", .appearMs = 300});
  Open();
  air.After(500, [&] { cam.Disappear(); });
  EXPECT_EQ(lanvoss->StartWatch("\nCam"), 0);
  Advance(10'000);
  // The pass of the find ends at 330 ms; the next one sees the device no more.
  EXPECT_EQ(Log(),
            (Lines{"(watch) Start Watcher...for Cam", "watch start...",
                   "watch start ok.do:1 status:Started dt:0", "(watch) Start Watcher done",
                   "1-1 WatchDeviceAdded:Cam id:idA",
                   "(watch) DeviceWatcher ok Dev=Cam watch:300ms(1) bConnectting = 0 "
                   "bDisConnect = 0",
                   "(watch) DeviceWatcher stopped,re watch", "(watch) Start Watcher...for Cam",
                   "watch start...", "watch start ok.do:1 status:Started dt:0",
                   "(watch) Start Watcher done", "(watch) DeviceWatcher enumeration completed",
                   "(watch) DeviceWatcher stopped. no Dev=Cam nowatch:2060ms(2) bConnectting = 0 "
                   "bDisConnect = 0"}));
}

TEST_F(Discovery, KeepWatchingReportsLaterFindsInTheTableOnly) {
  const PeerHandle cam = air.Add({.name = u"Cam", .id = u"idA"});
  Open();
  lanvoss->StartWatch("\nCam");
  Advance(2000);
  EXPECT_EQ(Log().back(), "2-1 WatchDeviceAdded:Cam id:idA") << "found already: nothing more";
  Advance(3000);
  cam.Disappear();
  Advance(10'000);
  EXPECT_TRUE(Log().back().starts_with("(watch) DeviceWatcher stopped. no Dev=Cam nowatch:"));
  EXPECT_EQ(lanvoss->StartWatch("\n"), 0) << "keeps watching for nobody";
  Advance(10'000);
  EXPECT_EQ(Log().back(), "(watch) DeviceWatcher stopped.");
  EXPECT_EQ(lanvoss->StartWatch("Cam\n"), 0);
  EXPECT_TRUE(Logged("(watch) Start Watcher...for Cam\n"));
}

TEST_F(Discovery, AWatchThatIsAskedAgainKeepsItsPass) {
  air.Add({.name = u"Cam", .id = u"idA"});
  air.Add({.name = u"Cam2", .id = u"idB", .appearMs = 800});
  Open();
  lanvoss->StartWatch("Nobody");
  Advance(500);
  ForgetOutput();
  EXPECT_EQ(lanvoss->StartWatch("Cam2"), 0);
  EXPECT_EQ(Log(), (Lines{"(watch) Start Watcher...for Cam2", "(watch) Start Watcher done"}));
  Advance(1000);
  EXPECT_EQ(Log(), (Lines{"0-2 WatchDeviceAdded:Cam2 id:idB",
                          "(watch) DeviceWatcher ok Dev=Cam2 watch:300ms(0) bConnectting = 0 "
                          "bDisConnect = 0",
                          "(watch) DeviceWatcher stopped."}));
}

TEST_F(Discovery, StartingOutsideARestIsRefusedAndEndsThePass) {
  Open();
  std::int32_t result = 1;
  Listen([&](const std::string& kind, const std::string&) {
    if (kind == "watchdone" && result == 1) {
      result = lanvoss->StartWatch("Cam");
    }
  });
  lanvoss->StartWatch("");
  Advance(2010);
  EXPECT_EQ(result, -1);
  EXPECT_TRUE(Logged("(watch) Start Watcher Err:A method was called at an unexpected time."));
  Advance(100);
  EXPECT_EQ(Log().back(), "(watch) Start Watcher done") << "the stop starts the pass for Cam";
  lanvoss.reset();
}

TEST_F(Discovery, ASlowStartIsRetriedEvery500MsFor60Seconds) {
  Open();
  air.SetHabits({.ignoredStarts = 3});
  EXPECT_EQ(lanvoss->StartWatch(""), 0);
  EXPECT_EQ(
      Log(),
      (Lines{"(watch) Start Watcher...for ", "watch start...",
             "watch start.try:1 status:Created dt:0", "watch start.try:2 status:Created dt:500",
             "watch start.try:3 status:Created dt:1000",
             "watch start ok.do:4 status:Started dt:1500", "(watch) Start Watcher done"}));
  Advance(10'000);
  ForgetOutput();
  air.SetHabits({.ignoredStarts = simulated::kNever});
  EXPECT_EQ(lanvoss->StartWatch(""), 0);
  const Lines log = Log();
  EXPECT_EQ(log[log.size() - 3], "watch start.try:121 status:Stopped dt:60000");
  EXPECT_EQ(log[log.size() - 2], "watch start ok.do:122 status:Stopped dt:60500");
}

TEST_F(Discovery, AStartThatFailsStopsTheWatcher) {
  Open();
  air.faults().FailNth(Call::kWatcherStart, 1, {.message = u"Gerät gesperrt"});
  EXPECT_EQ(lanvoss->StartWatch("Cam"), -1);
  EXPECT_EQ(Log(), (Lines{"(watch) Start Watcher...for Cam", "watch start...",
                          "(watch) Start Watcher Err:Gerät gesperrt"}));
  EXPECT_EQ(air.faults().Count(Call::kWatcherStop), 1U);

  air.faults().FailNth(Call::kWatcherStart);
  air.faults().FailNth(Call::kWatcherStop, 1, {.message = u"really not"});
  EXPECT_THROW(lanvoss->StartWatch("Cam"), std::exception) << "the clean-up fails too";
  EXPECT_EQ(lanvoss->StartWatch("Cam"), 0);
}

TEST_F(Discovery, StopWatchLeavesARestingWatcherAlone) {
  Open();
  EXPECT_EQ(lanvoss->StopWatch(), 0);
  EXPECT_EQ(Log(), (Lines{"(watch) Stop Watcher...", "(watch) Stop Watcher done"}));
  EXPECT_EQ(air.faults().Count(Call::kWatcherStop), 0U);

  lanvoss->StartWatch("");
  Advance(100);
  ForgetOutput();
  EXPECT_EQ(lanvoss->StopWatch(), 0);
  EXPECT_EQ(
      LogWithout("(watch) DeviceWatcher stopped."),
      (Lines{"(watch) Stop Watcher...", "(watch) stop watch ...",
             "(watch) stop watch ok.do:1 status:Stopped dt:30", "(watch) Stop Watcher done"}));
}

TEST_F(Discovery, AWatcherThatNeverStopsTakesFiveTries) {
  Open();
  air.SetHabits({.enumerationMs = 60'000, .stopMs = simulated::kNever});
  lanvoss->StartWatch("");
  Advance(10);
  ForgetOutput();
  EXPECT_EQ(lanvoss->StopWatch(), 0);
  std::string expected =
      "[2024-03-01 09:05:03.050] (watch) Stop Watcher...\n"
      "[2024-03-01 09:05:03.050] (watch) stop watch ...\n";
  for (int i = 1; i <= 5; ++i) {
    expected += "(watch) stop watch timer out\n[2024-03-01 09:05:" +
                std::to_string(100 + 3 * i + 2).substr(1) +
                ".050] (watch) stop watch no.try:" + std::to_string(i) +
                " status:Stopping dt:" + std::to_string(3000 * i - 1000) + "\n";
  }
  EXPECT_EQ(Printed(), expected + "[2024-03-01 09:05:18.050] (watch) Stop Watcher done\n");
}

TEST_F(Discovery, NoStopIsTriedAfter60Seconds) {
  Open();
  air.SetHabits({.enumerationMs = 300'000, .stopMs = simulated::kNever});
  lanvoss->StartWatch("");
  air.faults().OnCall(Call::kWatcherStop, [&] {
    air.faults().Clear();
    Advance(58'000);
  });
  lanvoss->StopWatch();
  EXPECT_TRUE(Logged("(watch) stop watch no.try:1 status:Stopping dt:60000"));
  EXPECT_TRUE(Logged("(watch) stop watch ok.do:2 status:Stopping dt:63000"));
}

TEST_F(Discovery, AStopThatFailsUsesUpItsTry) {
  Open();
  lanvoss->StartWatch("");
  ForgetOutput();
  air.faults().FailNth(Call::kWatcherStop, 1, {.message = u"busy"});
  EXPECT_EQ(lanvoss->StopWatch(), 0);
  EXPECT_EQ(
      LogWithout("(watch) DeviceWatcher stopped."),
      (Lines{"(watch) Stop Watcher...", "(watch) stop watch ...",
             "(watch) Error StopWatch: busy.Status is Started. try:1",
             "(watch) stop watch ok.do:2 status:Stopped dt:1030", "(watch) Stop Watcher done"}));
}

TEST_F(Discovery, AStopThatFailsInNoWayOfThePlatformsEndsTheStopping) {
  Open();
  const auto host = Host([&] { EXPECT_EQ(Ask("Nobody", ""), 60'900) << "not released by it"; });
  Advance(100);
  ForgetOutput();
  air.faults().FailNth(Call::kWatcherStop, 1, {.kind = Failure::Kind::kOther});
  EXPECT_EQ(lanvoss->StopWatch(), -1);
  EXPECT_EQ(Log(), (Lines{"(watch) Stop Watcher...", "(watch) stop watch ...",
                          "(watch) Stop Watcher Err"}));
}

TEST_F(Discovery, AHandlerThatThePlatformRefusesEndsThere) {
  Open();
  lanvoss->StartWatch("");
  air.faults().FailNth(Call::kWatcherStop);
  Advance(5000);
  EXPECT_EQ(Log().back(), "(watch) DeviceWatcher enumeration completed");
  expectedEscapes = 1;
}

TEST_F(Discovery, AStopInsideAHandlerThatThePlatformWaitsForEnds) {
  air.Add({.name = u"A"});
  air.Add({.name = u"B"});
  Open();
  Duration took;
  At("2 WatchDeviceAdded", [&] { took = TimeOf([&] { EXPECT_EQ(lanvoss->StopWatch(), 0); }); });
  lanvoss->StartWatch("");
  Advance(20'000);
  EXPECT_EQ(took, 5 * 3000);
  EXPECT_TRUE(Logged("(watch) DeviceWatcher stopped."));
  Open();
  At("watchdone", [&] { took = TimeOf([&] { lanvoss->StopWatch(); }); });
  lanvoss->StartWatch("");
  Advance(20'000);
  EXPECT_EQ(took, 0) << "it does not count as running";
  At("1 WatchDeviceAdded", [&] { took = TimeOf([&] { lanvoss.reset(); }); });
  lanvoss->StartWatch("");
  Advance(20'000);
  EXPECT_EQ(took, 5 * 3000) << "the end of the object";
}

TEST_F(Discovery, StopWatchOfANamedWatchMeetsTheNextPass) {
  Open();
  lanvoss->StartWatch("Nobody");
  Advance(100);
  EXPECT_EQ(lanvoss->StopWatch(), 0);
  Advance(3000);
  ForgetOutput();
  Advance(60'000);
  EXPECT_NE(Log(), Lines{}) << "it goes on";
  lanvoss->AbortConnect("");
  lanvoss->StopWatch();
  Advance(3000);
  ForgetOutput();
  Advance(60'000);
  EXPECT_EQ(Log(), Lines{}) << "given up, it ends";
}

TEST_F(Discovery, WithoutAWatcherNothingStarts) {
  air.faults().FailNth(Call::kCreateWatcher, 1, {.kind = Failure::Kind::kNone});
  Open();
  EXPECT_EQ(lanvoss->StartWatch("Cam"), -1);
  EXPECT_EQ(lanvoss->StopWatch(), -1);
  EXPECT_EQ(Log(), (Lines{"(watch) Start Watcher...for Cam", "(watch) Start Watcher done",
                          "(watch) Stop Watcher...", "(watch) Stop Watcher done"}));
  EXPECT_EQ(lanvoss->GetDeviceIp("Cam"), "");
  EXPECT_EQ(SinceTheBeginning(), 100'000);
}

TEST_F(Discovery, ChangesOfADeviceAreLoggedUnderItsStoredName) {
  const PeerHandle cam = air.Add({.name = u"Cam", .id = u"idA"});
  const PeerHandle other = air.Add({.name = u"Küche", .id = u"küche"});
  time->SetAnsiCodePage(simulated::AnsiCodePage::kLatin1);
  Open();
  lanvoss->StartWatch("");
  Advance(500);
  EXPECT_EQ(Notified(), (Lines{"watch Cam",
                               "watch K\xFC"
                               "che"}));
  ForgetOutput();
  cam.Rename(u"Cam2");
  cam.Disappear();
  other.Disappear();
  Advance(100);
  EXPECT_EQ(Log(), (Lines{"(watch) OnDeviceUpdated name=Cam id=idA",
                          "(watch) OnDeviceRemoved name=Cam id=idA",
                          "(watch) OnDeviceRemoved name= id=k\xFC"
                          "che"}))
      << "an id beyond ASCII is stored in UTF-8 and looked up in the code page";
  EXPECT_EQ(Notified(), Lines{});

  cam.Appear();
  Advance(400);
  EXPECT_EQ(Notified(), Lines{"watch Cam2"});
  const std::string cache = ReadFile(CachePath());
  EXPECT_TRUE(cache.starts_with("1|idA||Cam2|2024-03-01 09:05:03.94")) << cache;
}

TEST_F(Discovery, ADeviceSeenAgainIsNotNews) {
  WriteFile(CachePath(), "1|idA||Cam|2020-01-01 00:00:00.000\n");
  air.Add({.name = u"Cam", .id = u"idA"});
  Open();
  EXPECT_EQ(Notified(), Lines{"watch Cam"});
  lanvoss->StartWatch("");
  Advance(500);
  EXPECT_EQ(Notified(), Lines{});
  EXPECT_EQ(ReadFile(CachePath()), "1|idA||Cam|2020-01-01 00:00:00.000\n") << "not rewritten";
  air.Add({.name = u"New", .id = u"idB", .appearMs = 10});
  Advance(100);
  EXPECT_EQ(ReadFile(CachePath()),
            "1|idA||Cam|2024-03-01 09:05:03.340\n2|idB||New|2024-03-01 09:05:03.550\n")
      << "but refreshed in memory";
}

TEST_F(Discovery, AReportThatIsLateOrWithoutANameCostsAPass) {
  air.SetHabits({.findMs = 1000});
  const PeerHandle cam = air.Add({.name = u"Cam", .present = false, .namelessReports = 1});
  air.After(900, [&] { cam.Appear(); });
  Open();
  EXPECT_EQ(Ask("Cam", kAddress), 2 * 2030 + 1500);
  EXPECT_TRUE(Logged("2-1 WatchDeviceAdded: id:" + cam.Id()));
}

TEST_F(Discovery, AnIdInCapitalsIsAnotherDeviceInTheTableAndTheSameInTheAir) {
  air.SetHabits({.idsVary = true});
  air.Add({.name = u"Cam", .id = u"p2p#02:11:22:33:44:aa"});
  Connect("Cam");
  lanvoss->DisConnect("");
  EXPECT_EQ(Ask("Cam", kAddress), 700);
  const std::string cache = ReadFile(CachePath());
  EXPECT_NE(cache.find("1|P2P#02:11:22:33:44:AA|02:11:22:33:44:AA|Cam|"), std::string::npos);
  EXPECT_NE(cache.find("2|p2p#02:11:22:33:44:aa|02:11:22:33:44:aa|Cam|"), std::string::npos);
}

TEST_F(Discovery, APairedDeviceMayBeReportedAlthoughItIsAbsent) {
  air.SetHabits({.absentReported = true});
  const PeerHandle cam = air.Add({.name = u"Cam", .present = false, .paired = true});
  Open();
  EXPECT_EQ(Ask("Cam", ""), 300 + 5 * 600) << "it does not answer";
  lanvoss->StartWatch("\nCam");
  Advance(10'000);
  EXPECT_FALSE(LoggedStart("(watch) DeviceWatcher stopped. no Dev=")) << "it never seems gone";
  cam.Appear();
  lanvoss->DisConnect("");
  EXPECT_NE(lanvoss->GetDeviceIp("Cam"), "");
}

TEST_F(Discovery, AnAbortedWatcherCanBeStartedAgain) {
  Open();
  lanvoss->StartWatch("Nobody");
  Advance(100);
  air.AbortWatchers();
  Advance(100);
  EXPECT_EQ(Log().back(), "(watch) Start Watcher done") << "nothing is heard of it";
  EXPECT_EQ(lanvoss->StartWatch("Nobody"), 0);
  EXPECT_EQ(Log()[1], "watch start...");
  Advance(100);
  air.SetHabits({.abortedReported = true});
  air.AbortWatchers();
  Advance(100);
  EXPECT_EQ(Log()[0], "(watch) DeviceWatcher stopped,re watch");
}

}  // namespace
}  // namespace lanvoss::test
