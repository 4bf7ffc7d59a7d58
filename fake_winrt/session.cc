#include "session.h"

#include <cstdlib>

#include "backends/simulated/demo.h"
#include "backends/simulated/scenario_file/scenario_file.h"
#include "backends/windows/windows_system.h"

namespace lanvoss::fake_winrt {
namespace {

constexpr const char* kScenarioVariable = "LANVOSS_FAKE_WINRT_SCENARIO";

simulated::Scenario OwnScenario() {
  const char* const file = std::getenv(kScenarioVariable);
  return file == nullptr ? simulated::DemoScenario() : simulated::LoadScenario(file);
}

std::unique_ptr<Session> OwnSession() {
  const simulated::Scenario scenario = OwnScenario();
  const auto platform = simulated::CreatePlatform(windows::CreateSystem(), scenario);
  auto session = std::make_unique<Session>(platform.wifiDirect, events::RealThreads());
  session->SetHabits(scenario.habits);
  return session;
}

// Outlives the process's destructors, which may still release objects.
struct Stage {
  std::mutex mutex;  // guards everything below
  std::vector<std::unique_ptr<Session>> sessions;
  Session* current = nullptr;
};

Stage& TheStage() {
  static Stage& stage = *new Stage;
  return stage;
}

// The stage must be locked.
Session& Enter(Stage& stage, std::unique_ptr<Session> session) {
  stage.current = session.get();
  stage.sessions.push_back(std::move(session));
  return *stage.current;
}

}  // namespace

Session::Session(std::shared_ptr<platform::WiFiDirect> radio,
                 std::shared_ptr<events::Threads> threads)
    : radio_(std::move(radio)), threads_(std::move(threads)) {}

std::shared_ptr<platform::WiFiDirect> Session::Radio() {
  const std::lock_guard lock(mutex_);
  return radio_;
}

void Session::Keep(std::unique_ptr<FakeObject> shell) {
  const std::lock_guard lock(mutex_);
  shells_.push_back(std::move(shell));
}

void Session::StartThread(std::string name, std::function<void()> body) {
  std::shared_ptr<events::Threads> threads;
  {
    const std::lock_guard lock(mutex_);
    threads = threads_;
  }
  auto thread = threads->Start(std::move(name), std::move(body));
  const std::lock_guard lock(mutex_);
  running_.push_back(std::move(thread));
}

void Session::AddFault(std::string fault) {
  const std::lock_guard lock(mutex_);
  faults_.push_back(std::move(fault));
}

void Session::SetHabits(const simulated::Habits& habits) {
  const std::lock_guard lock(mutex_);
  habits_ = habits;
}

simulated::Habits Session::CurrentHabits() {
  const std::lock_guard lock(mutex_);
  return habits_;
}

// It may lie where one lay that was closed.
void Session::NoteOpened(const platform::WiFiDirectDevice* device) {
  const std::lock_guard lock(mutex_);
  closed_.erase(device);
}

void Session::NoteClosed(const platform::WiFiDirectDevice& device) {
  const std::lock_guard lock(mutex_);
  closed_.insert(&device);
}

bool Session::IsClosed(const platform::WiFiDirectDevice& device) {
  const std::lock_guard lock(mutex_);
  return closed_.contains(&device);
}

void Session::JoinThreads() {
  std::vector<std::unique_ptr<events::Thread>> running;
  const std::lock_guard lock(mutex_);
  running.swap(running_);
}

std::vector<FakeObject*> Session::Alive() {
  const std::lock_guard lock(mutex_);
  std::vector<FakeObject*> alive;
  for (const auto& shell : shells_) {
    if (shell->References() > 0) {
      alive.push_back(shell.get());
    }
  }
  return alive;
}

Ledger Session::Finish() {
  JoinThreads();
  for (FakeObject* leaked : Alive()) {
    leaked->Abandon();
  }
  std::shared_ptr<platform::WiFiDirect> radio;
  std::shared_ptr<events::Threads> threads;
  {
    const std::lock_guard lock(mutex_);
    radio.swap(radio_);
    threads.swap(threads_);
  }
  // Handlers that the radio held are released here, and may still add to the faults.
  radio.reset();

  const std::lock_guard lock(mutex_);
  std::erase_if(shells_, [](const auto& shell) { return shell->References() == 0; });
  return {created, destroyed, addRefs, releases, std::move(faults_)};
}

void BeginSession(std::shared_ptr<platform::WiFiDirect> radio,
                  std::shared_ptr<events::Threads> threads) {
  Stage& stage = TheStage();
  const std::lock_guard lock(stage.mutex);
  Enter(stage, std::make_unique<Session>(std::move(radio), std::move(threads)));
}

Session& CurrentSession() {
  Stage& stage = TheStage();
  const std::lock_guard lock(stage.mutex);
  if (stage.current != nullptr) {
    return *stage.current;
  }
  if (!stage.sessions.empty()) {
    throw platform::Error(platform::kErrorIllegalMethodCall, u"The fake has no radio any more");
  }
  return Enter(stage, OwnSession());
}

Ledger EndSession() {
  Session* ended = nullptr;
  {
    Stage& stage = TheStage();
    const std::lock_guard lock(stage.mutex);
    ended = std::exchange(stage.current, nullptr);
  }
  return ended == nullptr ? Ledger() : ended->Finish();
}

}  // namespace lanvoss::fake_winrt
