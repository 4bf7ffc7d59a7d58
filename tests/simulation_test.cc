// The base of all other tests: virtual time, and the platform's rules.
#include <algorithm>
#include <set>

#include "backends/simulated/air.h"
#include "scenario_test.h"

namespace lanvoss::test {
namespace {

using platform::DeviceWatcherStatus;
using simulated::VirtualTime;

TEST(VirtualTime, JumpsToTheEarliestDeadline) {
  const auto time = NewTime();
  const auto event = time->CreateManualResetEvent(false);
  std::int32_t woken = 0;
  {
    const auto waiter = time->Start("waiter", [&] {
      EXPECT_TRUE(event->Wait(100'000));
      woken = time->Clock();
      EXPECT_TRUE(event->Wait(0)) << "it stays set";
      event->Reset();
      EXPECT_FALSE(event->Wait(500));
    });
    time->Sleep(2000);
    EXPECT_EQ(time->Clock(), 2000);
    event->Set();
  }
  EXPECT_EQ(woken, 2000);
  EXPECT_EQ(time->Clock(), 2500);
  EXPECT_FALSE(event->Wait(0));
}

TEST(VirtualTime, TheSeedDecidesWhoIsNext) {
  const auto order = [](std::uint64_t seed) {
    const auto time = VirtualTime::Seeded(seed);
    std::string names;
    {
      std::vector<std::unique_ptr<events::Thread>> threads;
      for (const char name : {'a', 'b', 'c'}) {
        threads.push_back(time->Start({name}, [&names, name, &time] {
          for (int i = 0; i < 5; ++i) {
            names += name;
            time->Sleep(0);
          }
        }));
      }
    }
    return names;
  };
  std::set<std::string> orders;
  for (std::uint64_t seed = 1; seed <= 10; ++seed) {
    orders.insert(order(seed));
    EXPECT_EQ(order(seed), order(seed));
  }
  EXPECT_GT(orders.size(), 5U);
}

class Simulation : public ScenarioTest {
 protected:
  const std::shared_ptr<platform::WiFiDirect> radio = air.Radio();
  std::shared_ptr<platform::DeviceWatcher> watcher = radio->CreateWatcher(
      radio->GetDeviceSelector(platform::WiFiDirectDeviceSelectorType::AssociationEndpoint),
      {platform::kInformationElements});

  void TearDown() override {
    watcher.reset();
    ScenarioTest::TearDown();
  }
};

TEST_F(Simulation, TheStatusDecidesWhatStartAndStopDo) {
  EXPECT_EQ(watcher->Status(), DeviceWatcherStatus::Created);
  watcher->Stop();
  EXPECT_EQ(watcher->Status(), DeviceWatcherStatus::Created) << "nothing to do";
  watcher->Start();
  EXPECT_THROW(watcher->Start(), platform::Error) << "Started";
  Advance(2001);
  EXPECT_EQ(watcher->Status(), DeviceWatcherStatus::EnumerationCompleted);
  EXPECT_THROW(watcher->Start(), platform::Error) << "EnumerationCompleted";
  watcher->Stop();
  EXPECT_EQ(watcher->Status(), DeviceWatcherStatus::Stopping);
  EXPECT_THROW(watcher->Start(), platform::Error) << "Stopping";
  air.SetHabits({.stopElsewhere = simulated::StopElsewhere::kRefused});
  EXPECT_THROW(watcher->Stop(), platform::Error) << "Stopping, on a platform that refuses";
  Advance(31);
  EXPECT_EQ(watcher->Status(), DeviceWatcherStatus::Stopped);
  watcher->Start();
  EXPECT_EQ(watcher->Status(), DeviceWatcherStatus::Started);
}

TEST_F(Simulation, HandlersAreSerialisedUnlessTheyOverlap) {
  air.Add({.name = u"A", .appearMs = 100});
  air.Add({.name = u"B", .appearMs = 200});
  int inside = 0;
  int most = 0;
  watcher->Added([&](auto&, auto) {
    most = std::max(most, ++inside);
    Advance(500);
    --inside;
  });
  watcher->Start();
  Advance(3000);
  EXPECT_EQ(most, 1);
  watcher->Stop();
  Advance(100);
  air.SetHabits({.handlersOverlap = true});
  watcher->Start();
  Advance(3000);
  EXPECT_EQ(most, 2);
}

TEST_F(Simulation, AStopEndsWhenTheHandlersHaveReturned) {
  air.Add({.name = u"A", .appearMs = 100});
  air.Add({.name = u"B", .appearMs = 200});
  std::int32_t stopped = 0;
  watcher->Added([&](auto&, auto) { Advance(3000); });
  watcher->Stopped([&](auto&) { stopped = time->Clock(); });
  for (const bool overlap : {false, true}) {
    air.SetHabits({.handlersOverlap = overlap});
    const std::int32_t begun = time->Clock();
    watcher->Start();
    Advance(300);
    watcher->Stop();
    Advance(2000);
    EXPECT_EQ(watcher->Status(), DeviceWatcherStatus::Stopping);
    EXPECT_THROW(watcher->Start(), platform::Error);
    Advance(5000);
    EXPECT_EQ(watcher->Status(), DeviceWatcherStatus::Stopped);
    EXPECT_EQ(stopped - begun, overlap ? 3200 : 6100) << "also for B, which is on its way";
  }
  air.SetHabits({.stopWaitsForHandlers = false});
  watcher->Start();
  Advance(300);
  watcher->Stop();
  Advance(31);
  EXPECT_EQ(watcher->Status(), DeviceWatcherStatus::Stopped);
  Advance(10'000);
}

TEST_F(Simulation, EventsThatAreOnTheirWayOutliveTheirSubscription) {
  air.Add({.name = u"A", .appearMs = 100});
  air.Add({.name = u"B", .appearMs = 200});
  Lines reported;
  const auto token = watcher->Added([&](auto&, auto info) {
    reported.push_back(platform::Utf16ToUtf8(info->Name()));
    Advance(500);
  });
  watcher->Start();
  Advance(300);
  watcher->RevokeAdded(token);
  Advance(1000);
  EXPECT_EQ(reported, (Lines{"A", "B"}));
}

TEST_F(Simulation, ScriptsAndFaultsHappenWhenTheyShould) {
  const PeerHandle peer = air.Add({.name = u"A",
                                   .present = false,
                                   .script = {{.atMs = 1000, .act = simulated::Act::kAppear},
                                              {.atMs = 5000, .act = simulated::Act::kDisappear}}});
  std::vector<std::int32_t> seen;
  std::int32_t removed = 0;
  watcher->Added([&](auto&, auto) { seen.push_back(time->Clock()); });
  watcher->Removed([&](auto&, auto&) { removed = time->Clock(); });
  watcher->Start();
  Advance(6000);
  EXPECT_EQ(seen, std::vector<std::int32_t>{1300}) << "also after the enumeration";
  EXPECT_EQ(removed, 5000);
  EXPECT_EQ(radio->FromIdAsync(platform::Utf8ToUtf16(peer.Id())), nullptr) << "absent";

  air.faults().FailShare(Call::kWatcherStatus, 0.5);
  int failures = 0;
  for (int i = 0; i < 1000; ++i) {
    try {
      watcher->Status();
    } catch (const platform::Error&) {
      ++failures;
    }
  }
  EXPECT_NEAR(failures, 500, 100);
}

}  // namespace
}  // namespace lanvoss::test
