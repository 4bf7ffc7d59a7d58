#include "session.h"

#include <cstddef>
#include <cstdlib>
#include <functional>
#include <future>
#include <stdexcept>
#include <thread>
#include <utility>

#include "backends/simulated/scenario_file/scenario_file.h"
#include "clock.h"
#include "commands/table.h"
#include "radio.h"
#include "system.h"
#include "timeline/write_timeline.h"
#include "watcher/make_lanvoss.h"

namespace lanvoss::program {
namespace {

using log::LogEvent;
using log::LogLine;

// More than an hour of watching; a link that is kept for a day must not fill the memory.
constexpr std::size_t kRecordedNotifications = 100'000;

// Longer than the library needs when nothing hangs, which is about 15 seconds.
constexpr std::chrono::seconds kExitLimit(20);

std::atomic<Session*> currentSession = nullptr;

int NumberOfThisThread() {
  static std::atomic<int> latest = 0;
  thread_local const int number = ++latest;
  return number;
}

// Empty for 0.
std::string Count(const char* what, std::size_t count) {
  return count == 0 ? "" : std::string(", ") + what + ": " + std::to_string(count);
}

// Guards the end of the library's object. That end waits for event handlers, and one can hang in a
// pairing that never ends. So `leave` ends the process after kExitLimit.
class ExitTimeout {
 public:
  explicit ExitTimeout(std::function<void()> leave)
      : limit_([ended = ended_.get_future(), leave = std::move(leave)] {
          if (ended.wait_for(kExitLimit) == std::future_status::timeout) {
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

Session::Session(const CommandLine& line) : line_(line) { currentSession = this; }

Session::~Session() { currentSession = nullptr; }

int Session::Run() {
  try {
    return PrintOutcome(line_.command->over == Over::kObject ? RunOverObject()
                                                             : line_.command->run(*this));
  } catch (const simulated::ScenarioError& error) {
    return PrintOutcome({kExitUsage, {}, error.what()});
  } catch (const ConsoleError& error) {
    return PrintOutcome({kExitUsage, {}, error.what()});
  } catch (const std::exception& error) {
    return PrintOutcome({kExitPlatform, {}, error.what()});
  }
}

Outcome Session::RunOverObject() {
  std::optional<simulated::Scenario> scenario;
  if (line_.scenarioFile) {
    scenario = simulated::LoadScenario(*line_.scenarioFile);
  }
  interruption_.emplace([this] {
    console_.Complain("interrupted");
    change_->Wake();
  });
  platform_ = CreatePlatform(line_.radio, scenario);
  OpenConsole();
  object_ = MakeLanvoss(platform_, &NotifyCurrent, line_.directory);
  interruption_->Ends(object_);

  const Outcome outcome = TryCommand();
  {
    // The object logs its end. The result follows after that, as the last line.
    const ExitTimeout limit([this, &outcome] { std::_Exit(PrintOutcome(outcome)); });
    object_.reset();
    interruption_->Close();
  }
  return IsInterrupted() ? Outcome{kExitAborted} : outcome;
}

Outcome Session::TryCommand() {
  Outcome outcome;
  try {
    outcome = line_.command->run(*this);
  } catch (const std::exception& error) {
    outcome = {kExitPlatform, {}, error.what()};
  }
  return IsInterrupted() ? Outcome{kExitAborted} : outcome;
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
  console_.Print(JsonObject()
                     .AddText("time", FormatTime(LocalTimeUs()))
                     .AddText("kind", "result")
                     .AddText("command", line_.command->name)
                     .AddAll(facts)
                     .Json() +
                 "\n");
}

// Starts a thread, so interrupts must be held before.
void Session::OpenConsole() {
  LogTarget log;
  if (line_.logFile) {
    log = {LogTarget::Kind::kFile, *line_.logFile};
  } else if (line_.json || line_.quiet) {
    log = {LogTarget::Kind::kDropped};
  }
  console_.Open(log, {.statusLine = [this] { return line_.quiet ? "" : StatusLine(); },
                      .onShown = [this] { change_->Wake(); }});
}

// "12 s, devices: 4, passes: 2, opens: 1, looking for Cam-7F21"; empty while nothing runs.
std::string Session::StatusLine() const {
  const OperationStatus status = Status();
  if (status.isOver) {
    return {};
  }
  const auto elapsed =
      std::chrono::floor<std::chrono::seconds>(std::chrono::steady_clock::now() - status.begun);
  return std::to_string(elapsed.count()) + " s" + Count("devices", status.devices) +
         Count("passes", status.passes) + Count("opens", status.opens) +
         (status.phase.empty() ? "" : ", " + status.phase);
}

OperationStatus Session::Status() const {
  const std::lock_guard lock(mutex_);
  return status_;
}

std::vector<std::string> Session::ReportedNames() const {
  const std::lock_guard lock(mutex_);
  return reportedNames_;
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

void Session::WaitForWatch() {
  while (!IsInterrupted() && !Status().isWatchOver) {
    change_->Wait();
  }
}

void Session::NotifyCurrent(std::string kind, std::string message) {
  if (Session* const session = currentSession; session != nullptr) {
    session->OnNotify({LocalTimeUs(), NumberOfThisThread(), std::move(kind), std::move(message)});
  }
}

void Session::OnNotify(const Notification& notification) {
  const LogLine line = ParseLogLine(notification);
  {
    const std::lock_guard lock(mutex_);
    Apply(line, status_);
    if (line.event == LogEvent::kReported && knownNames_.insert(line.name).second) {
      reportedNames_.push_back(line.name);
      ++status_.devices;
    }
    if (collectsNames_ && notification.kind == "watch") {
      collectedNames_.insert(notification.message);
    }
    if (line_.timelineFile) {
      Record(notification);
    }
  }
  if (line.event == LogEvent::kProbing) {
    std::call_once(probed_, [this] { ComplainWithoutRightToProbe(); });
  }
  if (line_.json && !line_.quiet) {
    PrintNotification(notification);
  }
  change_->Wake();
}

// Under the lock. Keeps the latest ones.
void Session::Record(Notification notification) {
  notification.message = ToUtf8(notification.message);
  recorded_.push_back(std::move(notification));
  if (recorded_.size() > kRecordedNotifications) {
    recorded_.pop_front();
  }
}

void Session::PrintNotification(const Notification& notification) {
  console_.Print(JsonObject()
                     .AddText("time", FormatTime(notification.timeUs))
                     .AddNumber("thread", notification.thread)
                     .AddText("kind", notification.kind)
                     .AddText("message", notification.message)
                     .Json() +
                 "\n");
}

void Session::ComplainWithoutRightToProbe() {
  if (platform_.system->OpenIcmpSocket() == nullptr) {
    console_.Complain("no right to open raw sockets, so every device seems silent; fix: " +
                      HowToAllowRawSockets());
  }
}

void Session::SaveTimeline() {
  std::vector<Notification> recorded;
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

OperationScope::OperationScope(Session& session) : session_(session) {
  {
    const std::lock_guard lock(session_.mutex_);
    session_.status_ = {.begun = std::chrono::steady_clock::now(), .isOver = false};
    session_.reportedNames_.clear();
    session_.knownNames_.clear();
  }
  session_.console_.Refresh();
}

OperationScope::~OperationScope() {
  {
    const std::lock_guard lock(session_.mutex_);
    session_.status_.isOver = true;
  }
  session_.console_.Refresh();
}

}  // namespace lanvoss::program
