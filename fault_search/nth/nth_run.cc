#include "nth_run.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <utility>

#include "host_loop.h"
#include "worst_case.h"

namespace lanvoss::nth {
namespace {

constexpr char kAddress[] = "192.168.49.1,192.168.49.20";
constexpr char kCachedLine[] =
    "1|WiFiDirect#02:00:00:00:00:0c|02:00:00:00:00:0c|Cached|2024-01-02 03:04:05.006\n";

// The devices' latencies in milliseconds.
constexpr std::int32_t kAppearMs = 300;
constexpr std::int32_t kPairMs = 800;
constexpr std::int32_t kOpenMs = 400;
// Events on their way arrive, passes end.
constexpr std::uint32_t kSettleMs = 5'000;

// The longest that each operation may block, in milliseconds.
constexpr std::int64_t kAtOnceMs = 0;
constexpr std::int64_t kConnectBoundMs = worst_case::ConnectMs(kPairMs, kOpenMs);
constexpr std::int64_t kPingCheckBoundMs =
    worst_case::kProbeMs + kConnectBoundMs + worst_case::kDoneMs;
// A connection may run in a handler.
constexpr std::int64_t kDestructionBoundMs = worst_case::EndMs(kPairMs);

// The simulation copies the core's handlers on the thread of its delayed actions. What that
// allocates looks like the core's, but a platform holds handlers by reference. No handler runs
// there.
class ExemptDelayedActions final : public events::Threads {
 public:
  explicit ExemptDelayedActions(std::shared_ptr<events::Threads> threads)
      : threads_(std::move(threads)) {}

  std::unique_ptr<events::Thread> Start(std::string name, std::function<void()> body) override {
    if (name == "delayed") {
      body = [run = std::move(body)] {
        ExemptThisThread();
        run();
      };
    }
    return threads_->Start(std::move(name), std::move(body));
  }

