#include "player.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <fstream>
#include <iterator>
#include <memory>
#include <mutex>
#include <random>
#include <stdexcept>
#include <utility>

#include "lanvoss/lanvoss.h"

#include "backends/simulated/air.h"
#include "backends/simulated/virtual_time.h"
#include "host_loop.h"
#include "output.h"
#include "recording_host.h"
#include "watcher/make_lanvoss.h"
#include "witness.h"

namespace lanvoss::search {
namespace {

constexpr char kWanted[] = "Cam";
// Requests within which the host's loop has its link when nothing fails any more.
constexpr unsigned kRequestsToLink = 5;
constexpr std::int32_t kTimeToLinkMs = 10 * 60'000;
// Between two of them: several connections that still run may wake one request after the other.
constexpr std::uint32_t kRetryPauseMs = 3'000;
// Operations that the host began in its callbacks hold their objects for this time at most.
constexpr int kLastOperationS = 600;
constexpr std::uint32_t kMsPerS = 1'000;
// Events that are still on their way when the object is gone.
constexpr std::uint32_t kSettleMs = 5'000;

struct HostException : std::runtime_error {
  HostException() : std::runtime_error("host") {}
};

// The object, and the end of its life.
class Held {
 public:
  Held(Witness& witness, const TestCase& testCase, platform::Platform platform,
       const std::string& directory)
      : witness_(witness), longestEndMs_(LongestEndMs(testCase)) {
    witness_.OnObjectBegins();
    try {
      lanvoss_ = MakeLanvoss(std::move(platform), &test::RecordingHost::OnNotify, directory);
    } catch (...) {
      witness_.OnObjectEnds();
      throw;
    }
  }
  ~Held() {
    const std::int64_t excused = witness_.ExcusedMs();
    const std::int32_t begun = witness_.Clock();
    lanvoss_.reset();
    witness_.OnObjectEnds();
    const std::int64_t excuse = witness_.ExcusedMs() - excused;
    witness_.Violate(
        CheckDuration("the end of the object", witness_.Clock() - begun, longestEndMs_ + excuse));
  }
  Held(const Held&) = delete;
  Held& operator=(const Held&) = delete;
  LanvossInterface& operator*() const { return *lanvoss_; }

 private:
  Witness& witness_;
  const std::int64_t longestEndMs_;
  std::shared_ptr<LanvossInterface> lanvoss_;
};

// Counts the operations and callbacks that run.
class OperationScope {
 public:
  explicit OperationScope(std::atomic<int>& count) : count_(count) { ++count_; }
  ~OperationScope() { --count_; }
  OperationScope(const OperationScope&) = delete;
  OperationScope& operator=(const OperationScope&) = delete;

 private:
  std::atomic<int>& count_;
};

class Player {
 public:
  Player(const TestCase& testCase, bool free)
      : case_(testCase),
        free_(free),
        time_(free ? simulated::VirtualTime::Free()
                   : simulated::VirtualTime::Seeded(testCase.seed)),
        air_(time_, time_, testCase.habits, testCase.seed),
        witness_(testCase, *time_, IsLoggedAtOnce()),
        random_(testCase.seed) {
    time_->SetLocalTime({2024, 3, 1, 9, 0, 0, 0});
    std::ofstream(CachePath(), std::ios::binary) << testCase.cache;
  }
  Player(const Player&) = delete;
  Player& operator=(const Player&) = delete;

  Report Play() {
    RunWithFaults();
    Recover();
    End();
    report_.violations = witness_.Violations();
    report_.events = witness_.Events();
    report_.virtualMs = time_->Clock();
    report_.linkUps = witness_.LinkUps();
    report_.faults += air_.faults().Failures();
    for (std::size_t call = 0; call < simulated::kCalls; ++call) {
      report_.calls += air_.faults().Count(static_cast<simulated::Call>(call));
    }
    return report_;
  }

 private:
  static std::filesystem::path CachePath() { return TheOutput().Directory() / "deviceinfo.bin"; }

  // ---- Everything may fail

  void RunWithFaults() {
    for (const simulated::Peer& peer : case_.peers) {
      peers_.push_back(air_.Add(peer));
    }
    for (const std::uint32_t atMs : case_.abortsAtMs) {
      air_.AbortWatchersAfter(atMs);
    }
    Plant();
    Make();
    air_.After(kScriptsEndMs, [this] { air_.ReleaseHangs(); });
    std::vector<std::unique_ptr<events::Thread>> hosts;
    for (const std::vector<Step>& steps : case_.hosts) {
      hosts.push_back(time_->Start("host", [this, &steps] {
        for (const Step& step : steps) {
          time_->Sleep(step.pauseMs);
          Do(step);
        }
      }));
    }
  }

