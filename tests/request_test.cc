// GetDeviceIp: from a name to the addresses of a link, and every way in which it fails.
#include <algorithm>

#include "scenario_test.h"

namespace lanvoss::test {
namespace {

class Request : public ScenarioTest {};

TEST_F(Request, FindsPairsOpensAndReturnsBothAddresses) {
  const PeerHandle cam = air.Add({.name = u"Cam-7F21", .id = u"P2P#02:11:22:33:7f:21"});
  Open();
  EXPECT_EQ(Ask("Cam-7F21", kAddress), 1500);
  Advance(100);
  EXPECT_EQ(
      Printed(),
      "[2024-03-01 09:05:03.040] (watch) Start Watcher...for Cam-7F21\n"
      "[2024-03-01 09:05:03.040] watch start...\n"
      "[2024-03-01 09:05:03.040] watch start ok.do:1 status:Started dt:0\n"
      "[2024-03-01 09:05:03.040] (watch) Start Watcher done\n"
      "[2024-03-01 09:05:03.340] 1-1 WatchDeviceAdded:Cam-7F21 id:P2P#02:11:22:33:7f:21\n"
      "<watch Cam-7F21>\n"
      "[2024-03-01 09:05:03.340] (watch) DeviceWatcher ok Dev=Cam-7F21 watch:300ms(1) bConnectting "
      "= 0 bDisConnect = 0\n"
      "[2024-03-01 09:05:03.340] (watch) ConnDevice... name=Cam-7F21 id=P2P#02:11:22:33:7f:21\n"
      "[2024-03-01 09:05:03.340] (watch) RequestPairDeviceAsync ...\n"
      "[2024-03-01 09:05:03.340] PairAsync... GoIntent:14\n"
      "OnPairingRequested:1\n "
      "[2024-03-01 09:05:04.140] PairAsync done dt:800ms\n"
      "[2024-03-01 09:05:04.140] PairAsync Status: Paired\n"
      "[2024-03-01 09:05:04.140] (watch) RequestPairDeviceAsync done\n"
      "[2024-03-01 09:05:04.140] (watch) FromIdAsync ...\n"
      "[2024-03-01 09:05:04.540] (watch) FromIdAsync done dt:400ms\n"
      "[2024-03-01 09:05:04.540] (watch) Devices connected on L2 layer, connecting to "
      "name(Cam-7F21),time:1500ms(1500),watch:300ms(1),fromid:1200ms(1) IPAddress: "
      "loc:192.168.49.1 remote:192.168.49.20\n"
      "<deviceip 192.168.49.20>\n"
      "<stopdone DeviceWatcher stopped>\n"
      "[2024-03-01 09:05:04.540] (watch) DeviceWatcher stopped.\n");

  const simulated::PairingRequest pairing = cam.LatestPairing();
  EXPECT_EQ(pairing.kinds, platform::DevicePairingKinds::ConfirmOnly);
  EXPECT_EQ(pairing.protection, platform::DevicePairingProtectionLevel::Default);
  EXPECT_EQ(pairing.groupOwnerIntent, 14);
  EXPECT_EQ(pairing.procedure, platform::WiFiDirectPairingProcedure::GroupOwnerNegotiation);
  EXPECT_EQ(cam.LinksUp(), 1U);

  for (const char* again : {"Cam-7F21", "\nCam-7F21", "500\nCam-7F21"}) {
    ForgetOutput();
    EXPECT_EQ(Ask(again, kAddress), 0);
    EXPECT_EQ(Log(), Lines{"(watch) Dev Cam-7F21 is Connected,return ip=" + kAddress});
  }
}

TEST_F(Request, ThePassGoesOnUntilTheDeviceShowsUp) {
  const PeerHandle cam = air.Add({.name = u"Cam", .present = false, .paired = true});
  air.After(5000, [&] { cam.Appear(); });
  Open();
  EXPECT_EQ(Ask("Cam", kAddress), 5700);
  EXPECT_TRUE(Logged("(watch) DeviceWatcher stopped,re watch"));
  EXPECT_TRUE(LoggedLink("Cam", "5700ms(5700),watch:5300ms(3),fromid:400ms(1)"));
  EXPECT_EQ(cam.Pairings(), 0U) << "paired before";
}

TEST_F(Request, GivesUpWhenTheDeviceNeverShowsUp) {
  Open();
  // The pass that ends beyond 60 s, 30 passes of 2030 ms each, is the last.
  EXPECT_EQ(Ask("Nobody", ""), 60'900);
  EXPECT_EQ(Log().back(),
            "(watch) Devices connected failed, connecting to "
            "name(Nobody),time:60900ms,watch:0ms(30),fromid:0ms(0)");
}

TEST_F(Request, WaitsFor100SecondsAtMost) {
  air.Add({.name = u"Cam", .pairings = {Outcome::kHangs}});
  Open();
  EXPECT_EQ(Ask("Cam", ""), 100'000);
  EXPECT_EQ(Log().back(),
            "(watch) Devices connected failed, connecting to "
            "name(Cam),time:100000ms,watch:300ms(1),fromid:-300ms(0)");
  EXPECT_NE(Printed().find("Stop Watcher done\nwatch timer out\n"), std::string::npos);
  air.ReleaseHangs();
  Advance(100);
  const Lines log = Log();
  EXPECT_EQ(log[0], "(watch) ConnDevice Err:The operation was canceled by the user.")
      << "neither of the pairing's own last lines";
}

TEST_F(Request, TheNextOneContinuesWhenTheHandlerReturns) {
  const PeerHandle cam = air.Add({.name = u"Cam", .pairings = {Outcome::kHangs}});
  Open();
  EXPECT_EQ(Ask("Cam", ""), 100'000);
  air.After(5000, [&] { air.ReleaseHangs(); });
  EXPECT_EQ(Ask("Cam", kAddress), 5000 + 1500) << "the watcher stops only then";
  EXPECT_TRUE(Logged("(watch) Start Watcher Err:A method was called at an unexpected time."));
  EXPECT_EQ(cam.OpenRequests(), 1U);
}

TEST_F(Request, AWatcherThatIsAbortedIsStartedByTheNextOne) {
  air.Add({.name = u"Cam"});
  Open();
  air.AbortWatchersAfter(100);
  EXPECT_EQ(Ask("Cam", ""), 100'000) << "nothing is heard of it";
  EXPECT_EQ(air.faults().Count(Call::kWatcherStop), 0U) << "it is at rest";
  EXPECT_EQ(Ask("Cam", kAddress), 1500);
}

TEST_F(Request, AnOpenThatHangsIsCounted) {
  air.Add({.name = u"Cam", .paired = true, .openings = {Outcome::kHangs}});
  Open();
  EXPECT_EQ(Ask("Cam", ""), 100'000);
  EXPECT_EQ(Log().back(),
            "(watch) Devices connected failed, connecting to "
            "name(Cam),time:100000ms,watch:300ms(1),fromid:-300ms(1)");
  air.ReleaseHangs();
}

TEST_F(Request, ConnectsDirectlyToARememberedId) {
  WriteFile(CachePath(), "1|P2P#02:11:22:33:7f:21|x|Cam|2020-01-01 00:00:00.000\n");
  air.Add({.name = u"Cam", .id = u"P2P#02:11:22:33:7f:21", .paired = true});
  Open();
  ForgetOutput();
  EXPECT_EQ(Ask("\nCam", kAddress), 400);
  EXPECT_EQ(Log(), (Lines{"(watch) Connect Dev for id,name=Cam id=P2P#02:11:22:33:7f:21",
                          "(watch) ConnDevice... name=Cam id=P2P#02:11:22:33:7f:21",
                          "(watch) FromIdAsync ...", "(watch) FromIdAsync done dt:400ms",
                          "(watch) Devices connected on L2 layer, connecting to "
                          "name(Cam),time:400ms(400),watch:0ms(0),fromid:400ms(1) IPAddress: "
                          "loc:192.168.49.1 remote:192.168.49.20"}));
  // It does not change the watched name, so a request by name finds no link.
  air.SetHabits({.onClose = LinkEnd::kSilent});
  EXPECT_EQ(Ask("Cam", kAddress), 300 + 2000 + 400);
}

TEST_F(Request, LooksForTheDeviceWhenNoIdIsRemembered) {
  air.Add({.name = u"Cam", .paired = true});
  Open();
  EXPECT_EQ(Ask("\nCam", kAddress), 700);
  const Lines log = Log();
  EXPECT_EQ(log[0], "(watch) Connect Dev for watch ... Cam");
  EXPECT_EQ(log[1], "(watch) Start Watcher...for Cam");
}

TEST_F(Request, ADirectRequestKeepsTheWatcherFromConnecting) {
  const PeerHandle cam = air.Add({.name = u"Cam", .paired = true, .openMs = 3000});
  Open();
  lanvoss->StartWatch("Cam");
  Advance(2000);  // found once: the id is known, the watch has ended
  const auto other = Host([&] { lanvoss->StartWatch("Cam"); });
  Advance(100);
  EXPECT_EQ(Ask("\nCam", kAddress), 3000);
  EXPECT_TRUE(
      Logged("(watch) DeviceWatcher ok Dev=Cam watch:200ms(0) bConnectting = 1 "
             "bDisConnect = 0"));
  EXPECT_EQ(cam.OpenRequests(), 1U);
}

TEST_F(Request, TriesToOpenFiveTimes) {
  using enum Outcome;
  const PeerHandle cam = air.Add({.name = u"Cam",
                                  .paired = true,
                                  .openings = {kNone, kNone, kNone, kNone, kNone, kNone, kNone}});
  Open();
  air.SetHabits({.enumerationMs = 100'000});
  EXPECT_EQ(Ask("Cam", ""), 300 + 5 * 600);
  const Lines log = Log();
  Lines expected{"(watch) ConnDevice... name=Cam id=" + cam.Id(),
                 "(watch) RequestPairDeviceAsync ...", "(watch) RequestPairDeviceAsync done",
                 "(watch) FromIdAsync ..."};
  for (int i = 1; i <= 5; ++i) {
    expected.push_back("(watch) FromIdAsync done dt:400ms");
    expected.push_back("(watch) wfdDevice is null,Re FromIdAsync:" + std::to_string(i) + " Cam");
  }
  expected.push_back("(watch) wfdDevice is null, return");
  EXPECT_EQ(Lines(log.begin() + 6, log.begin() + 6 + 15), expected);
  EXPECT_TRUE(std::ranges::any_of(log, [](const std::string& line) {
    return line.starts_with(
        "(watch) Devices connected failed, connecting to "
        "name(Cam),time:3300ms,watch:300ms(");
  }));
  EXPECT_NE(Printed().find(":03.940] (watch) wfdDevice is null,Re FromIdAsync:1 Cam"),
            std::string::npos)
      << "after its pause";
  // Nobody has given up, so the next pass finds it again, and its third open request succeeds.
  Advance(20'000);
  EXPECT_TRUE(LoggedLink("Cam", "5200ms(5200),watch:3600ms(2),fromid:1600ms(8)"));
}

TEST_F(Request, NoOpenRequestBeginsAfter60Seconds) {
  using enum Outcome;
  air.Add({.name = u"Exact", .pairMs = 59'700, .openings = {kNone}});
  air.Add({.name = u"Late", .pairMs = 59'701});
  Open();
  EXPECT_EQ(Ask("Exact", ""), 60'600) << "one try begins at 60000 ms";
  EXPECT_TRUE(
      Logged("(watch) wfdDevice is null,Re FromIdAsync outtime abort DisConnect:0 "
             "dt:60600ms"));
  lanvoss->AbortConnect("");
  Advance(5000);
  EXPECT_EQ(Ask("Late", ""), 60'001);
  Advance(10);
  EXPECT_TRUE(
      Logged("(watch) wfdDevice is null,Re FromIdAsync outtime abort DisConnect:0 "
             "dt:60001ms"));
  EXPECT_TRUE(Logged("(watch) wfdDevice is null, return"));
}

TEST_F(Request, AbortConnectEndsTheTries) {
  const PeerHandle cam = air.Add({.name = u"Cam", .paired = true, .openings = {Outcome::kNone}});
  Open();
  air.After(500, [&] { EXPECT_EQ(lanvoss->AbortConnect("anything"), 0); });
  EXPECT_EQ(Ask("Cam", ""), 900);
  EXPECT_TRUE(
      Logged("(watch) wfdDevice is null,Re FromIdAsync outtime abort DisConnect:1 "
             "dt:900ms"));
  EXPECT_EQ(cam.OpenRequests(), 1U);
  EXPECT_TRUE(
      Logged("(watch) Devices connected failed, connecting to "
             "name(Cam),time:900ms,watch:300ms(1),fromid:-300ms(1)"))
      << "the try that was given up is not counted";
  Advance(100);
  EXPECT_EQ(Ask("Cam", kAddress), 700) << "a new request forgets it";
}

TEST_F(Request, ACancelledOpenFinishesTheAttempt) {
  air.Add({.name = u"Cam", .paired = true, .openings = {Outcome::kCancelled}});
  Open();
  EXPECT_EQ(Ask("Cam", ""), 700);
  EXPECT_TRUE(Logged("(watch) FromIdAsync was canceled by user"));
  EXPECT_TRUE(Logged("(watch) wfdDevice is null, return"));
}

TEST_F(Request, APlatformErrorLeavesTheRequestWaiting) {
  WriteFile(CachePath(), "1|idA||Cam|2020-01-01 00:00:00.000\n");
  air.Add({.name = u"Cam", .id = u"idA", .paired = true});
  Open();
  air.faults().FailFrom(Call::kFromIdAsync, 1, {.message = u"Kein Zugriff"});
  EXPECT_EQ(Ask("\nCam", ""), 100'000) << "nothing is signalled";
  EXPECT_TRUE(Logged("(watch) ConnDevice Err:Kein Zugriff"));
  EXPECT_GE(Ask("Cam", ""), 60'000) << "every pass finds it and fails again, until none may begin";

  air.faults().Clear();
  air.faults().FailNth(Call::kFromIdAsync);
  EXPECT_LE(Ask("Cam", kAddress), 1100) << "an error that passes costs one pass";
}

TEST_F(Request, WithoutEndpointPairsThereIsNoAddress) {
  const PeerHandle never = air.Add(
      {.name = u"Never", .paired = true, .endpointPairs = std::vector<simulated::AddressPair>()});
  const PeerHandle late = air.Add({.name = u"Late", .paired = true, .endpointPairsMs = 300});
  Open();
  for (const char* const name : {"Never", "Late"}) {
    EXPECT_EQ(Ask(name, ""), 1050) << "the next find drops what this one opened";
    Advance(100);
  }
  EXPECT_TRUE(
      Logged("(watch) ConnDevice Err:The operation attempted to access data outside the "
             "valid range"));
  EXPECT_EQ(never.LinksUp() + late.LinksUp(), 0U);
}

TEST_F(Request, AnEndpointWithoutAHostNameIsAnEmptySide) {
  air.Add({.name = u"NoLocal", .paired = true, .localAddress = std::nullopt});
  // Seen before the other, and so in the first pass too.
  air.Add({.name = u"NoRemote", .paired = true, .remoteAddress = std::nullopt, .appearMs = 100});
  Open();
  EXPECT_EQ(Ask("NoLocal", ",192.168.49.20"), 700);
  Advance(100);
  EXPECT_TRUE(
      Logged("(watch) Devices connected on L2 layer, connecting to "
             "name(NoLocal),time:700ms(700),watch:300ms(1),fromid:400ms(1) IPAddress: loc: "
             "remote:192.168.49.20"));
  lanvoss->DisConnect("");
  ForgetOutput();
  EXPECT_EQ(Ask("NoRemote", ""), 500) << "nobody could be reached";
  EXPECT_TRUE(
      Logged("(watch) Devices connected on L2 layer, connecting to "
             "name(NoRemote),time:500ms(700),watch:100ms(1),fromid:400ms(1) IPAddress: "
             "loc:192.168.49.1 remote:"));
  Advance(100);
  EXPECT_EQ(Notified(), (Lines{"stopdone DeviceWatcher stopped"})) << "no empty deviceip";
  lanvoss->AbortConnect("");
}

TEST_F(Request, TheGapIsKeptFromTheLastDisconnect) {
  const PeerHandle cam = air.Add({.name = u"Cam", .paired = true});
  Open();
  EXPECT_EQ(Ask("5000\nCam", kAddress), 700) << "no disconnect yet";
  lanvoss->DisConnect("");
  Advance(500);
  ForgetOutput();
  EXPECT_EQ(Ask("1500\nCam", kAddress), 1000 + 700);
  EXPECT_EQ(Log()[0], "(watch) Con Dev name=Cam,Sleep=1000ms");
  lanvoss->DisConnect("");
  {
    lanvoss->StartWatch("Cam");
    const auto host = Host([&] { lanvoss->GetDeviceIp("2000\nCam"); });
    Advance(1900);
    EXPECT_EQ(cam.OpenRequests(), 2U) << "finds connect after the gap alone";
  }
  for (const char* none : {"400\nCam", "0\nCam", "-5\nCam", "soon\nCam", "\nCam", "Cam",
                           "-99999999999999999999\nCam"}) {
    lanvoss->DisConnect("");
    Advance(500);
    EXPECT_LE(Ask(none, kAddress), 700) << none;
  }
  lanvoss->DisConnect("");
  ForgetOutput();
  EXPECT_EQ(Ask(" +120s\nCam", kAddress), 120 + 700) << "what begins like a number is one";
  lanvoss->DisConnect("");
  lanvoss->AbortConnect("");
  EXPECT_EQ(Ask("5000\nCam", kAddress), 700) << "given up, no gap is kept";
  lanvoss->DisConnect("");
  Advance(500);
  EXPECT_EQ(Ask("500\nCam", kAddress), 700);
  EXPECT_FALSE(Logged("(watch) Con Dev name=Cam,Sleep=0ms"));
}

TEST_F(Request, AClockThatHasWrappedKeepsTheGapOnceMore) {
  air.Add({.name = u"Cam"});
  Connect("Cam");
  lanvoss->DisConnect("");
  Advance(0x80000000U);  // 24.9 days
  EXPECT_EQ(Ask("1500\nCam", kAddress), 1500 + 700);
}

TEST_F(Request, AGapBeyond32BitsIsTheLongestOne) {
  Open();
  Advance(1);
  lanvoss->DisConnect("");
  ForgetOutput();
  const auto host = Host([&] { lanvoss->GetDeviceIp("99999999999999999999\nCam"); });
  Advance(10);
  EXPECT_EQ(Log(), Lines{"(watch) Con Dev name=Cam,Sleep=2147483647ms"});
}

TEST_F(Request, AnEmptyRequestTouchesNothing) {
  air.Add({.name = u"", .paired = true});
  Open();
  EXPECT_EQ(Ask("", ""), 0);
  EXPECT_EQ(Log(), Lines{"(watch) Dev name is null,return ip=''"});
  // A line feed alone asks for a device without a name, which no watch can match.
  EXPECT_EQ(Ask("\n", ""), 2030);
  const Lines log = Log();
  EXPECT_EQ(log[0], "(watch) Connect Dev for watch ... ");
  EXPECT_EQ(Ask("\n", kAddress), 400) << "it has been reported meanwhile";
}

TEST_F(Request, TheCancellationOfACleanUpIsCaught) {
  Open();
  air.faults().FailNth(Call::kWatcherStart);
  air.faults().FailNth(Call::kWatcherStop, 1, {.kind = Failure::Kind::kCancelled});
  EXPECT_EQ(Ask("Cam", ""), 0);
  EXPECT_EQ(Log().back(), "(watch) Connect Err");
  air.faults().FailNth(Call::kWatcherStart);
  air.faults().FailNth(Call::kWatcherStop);
  EXPECT_THROW(lanvoss->GetDeviceIp("Cam"), std::exception);

  WriteFile(CachePath(), "1|idA||Cam|2020-01-01 00:00:00.000\n");
  air.Add({.name = u"Cam", .id = u"idA", .paired = true});
  Open();
  air.faults().FailNth(Call::kWatcherStart);
  At("(watch) Start Watcher Err:", [&] {
    EXPECT_EQ(lanvoss->GetDeviceIp("\nCam"), kAddress);
    air.faults().FailNth(Call::kWatcherStop, 1, {.kind = Failure::Kind::kCancelled});
  });
  EXPECT_EQ(Ask("Cam", kAddress), 400) << "the address that is there by then";
}

TEST_F(Request, TheLongestAttemptIsRememberedUntilAReset) {
  const PeerHandle cam = air.Add({.name = u"Cam"});
  Open();
  const auto connect = [&](const std::string& times) {
    lanvoss->DisConnect("");
    EXPECT_EQ(lanvoss->GetDeviceIp("Cam"), kAddress);
    Advance(100);
    EXPECT_TRUE(LoggedLink("Cam", times)) << times;
  };
  connect("1500ms(1500),watch:300ms(1),fromid:1200ms(1)");
  connect("700ms(1500),watch:300ms(1),fromid:400ms(1)");
  lanvoss->AbortConnect("");
  connect("700ms(700),watch:300ms(1),fromid:400ms(1)");
  EXPECT_EQ(cam.Pairings(), 1U);
}

}  // namespace
}  // namespace lanvoss::test
