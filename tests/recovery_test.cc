// PingCheck: the probe of the link, and the recovery of one that is up but silent.
#include "scenario_test.h"

namespace lanvoss::test {
namespace {

const std::string kTimedOut = "\xC7\xEB\xC7\xF3\xB3\xAC\xCA\xB1\xA1\xA3\n";

class Recovery : public ScenarioTest {
 protected:
  // The replies that one check of a link to a device with these echoes counts.
  // A link that is given up is not recovered.
  std::string CheckOf(std::vector<std::vector<simulated::Echo>> echoes, bool givenUp) {
    air.Add({.name = u"Cam", .paired = true, .echoes = std::move(echoes)});
    Connect("Cam");
    if (givenUp) {
      lanvoss->AbortConnect("");
    }
    EXPECT_EQ(lanvoss->PingCheck(), "");
    const Lines log = Log();
    EXPECT_EQ(log.size(), 2U);
    EXPECT_EQ(log.at(0), "(watch) ping ...");
    return log.at(1);
  }

  // A link to Cam, whose name was watched for and which the watcher has not reported.
  PeerHandle ConnectUnreported() {
    WriteFile(CachePath(), "1|idA||Cam|2020-01-01 00:00:00.000\n");
    const PeerHandle cam =
        air.Add({.name = u"Cam", .id = u"idA", .present = false, .paired = true});
    Open();
    lanvoss->StartWatch("Cam");
    lanvoss->AbortConnect("");
    Advance(3000);
    cam.Appear();
    EXPECT_EQ(lanvoss->GetDeviceIp("\nCam"), kAddress);
    return cam;
  }
};

TEST_F(Recovery, OneReplyIsEnough) {
  EXPECT_EQ(CheckOf({{}, {}, {}, {simulated::Echo::kReply}}, false),
            "(watch) ping done ret:1 dt:9008ms DisConnect:0");
}

TEST_F(Recovery, CountsOnlyTheDevicesOwnRepliesToEachTry) {
  using enum simulated::Echo;
  EXPECT_EQ(CheckOf({{kOtherIdentifier, kOtherAddress, kTimeExceeded, kReply},
                     {kLateReply},
                     {kTimeExceededCut, kTruncated, kUnrelated, kTimeExceededSelf},
                     {kOtherSequence}},
                    true),
            // 8 ms, a time-out, 8 ms, and a time-out that the late reply has delayed to 3100 ms.
            "(watch) ping done ret:2 dt:6116ms DisConnect:1");
  const std::string printed = Printed();
  EXPECT_NE(printed.find("ping ...\n" + kTimedOut + kTimedOut + "["), std::string::npos);
}

TEST_F(Recovery, ADatagramThatIsTooLongEndsItsTry) {
  using enum simulated::Echo;
  EXPECT_EQ(CheckOf({{kTooLong, kReply}, {kReply}, {kTooLong}, {kReply}}, true),
            "(watch) ping done ret:2 dt:32ms DisConnect:1")
      << "the reply after it comes too late";
}

TEST_F(Recovery, ASilentDeviceCosts12SecondsAndFourLines) {
  EXPECT_EQ(CheckOf({{}, {}, {}, {}}, true), "(watch) ping done ret:0 dt:12000ms DisConnect:1");
  const std::string printed = Printed();
  EXPECT_NE(
      printed.find("(watch) ping ...\n" + kTimedOut + kTimedOut + kTimedOut + kTimedOut + "["),
      std::string::npos);
  EXPECT_EQ(lanvoss->GetDeviceIp("Cam"), kAddress) << "given up, the link is left as it was";
}

TEST_F(Recovery, ThereIsNothingToCheckWithoutARemoteAddress) {
  Open();
  EXPECT_EQ(lanvoss->PingCheck(), "");
  EXPECT_EQ(Log(), Lines{});
  air.Add({.name = u"NoLocal", .paired = true, .localAddress = std::nullopt});
  lanvoss->GetDeviceIp("NoLocal");
  Advance(100);
  ForgetOutput();
  EXPECT_EQ(lanvoss->PingCheck(), "") << "its text has one field";
  EXPECT_EQ(Log(), Lines{});
  lanvoss->DisConnect("");
  const std::vector<simulated::AddressPair> pairs = {{u"fe80::2", u"fe80::1"},
                                                     {u"192.168.49.1", u"192.168.49.20"}};
  air.Add({.name = u"IPv6", .paired = true, .endpointPairs = pairs});
  EXPECT_EQ(lanvoss->GetDeviceIp("IPv6"), "fe80::2,fe80::1") << "the first pair, whatever it is";
  Advance(100);
  lanvoss->AbortConnect("");
  ForgetOutput();
  lanvoss->PingCheck();
  EXPECT_NE(Printed().find("\xCA\xE4\xC8\xEB\xB5\xC4IP\xB5\xD8\xD6\xB7\xBB\xF2\xD3\xF2\xC3\xFB\xCE"
                           "\xDE\xD0\xA7\n"),
            std::string::npos);
  EXPECT_TRUE(Logged("(watch) ping done ret:0 dt:0ms DisConnect:1"));
}

TEST_F(Recovery, UnpairsPairsAndConnectsOnThisThread) {
  const PeerHandle cam = air.Add({.name = u"Cam", .id = u"idA"});
  Connect("Cam");
  air.SetHabits({.onClose = LinkEnd::kSilent, .onUnpair = LinkEnd::kStaysUpReported});
  cam.GoSilent();
  EXPECT_EQ(lanvoss->PingCheck(), kAddress);
  EXPECT_EQ(
      LogWithout("(watch) Connection status changed: Connected"),
      (Lines{"(watch) ping ...", "(watch) ping done ret:0 dt:12000ms DisConnect:0",
             "(watch) Ping Failed,Unpair,Re Pair... Cam", "(watch) ConnDevice... name=Cam id=idA",
             "(watch) UnpairAsync ...", "(watch) RequestPairDeviceAsync ...",
             "PairAsync... GoIntent:14", "PairAsync done dt:800ms", "PairAsync Status: Paired",
             "(watch) RequestPairDeviceAsync done", "(watch) DoDisConnect ...",
             "(watch) DoDisConnect timer out,try:1", "(watch) DoDisConnect OK, do :1",
             "(watch) DoDisConnect done,do:ok", "(watch) DisConnect, watch FromIdAsync ...",
             "(watch) FromIdAsync done dt:400ms",
             "(watch) Devices connected on L2 layer, connecting to "
             "name(Cam),time:16870ms(16870),watch:300ms(1),fromid:16570ms(2) IPAddress: "
             "loc:192.168.49.1 remote:192.168.49.20"}));
  EXPECT_EQ(Notified(), Lines{"deviceip 192.168.49.20"});

  // Silent still: there is one recovery between two requests.
  EXPECT_EQ(lanvoss->PingCheck(), "");
  EXPECT_EQ(Log().back(), "(watch) Ping Failed,Re Pair Failed!Cam");
  EXPECT_EQ(cam.Pairings(), 2U);
  lanvoss->DisConnect("");
  EXPECT_EQ(lanvoss->GetDeviceIp("Cam"), kAddress);
  EXPECT_EQ(cam.Pairings(), 2U) << "a request does not unpair";
  EXPECT_EQ(lanvoss->PingCheck(), kAddress) << "and allows the next recovery";
}

TEST_F(Recovery, APairingThatIsSaidAsReportedIsMadeByTheNextFind) {
  const PeerHandle cam = air.Add({.name = u"Cam", .paired = true});
  Connect("Cam");
  air.SetHabits({.pairedAsReported = true,
                 .onClose = LinkEnd::kSilent,
                 .onUnpair = LinkEnd::kStaysUpReported});
  cam.GoSilent();
  EXPECT_EQ(lanvoss->PingCheck(), "") << "unpaired, and then taken for paired";
  EXPECT_TRUE(Logged("(watch) wfdDevice is null,Re FromIdAsync:5 Cam"));
  EXPECT_EQ(lanvoss->GetDeviceIp("\nCam"), "") << "nothing has been reported since";
  EXPECT_EQ(cam.Pairings(), 0U);
  EXPECT_EQ(lanvoss->GetDeviceIp("Cam"), kAddress);
  EXPECT_EQ(cam.Pairings(), 1U);
}

// The loop that hosts run, check and then ask, on every kind of platform.
TEST_F(Recovery, CheckAndThenAskEndsWithAWorkingLink) {
  const LinkEnd kinds[] = {LinkEnd::kReported, LinkEnd::kSilent, LinkEnd::kStaysUp,
                           LinkEnd::kStaysUpReported, LinkEnd::kRepeated};
  const PeerHandle cam = air.Add({.name = u"Cam"});
  for (const LinkEnd onUnpair : kinds) {
    for (const LinkEnd onClose : {LinkEnd::kReported, LinkEnd::kSilent}) {
      for (const std::uint32_t ageMs : {0U, 60'000U}) {
        SCOPED_TRACE(testing::Message() << static_cast<int>(onUnpair) << static_cast<int>(onClose)
                                        << " after " << ageMs);
        air.SetHabits({.onClose = onClose, .onUnpair = onUnpair});
        Open();
        ASSERT_EQ(lanvoss->GetDeviceIp("Cam"), kAddress);
        Advance(ageMs);
        cam.GoSilent();
        const std::int32_t begun = time->Clock();
        const std::string recovered = lanvoss->PingCheck();
        EXPECT_LE(time->Clock() - begun, 12'000 + 100'000 + 15'000);
        // It opens the link itself only in time, and when nothing counts as giving up.
        const bool opens =
            ageMs == 0 && onUnpair == LinkEnd::kStaysUpReported && onClose == LinkEnd::kSilent;
        EXPECT_EQ(recovered, opens ? kAddress : "");
        EXPECT_TRUE(cam.IsPaired());
        cam.Answer();
        int requests = 0;
        while (lanvoss->GetDeviceIp("Cam") != kAddress && requests < 3) {
          ++requests;
        }
        EXPECT_LE(requests, 1);
        Advance(100);
        ForgetOutput();
        EXPECT_EQ(lanvoss->PingCheck(), "");
        EXPECT_EQ(Log().back(), "(watch) ping done ret:4 dt:32ms DisConnect:0");
        lanvoss->DisConnect("");
        lanvoss.reset();
        Advance(1000);
      }
    }
  }
}

// The same, and an unpairing after an answer that is empty.
TEST_F(Recovery, TheLoopEndsWithALinkOnAPlatformAsSeenInTheField) {
  air.SetHabits({.enumerationMs = 30'000,
                 .findMs = 5000,
                 .absentReported = true,
                 .idsVary = true,
                 .pairedAsReported = true});
  air.Add({.name = u"Gone", .present = false, .paired = true, .appearMs = 100});
  const std::vector<simulated::AddressPair> pairs = {{u"fe80::2", u"fe80::1"},
                                                     {u"192.168.49.1", u"192.168.49.20"}};
  const PeerHandle cam =
      air.Add({.name = u"Cam", .namelessReports = 1, .endpointPairs = pairs, .linksPerPairing = 1});
  Open();
  for (int links = 0; links < 3; ++links) {
    std::string address;
    for (int requests = 0; address.empty() && requests < 4; ++requests) {
      lanvoss->PingCheck();
      air.AbortWatchersAfter(requests == 0 ? 200 : simulated::kNever);
      address = lanvoss->GetDeviceIp("Cam");
      if (address.empty()) {
        lanvoss->Unpair("Cam");
        Advance(1000);
      }
    }
    EXPECT_EQ(address, "fe80::2,fe80::1");
    EXPECT_EQ(cam.LinksUp(), 1U);
    cam.DropLink();
    Advance(1000);
  }
}

TEST_F(Recovery, AnUnpairingThatNothingReportsIsWaitedFor100Seconds) {
  const PeerHandle cam = air.Add({.name = u"Cam"});
  Connect("Cam");
  air.SetHabits({.onUnpair = LinkEnd::kStaysUp});
  cam.GoSilent();
  EXPECT_EQ(TimeOf([&] { EXPECT_EQ(lanvoss->PingCheck(), ""); }), 12'000 + 100'000 + 800 + 50);
  EXPECT_NE(Printed().find("UnpairAsync ...\nunpair timer out\n["), std::string::npos);
  EXPECT_EQ(Log().back(), "(watch) wfdDevice is null, return");
}

TEST_F(Recovery, OneThatEndsInAPlatformErrorIsWaitedFor100Seconds) {
  const PeerHandle cam = air.Add({.name = u"Cam"});
  Connect("Cam");
  cam.GoSilent();
  air.faults().FailNth(Call::kUnpairAsync);
  EXPECT_EQ(TimeOf([&] { EXPECT_EQ(lanvoss->PingCheck(), ""); }), 12'000 + 100'000);
  EXPECT_EQ(Log().back(), "(watch) Stop Watcher done");
}

TEST_F(Recovery, ADeviceThatWasNotReportedIsLookedFor) {
  const PeerHandle cam = ConnectUnreported();
  cam.GoSilent();
  air.SetHabits({.onClose = LinkEnd::kSilent, .onUnpair = LinkEnd::kStaysUpReported});
  ForgetOutput();
  EXPECT_EQ(lanvoss->PingCheck(), kAddress);
  const Lines log = Log();
  EXPECT_EQ(log.at(2), "(watch) Ping Failed,Watch,Unpair,Re Pair... Cam");
  EXPECT_EQ(log.at(3), "(watch) Start Watcher...for Cam");
  EXPECT_EQ(cam.Pairings(), 1U);
}

TEST_F(Recovery, ARequestForAConnectedDeviceLetsFindsConnect) {
  const PeerHandle cam = air.Add({.name = u"Cam", .paired = true});
  air.SetHabits({.onClose = LinkEnd::kSilent, .onUnpair = LinkEnd::kStaysUpReported});
  Open();
  At("(watch) FromIdAsync done", [&] { lanvoss->StartWatch("\nCam"); });  // whose finds do not
  ASSERT_EQ(lanvoss->GetDeviceIp("Cam"), kAddress);
  ASSERT_EQ(Ask("Cam", kAddress), 0);
  cam.GoSilent();
  EXPECT_EQ(lanvoss->PingCheck(), kAddress);
  EXPECT_TRUE(Logged("(watch) Ping Failed,Watch,Unpair,Re Pair... Cam"));
}

TEST_F(Recovery, ADeviceThatIsForgottenInItsLineIsNotLookedFor) {
  ConnectUnreported().GoSilent();
  At("(watch) Ping Failed,Watch,", [&] { lanvoss->DisConnect(""); });
  EXPECT_EQ(TimeOf([&] { EXPECT_EQ(lanvoss->PingCheck(), ""); }), 12'000 + 50 + 2'030);
  EXPECT_TRUE(Logged("(watch) Start Watcher...for "));
}

TEST_F(Recovery, ADirectRequestLeavesTheNameThatIsRecovered) {
  WriteFile(CachePath(), "1|idA||Cam|2020-01-01 00:00:00.000\n");
  const PeerHandle cam = air.Add({.name = u"Cam", .id = u"idA", .paired = true});
  Open();
  ASSERT_EQ(lanvoss->GetDeviceIp("\nCam"), kAddress);
  cam.GoSilent();
  EXPECT_EQ(lanvoss->PingCheck(), "") << "no name was watched for, so none is recovered";
  EXPECT_EQ(Log().back(), "(watch) ping done ret:0 dt:12000ms DisConnect:0");
  EXPECT_EQ(cam.LinksUp(), 1U);
}

TEST_F(Recovery, OneEndOfAnAttemptReleasesBothWaiters) {
  const PeerHandle cam = air.Add({.name = u"Cam"});
  Connect("Cam");
  cam.GoSilent();
  air.SetHabits({.onClose = LinkEnd::kSilent, .onUnpair = LinkEnd::kStaysUpReported});
  std::int32_t requestEnded = 0;
  {
    const auto request = Host([&] {
      Advance(13'000);  // the recovery is under way
      lanvoss->GetDeviceIp("Nobody");
      requestEnded = time->Clock();
    });
    lanvoss->PingCheck();
  }
  EXPECT_LT(requestEnded, 20'000) << "by the end of the recovery, long before its own";
}

}  // namespace
}  // namespace lanvoss::test
