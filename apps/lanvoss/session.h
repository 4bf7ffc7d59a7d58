// One run of the program: its command, the library's object with its notifications, and all output
// of the program.
#pragma once

#include <atomic>
#include <chrono>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <unordered_set>
#include <vector>

#include "lanvoss/lanvoss.h"

#include "command_line.h"
#include "console.h"
#include "interruption.h"
#include "log/notification.h"
#include "log/operation_status.h"
#include "outcome.h"
#include "platform/platform.h"
#include "wake_up.h"

namespace lanvoss::program {

using log::Notification;
using log::OperationStatus;

// The library's callback has no context, so there is one session at a time. Commands run on the
// thread that made the session. The library notifies on any thread, on several at once.
class Session {
 public:
  // `line` must outlive the session.
  explicit Session(const CommandLine& line);
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;
  ~Session();

  // Runs the command and prints its outcome. Returns the exit code.
  int Run();

  const CommandLine& Line() const { return line_; }

  // Only for commands over an object.
  LanvossInterface& Object() { return *object_; }

  // Of the latest operation.
  OperationStatus Status() const;
  // In the order of their first report during that operation.
  std::vector<std::string> ReportedNames() const;

  // The names that the watch finds from now on.
  void CollectNames();
  std::set<std::string> CollectedNames() const;

  bool IsInterrupted() const { return interruption_ && interruption_->Happened(); }
  // The interrupted operation has ended; the next one begins.
  void RenewInterruption() { interruption_->Renew(); }

  // Blocks for `time` at most. False: interrupted before the time was over.
  bool SleepUnlessStopped(std::chrono::milliseconds time);
  // Blocks until the watch has ended, or until an interrupt.
  void WaitForWatch();
  // Ends the waits of this thread. Every notification and interrupt wakes it, every line shown, and
  // every object that it was given to.
  const std::shared_ptr<WakeUp>& Change() const { return change_; }

  Console& Output() { return console_; }
  // One result, as text or as {"time": ..., "kind": "result", "command": "keep", ...facts}.
  void PrintResult(const std::string& text, const JsonObject& facts);

 private:
  friend class OperationScope;

  Outcome RunOverObject();
  Outcome TryCommand();
  int PrintOutcome(Outcome outcome);
  void OpenConsole();
  std::string StatusLine() const;
  void SaveTimeline();
  void ComplainWithoutRightToProbe();

  static void NotifyCurrent(std::string kind, std::string message);
  void OnNotify(const Notification& notification);
  void Record(Notification notification);
  void PrintNotification(const Notification& notification);

  const CommandLine& line_;

  mutable std::mutex mutex_;  // guards the six members after it
  OperationStatus status_;
  std::vector<std::string> reportedNames_;
  std::unordered_set<std::string> knownNames_;  // the same names
  bool collectsNames_ = false;
  std::set<std::string> collectedNames_;
  std::deque<Notification> recorded_;  // for the picture

  const std::shared_ptr<WakeUp> change_ = std::make_shared<WakeUp>();
  Console console_;
  std::optional<Interruption> interruption_;
  platform::Platform platform_;
  std::shared_ptr<LanvossInterface> object_;
  std::once_flag probed_;
};

// An operation runs while one exists. There is one at a time.
class OperationScope {
 public:
  explicit OperationScope(Session& session);
  ~OperationScope();
  OperationScope(const OperationScope&) = delete;
  OperationScope& operator=(const OperationScope&) = delete;

 private:
  Session& session_;
};

}  // namespace lanvoss::program
