#include "session.h"

#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <future>
#include <stdexcept>
#include <system_error>
#include <thread>
#include <utility>

#include "backends/simulated/scenario_file/scenario_file.h"
#include "clock.h"
#include "commands/table.h"
#include "system.h"
#include "timeline/write_timeline.h"
#include "watcher/make_lanvoss.h"

namespace lanvoss::program {
namespace {

// More than an hour of watching; a link that is kept for a day must not fill the memory.
constexpr std::size_t kRecordedNotifications = 100'000;

// After an interrupt the end of the library's object is soon, unless the platform hangs.
constexpr std::chrono::seconds kQuickExit(2);
// Longer than the library needs when nothing hangs, which is about 15 seconds.
constexpr std::chrono::seconds kExitLimit(20);

// Empty for 0.
std::string Count(const char* what, std::size_t count) {
  return count == 0 ? "" : std::string(", ") + what + ": " + std::to_string(count);
}

// Guards the end of the library's object. That end waits for event handlers, and one can hang in a
// pairing that never ends. So `onSlow` is called after kQuickExit, and `leave` ends the process
// after kExitLimit.
class ExitTimeout {
 public:
  ExitTimeout(std::function<void()> onSlow, std::function<void()> leave)
      : limit_([ended = ended_.get_future(), onSlow = std::move(onSlow), leave = std::move(leave)] {
          if (ended.wait_for(kQuickExit) == std::future_status::ready) {
            return;
          }
          onSlow();
          if (ended.wait_for(kExitLimit - kQuickExit) == std::future_status::timeout) {
            leave();
          }
        }) {}
  ExitTimeout(const ExitTimeout&) = delete;
  ExitTimeout& operator=(const ExitTimeout&) = delete;
  ~ExitTimeout() {
    ended_.set_value();
    limit_.join();
  }

