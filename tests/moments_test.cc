// Every step reads what it uses at its own moment: the host's function may change everything at a
// log line or a notification, and so may another thread.
#include <algorithm>
#include <iterator>
#include <new>

#include "scenario_test.h"

namespace lanvoss::test {
namespace {

class Moments : public ScenarioTest {
 protected:
  // A host that asks for a device from its function. Passes time there, so that the request begins.
  std::function<void()> AskMeanwhile(const std::string& name) {
    return [this, name] {
      request_ =
          Host([this, name] { took = TimeOf([&] { address = lanvoss->GetDeviceIp(name); }); });
      Advance(500);
    };
  }
  void AwaitRequest() { request_.reset(); }

  // The line before the error that kGone causes.
  std::string LineBeforeTheError() {
    const Lines log = Log();
    const auto error = std::find(log.begin(), log.end(), "(watch) ConnDevice Err:gone");
    return error == log.begin() || error == log.end() ? std::string() : *std::prev(error);
  }
  const Failure kGone{.message = u"gone"};

  std::string address;  // that the request returned, and its duration
  Duration took;

 private:
  std::unique_ptr<events::Thread> request_;
};

TEST_F(Moments, TheNextPassLooksForWhomIsWatchedForThen) {
  air.Add({.name = u"Cam"});
  Open();
  At("(watch) DeviceWatcher stopped,re watch", AskMeanwhile("Cam"));
  lanvoss->StartWatch("Nobody");
  Advance(3000);
  AwaitRequest();
  EXPECT_EQ(address, kAddress);
  EXPECT_EQ(took, 500 + 800 + 400) << "by the pass that it has begun itself";

  lanvoss->DisConnect("");
  lanvoss->StartWatch("Nobody");
  At("(watch) DeviceWatcher stopped,re watch", [&] { lanvoss->DisConnect(""); });
  Advance(60'000);
  EXPECT_EQ(Log().back(), "(watch) DeviceWatcher stopped.") << "the name does not come back";
}

TEST_F(Moments, AWatchHasFoundNobodyWhenANewOneBeganInItsLastLine) {
  air.Add({.name = u"Cam"});
  Open();
  At("(watch) DeviceWatcher stopped.", AskMeanwhile("Nobody"));
  lanvoss->StartWatch("Cam");
  Advance(3000);
  AwaitRequest();
  EXPECT_EQ(took, 500) << "released by the end of the watch before";
}

TEST_F(Moments, AWatchHasFoundWhomANewOneFoundInItsLastLine) {
  air.SetHabits({.handlersOverlap = true});
  air.Add({.name = u"Cam"});
  Open();
  At("(watch) DeviceWatcher stopped.", AskMeanwhile("Cam"));
  lanvoss->StartWatch("");
  Advance(5000);
  AwaitRequest();
  EXPECT_EQ(address, kAddress) << "not released by the end of the watch before";
}

TEST_F(Moments, WhetherAReportIsAFindIsDecidedAfterTheHostIsNotified) {
  air.Add({.name = u"Cam"});
  Open();
  lanvoss->StartWatch("");
  At("watch", [&] { lanvoss->StartWatch("Cam"); });
  Advance(1000);
  EXPECT_TRUE(LoggedStart("(watch) DeviceWatcher ok Dev=Cam "));
}

TEST_F(Moments, WhatAFindLeadsToIsDecidedAfterItsLine) {
  air.Add({.name = u"Cam"});
  Open();
  At("(watch) DeviceWatcher ok Dev=", [&] { lanvoss->AbortConnect(""); });
  lanvoss->GetDeviceIp("Cam");
  EXPECT_FALSE(LoggedStart("(watch) ConnDevice...")) << "given up meanwhile";
  At("(watch) DeviceWatcher ok Dev=", AskMeanwhile("Cam"));
  lanvoss->StartWatch("Cam");
  Advance(3000);
  AwaitRequest();
  EXPECT_EQ(address, kAddress) << "asked for meanwhile";
}

TEST_F(Moments, AnAddressThatIsForgottenInItsLineIsNotReturned) {
  air.Add({.name = u"Cam"});
  Connect("Cam");
  At("(watch) Dev Cam is Connected,return ip=" + kAddress, [&] { lanvoss->DisConnect(""); });
  EXPECT_EQ(lanvoss->GetDeviceIp("Cam"), "");
}

TEST_F(Moments, ALinkThatComesUpInTheLineOfTheFailureIsReturned) {
  WriteFile(CachePath(), "1|idA||Cam|2020-01-01 00:00:00.000\n");
  air.Add({.name = u"Cam", .id = u"idA", .paired = true});
  Open();
  At("(watch) Devices connected failed", [&] { lanvoss->GetDeviceIp("\nCam"); });
  EXPECT_EQ(lanvoss->GetDeviceIp("Nobody"), kAddress);
}

TEST_F(Moments, WhatIsHeldAfterTheLastLineOfADisconnectCounts) {
  air.Add({.name = u"Cam"});
  Connect("Cam");
  At("(watch) DoDisConnect done,do:ok", [&] { EXPECT_EQ(lanvoss->GetDeviceIp("Cam"), kAddress); });
  EXPECT_EQ(lanvoss->DisConnect(""), 0) << "connected again meanwhile";
  air.SetHabits({.onClose = LinkEnd::kStaysUp});
  At("(watch) DoDisConnect done,do:err", [&] {
    air.SetHabits({});
    EXPECT_EQ(lanvoss->DisConnect(""), 1);
  });
  EXPECT_EQ(lanvoss->DisConnect(""), 1) << "closed meanwhile";
}

TEST_F(Moments, ADeviceThatIsClosedInTheLineOfItsOpeningIsNotReported) {
  const PeerHandle cam = air.Add({.name = u"Cam", .paired = true});
  Open();
  At("(watch) FromIdAsync done", [&] { EXPECT_EQ(lanvoss->DisConnect(""), 1); });
  EXPECT_EQ(Ask("Cam", ""), 300 + 400 + 2000 + 200) << "its end is not followed yet";
  EXPECT_TRUE(LoggedStart("(watch) wfdDevice is null,Re FromIdAsync:1 "));
  EXPECT_TRUE(LoggedStart("(watch) wfdDevice is null,Re FromIdAsync outtime abort DisConnect:1 "));
  EXPECT_EQ(cam.LinksUp(), 0U);
}

TEST_F(Moments, ThePairingObjectIsTakenAfterTheLineThatNeedsIt) {
  const PeerHandle cam = air.Add({.name = u"Cam"});
  Connect("Cam");
  cam.GoSilent();
  air.faults().FailNth(Call::kInformationPairing, 1, kGone);
  lanvoss->PingCheck();
  EXPECT_EQ(LineBeforeTheError(), "(watch) UnpairAsync ...");
  lanvoss->DisConnect("");
  Connect("Cam");
  air.faults().FailNth(Call::kInformationPairing, 2, kGone);
  lanvoss->PingCheck();
  EXPECT_EQ(LineBeforeTheError(), "(watch) RequestPairDeviceAsync ...") << "it is taken once more";
}

TEST_F(Moments, TheResultOfAPairingIsReadAfterTheLineOfItsEnd) {
  air.Add({.name = u"Cam"});
  Open();
  air.faults().FailNth(Call::kPairingStatus, 1, kGone);
  EXPECT_EQ(Ask("Cam", kAddress), 1100 + 300 + 400) << "by the next find";
  EXPECT_EQ(LineBeforeTheError(), "PairAsync done dt:800ms");
}

TEST_F(Moments, AChangeOfTheCacheOutlivesAWriteThatThrows) {
  air.SetHabits({.handlersOverlap = true});
  air.Add({.name = u"Cam", .id = u"idA", .appearMs = 100});
  air.Add({.name = u"Other", .id = u"idB", .appearMs = 150});
  Open();
  air.faults().OnCall(Call::kOpenFile, [&] {
    air.faults().Clear();
    Advance(100);  // the other device is reported meanwhile
    throw std::bad_alloc();
  });
  lanvoss->StartWatch("");
  Advance(1000);
  const std::string both = ReadFile(CachePath());
  EXPECT_NE(both.find("|Cam|"), std::string::npos) << both;
  EXPECT_NE(both.find("|Other|"), std::string::npos) << both;

  air.Add({.name = u"Last", .id = u"idC", .appearMs = 100});
  air.faults().OnCall(Call::kOpenFile, [&] {
    air.faults().Clear();
    throw std::bad_alloc();
  });
  Advance(500);
  EXPECT_EQ(ReadFile(CachePath()), both);
  expectedEscapes = 1;
  Advance(1000);
  lanvoss->StartWatch("");
  Advance(1000);
  EXPECT_NE(ReadFile(CachePath()).find("|Last|"), std::string::npos)
      << "with the next report, though that brings nothing new";
}

}  // namespace
}  // namespace lanvoss::test
