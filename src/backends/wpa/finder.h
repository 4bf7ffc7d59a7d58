// Decides when wpa_supplicant searches for devices: while a pass of a watcher runs and no
// negotiation does. P2P_STOP_FIND would silently cancel a negotiation.
#pragma once

#include <mutex>

#include "backends/wpa/supplicant.h"

namespace lanvoss::wpa {

// Each search ends by itself some time after its pass, in case nothing else ends it.
//
// On the three channels where devices listen, which finds them in tenths of a second.
inline constexpr char kQuickFind[] = "P2P_FIND 20 type=social";
// First on all channels, for seconds without a report. Then on these three and one more in each
// round. This also finds devices that own a group.
inline constexpr char kWideFind[] = "P2P_FIND 20 type=progressive";
inline constexpr char kStopFind[] = "P2P_STOP_FIND";

class Finder {
 public:
  explicit Finder(const Supplicant& supplicant) : supplicant_(supplicant) {}

  // A pass begins: every device in range is reported again. False: wpa_supplicant refuses to
  // search.
  bool BeginPass();
  // What the pass has not found by now may be on another channel.
  void Widen();
  void EndPass();

  // While one exists there is no search. Passes that run meanwhile continue after it.
  class Pause {
   public:
    explicit Pause(Finder& finder) : finder_(finder) { finder_.ChangePauses(1); }
    ~Pause() { finder_.ChangePauses(-1); }
    Pause(const Pause&) = delete;
    Pause& operator=(const Pause&) = delete;

   private:
    Finder& finder_;
  };

 private:
  void ChangePauses(int by);
  bool Apply(bool again);

  const Supplicant& supplicant_;
  // Guards no field. Held during a command, so that commands have an order.
  std::mutex switching_;
  std::mutex mutex_;  // guards everything below
  int passes_ = 0;
  int pauses_ = 0;
  bool finds_ = false;
  const char* find_ = kQuickFind;  // how the pass looks by now
};

}  // namespace lanvoss::wpa
