// The client: why there is no link, deadlines, turns, and the policy of a kept link.
#include "lanvoss/client.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "scenario_test.h"
#include "system_runtime.h"

namespace lanvoss::test {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

const Link kLink = {"Cam", "192.168.49.1", "192.168.49.20"};

class ClientTest : public ScenarioTest {
 protected:
  ClientTest() {
    client = MakeClient([this](const Notification& notification) {
      if (notification.kind == "info") {
        const std::lock_guard lock(mutex_);
        log_.push_back(notification.message);
      }
    });
  }
  void TearDown() override {
    client.reset();
    ScenarioTest::TearDown();
  }

  std::unique_ptr<Client> MakeClient(std::function<void(const Notification&)> sink = nullptr) {
    ClientOptions options;
    options.directory = directory.path.string();
    options.onNotification = std::move(sink);
    options.runtime = std::make_shared<SystemRuntime<StageTime>>(time);
    return std::make_unique<Client>(std::move(options),
                                    [this](NotifyCallback notify, const std::string& folder) {
                                      return MakeOnStage(air, notify, folder);
                                    });
  }

  lanvoss::Outcome ConnectWithin(milliseconds timeout) {
    ConnectOptions options;
    options.timeout = timeout;
    return client->Connect("Cam", options);
  }
  Reason ReasonOf(simulated::Peer peer) {
    air.Add(std::move(peer));
    return client->Connect("Cam").reason;
  }

  // How many lines began so.
  int Lines(const std::string& start) {
    const std::lock_guard lock(mutex_);
    return static_cast<int>(std::ranges::count_if(
        log_, [&](const std::string& line) { return line.starts_with(start); }));
  }

  // The changes of a kept link so far, as "up", "down disconnected", "silent", with the outage of
  // the link that is up again.
  std::unique_ptr<Keeper> Keep(KeepOptions options = {}) {
    options.canProbe = [this] { return mayProbe.load(); };
    return client->Keep("Cam", std::move(options), [this](const LinkChange& change) {
      using State = LinkChange::State;
      const std::string text = change.state == State::kUp       ? "up"
                               : change.state == State::kSilent ? "silent"
                               : change.state == State::kUnchecked
                                   ? "unchecked: " + change.outcome.words
                                   : std::string("down ") + NameOf(change.outcome.reason);
      const std::lock_guard lock(mutex_);
      changes_.push_back(text);
      outage = change.outage;
    });
  }
  std::vector<std::string> Changes() {
    const std::lock_guard lock(mutex_);
    return std::exchange(changes_, {});
  }

  std::unique_ptr<Client> client;
  std::atomic<bool> mayProbe = true;
  std::atomic<milliseconds> outage = milliseconds(0);

