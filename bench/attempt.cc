// A whole request for an address on a radio without latency: by the library, and by hand.
#include <benchmark/benchmark.h>
#include <chrono>
#include <semaphore>
#include <string>
#include <thread>
#include <utility>

#include "backends/events/threads.h"
#include "backends/posix/posix_system.h"
#include "bench_rig.h"
#include "devices.h"
#include "watcher/log_sink.h"

namespace lanvoss::bench {
namespace {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

constexpr std::chrono::microseconds kUsualWait(50);
constexpr char kDirectRequest[] = "\nCam";
constexpr char kStartedLine[] = "(watch) Start Watcher done";
// What a direct request logs.
constexpr const char* kDirectLines[] = {
    "(watch) Connect Dev for id,name=Cam id=WiFiDirect#02:00:00:00:00:00",
    "(watch) ConnDevice... name=Cam id=WiFiDirect#02:00:00:00:00:00",
    "(watch) RequestPairDeviceAsync ...",
    "(watch) RequestPairDeviceAsync done",
    "(watch) FromIdAsync ...",
    "(watch) FromIdAsync done dt:0ms",
    "(watch) Devices connected on L2 layer, connecting to name(Cam),time:0ms(1),watch:0ms(0),"
    "fromid:0ms(1) IPAddress: loc:192.168.137.1,remote:192.168.137.2",
};

Clock::time_point opened;  // when the platform completed the latest open request

void NoteTime(benchmark::State& state, Clock::time_point begun) {
  state.SetIterationTime(Seconds(Clock::now() - begun).count());
}

// A radio that notes when its open requests are completed.
class NotingRadio final : public platform::WiFiDirect {
 public:
  explicit NotingRadio(std::shared_ptr<platform::WiFiDirect> radio) : radio_(std::move(radio)) {}

  std::u16string GetDeviceSelector(platform::WiFiDirectDeviceSelectorType type) override {
    return radio_->GetDeviceSelector(type);
  }
  std::shared_ptr<platform::DeviceWatcher> CreateWatcher(
      const std::u16string& selector, const std::vector<std::u16string>& properties) override {
    return radio_->CreateWatcher(selector, properties);
  }
  std::shared_ptr<platform::WiFiDirectConnectionParameters> CreateConnectionParameters() override {
    return radio_->CreateConnectionParameters();
  }
  std::shared_ptr<platform::WiFiDirectDevice> FromIdAsync(const std::u16string& id) override {
    auto device = radio_->FromIdAsync(id);
    opened = Clock::now();
    return device;
  }

 private:
  const std::shared_ptr<platform::WiFiDirect> radio_;
};

// The device appears when the watcher runs. If it was found earlier, the library would stop the
// watcher while it starts it, count that as a start without effect, and pause before the next try.
struct AttemptRig {
  void OnNotify(const std::string& message) const {
    if (message == kStartedLine) {
      device.Appear();
    }
  }

  simulated::Air air{posix::CreateSystem(), events::RealThreads(), HabitsWithoutLatency()};
  simulated::PeerHandle device = air.Add(PeerWithoutLatency(u"Cam"));
  std::shared_ptr<platform::System> system = air.System();
  std::shared_ptr<platform::WiFiDirect> radio = std::make_shared<NotingRadio>(air.Radio());
  RecordingHost host{[this](const std::string&, const std::string& message) { OnNotify(message); },
                     RecordingHost::Records::kNothing};
};

// The host's object. It is made again for every request through the watcher, because only its end
// shows that the handlers of the last pass have ended.
class ByLibrary {
 public:
  ByLibrary() { Renew(); }

  void Renew() {
    lanvoss_.reset();
    air_.device.Disappear();
    lanvoss_ = Open({air_.system, air_.radio}, WorkDirectory::Path().string());
  }
  void Request(const char* request) {
    if (lanvoss_->GetDeviceIp(request).empty()) {
      std::abort();
    }
  }
  void LetGo() { lanvoss_->DisConnect(""); }

 private:
  AttemptRig air_;
  std::shared_ptr<LanvossInterface> lanvoss_;
};

// The same calls to the platform in the same order, except those that only stamp log lines.
class ByHand {
 public:
  ByHand() {
    watcher_->Added(
        [this](platform::DeviceWatcher& sender, std::shared_ptr<platform::DeviceInformation> info) {
          static_cast<void>(system_.WideToAnsi(info->Name()));
          id_ = system_.WideToUtf8(info->Id());
          static_cast<void>(system_.GetLocalTime());
          info_ = std::move(info);
          static_cast<void>(system_.Clock());
          sender.Stop();
          Connect();
        });
    watcher_->Stopped([this](platform::DeviceWatcher&) { stopped_.release(); });
    HideCamera();
    RequestFound();
    LetGoOfFound();
  }

  void HideCamera() { air_.device.Disappear(); }

  void RequestFound() {
    static_cast<void>(system_.Clock());
    done_->Reset();
    static_cast<void>(watcher_->Status());
    static_cast<void>(system_.Clock());
    watcher_->Start();
    static_cast<void>(system_.Clock());
    static_cast<void>(watcher_->Status());
    air_.device.Appear();
    Wait();
  }
  void RequestById() {
    static_cast<void>(system_.Clock());
    done_->Reset();
    Connect();
    Wait();
  }
  void LetGo() {
    status_->Reset();
    device_->Close();
    status_->Wait(platform::kWaitForever);
    device_.reset();
  }
  void LogDirectRequest() {
    for (const char* line : kDirectLines) {
      log_.WriteLog(line);
    }
  }
  void LetGoOfFound() {
    LetGo();
    stopped_.acquire();
  }