 private:
  std::promise<void> ended_;
  std::thread limit_;
};

}  // namespace

int Session::Run() {
  try {
    return PrintOutcome(line_.command->over == Over::kLibrary ? RunOverLibrary()
                                                              : line_.command->run(*this));
  } catch (const simulated::ScenarioError& error) {
    return PrintOutcome({kExitUsage, {}, error.what()});
  } catch (const ConsoleError& error) {
    return PrintOutcome({kExitUsage, {}, error.what()});
  } catch (const std::exception& error) {
    return PrintOutcome({kExitPlatform, {}, error.what()});
  }
}

Outcome Session::RunOverLibrary() {
  std::optional<simulated::Scenario> scenario;
  if (line_.scenarioFile) {
    scenario = simulated::LoadScenario(*line_.scenarioFile);
  }
  interruption_.emplace([this] { OnInterrupt(); });
  platform_ = CreatePlatform(TheRadio(), scenario);
  OpenConsole();
  if (!TheRadio().remark.empty()) {
    console_.Complain(TheRadio().remark);
  }
  OpenClient();

  Outcome outcome = TryCommand();
  {
    // The object logs its end. The result follows after that, as the last line.
    const ExitTimeout limit(
        [this] {
          if (IsInterrupted()) {
            console_.Complain("waiting for the platform; Ctrl-C again leaves now");
          }
        },
        [this, &outcome] { std::_Exit(PrintOutcome(outcome)); });
    SetRunning(nullptr);
    client_.reset();
    interruption_->Close();
  }
  return outcome;
}

Outcome Session::TryCommand() {
  Outcome outcome;
  try {
    outcome = line_.command->run(*this);
  } catch (const std::exception& error) {
    outcome = {kExitPlatform, {}, error.what()};
  }
  return IsInterrupted() && !endsByInterrupt_ ? Outcome{kExitAborted} : outcome;
}

void Session::OpenClient() {
  ClientOptions options;
  options.directory = CacheFolder();
  std::error_code refused;  // then there is no cache
  std::filesystem::create_directories(options.directory, refused);
  options.onNotification = [this](const lanvoss::Notification& notification) {
    OnNotification(notification);
  };
  client_ = std::make_unique<Client>(std::move(options),
                                     [this](NotifyCallback notify, const std::string& directory) {
                                       return MakeLanvoss(platform_, notify, directory);
                                     });
  SetRunning(client_.get());
}

// An interrupt before this has given nothing up yet.
void Session::SetRunning(Client* client) {
  const std::lock_guard lock(mutex_);
  running_ = client;
  if (client != nullptr && IsInterrupted()) {
    client->GiveUp();
  }
}

// On the thread that takes interrupts.
void Session::OnInterrupt() {
  if (!endsByInterrupt_) {
    console_.Complain("interrupted");
    const std::lock_guard lock(mutex_);
    if (running_ != nullptr) {
      running_->GiveUp();
    }
  }
  change_->Wake();
}

// The last output of a run: its outcome and, if requested, a picture of it.
int Session::PrintOutcome(Outcome outcome) {
  SaveTimeline();
  outcome.facts.AddNumber("exit", outcome.exitCode);
  if (!outcome.complaint.empty()) {
    outcome.facts.AddText("complaint", outcome.complaint);
  }
  PrintResult(outcome.result, outcome.facts);
  if (!outcome.complaint.empty()) {
    console_.Complain(outcome.complaint);
  }
  console_.Close();
  return outcome.exitCode;
}

void Session::PrintResult(const std::string& text, const JsonObject& facts) {
  if (!line_.json) {
    console_.Print(text);
    return;
  }
  JsonObject result = JsonObject()
                          .AddText("time", FormatTime(LocalTimeUs()))
                          .AddText("kind", "result")
                          .AddText("command", line_.command->name);
  if (radio_) {
    result.AddText("radio", radio_->name);
  }
  console_.Print(result.AddAll(facts).Json() + "\n");
}

// Those of simulated devices are in another one than those of real devices.
std::string Session::CacheFolder() {
  if (line_.directory) {
    return *line_.directory;
  }
  const std::string state = StateFolder();
  return state.empty() ? "" : state + "/" + TheRadio().name;
}

const Radio& Session::TheRadio() {
  if (!radio_) {
    radio_ = line_.scenarioFile ? SimulatedRadio() : ChooseRadio(line_.radio);
  }
  return *radio_;
}

// Starts a thread, so interrupts must be held before.
void Session::OpenConsole() {
  LogTarget log;
  if (line_.logFile) {
    log = {LogTarget::Kind::kFile, *line_.logFile};
  } else if (!line_.verbose || line_.json || line_.quiet) {
    log = {LogTarget::Kind::kDropped};
  }
  console_.Open(log, {.status = [this] { return line_.quiet ? "" : Status(); },
                      .onShown = [this] { change_->Wake(); }});
}

void Session::SetStatus(std::optional<std::string> status) {
  {
    const std::lock_guard lock(mutex_);
    status_ = std::move(status);
  }
  console_.Refresh();
}

// "12 s, devices: 4, passes: 2, opens: 1, looking for Cam-7F21"; empty while nothing runs.
std::string Session::Status() const {
  std::optional<Progress> progress;
  {
    const std::lock_guard lock(mutex_);
    if (status_) {
      return *status_;
    }
    progress = running_ == nullptr ? std::nullopt : running_->CurrentProgress();
  }
  if (!progress) {
    return {};
  }
  const auto elapsed = std::chrono::floor<std::chrono::seconds>(progress->elapsed);
  return std::to_string(elapsed.count()) + " s" + Count("devices", progress->devices) +
         Count("passes", progress->passes) + Count("opens", progress->opens) +
         (progress->phase.empty() ? "" : ", " + progress->phase);
}

void Session::CollectNames() {
  const std::lock_guard lock(mutex_);
  collectsNames_ = true;
}

std::set<std::string> Session::CollectedNames() const {
  const std::lock_guard lock(mutex_);
  return collectedNames_;
}

bool Session::SleepUnlessStopped(std::chrono::milliseconds time) {
  const auto end = WakeUp::Clock::now() + time;
  while (!IsInterrupted() && WakeUp::Clock::now() < end) {
    change_->WaitUntil(end);
  }
  return !IsInterrupted();
}

void Session::WaitForInterrupt() {
  while (!IsInterrupted()) {
    change_->Wait();
  }
}

void Session::OnNotification(const lanvoss::Notification& notification) {
  const log::Notification local = {LocalTimeUs(notification.time), notification.thread,
                                   notification.kind, notification.message};
  {
    const std::lock_guard lock(mutex_);
    if (collectsNames_ && notification.kind == "watch") {
      collectedNames_.insert(notification.message);
    }
    if (line_.timelineFile) {
      Record(local);
    }
  }
  if (line_.json && !line_.quiet) {
    PrintNotification(local);
  }
  console_.Refresh();
  change_->Wake();
}

// Under the lock. Keeps the latest ones.
void Session::Record(log::Notification notification) {
  notification.message = ToUtf8(notification.message);
  recorded_.push_back(std::move(notification));
  if (recorded_.size() > kRecordedNotifications) {
    recorded_.pop_front();
  }
}

void Session::PrintNotification(const log::Notification& notification) {
  console_.Print(JsonObject()
                     .AddText("time", FormatTime(notification.timeUs))
                     .AddNumber("thread", notification.thread)
                     .AddText("kind", notification.kind)
                     .AddText("message", notification.message)
                     .Json() +
                 "\n");
}

void Session::SaveTimeline() {
  std::vector<log::Notification> recorded;
  {
    const std::lock_guard lock(mutex_);
    recorded.assign(recorded_.begin(), recorded_.end());
  }
  if (recorded.empty()) {
    return;
  }
  try {
    timeline::WriteTimeline(recorded, *line_.timelineFile);
  } catch (const std::runtime_error& error) {
    console_.Complain(error.what());
  }
}

}  // namespace lanvoss::program
