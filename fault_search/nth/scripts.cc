#include "scripts.h"

#include <string>

namespace lanvoss::nth {
namespace {

// Longer than a pass of the watcher and its stop, in milliseconds.
constexpr std::uint32_t kPassMs = 2'500;

const std::string kByName = kCameraName;
const std::string kDirectly = "\n" + kByName;
const std::string kAfterGap = "3000\n" + kByName;

void ConnectByName(NthRun& run) {
  run.GetDeviceIp(kByName);
  run.PingCheck();
}

void ConnectDirectly(NthRun& run) {
  run.StartWatch("");
  run.Advance(kPassMs);
  run.GetDeviceIp(kDirectly);
}

void Recover(NthRun& run) {
  run.GetDeviceIp(kByName);
  run.Do(simulated::Act::kGoSilent);
  run.PingCheck();
  run.GetDeviceIp(kByName);
}

void Disconnect(NthRun& run) {
  run.GetDeviceIp(kByName);
  run.DisConnect();
  run.GetDeviceIp(kAfterGap);
  run.AbortConnect();
  run.DisConnect();
}

void Unpair(NthRun& run) {
  run.GetDeviceIp(kByName);
  run.Unpair(kByName);
  run.Advance(kPassMs);
  run.GetDeviceIp(kByName);
}

void WatchAll(NthRun& run) {
  run.StartWatch("");
  run.Advance(kPassMs);
  run.StopWatch();
}

void WatchForOne(NthRun& run) {
  run.StartWatch(kOtherName);
  run.Advance(kPassMs);
  run.StopWatch();
}

void KeepWatching(NthRun& run) {
  run.StartWatch(kDirectly);
  run.Advance(kPassMs);
  run.Do(simulated::Act::kDisappear);
  run.Advance(kPassMs);
  run.AbortConnect();
  run.StopWatch();
}

constexpr NamedScript kScripts[] = {
    {"connect by name", ConnectByName},
    {"connect directly", ConnectDirectly},
    {"recover", Recover},
    {"disconnect", Disconnect},
    {"unpair", Unpair},
    {"watch all", WatchAll},
    {"watch for one", WatchForOne},
    {"keep watching", KeepWatching},
};

}  // namespace

std::span<const NamedScript> Scripts() { return kScripts; }

}  // namespace lanvoss::nth
