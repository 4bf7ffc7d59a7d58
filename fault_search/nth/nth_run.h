// One run: a host with its object among devices, and the rules that must hold whatever fails.
//
// Standard output is the log of the run. A broken rule is a line in it too.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "backends/simulated/air.h"
#include "backends/simulated/virtual_time.h"
#include "failing_core.h"
#include "recording_host.h"

namespace lanvoss::nth {

inline constexpr char kCameraName[] = "Cam";
inline constexpr char kOtherName[] = "Other";

// How often the host's loop, a check and a request, may have to be run until there is a link: a
// device still held from before is closed by the first request, which ends there.
inline constexpr unsigned kMostRequests = 2;

struct Plan {
  Failure failure = Failure::kRadioError;
  unsigned nth = 1;
  bool lasts = false;  // all later steps fail too
  std::uint64_t seed = 1;
};

struct Result {
  bool failed = false;  // the script has reached the n-th step
  bool violated = false;
  unsigned errors = 0;    // exceptions that reached the host
  unsigned requests = 0;  // until there was a link again
};

class NthRun {
 public:
  using Script = void (*)(NthRun& run);

  // Starts with a cache of one device in `directory`.
  NthRun(const Plan& plan, std::filesystem::path directory);
  NthRun(const NthRun&) = delete;
  NthRun& operator=(const NthRun&) = delete;

  Result Play(Script script);

  // For scripts: the object's operations, each within its bound of time.
  void StartWatch(const std::string& name);
  void StopWatch();
  std::string GetDeviceIp(const std::string& request);
  void AbortConnect();
  void DisConnect();
  void Unpair(const std::string& name);
  void PingCheck();
  void Advance(std::uint32_t milliseconds) { time_->Sleep(milliseconds); }
  // And what the camera does.
  void Do(simulated::Act act);

 private:
  void OnNotify(const std::string& kind, const std::string& message);

  void LetPlatformFail();
  void Open();
  void Close();
  void Recover();
  void MeetNewcomer();
  void CheckCache();
  void Within(const char* operation, std::int64_t boundMs, const std::function<void()>& body);
  void Require(bool holds, const std::string& what);

  const Plan plan_;
  const std::filesystem::path directory_;
  test::RecordingHost host_;
  const std::shared_ptr<simulated::VirtualTime> time_;
  simulated::Air air_;
  const simulated::PeerHandle camera_;
  std::shared_ptr<LanvossInterface> lanvoss_;
  bool isPlanted_ = true;         // else nothing may fail any more
  bool mayNotify_ = false;        // there is an object
  std::set<std::string> loaded_;  // the devices that the latest object knew from its cache
  Result result_;
};

}  // namespace lanvoss::nth
