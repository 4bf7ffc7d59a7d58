// Construction and destruction, and hosts that call operations, throw, or drop the last reference
// at any moment.
#include <atomic>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <utility>

#include "scenario_test.h"

namespace lanvoss::test {
namespace {

class Lifetime : public ScenarioTest {
 protected:
  void SetUp() override {
    ScenarioTest::SetUp();
    WriteFile(CachePath(), "1|idC||Cached|2020-01-01 00:00:00.000\n");
    cam.emplace(air.Add({.name = u"Cam", .id = u"idA"}));
    air.Add({.name = u"Other", .id = u"idB", .appearMs = 100});
  }

  // Watches, connects, recovers, loses and closes a link. What the host throws or drops ends it
  // early.
  void Script() {
    Use([](auto& object) { object.StartWatch("Nobody"); });
    Advance(2500);
    Use([](auto& object) { object.GetDeviceIp("Cam"); });
    Use([](auto& object) { object.GetDeviceIp("Cam"); });
    cam->GoSilent();
    Use([](auto& object) { object.PingCheck(); });
    cam->Answer();
    Use([](auto& object) { object.DisConnect(""); });
    Use([](auto& object) { object.GetDeviceIp("10\nCam"); });
    Use([](auto& object) { object.DisConnect(""); });
    Use([](auto& object) { object.GetDeviceIp("\nCam"); });
    Use([](auto& object) { object.Unpair("Cam"); });
    Use([](auto& object) { object.PingCheck(); });
    Use([](auto& object) { object.StopWatch(); });
  }

  // All that can go wrong. With the script above, every kind of line is logged.
  void Troubles() {
    simulated::Faults& faults = air.faults();
    const Failure none{.kind = Failure::Kind::kNone};
    const Failure cancelled{.kind = Failure::Kind::kCancelled};
    air.SetHabits({.ignoredStarts = 1,
                   .enumerationMs = 59'000,
                   .abortedReported = true,
                   .onClose = LinkEnd::kSilent,
                   .onUnpair = LinkEnd::kStaysUpReported});
    Use([](auto& object) { object.GetDeviceIp(""); });
    Use([](auto& object) { object.Unpair("Nobody"); });
    Use([](auto& object) { object.StartWatch(""); });
    Advance(500);
    cam->Rename(u"Cam");
    cam->Disappear();
    faults.FailNth(Call::kWatcherStop);
    Use([](auto& object) { object.StopWatch(); });
    cam->Appear();
    Use([](auto& object) { object.StartWatch("\nCam"); });
    Advance(1000);
    cam->Disappear();
    air.AbortWatchers();
    Advance(50);
    cam->Appear();
    Use([](auto& object) { object.StartWatch("Cam"); });
    faults.FailNth(Call::kWatcherStop, 1, {.kind = Failure::Kind::kOther});
    Use([](auto& object) { object.StopWatch(); });
    Use([](auto& object) { object.AbortConnect(""); });
    Use([](auto& object) { object.StopWatch(); });
    Advance(100);
    faults.FailNth(Call::kWatcherStart);
    faults.FailNth(Call::kWatcherStop, 1, cancelled);
    Use([](auto& object) { object.GetDeviceIp("\nUnknown"); });
    faults.OnCall(Call::kFromIdAsync, [&, before = faults.Count(Call::kFromIdAsync)] {
      const Failure failures[] = {none, cancelled, {}};
      const unsigned request = faults.Count(Call::kFromIdAsync) - before;
      if (request < std::size(failures)) {
        faults.FailNth(Call::kFromIdAsync, 1, failures[request]);
      }
    });
    Use([](auto& object) { object.GetDeviceIp("\nCam"); });
    Use([](auto& object) { object.GetDeviceIp("\nCam"); });
    Use([](auto& object) { object.GetDeviceIp("Cam"); });  // which pairs it
    Use([](auto& object) { object.DisConnect(""); });
    Use([](auto& object) { object.StartWatch("Cam"); });
    Use([](auto& object) { object.AbortConnect(""); });
    Use([](auto& object) { object.StopWatch(); });
    Use([](auto& object) { object.GetDeviceIp("\nCam"); });
    cam->GoSilent();
    Use([](auto& object) { object.PingCheck(); });
    Use([](auto& object) { object.PingCheck(); });
    cam->Answer();
    faults.FailNth(Call::kDeviceClose, 1, cancelled);
    Use([](auto& object) { object.DisConnect(""); });
    faults.Clear();
  }