  void Plant() {
    for (const PlannedFault& fault : case_.faults) {
      if (fault.delayMs > 0) {
        air_.faults().OnCall(fault.call, [this, fault] { Delay(fault); });
      } else {
        air_.faults().FailShare(fault.call, fault.share, fault.failure);
      }
    }
  }

  // In the call, before it takes effect.
  void Delay(const PlannedFault& fault) {
    {
      const std::lock_guard lock(mutex_);
      if (std::generate_canonical<double, 32>(random_) >= fault.share) {
        return;
      }
      ++report_.faults;
    }
    witness_.Excuse(fault.delayMs);
    time_->Sleep(fault.delayMs);
  }

  // ---- Nothing fails any more: the host's loop has to bring the link up

  void Recover() {
    witness_.StopReacting();
    if (const std::int32_t left = static_cast<std::int32_t>(kScriptsEndMs) - time_->Clock();
        left > 0) {
      time_->Sleep(static_cast<std::uint32_t>(left));
    }
    air_.faults().Clear();
    air_.SetHabits(WithoutHindrance(case_.habits));
    for (const simulated::PeerHandle& peer : peers_) {
      peer.Disappear();
    }
    const simulated::PeerHandle& wanted = peers_.front();
    wanted.Rename(u"Cam");
    wanted.Appear();
    wanted.Answer();
    witness_.Note("nothing fails any more");
    const std::int32_t begun = time_->Clock();
    if (MayLackWatcher()) {
      LetGo();
    }
    Make();
    std::string address = Ask();
    while (!IsLinkTo(address)) {
      if (report_.requests == kRequestsToLink) {
        witness_.Violate("no link after " + std::to_string(kRequestsToLink) + " requests");
        return;
      }
      time_->Sleep(kRetryPauseMs);
      address = Ask();
    }
    report_.toLinkMs = time_->Clock() - begun;
    witness_.Violate(report_.toLinkMs <= kTimeToLinkMs ? "" : "the link took too long");
    witness_.Violate(Do({.operation = Operation::kGetDeviceIp, .argument = kWanted}) == address
                         ? ""
                         : "the link did not last");
  }

  // The platform's habits that may cost time and requests, and prevent no link.
  static simulated::Habits WithoutHindrance(const simulated::Habits& habits) {
    simulated::Habits rest;
    if (habits.findMs != simulated::kNever) {
      rest.enumerationMs = kLongPassMs;
    }
    rest.findMs = habits.findMs;
    rest.handlersOverlap = habits.handlersOverlap;
    rest.stopWaitsForHandlers = habits.stopWaitsForHandlers;
    rest.abortedReported = habits.abortedReported;
    rest.idsVary = habits.idsVary;
    rest.pairedAsReported = habits.pairedAsReported;
    return rest;
  }

  // Whether the address is that of a device of the wanted name whose link is up. A link that went
  // down while its address was being stored, or before, may still be reported; the next check
  // notices it.
  bool IsLinkTo(const std::string& address) {
    if (address.empty()) {
      return false;
    }
    bool otherIsUp = false;
    for (std::size_t i = 0; i < peers_.size(); ++i) {
      const bool isUp = peers_[i].LinksUp() > 0 && CheckAddress(address, {case_.peers[i]}).empty();
      if (isUp && case_.peers[i].name == u"Cam") {
        return true;
      }
      otherIsUp = otherIsUp || isUp;
    }
    CountReason(otherIsUp ? "the address of another device's link was reported"
                          : "the address of a link that is down was reported");
    if (otherIsUp) {
      Do({.operation = Operation::kDisConnect});
    }
    return false;
  }

  std::string Ask() {
    Check();
    const std::size_t before = host_.LogLength();
    const std::int32_t begun = time_->Clock();
    const bool hadOthers = running_ > 0;
    const std::string address = Do({.operation = Operation::kGetDeviceIp, .argument = kWanted});
    ++report_.requests;
    if (!address.empty()) {
      return address;
    }
    const Lines log = host_.Log(before);
    std::string reason = ReasonOfFailure(log, time_->Clock() - begun);
    if (reason.empty() && IsAnyAbortSince(begun)) {
      reason = "the platform ended the watcher and reported nothing";
    }
    if (reason.empty() && hadOthers) {
      reason = "one of the host's callbacks was under way";
    }
    witness_.Violate(reason.empty() ? "no link, and for no known reason" : "");
    CountReason(reason);
    if (IsPlatformFailing(log)) {
      Do({.operation = Operation::kUnpair, .argument = kWanted});
    }
    return address;
  }

