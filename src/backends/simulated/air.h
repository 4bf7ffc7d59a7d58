// The simulated air: the devices in range, and the platform that sees them.
//
//   auto time = VirtualTime::Seeded(1);
//   Air air(time, time);
//   PeerHandle camera = air.Add({.name = u"Cam-7F21", .pairMs = 1200});
//   air.After(5000, [&] { camera.DropLink(); });
//   air.faults().FailNth(Call::kWatcherStart, 2);
//   ... give air.Radio() to the library ...
//
// It is strict about the platform's rules: which status allows Start and Stop, events on threads
// of its own, Stopped after Stop. Everything here may be called from any thread that takes part in
// the System's time, also from inside handlers.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "backends/events/threads.h"
#include "backends/simulated/faults.h"
#include "backends/simulated/peer.h"
#include "platform/platform.h"

namespace lanvoss::simulated {

class AirState;

// The settings of the latest pairing with a device, as the platform received them.
struct PairingRequest {
  platform::DevicePairingKinds kinds = platform::DevicePairingKinds::None;
  platform::DevicePairingProtectionLevel protection =
      platform::DevicePairingProtectionLevel::Default;
  std::int16_t groupOwnerIntent = -1;
  platform::WiFiDirectPairingProcedure procedure = platform::WiFiDirectPairingProcedure::Invitation;
};

// One device of the air. Cheap to copy; valid while the air exists.
class PeerHandle {
 public:
  PeerHandle(AirState& air, std::size_t index) : air_(&air), index_(index) {}

  void Appear() const { Do(Act::kAppear); }
  void Disappear() const { Do(Act::kDisappear); }
  void Rename(std::u16string newName) const { Do(Act::kRename, std::move(newName)); }
  void GoSilent() const { Do(Act::kGoSilent); }
  void Answer() const { Do(Act::kAnswer); }
  void DropLink() const { Do(Act::kDropLink); }
  void Do(Act act, std::u16string newName = {}) const;

  bool IsPaired() const;
  unsigned Pairings() const;      // pairings begun
  unsigned OpenRequests() const;  // open requests begun
  unsigned LinksOpened() const;   // open requests that gave a link
  unsigned LinksUp() const;       // links to it that are up now
  PairingRequest LatestPairing() const;
  std::string Id() const;  // in UTF-8

 private:
  AirState* air_;
  std::size_t index_;
};

class Air {
 public:
  // `seed` decides the faults that come by chance and the echoes that are answered.
  Air(std::shared_ptr<platform::System> system, std::shared_ptr<events::Threads> threads,
      Habits habits = {}, std::uint64_t seed = 1);
  // The air exists, and its scripts run, as long as this object or anything of its radio is held.
  ~Air();

  // The platform for the library: the radio, and the system, whose echo requests go to the devices
  // of this air.
  std::shared_ptr<platform::WiFiDirect> Radio() const;
  std::shared_ptr<platform::System> System() const;

  PeerHandle Add(Peer peer);
  // Runs `action` on a thread of the air; it must not block.
  void After(std::uint32_t delayMs, std::function<void()> action);
  void SetHabits(const Habits& habits);
  Faults& faults();

  // Every watcher that runs ends as Aborted.
  void AbortWatchers();
  void AbortWatchersAfter(std::uint32_t delayMs);
  // Ends every pairing and open request that hangs; from now on none hangs.
  void ReleaseHangs();

  // Platform objects that are still held; 0 when nothing has leaked.
  unsigned LiveObjects() const;
  // Exceptions that left an event handler, which a platform reports and survives.
  unsigned EscapedExceptions() const;

 private:
  std::shared_ptr<AirState> air_;
};

}  // namespace lanvoss::simulated
