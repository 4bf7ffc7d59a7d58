#include "stories.h"

#include <string>

namespace lanvoss::nth {
namespace {

// Longer than a pass of the watcher and its stop, in milliseconds.
constexpr std::uint32_t kPassMs = 2'500;

const std::string kByName = kCameraName;
const std::string kDirectly = "\n" + kByName;
const std::string kAfterGap = "3000\n" + kByName;

void ConnectByName(World& world) {
  world.GetDeviceIp(kByName);
  world.PingCheck();
}

void ConnectDirectly(World& world) {
  world.StartWatch("");
  world.Pass(kPassMs);
  world.GetDeviceIp(kDirectly);
}

void Recover(World& world) {
  world.GetDeviceIp(kByName);
  world.Do(simulated::Act::kGoSilent);
  world.PingCheck();
  world.GetDeviceIp(kByName);
}

void Disconnect(World& world) {
  world.GetDeviceIp(kByName);
  world.DisConnect();
  world.GetDeviceIp(kAfterGap);
  world.AbortConnect();
  world.DisConnect();
}

void Unpair(World& world) {
  world.GetDeviceIp(kByName);
  world.Unpair(kByName);
  world.Pass(kPassMs);
  world.GetDeviceIp(kByName);
}

void WatchAll(World& world) {
  world.StartWatch("");
  world.Pass(kPassMs);
  world.StopWatch();
}

void WatchForOne(World& world) {
  world.StartWatch(kOtherName);
  world.Pass(kPassMs);
  world.StopWatch();
}

void KeepWatching(World& world) {
  world.StartWatch(kDirectly);
  world.Pass(kPassMs);
  world.Do(simulated::Act::kDisappear);
  world.Pass(kPassMs);
  world.AbortConnect();
  world.StopWatch();
}

constexpr NamedStory kStories[] = {
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

std::span<const NamedStory> Stories() { return kStories; }

}  // namespace lanvoss::nth