  bool IsAnyAbortSince(std::int32_t begun) const {
    const auto now = static_cast<std::uint32_t>(time_->Clock());
    return std::ranges::any_of(case_.abortsAtMs, [&](std::uint32_t atMs) {
      return atMs >= static_cast<std::uint32_t>(begun) && atMs <= now;
    });
  }

  void CountReason(const std::string& reason) {
    witness_.Note("no link at once: " + reason);
    ++report_.reasons[reason];
  }

  // A dead link that is not recovered would be reported again and again.
  void Check() {
    const std::size_t before = host_.LogLength();
    Do({.operation = Operation::kPingCheck});
    if (IsDeadAndKept(host_.Log(before))) {
      CountReason("a dead link was given up or recovered before, so it is kept");
      Do({.operation = Operation::kDisConnect});
    }
  }

  void End() {
    // The report of a link's end is on its way when the host drops the object, and may arrive after
    // that.
    peers_.front().DropLink();
    time_->Sleep(simulated::Habits().statusReportMs);
    LetGo();
    for (int waitedS = 0; witness_.Objects() > 0 && waitedS < kLastOperationS; ++waitedS) {
      time_->Sleep(kMsPerS);
    }
    time_->Sleep(kSettleMs);
    if (air_.LiveObjects() != 0) {
      witness_.Violate(std::to_string(air_.LiveObjects()) + " platform objects leaked");
    }
    if (!MayThrow() && air_.EscapedExceptions() > 0) {
      witness_.Violate("an exception left a handler, although nothing raised one");
    }
    if (case_.reactions.empty() && !MayLackWatcher()) {
      const bool forgets = case_.peers.front().linksPerPairing != simulated::kUnlimited;
      witness_.Violate(CheckCounts(host_.Log(), CallCounts(), MayThrow() || forgets));
    }
    witness_.Violate(CheckOutput(TheOutput().Take(), host_.Log(), !free_));
    // A load or a write that was refused is not repeated.
    if (case_.reactions.empty() && !free_ && !HasFault(simulated::Call::kOpenFile)) {
      witness_.Violate(CheckCache(CacheFile(), witness_.Devices()));
    }
  }

