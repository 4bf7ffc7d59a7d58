// AbortConnect, DisConnect and Unpair.
#include "scenario_test.h"

namespace lanvoss::test {
namespace {

class Disconnect : public ScenarioTest {};

TEST_F(Disconnect, WithoutALinkItIsDoneAtOnce) {
  Open();
  EXPECT_EQ(lanvoss->DisConnect("unused"), 1);
  EXPECT_EQ(Log(), (Lines{"(watch) DoDisConnect ...", "(watch) DoDisConnect done,do:ok"}));
}

TEST_F(Disconnect, AReportedEndTakesOneTry) {
  const PeerHandle cam = air.Add({.name = u"Cam"});
  Connect("Cam");
  EXPECT_EQ(TimeOf([&] { EXPECT_EQ(lanvoss->DisConnect(""), 1); }), 50);
  EXPECT_EQ(LogWithout("(watch) Connection status changed: Disconnected"),
            (Lines{"(watch) DoDisConnect ...", "(watch) DoDisConnect OK, do :1",
                   "(watch) DoDisConnect done,do:ok"}));
  EXPECT_EQ(cam.LinksUp(), 0U);
}

TEST_F(Disconnect, AnEndThatIsNotReportedIsSeenAfterTheWait) {
  air.Add({.name = u"Cam"});
  Connect("Cam");
  air.SetHabits({.onClose = LinkEnd::kSilent});
  EXPECT_EQ(lanvoss->DisConnect(""), 1);
  EXPECT_EQ(Log(), (Lines{"(watch) DoDisConnect ...", "(watch) DoDisConnect timer out,try:1",
                          "(watch) DoDisConnect OK, do :1", "(watch) DoDisConnect done,do:ok"}));
}

TEST_F(Disconnect, ALinkThatStaysUpTakesFiveTriesAndIsHeld) {
  const PeerHandle cam = air.Add({.name = u"Cam"});
  Connect("Cam");
  air.SetHabits({.onClose = LinkEnd::kStaysUp});
  EXPECT_EQ(TimeOf([&] { EXPECT_EQ(lanvoss->DisConnect(""), 0); }), 10'000);
  Lines expected{"(watch) DoDisConnect ..."};
  for (int i = 1; i <= 5; ++i) {
    expected.push_back("(watch) DoDisConnect timer out,try:" + std::to_string(i));
  }
  expected.push_back("(watch) DoDisConnect done,do:err");
  EXPECT_EQ(Log(), expected);

  // One report ends the waiting of every later try.
  air.SetHabits({.onClose = LinkEnd::kStaysUpReported});
  EXPECT_EQ(TimeOf([&] { EXPECT_EQ(lanvoss->DisConnect(""), 0); }), 50);
  Advance(100);

  air.SetHabits({});
  EXPECT_EQ(lanvoss->DisConnect(""), 1);
  EXPECT_EQ(cam.LinksUp(), 0U);
}

TEST_F(Disconnect, ACancelledCloseIsLoggedAndAnyOtherErrorReachesTheHost) {
  air.Add({.name = u"Cam"});
  Connect("Cam");
  air.faults().FailNth(Call::kDeviceClose, 1, {.kind = Failure::Kind::kCancelled});
  EXPECT_EQ(lanvoss->DisConnect(""), 0);
  EXPECT_EQ(Log(), (Lines{"(watch) DoDisConnect ...",
                          "(watch) DoDisConnect Err:The operation was canceled by the user.",
                          "(watch) DoDisConnect done,do:err"}));
  air.faults().FailNth(Call::kDeviceClose);
  EXPECT_THROW(lanvoss->DisConnect(""), std::exception);
  EXPECT_EQ(lanvoss->DisConnect(""), 1);
}

TEST_F(Disconnect, AGapIsKeptFromAnEndThatFailedToo) {
  air.Add({.name = u"Cam"});
  Connect("Cam");
  air.SetHabits({.onClose = LinkEnd::kStaysUp});
  EXPECT_EQ(lanvoss->DisConnect(""), 0) << "the tries run out";
  lanvoss->GetDeviceIp("5000\nCam");
  EXPECT_TRUE(Logged("(watch) Con Dev name=Cam,Sleep=5000ms"));
  air.faults().FailNth(Call::kDeviceClose, 1, {.kind = Failure::Kind::kCancelled});
  EXPECT_EQ(lanvoss->DisConnect(""), 0) << "the close is cancelled";
  lanvoss->GetDeviceIp("4000\nCam");
  EXPECT_TRUE(Logged("(watch) Con Dev name=Cam,Sleep=4000ms"));
}

TEST_F(Disconnect, ForgetsTheNameSoThatTheNextRequestConnectsAgain) {
  const PeerHandle cam = air.Add({.name = u"Cam"});
  Connect("Cam");
  lanvoss->DisConnect("");
  EXPECT_EQ(lanvoss->GetDeviceIp("Cam"), kAddress);
  EXPECT_EQ(cam.OpenRequests(), 2U);
  EXPECT_EQ(cam.Pairings(), 1U);
}

TEST_F(Disconnect, AbortConnectLeavesALinkAlone) {
  const PeerHandle cam = air.Add({.name = u"Cam"});
  Connect("Cam");
  EXPECT_EQ(lanvoss->AbortConnect(""), 0);
  EXPECT_EQ(Log(), Lines{});
  EXPECT_EQ(cam.LinksUp(), 1U);
  EXPECT_EQ(lanvoss->GetDeviceIp("Cam"), kAddress);
}

TEST_F(Disconnect, ABlockedFindStopsTheWatcherOnly) {
  const PeerHandle cam = air.Add({.name = u"Cam", .appearMs = 1000});
  Open();
  air.After(500, [&] { lanvoss->AbortConnect(""); });
  EXPECT_EQ(lanvoss->GetDeviceIp("Cam"), "");
  EXPECT_EQ(SinceTheBeginning(), 100'000) << "nobody is woken";
  EXPECT_TRUE(
      Logged("(watch) DeviceWatcher ok Dev=Cam watch:1000ms(1) bConnectting = 0 "
             "bDisConnect = 1"));
  EXPECT_EQ(cam.OpenRequests(), 0U);
}

TEST_F(Disconnect, UnpairNeedsAReportedDevice) {
  WriteFile(CachePath(), "1|idA||Cam|2020-01-01 00:00:00.000\n");
  const PeerHandle cam = air.Add({.name = u"Cam", .id = u"idA", .paired = true});
  Open();
  ForgetOutput();
  EXPECT_EQ(lanvoss->Unpair("Cam"), 0);
  EXPECT_EQ(Log(), Lines{"(watch) Watch again,try..."}) << "the cache alone does not do";
  lanvoss->StartWatch("");
  Advance(3000);
  ForgetOutput();
  At("(watch) UnpairAsync OK", [&] { EXPECT_EQ(air.faults().Count(Call::kUnpairAsync), 1U); });
  EXPECT_EQ(lanvoss->Unpair("Cam"), 0);
  EXPECT_EQ(Log(), Lines{"(watch) UnpairAsync OK"});
  Advance(100);
  EXPECT_FALSE(cam.IsPaired());

  const PeerHandle later = air.Add({.name = u"Cam", .id = u"idB", .paired = true, .appearMs = 400});
  lanvoss->StartWatch("");
  Advance(3000);
  lanvoss->Unpair("Cam");
  Advance(100);
  EXPECT_FALSE(later.IsPaired()) << "the later of two devices of one name has it";

  air.faults().FailNth(Call::kUnpairAsync);
  EXPECT_THROW(lanvoss->Unpair("Cam"), std::exception);
  lanvoss->StartWatch("Nobody");  // its pass empties the list of reported devices
  EXPECT_EQ(lanvoss->Unpair("Cam"), 0);
  EXPECT_EQ(Log().back(), "(watch) Watch again,try...");
}

}  // namespace
}  // namespace lanvoss::test
