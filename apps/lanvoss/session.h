// One run of the program: its command, the client with the library's notifications, and all output
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
#include <utility>

#include "lanvoss/client.h"

#include "command_line.h"
#include "console.h"
#include "interruption.h"
#include "log/notification.h"
#include "outcome.h"
#include "platform/platform.h"
#include "radio.h"
#include "wake_up.h"

namespace lanvoss::program {

// Commands run on the thread that made the session. The library notifies on any thread, on several
// at once.
class Session {
 public:
  // `line` must outlive the session.
  explicit Session(const CommandLine& line) : line_(line) {}
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  // Runs the command and prints its outcome. Returns the exit code.
  int Run();

  const CommandLine& Line() const { return line_; }

  // The first call may look for a real one.
  const Radio& TheRadio();
  // Where the device cache is; empty: the current folder.
  std::string CacheFolder();

  // These two only for commands that use the library.
  Client& Library() { return *client_; }
  platform::System& System() { return *platform_.system; }

  // Whether the process may open raw sockets, or the radio needs none.
  bool CanProbe() const { return platform_.system->OpenIcmpSocket() != nullptr; }

  // The names that the watch finds from now on.
  void CollectNames();
  std::set<std::string> CollectedNames() const;

  bool IsInterrupted() const { return interruption_ && interruption_->Happened(); }
  // The interrupted operation has ended; the next one begins.
  void RenewInterruption() { interruption_->Renew(); }

  // Blocks for `time` at most. False: interrupted before the time was over.
  bool SleepUnlessStopped(std::chrono::milliseconds time);
  void WaitForInterrupt();
  // From now on an interrupt is the normal end of the command, and no error.
  void EndByInterrupt() { endsByInterrupt_ = true; }
  // Ends the waits of this thread. Every notification and interrupt wakes it, every line shown, and
  // every object that it was given to.
  const std::shared_ptr<WakeUp>& Change() const { return change_; }

  Console& Output() { return console_; }
  // What a terminal shows below the output: the progress of the operation that runs, or a text of
  // the command's. An empty one takes no line.
  void ShowProgress() { SetStatus(std::nullopt); }
  void ShowStatus(std::string status) { SetStatus(std::move(status)); }
  // One result, as text or as {"time": ..., "kind": "result", "command": "keep", ...facts}. Any
  // thread may call it.
  void PrintResult(const std::string& text, const JsonObject& facts);

 private:
  Outcome RunOverLibrary();
  Outcome TryCommand();
  int PrintOutcome(Outcome outcome);
  void OpenConsole();
  void OpenClient();
  void SetRunning(Client* client);
  void SetStatus(std::optional<std::string> status);
  std::string Status() const;
  void SaveTimeline();

  void OnInterrupt();
  void OnNotification(const lanvoss::Notification& notification);
  void Record(log::Notification notification);
  void PrintNotification(const log::Notification& notification);

  const CommandLine& line_;

  mutable std::mutex mutex_;   // guards the five members after it
  Client* running_ = nullptr;  // the client, while operations may run
  bool collectsNames_ = false;
  std::set<std::string> collectedNames_;
  std::deque<log::Notification> recorded_;  // for the picture
  std::optional<std::string> status_;       // of the command; none: the progress is shown

  std::atomic<bool> endsByInterrupt_ = false;

  const std::shared_ptr<WakeUp> change_ = std::make_shared<WakeUp>();
  Console console_;
  std::optional<Interruption> interruption_;
  std::optional<Radio> radio_;  // none: it was not asked for
  platform::Platform platform_;
  std::unique_ptr<Client> client_;
};

}  // namespace lanvoss::program