  static std::string CacheFile() {
    std::ifstream file(CachePath(), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  // Devices to which a link has been opened.
  std::vector<simulated::Peer> Opened() const {
    std::vector<simulated::Peer> opened;
    for (std::size_t i = 0; i < peers_.size(); ++i) {
      if (peers_[i].LinksOpened() > 0) {
        opened.push_back(case_.peers[i]);
      }
    }
    return opened;
  }

  Counts CallCounts() {
    const auto count = [this](simulated::Call call) { return air_.faults().Count(call); };
    using simulated::Call;
    return {.watcherStops = count(Call::kWatcherStop),
            .openRequests = count(Call::kFromIdAsync),
            .pairings = count(Call::kPairAsync),
            .subscriptions = count(Call::kWatcherSubscribe),
            .revocations = count(Call::kWatcherRevoke)};
  }

  // ---- The object and its operations

  // The factory may fail as long as calls may fail.
  void Make() {
    try {
      if (Hold() == nullptr) {
        auto made =
            std::make_shared<Held>(witness_, case_, platform::Platform{air_.System(), air_.Radio()},
                                   TheOutput().Directory());
        const std::lock_guard lock(mutex_);
        object_ = std::move(made);
      }
    } catch (const std::exception& error) {
      witness_.Note(std::string("the factory throws: ") + error.what());
      witness_.Violate(MayThrow() ? "" : "the factory throws, although nothing failed");
    }
  }

  void LetGo() {
    std::shared_ptr<Held> released;
    {
      const std::lock_guard lock(mutex_);
      released.swap(object_);
    }
    witness_.Note("the host lets go");
    released.reset();
    witness_.Note("gone");
  }

  std::shared_ptr<Held> Hold() {
    const std::lock_guard lock(mutex_);
    return object_;
  }

  // Does an operation, when there is an object. Returns the address that it gives, if any.
  std::string Do(const Step& step) {
    std::shared_ptr<Held> held = Hold();
    if (held == nullptr) {
      return {};
    }
    LanvossInterface& lanvoss = **held;
    // One thread runs at a time, so no other thread runs before the operation's first step.
    if (case_.bare && !free_) {
      held.reset();
    }
    const std::int32_t begun = time_->Clock();
    const std::int64_t excused = witness_.ExcusedMs();
    witness_.Note(Describe(step) + " ...");
    const OperationScope scope(running_);
    witness_.OnOperationBegins();
    std::string address;
    try {
      address = Call(lanvoss, step);
    } catch (const std::exception& error) {
      witness_.Note(Describe(step) + " throws: " + error.what());
      witness_.Violate(MayThrow() ? "" : Describe(step) + " throws, although nothing failed");
    }
    witness_.Note(Describe(step) + " -> " + address);
    witness_.Violate(witness_.OnOperationEnds());
    CheckCacheSoFar();
    witness_.Violate(CheckAddress(address, Opened()));
    const std::int64_t took = time_->Clock() - begun;
    const std::int64_t excuse = witness_.ExcusedMs() - excused;
    witness_.Violate(CheckDuration(Describe(step), took, LongestMs(step, case_) + excuse));
    if (case_.hosts.size() == 1 && case_.reactions.empty()) {
      witness_.Violate(CheckWait(step, address, took, excuse));
    }
    const std::lock_guard lock(mutex_);
    ++report_.operations;
    return address;
  }

  // While no thread of the library's runs, none is inside a write.
  void CheckCacheSoFar() {
    if (!free_ && !HasFault(simulated::Call::kOpenFile)) {
      witness_.Violate(search::CheckCacheSoFar(CacheFile(), witness_.Devices()));
    }
  }

  static std::string Call(LanvossInterface& lanvoss, const Step& step) {
    switch (step.operation) {
      case Operation::kStartWatch:
        lanvoss.StartWatch(step.argument);
        return {};
      case Operation::kStopWatch:
        lanvoss.StopWatch();
        return {};
      case Operation::kGetDeviceIp:
        return lanvoss.GetDeviceIp(step.argument);
      case Operation::kAbortConnect:
        lanvoss.AbortConnect("");
        return {};
      case Operation::kDisConnect:
        lanvoss.DisConnect("");
        return {};
      case Operation::kUnpair:
        lanvoss.Unpair(step.argument);
        return {};
      case Operation::kPingCheck:
        return lanvoss.PingCheck();
    }
    return {};
  }

  // An object that got no watcher when it was made never has one.
  bool MayLackWatcher() const { return HasFault(simulated::Call::kCreateWatcher); }

  // Threads that run side by side, what the host does in a callback, or a late status of a device,
  // comes between a step and its line.
  bool IsLoggedAtOnce() const {
    return !free_ && case_.reactions.empty() && !HasFault(simulated::Call::kConnectionStatus);
  }

  bool HasFault(simulated::Call call) const {
    return std::any_of(case_.faults.begin(), case_.faults.end(),
                       [call](const PlannedFault& fault) { return fault.call == call; });
  }

  // Whether something in the case raises exceptions into handlers or the host. The wanted device
  // alone does not.
  bool MayThrow() const {
    const bool refuses = case_.habits.stopElsewhere == simulated::StopElsewhere::kRefused;
    return refuses || !case_.faults.empty() || !case_.reactions.empty() || case_.peers.size() > 1;
  }

  void OnNotify(const std::string& kind, const std::string& message) {
    const auto reaction = witness_.OnNotify(kind, message);
    if (Hold() != nullptr) {
      CheckCacheSoFar();
    }
    if (reaction) {
      React(*reaction);
    }
  }

  void React(const Reaction& reaction) {
    using Kind = Reaction::Kind;
    const OperationScope scope(running_);
    const std::int32_t begun = time_->Clock();
    witness_.Note("in the callback:");
    if (reaction.kind == Kind::kOperation) {
      time_->Sleep(reaction.step.pauseMs);
      Do(reaction.step);
    }
    if (reaction.kind == Kind::kLetGo || reaction.kind == Kind::kLetGoAndThrow) {
      LetGo();
    }
    witness_.Excuse(time_->Clock() - begun);
    if (reaction.kind == Kind::kThrow || reaction.kind == Kind::kLetGoAndThrow) {
      witness_.Note("throws");
      throw HostException();
    }
  }

  const TestCase& case_;
  const bool free_;
  const std::shared_ptr<simulated::VirtualTime> time_;
  simulated::Air air_;
  Witness witness_;
  test::RecordingHost host_{
      [this](const std::string& kind, const std::string& message) { OnNotify(kind, message); }};
  std::vector<simulated::PeerHandle> peers_;
  std::atomic<int> running_ = 0;  // operations, and callbacks in which the host does something
  std::mutex mutex_;              // guards everything below
  std::mt19937_64 random_;
  Report report_;
  std::shared_ptr<Held> object_;
};

}  // namespace

Report Play(const TestCase& testCase, bool free) { return Player(testCase, free).Play(); }

}  // namespace lanvoss::search
