// Decides when wpa_supplicant looks for devices: while a watcher's pass runs and no negotiation is
// under way, which a command to stop looking would end without a word.
#pragma once

#include <mutex>

#include "backends/wpa/supplicant.h"

namespace lanvoss::wpa {

// Each search ends by itself some time after its pass, should nobody be left to end it.
//
// On the three channels where devices listen, which finds them in tenths of a second.
inline constexpr char kQuickFind[] = "P2P_FIND 20 type=social";
// On all channels first, for seconds in which nothing is told, and then on those three and one more
// in each round: finds devices that own a group too.
inline constexpr char kWideFind[] = "P2P_FIND 20 type=progressive";
inline constexpr char kStopFind[] = "P2P_STOP_FIND";

class Finder {
 public:
  explicit Finder(const Supplicant& supplicant) : supplicant_(supplicant) {}

  // A pass begins: whatever is in range is told again. False: wpa_supplicant refuses to look.
  bool BeginPass();
  // What the pass has not found by now may be on another channel.
  void Widen();
  void EndPass();

  // As long as one lives nothing is looked for; passes that run meanwhile go on afterwards.
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
  // Guards nothing: whoever gives a command holds it, so that commands have an order.
  std::mutex switching_;
  std::mutex mutex_;  // guards everything below
  int passes_ = 0;
  int pauses_ = 0;
  bool finds_ = false;
  const char* find_ = kQuickFind;  // how the pass looks by now
};

}  // namespace lanvoss::wpa