 private:
  void Connect() {
    const std::u16string id = system_.Utf8ToWide(id_);
    static_cast<void>(info_->Pairing()->IsPaired());
    static_cast<void>(system_.Clock());
    device_ = air_.radio->FromIdAsync(id);
    static_cast<void>(system_.Clock());
    device_->ConnectionStatusChanged([this](platform::WiFiDirectDevice&) { status_->Set(); });
    const auto pair = device_->GetConnectionEndpointPairs()->GetAt(0);
    const std::string local = system_.WideToUtf8(pair->LocalHostName()->DisplayName());
    const std::string remote = system_.WideToUtf8(pair->RemoteHostName()->DisplayName());
    static_cast<void>(system_.Clock());
    address_ = local + "," + remote;
    done_->Set();
    watcher_->Stop();
  }
  void Wait() {
    done_->Wait(platform::kWaitForever);
    benchmark::DoNotOptimize(address_);
  }

  AttemptRig air_;
  platform::System& system_ = *air_.system;
  const LogSink log_{system_, *air_.radio, std::make_shared<LifetimeGate>(system_),
                     &RecordingHost::OnNotify};
  std::binary_semaphore stopped_{0};
  std::unique_ptr<platform::Event> done_ = system_.CreateManualResetEvent(false);
  std::unique_ptr<platform::Event> status_ = system_.CreateManualResetEvent(false);
  std::shared_ptr<platform::DeviceWatcher> watcher_ = air_.radio->CreateWatcher(
      air_.radio->GetDeviceSelector(platform::WiFiDirectDeviceSelectorType::AssociationEndpoint),
      {platform::kInformationElements});
  std::string id_;
  std::string address_;
  std::shared_ptr<platform::DeviceInformation> info_;
  std::shared_ptr<platform::WiFiDirectDevice> device_;
};

void FoundByLibrary(benchmark::State& state) {
  ByLibrary host;
  for (auto _ : state) {
    host.Renew();
    const auto begun = Clock::now();
    host.Request(kCamera);
    NoteTime(state, begun);
    host.LetGo();
  }
}

void FoundByHand(benchmark::State& state) {
  ByHand host;
  for (auto _ : state) {
    host.HideCamera();
    const auto begun = Clock::now();
    host.RequestFound();
    NoteTime(state, begun);
    host.LetGoOfFound();
  }
}

void DirectByLibrary(benchmark::State& state) {
  ByLibrary host;
  host.Request(kCamera);
  host.LetGo();
  for (auto _ : state) {
    const auto begun = Clock::now();
    host.Request(kDirectRequest);
    NoteTime(state, begun);
    host.LetGo();
  }
}

void DirectByHand(benchmark::State& state, bool withLog) {
  ByHand host;
  for (auto _ : state) {
    const auto begun = Clock::now();
    host.RequestById();
    if (withLog) {
      host.LogDirectRequest();
    }
    NoteTime(state, begun);
    host.LetGo();
  }
}

// From the completion of the open request to the return of the request that waits for it.
void ReturnOfRequest(benchmark::State& state) {
  ByLibrary host;
  for (auto _ : state) {
    host.Renew();
    host.Request(kCamera);
    NoteTime(state, opened);
    host.LetGo();
  }
}

void ReturnByHand(benchmark::State& state) {
  ByHand host;
  for (auto _ : state) {
    host.HideCamera();
    host.RequestFound();
    NoteTime(state, opened);
    host.LetGoOfFound();
  }
}

// One event set by one thread for another that has waited for it as long as a request does.
void WakeUp(benchmark::State& state) {
  const auto system = posix::CreateSystem();
  const auto asked = system->CreateManualResetEvent(false);
  const auto answered = system->CreateManualResetEvent(false);
  Clock::time_point set;
  bool ended = false;
  std::jthread other([&] {
    while (asked->Wait(platform::kWaitForever) && !ended) {
      asked->Reset();
      std::this_thread::sleep_for(kUsualWait);
      set = Clock::now();
      answered->Set();
    }
  });
  for (auto _ : state) {
    asked->Set();
    answered->Wait(platform::kWaitForever);
    NoteTime(state, set);
    answered->Reset();
  }
  ended = true;
  asked->Set();
}

BENCHMARK(FoundByLibrary)->Name("found/library")->UseManualTime();
BENCHMARK(FoundByHand)->Name("found/by_hand")->UseManualTime();
BENCHMARK(DirectByLibrary)->Name("direct/library")->UseManualTime();
BENCHMARK_CAPTURE(DirectByHand, silent, false)->Name("direct/by_hand")->UseManualTime();
BENCHMARK_CAPTURE(DirectByHand, telling, true)->Name("direct/by_hand_with_log")->UseManualTime();
BENCHMARK(ReturnOfRequest)->Name("return/library")->UseManualTime();
BENCHMARK(ReturnByHand)->Name("return/by_hand")->UseManualTime();
BENCHMARK(WakeUp)->Name("return/wake_up")->UseManualTime();

}  // namespace
}  // namespace lanvoss::bench
