// A case: the hosts, the devices, the platform and the faults that a seed generates.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "backends/simulated/faults.h"
#include "backends/simulated/peer.h"

namespace lanvoss::search {

// The scripts of the devices, and all hanging calls, have ended by then.
inline constexpr std::uint32_t kScriptsEndMs = 90'000;
// The longest time of a pairing, opening, closing or unpairing that does not hang.
inline constexpr std::uint32_t kLongestLatencyMs = 2'000;
// A pass of a platform that looks for devices at its beginning alone.
inline constexpr std::uint32_t kLongPassMs = 30'000;
// The longest delay of a late platform call.
inline constexpr std::uint32_t kLongestDelayMs = 3'000;

enum class Operation {
  kStartWatch,
  kStopWatch,
  kGetDeviceIp,
  kAbortConnect,
  kDisConnect,
  kUnpair,
  kPingCheck,
};

struct Step {
  std::uint32_t pauseMs = 0;  // before it
  Operation operation = Operation::kStopWatch;
  std::string argument = {};
};

// What the host does inside its callback.
struct Reaction {
  enum class Kind { kOperation, kLetGo, kThrow, kLetGoAndThrow };
  unsigned nth = 1;  // at which notification, counted from 1
  Kind kind = Kind::kLetGo;
  Step step = {};  // of kOperation
};

// A call across the seam that fails, or is late, now and then.
struct PlannedFault {
  simulated::Call call = simulated::Call::kFromIdAsync;
  double share = 0.0;
  std::uint32_t delayMs = 0;  // 0: it fails
  simulated::Failure failure = {};
};

struct TestCase {
  std::uint64_t seed = 0;
  simulated::Habits habits = {};
  std::vector<std::uint32_t> abortsAtMs = {};  // when a watcher that runs is aborted
  // The host wants the first one in the end, so that one can be reached when nothing fails.
  std::vector<simulated::Peer> peers = {};
  std::vector<PlannedFault> faults = {};
  std::vector<std::vector<Step>> hosts = {};  // each on its own thread
  std::vector<Reaction> reactions = {};
  std::string cache = {};  // the file at the beginning
  // Operations run on the bare object, while others may let it go.
  bool bare = false;
};

TestCase GenerateCase(std::uint64_t seed);

// Whether a pairing or an open request of the case hangs.
bool Hangs(const TestCase& testCase);

// One line for each part of the case.
std::vector<std::string> Describe(const TestCase& testCase);
std::string Describe(const Step& step);

}  // namespace lanvoss::search