 private:
  std::mutex mutex_;  // guards the two after it
  std::vector<std::string> log_;
  std::vector<std::string> changes_;
};

using Texts = std::vector<std::string>;

TEST_F(ClientTest, ALinkComesWithTheTimesOfItsSteps) {
  air.Add({.name = u"Cam"});
  const auto outcome = client->Connect("Cam");
  ASSERT_TRUE(outcome);
  EXPECT_EQ(outcome.link, kLink);
  EXPECT_EQ(client->CurrentLink(), kLink);
  EXPECT_EQ(outcome.inRange, Texts{"Cam"});
  EXPECT_EQ(outcome.times.search, milliseconds(300));
  EXPECT_EQ(outcome.times.pairing, milliseconds(800));
  EXPECT_EQ(outcome.times.opening, milliseconds(400));
  EXPECT_EQ(outcome.times.total, milliseconds(1500));
  EXPECT_EQ(client->Connect("Cam").times.total, milliseconds(0)) << "it is connected already";
  EXPECT_TRUE(client->Disconnect());
  EXPECT_EQ(client->CurrentLink(), std::nullopt);
  EXPECT_TRUE(client->Disconnect()) << "no link is a success";
  EXPECT_THROW(client->Connect("two\nlines"), std::invalid_argument);
  EXPECT_THROW(client->Connect(""), std::invalid_argument);
}

TEST_F(ClientTest, ADeviceThatNoSearchSeesIsNotFound) {
  air.Add({.name = u"Other"});
  const auto outcome = client->Connect("Cam");
  EXPECT_EQ(outcome.reason, Reason::kNotFound);
  EXPECT_EQ(outcome.inRange, Texts{"Other"});
  EXPECT_EQ(Explain(outcome, "Cam"), "Cam was not found");
}

TEST_F(ClientTest, ARefusedPairingHasThePlatformsStatus) {
  using Status = platform::DevicePairingResultStatus;
  air.Add({.name = u"Cam",
           .openings = {5, simulated::Outcome::kNone},
           .pairingStatus = Status::ConnectionRejected});
  const auto outcome = client->Connect("Cam");
  EXPECT_EQ(outcome.reason, Reason::kPairingFailed);
  EXPECT_EQ(outcome.words, "ConnectionRejected");
}

TEST_F(ClientTest, OpenRequestsThatGiveNoneAreNoLink) {
  EXPECT_EQ(ReasonOf({.name = u"Cam", .openings = {5, simulated::Outcome::kNone}}),
            Reason::kOpenFailed);
}

TEST_F(ClientTest, ALinkWithoutARemoteAddressIsClosedAndRequestedOnceMore) {
  EXPECT_EQ(ReasonOf({.name = u"Cam", .remoteAddress = std::nullopt}), Reason::kNoAddress);
  EXPECT_EQ(Lines("(watch) ConnDevice..."), 2);
}

TEST_F(ClientTest, APlatformErrorEndsAtOnceAndHasItsWords) {
  air.Add({.name = u"Cam", .openings = {2, simulated::Outcome::kFails}});
  const auto outcome = client->Connect("Cam");
  EXPECT_EQ(outcome.reason, Reason::kPlatformError);
  EXPECT_FALSE(outcome.words.empty());
  EXPECT_LT(outcome.times.total, seconds(10)) << "the library itself waits for 100 s";
  EXPECT_TRUE(client->Connect("Cam")) << "the next one is not disturbed";
}

TEST_F(ClientTest, ClosesTheLinkToAnotherDeviceFirst) {
  air.Add({.name = u"Other"});
  air.Add({.name = u"Cam"});
  EXPECT_TRUE(client->Connect("Other"));
  EXPECT_EQ(client->Connect("Cam").link, kLink);
  EXPECT_EQ(Lines("(watch) wfdDevice is null,Re FromIdAsync outtime abort DisConnect:1"), 0);
}

TEST_F(ClientTest, TheDeadlineHoldsAndSaysHowFarItWas) {
  air.Add({.name = u"Cam", .pairings = {simulated::Outcome::kHangs}});
  const auto outcome = ConnectWithin(seconds(5));
  EXPECT_EQ(outcome.reason, Reason::kTimedOut);
  EXPECT_EQ(outcome.step, Step::kPairing);
  EXPECT_EQ(outcome.times.total, seconds(5));
  air.ReleaseHangs();
  EXPECT_EQ(client->Connect("Cam").link, kLink);
}

TEST_F(ClientTest, WhileTheLibraryHangsTheNextOneIsBusy) {
  air.Add({.name = u"Cam"});
  ASSERT_TRUE(client->Connect("Cam"));
  client->Disconnect();
  client->Unpair("Cam");
  Advance(1000);
  air.Add({.name = u"Direct", .pairings = {simulated::Outcome::kHangs}});
  client->Search("Direct");
  ConnectOptions direct;
  direct.direct = true;
  direct.timeout = seconds(3);
  EXPECT_EQ(client->Connect("Direct", direct).reason, Reason::kTimedOut);
  const auto busy = ConnectWithin(seconds(4));
  EXPECT_EQ(busy.reason, Reason::kBusy);
  EXPECT_EQ(busy.times.total, seconds(4));
  air.ReleaseHangs();
  EXPECT_EQ(client->Connect("Cam").link, kLink) << "not the address of the one that hung";
}

TEST_F(ClientTest, CancellationTakesEffectAtOnce) {
  air.Add({.name = u"Cam", .pairings = {simulated::Outcome::kHangs}});
  std::atomic<int> calls = 0;
  const auto pending = client->ConnectAsync("Cam", {}, [&](const lanvoss::Outcome& outcome) {
    EXPECT_EQ(outcome.reason, Reason::kGivenUp);
    ++calls;
  });
  EXPECT_EQ(pending->WaitFor(seconds(2)), std::nullopt);
  EXPECT_EQ(TimeOf([&] {
              pending->Cancel();
              EXPECT_EQ(pending->Wait().reason, Reason::kGivenUp);
            }),
            0);
  Advance(1);
  EXPECT_EQ(calls, 1);
  const auto other = client->ConnectAsync("Cam");
  client->GiveUp();
  EXPECT_EQ(other->Wait().reason, Reason::kGivenUp);
  air.ReleaseHangs();
}

TEST_F(ClientTest, ARequestAfterACancelledOneIsNotEndedByItsAttempt) {
  air.Add({.name = u"Slow",
           .appearMs = 20,
           .pairMs = 3000,
           .openings = {5, simulated::Outcome::kNone}});
  air.Add({.name = u"Cam", .appearMs = 1500});
  ASSERT_EQ(client->ConnectAsync("Slow")->WaitFor(seconds(1)), std::nullopt);
  const auto outcome = client->Connect("Cam");
  EXPECT_EQ(outcome.link, kLink) << Explain(outcome, "Cam");
}

TEST_F(ClientTest, RequestsOfSeveralThreadsGetTheirOwnAddresses) {
  constexpr int kDevices = 4;
  std::vector<std::unique_ptr<PendingConnect>> pending;
  for (int device = 0; device < kDevices; ++device) {
    const std::u16string digit(1, static_cast<char16_t>(u'0' + device));
    air.Add({.name = u"Cam" + digit, .remoteAddress = u"192.168.49.2" + digit});
    pending.push_back(client->ConnectAsync("Cam" + std::to_string(device)));
  }
  for (int device = 0; device < kDevices; ++device) {
    const auto outcome = pending[static_cast<std::size_t>(device)]->Wait();
    ASSERT_TRUE(outcome) << Explain(outcome, std::to_string(device));
    EXPECT_EQ(outcome.link->remote, "192.168.49.2" + std::to_string(device));
  }
}

TEST_F(ClientTest, SeveralClientsHearOnlyOfTheirOwn) {
  air.Add({.name = u"Cam"});
  std::atomic<int> heard = 0;
  const auto other = MakeClient([&](const Notification&) { ++heard; });
  EXPECT_TRUE(client->Connect("Cam"));
  EXPECT_EQ(heard, 0);
  std::vector<std::unique_ptr<Client>> more;
  for (std::size_t count = 2; count < kMaxClients; ++count) {
    more.push_back(MakeClient());
  }
  EXPECT_THROW(MakeClient(), std::runtime_error);
  more.pop_back();
  EXPECT_TRUE(MakeClient()->Search("Cam"));
}

TEST_F(ClientTest, UnpairsAlsoWhatWasNotReportedYet) {
  const PeerHandle cam = air.Add({.name = u"Cam", .paired = true});
  EXPECT_TRUE(client->Unpair("Cam"));
  Advance(1000);
  EXPECT_FALSE(cam.IsPaired());
  EXPECT_EQ(client->Unpair("Gone", seconds(5)).reason, Reason::kTimedOut);
}

TEST_F(ClientTest, TheEndOfAWatchIsNotTakenForTheEndOfTheNextOne) {
  air.Add({.name = u"Cam"});
  for (int count = 0; count < 50; ++count) {
    EXPECT_EQ(client->Search("Gone", seconds(1)).reason, Reason::kTimedOut);
    EXPECT_TRUE(client->Search("Cam"));
  }
}

TEST_F(ClientTest, AWatchYieldsToRequestsAndGoesOnAfterThem) {
  air.Add({.name = u"Cam"});
  std::mutex mutex;
  std::multiset<std::string> reports;
  auto watch = client->Watch([&](const DeviceReport& report) {
    const std::lock_guard lock(mutex);
    reports.insert(report.name);
  });
  const auto count = [&](const std::string& name) {
    const std::lock_guard lock(mutex);
    return reports.count(name);
  };
  Advance(5000);
  EXPECT_GE(count("Cam"), 2U) << "one pass after the other";
  const auto outcome = client->Connect("Cam");
  EXPECT_LE(outcome.times.total, seconds(2));
  Advance(20'000);
  EXPECT_EQ(client->Connect("Cam").times.total, milliseconds(0)) << "the watch leaves the link";
  client->Disconnect();
  air.Add({.name = u"New"});
  Advance(5000);
  EXPECT_GE(count("New"), 1U);
  watch.reset();
  const auto before = count("Cam");
  Advance(10'000);
  EXPECT_EQ(count("Cam"), before);
}

TEST_F(ClientTest, AKeptLinkReportsAnOutageWhenTheLibraryDoes) {
  const PeerHandle cam = air.Add({.name = u"Cam"});
  const auto keeper = Keep();
  Advance(3000);
  EXPECT_EQ(Changes(), Texts{"up"});
  cam.Disappear();
  cam.DropLink();
  Advance(100);
  EXPECT_EQ(Changes(), Texts{"down disconnected"});
  Advance(120'000);
  EXPECT_EQ(Changes(), Texts{"down not-found"}) << "the reason has changed, once";
  cam.Appear();
  Advance(80'000);
  EXPECT_EQ(Changes(), Texts{"up"});
  EXPECT_GT(outage.load(), seconds(120));
}

TEST_F(ClientTest, ASilentDeviceIsPairedAgainAndIfItStaysSilentDisconnected) {
  const PeerHandle cam = air.Add({.name = u"Cam"});
  const auto keeper = Keep();
  Advance(3000);
  cam.GoSilent();
  Advance(20'000);  // the check after 10 s takes 12 s
  Advance(15'000);
  const Texts changes = Changes();
  ASSERT_GE(changes.size(), 3U);
  EXPECT_EQ(changes[0], "up");
  EXPECT_EQ(changes[1], "silent");
  EXPECT_EQ(changes[2], "up");
  EXPECT_GT(outage.load(), milliseconds(0));
  Advance(60'000);
  EXPECT_EQ(Lines("(watch) Ping Failed,Re Pair Failed!"), 0) << "each recovery has its request";
  cam.Answer();
  Advance(60'000);
  EXPECT_EQ(Changes().back(), "up");
}

TEST_F(ClientTest, WhatCannotBeCheckedIsNotChecked) {
  air.Add({.name = u"Cam"});
  mayProbe = false;
  auto keeper = Keep();
  Advance(60'000);
  EXPECT_EQ(Changes(), (Texts{"up", "unchecked: no right to open raw sockets"}));
  EXPECT_EQ(Lines("(watch) ping ..."), 0);
  mayProbe = true;
  Advance(30'000);
  EXPECT_GE(Lines("(watch) ping ..."), 1);
  keeper.reset();
  client->Disconnect();
  const int checks = Lines("(watch) ping ...");
  air.Add({.name = u"Cam6", .remoteAddress = u"fe80::2"});
  std::atomic<int> unchecked = 0;
  const auto other = client->Keep("Cam6", {}, [&](const LinkChange& change) {
    unchecked += change.state == LinkChange::State::kUnchecked ? 1 : 0;
  });
  Advance(60'000);
  EXPECT_EQ(unchecked, 1);
  EXPECT_EQ(Lines("(watch) ping ..."), checks);
}

TEST_F(ClientTest, AProbeTestOfTheHostsThatThrowsMeansNo) {
  air.Add({.name = u"Cam"});
  KeepOptions options;
  options.canProbe = []() -> bool { throw std::runtime_error("of a host"); };
  std::atomic<int> unchecked = 0;
  const auto keeper = client->Keep("Cam", std::move(options), [&](const LinkChange& change) {
    unchecked += change.state == LinkChange::State::kUnchecked ? 1 : 0;
  });
  Advance(30'000);
  EXPECT_EQ(unchecked, 1);
}

TEST_F(ClientTest, AfterErrorsInARowTheKeeperUnpairs) {
  const PeerHandle cam = air.Add({.name = u"Cam", .linksPerPairing = 1});
  const auto keeper = Keep();
  Advance(5000);
  cam.DropLink();
  Advance(60'000);
  EXPECT_EQ(Changes(), (Texts{"up", "down disconnected", "down platform-error", "up"}));
  EXPECT_EQ(cam.Pairings(), 2U);
}

TEST_F(ClientTest, HandlersMayCallAndEndEverything) {
  air.Add({.name = u"Cam"});
  std::unique_ptr<PendingConnect> pending;
  std::atomic<bool> isDone = false;
  pending = client->ConnectAsync("Cam", {}, [&](const lanvoss::Outcome&) {
    EXPECT_TRUE(client->Connect("Cam"));
    pending.reset();
    isDone = true;
    throw std::runtime_error("of a host");
  });
  Advance(5000);
  EXPECT_TRUE(isDone);
  auto keeper = Keep();
  Advance(1000);
  client.reset();
  keeper.reset();
  SUCCEED() << "what a client has made may live longer";
}

}  // namespace
}  // namespace lanvoss::test
