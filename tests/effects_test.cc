// The order in which effects become visible, what each operation resets, and what leaves it.
#include <algorithm>
#include <stdexcept>

#include "scenario_test.h"

namespace lanvoss::test {
namespace {

class Effects : public ScenarioTest {};

TEST_F(Effects, TheHostHearsBeforeTheFileIsWrittenAndTheWatcherStopped) {
  air.Add({.name = u"Cam"});
  Open();
  const auto stops = [&] { return air.faults().Count(Call::kWatcherStop); };
  At("Cam", [&] { EXPECT_FALSE(std::filesystem::exists(CachePath())); });
  lanvoss->StartWatch("");
  Advance(1900);
  At("watchdone", [&] { EXPECT_EQ(stops(), 0U); });
  Advance(1000);
  EXPECT_EQ(stops(), 1U);
  At("(watch) DeviceWatcher ok Dev=", [&] { EXPECT_EQ(stops(), 2U) << "stopped, then logged"; });
  lanvoss->StartWatch("Cam");
  Advance(1000);
  EXPECT_EQ(stops(), 2U);
}

TEST_F(Effects, ALineIsPrintedBeforeTheHostHearsIt) {
  Open();
  At("(watch) Stop Watcher...",
     [&] { EXPECT_NE(Printed().find("(watch) Stop Watcher...\n"), std::string::npos); });
  lanvoss->StopWatch();
}

TEST_F(Effects, TheHostHearsOfANewNameBeforeTheTableTakesIt) {
  air.SetHabits({.handlersOverlap = true});
  const PeerHandle cam = air.Add({.name = u"Cam", .id = u"idA"});
  Open();
  lanvoss->StartWatch("");
  Advance(3000);
  cam.Rename(u"New");
  At("New", [&] {
    cam.Disappear();
    Advance(10);
  });
  lanvoss->StartWatch("");
  Advance(1000);
  EXPECT_TRUE(Logged("(watch) OnDeviceRemoved name=Cam id=idA"));
}

TEST_F(Effects, TimesAreTakenAfterTheLinesBeforeThem) {
  air.Add({.name = u"Cam"});
  Open();
  PauseAt("watch start...");
  lanvoss->StartWatch("Nobody");
  EXPECT_TRUE(Logged("watch start ok.do:1 status:Started dt:0"));
  lanvoss->AbortConnect("");
  PauseAt("(watch) stop watch ...");
  lanvoss->StopWatch();
  EXPECT_TRUE(Logged("(watch) stop watch ok.do:1 status:Stopped dt:30"));
  PauseAt("PairAsync... GoIntent:");
  lanvoss->GetDeviceIp("Cam");
  EXPECT_TRUE(Logged("PairAsync done dt:800ms"));
}

TEST_F(Effects, AStopThatIsReportedWhileItIsAskedForIsNotMissed) {
  air.SetHabits({.abortedReported = true});
  Open();
  lanvoss->StartWatch("");
  Advance(100);
  air.faults().OnCall(Call::kWatcherStop, [&] {
    air.faults().Clear();
    air.AbortWatchers();
    Advance(10);
  });
  lanvoss->StopWatch();
  EXPECT_TRUE(Logged("(watch) stop watch no.try:1 status:Aborted dt:10"));
}

TEST_F(Effects, WaitersAreReleasedBeforeAHandlerNotifiesTheHost) {
  air.Add({.name = u"Cam"});
  Connect("Cam");
  PauseAt("(watch) Connection status changed");
  EXPECT_EQ(TimeOf([&] { lanvoss->DisConnect(""); }), 50);
  Advance(1000);
  lanvoss->StartWatch("");
  Advance(100);
  PauseAt("stopdone");
  EXPECT_EQ(TimeOf([&] { lanvoss->StopWatch(); }), 30);
  Advance(1000);
  PauseAt("(watch) DeviceWatcher stopped.");
  EXPECT_EQ(Ask("Nobody", ""), 61'400) << "the last line of a watch comes first, though";
}

TEST_F(Effects, AStopReleasesARequestBeforeItsLastLine) {
  air.faults().FailNth(Call::kCreateWatcher, 1, {.kind = Failure::Kind::kNone});
  Open();
  PauseAt("(watch) Stop Watcher done");
  const auto stop = Host([&] {
    Advance(100);
    lanvoss->StopWatch();
  });
  EXPECT_EQ(Ask("Nobody", ""), 100);
}

TEST_F(Effects, TheAddressIsThereWhenTheHostHearsOfIt) {
  air.Add({.name = u"Cam"});
  Open();
  std::string address;
  At("(watch) Devices connected on L2", [&] { address = lanvoss->GetDeviceIp("Cam"); });
  EXPECT_EQ(Ask("Cam", kAddress), 1500);
  Advance(100);
  EXPECT_EQ(address, kAddress);
}

TEST_F(Effects, AWatchReleasesARequestThatWaits) {
  const PeerHandle cam = air.Add({.name = u"Cam"});
  Open();
  const auto wokenBy = [&](const std::function<void()>& watch) {
    Duration took;
    {
      const auto host = Host([&] { took = TimeOf([&] { lanvoss->GetDeviceIp("Nobody"); }); });
      Advance(100);
      watch();
    }
    Advance(5000);
    return took;
  };
  EXPECT_EQ(wokenBy([&] { lanvoss->StartWatch("Cam"); }), 300) << "by the find";
  EXPECT_EQ(wokenBy([&] {
              PauseAt("(watch) DeviceWatcher stopped. no Dev=");
              lanvoss->StartWatch("\nCam");
              Advance(400);
              cam.Disappear();
            }),
            330 + 2030 + 500)
      << "by the first pass without it, after its line";
}

TEST_F(Effects, ANewWatchForgetsTheLastAttempt) {
  const PeerHandle cam = air.Add({.name = u"Cam"});
  Connect("Cam");
  lanvoss->AbortConnect("");
  lanvoss->StartWatch("Nobody");
  Advance(70'000);
  ForgetOutput();
  Advance(5000);
  EXPECT_NE(Log(), Lines{}) << "neither given up nor connected, and without a time limit";
  lanvoss->DisConnect("");
  Advance(3000);
  lanvoss->StartWatch("");
  Advance(3000);
  cam.Disappear();
  lanvoss->StartWatch("");
  Advance(3000);
  lanvoss->Unpair("Cam");
  EXPECT_EQ(Log().back(), "(watch) UnpairAsync OK") << "an unnamed watch keeps what was reported";
}

TEST_F(Effects, StartWatchForgetsTheLongestAttempt) {
  air.Add({.name = u"Cam"});
  Connect("Cam");
  lanvoss->DisConnect("");
  lanvoss->StartWatch("");
  Advance(3000);
  EXPECT_EQ(Ask("Cam", kAddress), 700);
  Advance(100);
  EXPECT_TRUE(LoggedLink("Cam", "700ms(700),watch:300ms(1),fromid:400ms(1)"));
}

TEST_F(Effects, ANewRequestForgetsTheLastOne) {
  WriteFile(CachePath(), "1|old||Cam|2020-01-01 00:00:00.000\n");
  air.Add({.name = u"Cam", .id = u"idA"});
  air.SetHabits({.enumerationMs = 1970, .onClose = LinkEnd::kSilent});
  Connect("Cam");
  EXPECT_EQ(Ask("Nobody", ""), 60'000) << "and not the address of Cam";
  EXPECT_EQ(Log().back(),
            "(watch) Devices connected failed, connecting to "
            "name(Nobody),time:60000ms,watch:0ms(30),fromid:0ms(0)");
  EXPECT_EQ(Ask("\nCam", kAddress), 2000 + 400) << "by the id last reported, not the cached one";
  EXPECT_TRUE(LoggedLink("Cam", "2400ms(2400),watch:0ms(0),fromid:2400ms(1)"));
}

TEST_F(Effects, NameAndAddressAreForgottenBeforeTheLinkIsClosed) {
  air.Add({.name = u"Cam"});
  air.Add({.name = u"Other"});
  Connect("Cam");
  At("(watch) DoDisConnect ...", [&] {
    EXPECT_EQ(lanvoss->PingCheck(), "");
    lanvoss->StartWatch("Other");
  });
  lanvoss->DisConnect("");
  Advance(1000);
  EXPECT_FALSE(Logged("(watch) ping ..."));
  EXPECT_TRUE(LoggedStart("(watch) DeviceWatcher ok Dev=Other ")) << "the new name stays";
}

TEST_F(Effects, ADeviceIsHeldUntilTheLineOfItsEnd) {
  air.Add({.name = u"Cam"});
  Connect("Cam");
  At("(watch) DoDisConnect OK, do :1", [&] { lanvoss->DisConnect(""); });
  EXPECT_EQ(lanvoss->DisConnect(""), 1);
  const Lines log = Log();
  EXPECT_EQ(std::count(log.begin(), log.end(), "(watch) DoDisConnect OK, do :1"), 2);
}

TEST_F(Effects, DisConnectForgetsNameAndAddressAndGivesUp) {
  WriteFile(CachePath(), "1|idA||Cam|2020-01-01 00:00:00.000\n");
  air.Add({.name = u"Cam", .id = u"idA"});
  const PeerHandle slow = air.Add({.name = u"Slow", .paired = true, .openings = {Outcome::kNone}});
  Connect("Cam");
  air.SetHabits({.onClose = LinkEnd::kSilent});
  lanvoss->DisConnect("");
  EXPECT_EQ(Ask("\nCam", kAddress), 400);
  EXPECT_EQ(Ask("Cam", kAddress), 300 + 2000 + 400) << "not taken for connected";
  lanvoss->DisConnect("");
  EXPECT_EQ(Ask("\n", ""), 2030) << "nor is no name";
  air.After(500, [&] { EXPECT_EQ(lanvoss->DisConnect(""), 1); });
  EXPECT_EQ(Ask("Slow", ""), 900);
  EXPECT_EQ(slow.OpenRequests(), 1U);
}

TEST_F(Effects, AnOpenThatGivesNoneLetsTheHeldDeviceGo) {
  using enum Outcome;
  const PeerHandle cam = air.Add({.name = u"Cam"});
  air.Add({.name = u"Other", .paired = true, .openings = {kNone, kNone, kNone, kNone, kNone}});
  Connect("Cam");
  air.SetHabits({.enumerationMs = 100'000, .onClose = LinkEnd::kStaysUp});
  lanvoss->GetDeviceIp("Other");
  EXPECT_EQ(cam.LinksUp(), 0U);
}

TEST_F(Effects, ANewerDeviceSurvivesTheEndOfAnOlderOne) {
  air.Add({.name = u"Cam"});
  const PeerHandle other = air.Add({.name = u"Other", .paired = true});
  Connect("Cam");
  air.SetHabits({.onClose = LinkEnd::kSilent});
  At("(watch) DoDisConnect OK", [&] { EXPECT_EQ(lanvoss->GetDeviceIp("Other"), kAddress); });
  EXPECT_EQ(lanvoss->DisConnect(""), 0) << "one is held";
  EXPECT_EQ(other.LinksUp(), 1U);
}

TEST_F(Effects, WhatIsNotThePlatformsErrorReachesTheHost) {
  WriteFile(CachePath(), "1|idA||Cam|2020-01-01 00:00:00.000\n");
  air.Add({.name = u"Cam", .id = u"idA", .paired = true});
  Open();
  const auto fail = [] { throw std::runtime_error("host"); };
  At("watch start...", fail);
  EXPECT_THROW(lanvoss->StartWatch(""), std::runtime_error);
  At("(watch) FromIdAsync ...", fail);
  EXPECT_THROW(lanvoss->GetDeviceIp("\nCam"), std::runtime_error);
  EXPECT_EQ(Ask("Cam", kAddress), 700) << "finds connect again";
  Advance(100);
  // A destructor cannot pass on an exception or a refusal.
  Listen([](const std::string&, const std::string& message) {
    if (message.starts_with("(watch) Stop Watcher")) {
      throw std::runtime_error("host");
    }
  });
  air.faults().FailNth(Call::kWatcherRevoke);
  lanvoss.reset();
}

}  // namespace
}  // namespace lanvoss::test