  template <typename Operation>
  void Use(Operation operation) {
    if (LanvossInterface* const object = lanvoss.get(); object != nullptr) {
      operation(*object);
    }
  }

  // Drops the last reference while another thread is inside `operation`, `afterMs` after that
  // began. Returns how long that took, and how long the operation went on.
  std::pair<Duration, Duration> EndDuring(std::uint32_t afterMs,
                                          std::function<void(LanvossInterface&)> operation) {
    std::int32_t ended = 0;
    std::int32_t dropped = 0;
    Duration took;
    {
      const auto host = Host([this, &ended, object = lanvoss.get(), operation] {
        operation(*object);
        ended = time->Clock();
      });
      Advance(afterMs);
      dropped = time->Clock();
      took = TimeOf([&] { lanvoss.reset(); });
    }
    return {took, {ended - dropped}};
  }

  std::optional<PeerHandle> cam;
  const std::function<void()> script = [this] { Script(); };

  // Calls `act` at the n-th notification of what `happens`, for every n. Returns how many there
  // were.
  template <typename Act>
  int AtEveryNotification(Act act, const std::function<void()>& happens) {
    for (int nth = 1;; ++nth) {
      std::atomic<int> calls = 0;
      Open();
      Listen([&](const std::string&, const std::string&) {
        if (++calls == nth) {
          act();
        }
      });
      try {
        happens();
      } catch (const std::runtime_error&) {
      }
      lanvoss.reset();
      Advance(70'000);
      Listen(nullptr);
      if (calls < nth) {
        return nth - 1;
      }
    }
  }
};

TEST_F(Lifetime, TheHostMayLetGoAtAnyNotificationAndThrow) {
  if (IsTimeFree()) {
    GTEST_SKIP() << "the host would race with itself";
  }
  std::atomic<int> late = 0;
  const auto atEvery = [&](bool throws, const std::function<void()>& happens) {
    const auto letGo = [&, throws] {
      if (lanvoss != nullptr) {  // else it is still being made
        lanvoss.reset();
        Listen([&](const std::string&, const std::string&) { ++late; });
        if (throws) {
          throw std::logic_error("from a routine that has no object any more");
        }
      }
    };
    EXPECT_GT(AtEveryNotification(letGo, happens), 80);
    EXPECT_EQ(late, 0) << "notified after the object was gone";
  };
  atEvery(false, script);
  atEvery(true, script);
  EXPECT_EQ(air.EscapedExceptions(), 0U);
  atEvery(true, [this] { Troubles(); });
  expectedEscapes = air.EscapedExceptions();  // what fails in a handler
}

TEST_F(Lifetime, TheHostMayThrowAtAnyNotification) {
  AtEveryNotification([] { throw std::runtime_error("host"); }, script);
  expectedEscapes = air.EscapedExceptions();  // those thrown into handlers
  EXPECT_EQ(expectedEscapes > 0, kHandlersMayThrow);
  Connect("Cam");
}

TEST_F(Lifetime, TheHostMayCallBackInAtAnyNotification) {
  int calls = 0;
  AtEveryNotification(
      [&] {
        if (lanvoss == nullptr) {  // it is being made or destroyed
          return;
        }
        switch (++calls % 5) {
          case 0:
            lanvoss->AbortConnect("");
            break;
          case 1:
            lanvoss->StartWatch("Cam");
            break;
          case 2:
            lanvoss->DisConnect("");
            break;
          case 3:
            lanvoss->Unpair("Cam");
            break;
          default:
            lanvoss->StopWatch();
        }
      },
      script);
}

TEST_F(Lifetime, AnotherThreadMayLetGoAtAnyMoment) {
  if (IsTimeFree()) {
    GTEST_SKIP() << "the host would race with itself";
  }
  for (std::uint32_t moment = 0; moment < 6000; moment += 97) {
    Open();
    auto host = Host(script);
    Advance(moment);
    // The script's operations run on the bare object; this waits for the one that is under way.
    lanvoss.reset();
    host.reset();
    Advance(70'000);
  }
}

TEST_F(Lifetime, TheLastHostToLeaveDestroysItAmongEvents) {
  air.SetHabits({.enumerationMs = 400, .handlersOverlap = true});
  for (std::uint32_t moment = 0; moment < 2500; moment += 97) {
    Open();
    const auto asks = Host([own = lanvoss] { own->GetDeviceIp("Cam"); });
    const auto ends = Host([this, own = lanvoss, moment]() mutable {
      Advance(moment);
      own->DisConnect("");
      own.reset();
    });
    lanvoss->StartWatch("Other");
    Advance(moment);
    lanvoss.reset();
  }
}

TEST_F(Lifetime, NothingIsNotifiedAfterTheObjectIsGone) {
  Open();
  lanvoss->StartWatch("Nobody");
  Advance(50);
  lanvoss.reset();
  EXPECT_TRUE(Logged("(watch) DeviceWatcher stopped,re watch")) << "a named watch goes on";
  EXPECT_TRUE(Logged("(watch) Stop Watcher done")) << "until its watcher is gone";
  ForgetOutput();
  Advance(10'000);
  EXPECT_EQ(Log(), Lines{});
}

TEST_F(Lifetime, DestructionWaitsForAHandlerInThePlatform) {
  air.Add({.name = u"Slow", .paired = true, .openMs = 30'000});
  Open();
  const auto host = Host([&] {
    EXPECT_EQ(lanvoss->GetDeviceIp("Slow"), "") << "released by the destruction";
    EXPECT_LT(time->Clock(), 2000);
  });
  Advance(1000);
  lanvoss.reset();
  EXPECT_EQ(SinceTheBeginning(), 30'300) << "the open request has no time limit";
}

TEST_F(Lifetime, TheEndIsNotHeldUpByAWaitOfTheLibrary) {
  const auto atOnce = [&](const char* where, std::uint32_t afterMs,
                          std::function<void(LanvossInterface&)> operation) {
    const auto [end, rest] = EndDuring(afterMs, operation);
    EXPECT_EQ(end, 0) << where;
    EXPECT_EQ(rest, 0) << where;
    Advance(1000);
  };
  Open();
  air.SetHabits({.ignoredStarts = simulated::kNever});
  atOnce("between two starts", 1000, [](auto& object) { object.StartWatch(""); });

  air.SetHabits({.stopMs = simulated::kNever});
  Open();
  lanvoss->StartWatch("");
  atOnce("for the stop", 1000, [](auto& object) { object.StopWatch(); });

  air.SetHabits({});
  Connect("Cam");
  lanvoss->DisConnect("");
  atOnce("in the gap", 1000, [](auto& object) { object.GetDeviceIp("90000\nCam"); });

  air.SetHabits({.onClose = LinkEnd::kStaysUp, .onUnpair = LinkEnd::kStaysUp});
  Connect("Cam");
  atOnce("for the closing", 1000, [](auto& object) { object.DisConnect(""); });
  Connect("Cam");
  cam->GoSilent();
  atOnce("for the unpairing", 20'000, [](auto& object) { object.PingCheck(); });

  Connect("Cam");
  EXPECT_EQ(EndDuring(1000, [](auto& object) { object.PingCheck(); }).first, 2000)
      << "the receive under way has to end";
  Open();
  const auto [end, rest] = EndDuring(1000, [](auto& object) { object.GetDeviceIp("Nobody"); });
  EXPECT_LE(end, 5 * (30 + 1000)) << "a watch that goes on has to be stopped";
  EXPECT_EQ(rest, 0) << "nobody waits for the end of the attempt meanwhile";
}

TEST_F(Lifetime, ACeremonyThatComesLateFindsTheGateClosed) {
  Open();
  const auto host = Host([object = lanvoss.get()] { object->GetDeviceIp("Cam"); });
  Advance(302);  // the pairing has begun, its request is on its way
  lanvoss.reset();
  EXPECT_EQ(Printed().find("OnPairingRequested"), std::string::npos);
}

TEST_F(Lifetime, AConstructionThatFailsSaysWhyAndLeavesNothing) {
  for (const Call call :
       {Call::kGetDeviceSelector, Call::kCreateWatcher, Call::kWatcherSubscribe}) {
    air.faults().FailNth(call, 1, {.message = u"no radio"});
    try {
      Open();
      FAIL() << "construction went through";
    } catch (const std::exception& error) {
      EXPECT_STREQ(error.what(), "no radio");
    }
  }
  air.faults().FailNth(Call::kWatcherSubscribe, 4);
  EXPECT_THROW(Open(), std::exception);
  EXPECT_EQ(air.LiveObjects(), 0U);
  Listen([](const std::string&, const std::string&) { throw std::runtime_error("host"); });
  EXPECT_THROW(Open(), std::runtime_error) << "at the first cached device";
  EXPECT_EQ(air.LiveObjects(), 0U);
}

TEST_F(Lifetime, WithoutEventsConstructionFails) {
  for (unsigned nth = 5; nth >= 1; --nth) {
    time->FailEventCreation(nth);
    try {
      Open();
      ADD_FAILURE() << "construction went through";
    } catch (const std::exception& error) {
      EXPECT_STREQ(error.what(), "Lanvoss: the system could not create an event.");
    }
    time->FailEventCreation(0);
  }
  EXPECT_EQ(air.LiveObjects(), 0U);
}

TEST_F(Lifetime, WithoutACallbackOnlyStandardOutputSpeaks) {
  lanvoss = MakeOnStage(air, nullptr, directory.path.string());
  EXPECT_EQ(lanvoss->GetDeviceIp("Cam"), kAddress);
  Advance(100);
  EXPECT_NE(Printed().find("IPAddress: loc:192.168.49.1 remote:192.168.49.20\n"),
            std::string::npos);
  EXPECT_NE(ReadFile(CachePath()).find("|Cam|"), std::string::npos);
}

TEST_F(Lifetime, ThreeThreadsOfOperationsAmongEvents) {
  const PeerHandle busy = air.Add({.name = u"Busy", .paired = true, .appearMs = 30, .openMs = 60});
  air.SetHabits({.enumerationMs = 120, .stopMs = 5, .handlersOverlap = true});
  Open();
  const auto repeat = [&](int times, auto operations) {
    return Host([times, operations] {
      for (int i = 0; i < times; ++i) {
        operations(i);
      }
    });
  };
  {
    const auto asks = repeat(40, [&](int i) {
      lanvoss->GetDeviceIp(i % 3 == 0 ? "\nBusy" : i % 3 == 1 ? "7\nCam" : "Busy");
    });
    const auto ends = repeat(120, [&](int i) {
      Advance(61);
      i % 4 == 0 ? lanvoss->DisConnect("") : lanvoss->AbortConnect("");
      lanvoss->Unpair("Busy");
    });
    const auto watches = repeat(120, [&](int i) {
      Advance(53);
      i % 2 == 0 ? lanvoss->StartWatch("Busy") : lanvoss->StopWatch();
      busy.Rename(i % 5 == 0 ? u"Cam" : u"Busy");
      i % 7 == 0 ? busy.DropLink() : busy.Disappear();
      busy.Appear();
    });
  }
  lanvoss->DisConnect("");
  Advance(3000);
  EXPECT_EQ(busy.LinksUp(), 0U);
}

}  // namespace
}  // namespace lanvoss::test
