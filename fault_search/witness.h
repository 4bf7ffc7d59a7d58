// Records what happens in a case, from any thread.
#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "backends/simulated/virtual_time.h"
#include "invariants.h"
#include "test_case.h"

namespace lanvoss::search {

class Witness {
 public:
  // `loggedAtOnce`: nothing can happen between a step of the library and its line.
  Witness(const TestCase& testCase, simulated::VirtualTime& time, bool loggedAtOnce)
      : case_(testCase), time_(time), loggedAtOnce_(loggedAtOnce) {}

  // Records a notification. Returns what the host then does in its callback.
  std::optional<Reaction> OnNotify(const std::string& kind, const std::string& message);

  void OnObjectBegins();
  void OnObjectEnds();
  int Objects() const;
  // Time that the library does not cause: late platform calls, the host's callbacks.
  void Excuse(std::int64_t milliseconds);
  std::int64_t ExcusedMs() const;

  std::int32_t Clock() const { return time_.Clock(); }
  void Note(const std::string& event);
  // Nothing for an empty text.
  void Violate(const std::string& what);

  // From now on the host only listens.
  void StopReacting();
  unsigned LinkUps() const;

  // The calling thread's operation may wait for the end of an attempt. OnOperationEnds returns what
  // was wrong with the wait, or nothing.
  void OnOperationBegins();
  std::string OnOperationEnds();

  // Names by id, as the log has them.
  std::map<std::string, std::string> Devices() const;
  Lines Violations() const;
  Lines Events() const;

 private:
  // A thread inside an operation, that may wait for the end of an attempt.
  struct Wait {
    std::thread::id thread;
    std::optional<std::int32_t> begunAt = {};
    std::optional<std::int32_t> signalledAt = {};
  };

  void Learn(const std::string& info);
  void FollowWaits(const std::string& info);
  std::vector<Wait>::iterator OwnWait();

  const TestCase& case_;
  simulated::VirtualTime& time_;
  const bool loggedAtOnce_;
  mutable std::mutex mutex_;  // guards everything below
  int objects_ = 0;           // that live, or are being made
  unsigned notifications_ = 0;
  bool reacts_ = true;
  std::int64_t excusedMs_ = 0;
  unsigned linkUps_ = 0;
  bool isDown_ = false;  // the latest report about a link
  Lines events_;
  Lines violations_;
  std::map<std::string, std::string> devices_;
  std::vector<Wait> waits_;  // of operations inside another's callback too
};

}  // namespace lanvoss::search
