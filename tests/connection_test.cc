// Pairing ceremonies, the link's status, old device objects and two connections at once.
#include "scenario_test.h"

namespace lanvoss::test {
namespace {

class Connection : public ScenarioTest {};

TEST_F(Connection, OnlyTheStatusFailedPausesAndNothingStopsTheOpening) {
  using platform::DevicePairingResultStatus;
  const auto logOf = [&](const char16_t* name, DevicePairingResultStatus status) {
    air.Add({.name = name, .openMs = 10, .pairingStatus = status});
    lanvoss->GetDeviceIp(platform::Utf16ToUtf8(name));
    lanvoss->AbortConnect("");
    Advance(5000);
    return Printed();
  };
  Open();
  const std::string rejected = logOf(u"Rejects", DevicePairingResultStatus::RejectedByHandler);
  EXPECT_NE(rejected.find(":04.140] PairAsync Status: RejectedByHandler\n"
                          "[2024-03-01 09:05:04.140] (watch) RequestPairDeviceAsync done\n"),
            std::string::npos)
      << rejected;
  const std::string failed = logOf(u"Fails", DevicePairingResultStatus::Failed);
  EXPECT_NE(failed.find(":11.290] PairAsync Status: Failed\n"
                        "(watch) RequestPairDeviceAsync ret\n "
                        "[2024-03-01 09:05:11.790] (watch) RequestPairDeviceAsync done\n"),
            std::string::npos)
      << failed;
  EXPECT_TRUE(Logged("(watch) wfdDevice is null,Re FromIdAsync:5 Fails"));
  EXPECT_NE(logOf(u"Odd", static_cast<DevicePairingResultStatus>(77)).find("PairAsync Status: 77"),
            std::string::npos);
}

TEST_F(Connection, OnlyCeremoniesWithoutInputAreAccepted) {
  using platform::DevicePairingKinds;
  air.Add({.name = u"ShowsPin", .ceremony = DevicePairingKinds::DisplayPin});
  Open();
  EXPECT_EQ(lanvoss->GetDeviceIp("ShowsPin"), kAddress);
  EXPECT_NE(Printed().find("OnPairingRequested:2\n "), std::string::npos);
  EXPECT_EQ(air.faults().Count(Call::kGetDeferral), 1U);
  EXPECT_FALSE(Logged("PairAsync Status: RejectedByHandler"));
  lanvoss->DisConnect("");
  for (const auto kind : {DevicePairingKinds::ProvidePin, DevicePairingKinds::ConfirmPinMatch,
                          DevicePairingKinds::ProvidePasswordCredential}) {
    const std::string number = std::to_string(static_cast<int>(kind));
    const std::string name = "Wants" + number;
    air.Add({.name = platform::Utf8ToUtf16(name), .openMs = 10, .ceremony = kind});
    EXPECT_EQ(lanvoss->GetDeviceIp(name), "");
    EXPECT_NE(Printed().find("OnPairingRequested:" + number + "\n "), std::string::npos);
    ForgetOutput();
    lanvoss->AbortConnect("");
    Advance(5000);
  }
  EXPECT_EQ(air.faults().Count(Call::kAccept), 1U);
  EXPECT_TRUE(Logged("PairAsync Status: RejectedByHandler"));
}

TEST_F(Connection, ADeviceWithoutAPairingObjectIsOpenedAsItIs) {
  air.Add({.name = u"Cam", .paired = true, .hasPairingObject = false});
  Open();
  EXPECT_EQ(lanvoss->GetDeviceIp("Cam"), kAddress);
  EXPECT_TRUE(Logged("(watch) RequestPairDeviceAsync done"));
  EXPECT_FALSE(LoggedStart("PairAsync"));
  lanvoss->Unpair("Cam");
  EXPECT_TRUE(Logged("(watch) Watch again,try..."));
}

TEST_F(Connection, APairingThatTheDeviceHasForgottenIsMadeAgainAfterAnUnpairing) {
  const PeerHandle cam = air.Add({.name = u"Cam", .linksPerPairing = 1});
  air.SetHabits({.pairedAsReported = true});
  Connect("Cam");
  lanvoss->DisConnect("");
  EXPECT_EQ(Ask("\nCam", ""), 400 + 100'000);
  EXPECT_TRUE(Logged("PairAsync Status: AlreadyPaired")) << "it was reported before its pairing";
  EXPECT_TRUE(Logged("(watch) ConnDevice Err:Element not found."));
  EXPECT_EQ(Ask("Cam", ""), 100'000);
  EXPECT_EQ(cam.LinksOpened(), 1U);
  lanvoss->Unpair("Cam");
  Advance(100);
  EXPECT_EQ(Ask("Cam", kAddress), 1500);
}

TEST_F(Connection, TheLinkThatGoesDownIsForgotten) {
  const PeerHandle cam = air.Add({.name = u"Cam"});
  Connect("Cam");
  const unsigned statusesRead = air.faults().Count(Call::kConnectionStatus);
  cam.DropLink();
  Advance(100);
  EXPECT_EQ(Log(), Lines{"(watch) Connection status changed: Disconnected"});
  EXPECT_EQ(air.faults().Count(Call::kConnectionStatus), statusesRead + 2) << "again for its line";
  air.SetHabits({.onClose = LinkEnd::kSilent});
  // The next request first closes the link that is still held.
  EXPECT_EQ(lanvoss->GetDeviceIp("Cam"), kAddress);
  EXPECT_TRUE(Logged("(watch) DisConnect, watch FromIdAsync ..."));
  EXPECT_FALSE(Logged("(watch) FromIdAsync was canceled by user"));
}

TEST_F(Connection, AnEndIsTakenInBeforeItsWaitersAreReleased) {
  air.Add({.name = u"Cam"});
  const PeerHandle other = air.Add({.name = u"Other", .paired = true});
  Connect("Cam");
  air.faults().OnCall(Call::kConnectionStatus, [&] {  // of the handler, which is slow
    air.faults().Clear();
    Advance(500);
  });
  EXPECT_EQ(lanvoss->GetDeviceIp("Other"), "");
  EXPECT_EQ(other.OpenRequests(), 0U) << "it counts as giving up";
}

TEST_F(Connection, AChangeToConnectedIsOnlyLogged) {
  const PeerHandle cam = air.Add({.name = u"Cam"});
  Connect("Cam");
  air.SetHabits({.onDrop = LinkEnd::kStaysUpReported});
  cam.DropLink();
  Advance(100);
  EXPECT_EQ(Log(), Lines{"(watch) Connection status changed: Connected"});
  EXPECT_EQ(lanvoss->GetDeviceIp("Cam"), kAddress);
  EXPECT_TRUE(Logged("(watch) Dev Cam is Connected,return ip=" + kAddress));
}

TEST_F(Connection, AskingForAnotherDeviceWhileOneIsHeld) {
  air.Add({.name = u"Cam"});
  const PeerHandle other =
      air.Add({.name = u"Other", .paired = true, .remoteAddress = u"10.0.0.2"});
  Connect("Cam");
  // Closing the held one is reported as Disconnected, which counts as giving up.
  EXPECT_EQ(lanvoss->GetDeviceIp("Other"), "");
  EXPECT_TRUE(Logged("(watch) wfdDevice is null, return"));
  EXPECT_EQ(other.OpenRequests(), 0U);
  EXPECT_EQ(lanvoss->GetDeviceIp("Other"), "192.168.49.1,10.0.0.2") << "the next one goes through";
}

TEST_F(Connection, AskingForAnotherDeviceWhereClosingIsNotReported) {
  air.Add({.name = u"Cam"});
  air.Add({.name = u"Other", .paired = true, .remoteAddress = u"10.0.0.2"});
  Connect("Cam");
  air.SetHabits({.onClose = LinkEnd::kSilent});
  EXPECT_EQ(lanvoss->GetDeviceIp("Other"), "192.168.49.1,10.0.0.2");
}

TEST_F(Connection, ADeviceThatCannotBeClosedIsReportedAndFollowedAgain) {
  const PeerHandle cam = air.Add({.name = u"Cam"});
  const PeerHandle other = air.Add({.name = u"Other", .paired = true});
  Connect("Cam");
  air.SetHabits({.onClose = LinkEnd::kStaysUp});
  air.faults().OnCall(Call::kDeviceClose, [&] { lanvoss->AbortConnect(""); });
  EXPECT_EQ(lanvoss->GetDeviceIp("Other"), kAddress) << "of the held one, reported again";
  EXPECT_EQ(other.OpenRequests(), 0U);
  Advance(100);
  ForgetOutput();
  cam.DropLink();
  Advance(100);
  EXPECT_EQ(Log(), Lines(2, "(watch) Connection status changed: Disconnected"));
}

TEST_F(Connection, AnOpenThatIsCancelledLeavesTheHeldDeviceAndReportsIt) {
  air.Add({.name = u"Cam"});
  air.Add({.name = u"Other", .paired = true, .openings = {Outcome::kCancelled}});
  Connect("Cam");
  air.SetHabits({.onClose = LinkEnd::kStaysUp});
  EXPECT_EQ(lanvoss->GetDeviceIp("Other"), kAddress);
  EXPECT_TRUE(Logged("(watch) FromIdAsync was canceled by user"));
  EXPECT_FALSE(Logged("(watch) wfdDevice is null, return"));
}

TEST_F(Connection, TwoConnectionsAtOnceLeaveOneDeviceHeld) {
  const PeerHandle cam = air.Add({.name = u"Cam", .paired = true, .appearMs = 50, .openMs = 400});
  air.SetHabits({.enumerationMs = 200, .handlersOverlap = true, .stopWaitsForHandlers = false});
  Open();
  // The pass that follows the stop of the find reports the device again before the link is open.
  EXPECT_EQ(lanvoss->GetDeviceIp("Cam"), kAddress);
  Advance(3000);
  EXPECT_GT(cam.OpenRequests(), 1U);
  EXPECT_LE(cam.LinksUp(), 1U);
  lanvoss->DisConnect("");
  Advance(3000);
  EXPECT_EQ(cam.LinksUp(), 0U);
}

TEST_F(Connection, AStopRefusedAfterADirectLinkIsLoggedAfterTheSignal) {
  WriteFile(CachePath(), "1|idA||Cam|2020-01-01 00:00:00.000\n");
  air.Add({.name = u"Cam", .id = u"idA", .paired = true});
  air.SetHabits({.stopElsewhere = simulated::StopElsewhere::kRefused});
  Open();
  EXPECT_EQ(lanvoss->GetDeviceIp("\nCam"), kAddress);
  EXPECT_EQ(SinceTheBeginning(), 400);
  EXPECT_EQ(Log().back(), "(watch) ConnDevice Err:A method was called at an unexpected time.");
}

}  // namespace
}  // namespace lanvoss::test