 private:
  const std::shared_ptr<events::Threads> threads_;
};

void Raise(Failure failure) {
  const std::u16string text(std::begin(kPlantedText), std::end(kPlantedText) - 1);
  if (failure == Failure::kRadioError) {
    throw platform::Error(platform::kErrorFail, text);
  }
  if (failure == Failure::kRadioCancelled) {
    throw platform::CancelledError(text);
  }
  throw std::runtime_error(kPlantedText);
}

}  // namespace

NthRun::NthRun(const Plan& plan, std::filesystem::path directory)
    : plan_(plan),
      directory_(std::move(directory)),
      host_(
          [this](const std::string& kind, const std::string& message) { OnNotify(kind, message); }),
      time_(simulated::VirtualTime::Seeded(plan.seed)),
      air_(time_, std::make_shared<ExemptDelayedActions>(time_), {}, plan.seed),
      camera_(air_.Add({.name = u"Cam",
                        .id = u"WiFiDirect#02:00:00:00:00:0a",
                        .appearMs = kAppearMs,
                        .pairMs = kPairMs,
                        .openMs = kOpenMs})) {
  air_.Add({.name = u"Other", .id = u"WiFiDirect#02:00:00:00:00:0b", .appearMs = kAppearMs});
  std::ofstream(directory_ / "deviceinfo.bin", std::ios::binary) << kCachedLine;
}

Result NthRun::Play(Script script) {
  LetPlatformFail();
  Plant(plan_.failure, plan_.nth, plan_.lasts);
  Open();
  if (lanvoss_ != nullptr) {
    script(*this);
    if (!HasFailed()) {
      Close();  // which may fail too
    }
  }
  result_.failed = HasFailed();
  Unplant();
  air_.faults().Clear();
  isPlanted_ = false;
  std::puts("== nothing fails any more");

  Do(simulated::Act::kAppear);
  Do(simulated::Act::kAnswer);
  if (lanvoss_ == nullptr) {
    Open();
  }
  Recover();
  MeetNewcomer();
  Close();
  Open();
  CheckCache();
  Close();
  return result_;
}

void NthRun::LetPlatformFail() {
  using simulated::Call;
  const Failure failure = plan_.failure;
  if (failure == Failure::kFile) {
    air_.faults().OnCall(Call::kOpenFile, [this] {
      if (IsDue(Failure::kFile)) {
        air_.faults().FailNth(Call::kOpenFile, 1, {.kind = simulated::Failure::Kind::kNone});
      }
    });
  }
  if (failure == Failure::kFile || failure == Failure::kAllocation) {
    return;
  }
  for (int call = 0; call <= static_cast<int>(Call::kDeviceClose); ++call) {
    air_.faults().OnCall(static_cast<Call>(call), [failure, call] {
      if (IsDue(failure)) {
        std::printf("== radio call %d fails\n", call);
        Raise(failure);
      }
    });
  }
}

void NthRun::Open() {
  loaded_.clear();
  mayNotify_ = true;
  Within("getLanvossPtr", kAtOnceMs, [this] {
    lanvoss_ = MakeFailing({air_.System(), air_.Radio()}, &test::RecordingHost::OnNotify,
                           directory_.string());
  });
  mayNotify_ = lanvoss_ != nullptr;
}

void NthRun::Close() {
  Within("the destruction", kDestructionBoundMs, [this] { lanvoss_.reset(); });
  mayNotify_ = false;
  Advance(kSettleMs);
  Require(air_.LiveObjects() == 0,
          std::to_string(air_.LiveObjects()) + " platform objects are left");
}

// The host's loop. A dead link that the check does not recover is returned again and again, until
// the host closes it.
void NthRun::Recover() {
  while (result_.requests < kMostRequests) {
    ++result_.requests;
    const std::size_t before = host_.LogLength();
    PingCheck();
    if (IsDeadAndKept(host_.Log(before))) {
      DisConnect();
    }
    if (GetDeviceIp(kCameraName) == kAddress && camera_.LinksUp() == 1) {
      return;
    }
  }
  Require(false, "no link after so many requests");
}

// A new device, so that the whole cache is written.
void NthRun::MeetNewcomer() {
  Advance(kSettleMs);
  air_.Add({.name = u"New", .id = u"WiFiDirect#02:00:00:00:00:0d", .appearMs = kAppearMs});
  StartWatch("");
  Advance(kSettleMs);
}

// The object that has just been made has loaded each line of it.
void NthRun::CheckCache() {
  std::ifstream file(directory_ / "deviceinfo.bin", std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(file), {}};
  Require(std::cmp_equal(std::ranges::count(bytes, '\n'), loaded_.size()),
          "not every line of the cache file parses:\n" + bytes);
  if (plan_.failure == Failure::kFile) {
    loaded_.insert("Cached");  // forgotten, when the cache could not be read
  }
  Require(loaded_ == std::set<std::string>{"Cached", kCameraName, "New", kOtherName},
          "the cache file does not hold the devices:\n" + bytes);
}

void NthRun::OnNotify(const std::string& kind, const std::string& message) {
  std::printf("<%s %s>\n", kind.c_str(), message.c_str());
  Require(mayNotify_, "notified although there is no object");
  if (kind == "watch") {
    loaded_.insert(message);
  }
}

void NthRun::Do(simulated::Act act) {
  air_.After(0, [camera = camera_, act] { camera.Do(act); });
  Advance(1);  // by then it has happened
}

void NthRun::StartWatch(const std::string& name) {
  Within("StartWatch", worst_case::kStartMs, [&] { lanvoss_->StartWatch(name); });
}
void NthRun::StopWatch() {
  Within("StopWatch", worst_case::kStopMs, [&] { lanvoss_->StopWatch(); });
}
void NthRun::AbortConnect() {
  Within("AbortConnect", kAtOnceMs, [&] { lanvoss_->AbortConnect(""); });
}
void NthRun::DisConnect() {
  Within("DisConnect", worst_case::kCloseMs, [&] { lanvoss_->DisConnect(""); });
}
void NthRun::Unpair(const std::string& name) {
  Within("Unpair", kAtOnceMs, [&] { lanvoss_->Unpair(name); });
}
void NthRun::PingCheck() {
  Within("PingCheck", kPingCheckBoundMs, [&] { lanvoss_->PingCheck(); });
}

std::string NthRun::GetDeviceIp(const std::string& request) {
  const bool isDirect = request.starts_with('\n');
  const std::int64_t boundMs =
      worst_case::kDoneMs + (isDirect ? kConnectBoundMs : std::atoi(request.c_str()));
  std::string address;
  Within("GetDeviceIp", boundMs, [&] { address = lanvoss_->GetDeviceIp(request); });
  return address;
}

// Runs an operation. It must end in time, and only the planted exception may leave it.
void NthRun::Within(const char* operation, std::int64_t boundMs,
                    const std::function<void()>& body) {
  std::printf("== %s\n", operation);
  const std::int32_t begun = time_->Clock();
  std::string thrown;
  try {
    body();
  } catch (const std::exception& error) {
    thrown = error.what();
  } catch (...) {
    thrown = "something that is not a std::exception";
  }
  if (!thrown.empty()) {
    ++result_.errors;
    std::printf("== %s throws: %s\n", operation, thrown.c_str());
    Require(isPlanted_ && thrown == kPlantedText, "it was not planted");
  }
  const std::int32_t took = time_->Clock() - begun;
  Require(took <= boundMs, std::string(operation) + " took " + std::to_string(took) +
                               " ms, more than " + std::to_string(boundMs));
}

void NthRun::Require(bool holds, const std::string& what) {
  if (!holds) {
    std::printf("VIOLATED: %s\n", what.c_str());
    result_.violated = true;
  }
}

}  // namespace lanvoss::nth
