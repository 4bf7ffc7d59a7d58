// Lets any call across the seam to the radio fail on demand, and the opening of an ICMP socket or
// of a file: the n-th, all from the n-th on, or a share of them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <random>
#include <string>

#include "platform/error.h"

namespace lanvoss::simulated {

enum class Call {
  kGetDeviceSelector,
  kCreateWatcher,
  kCreateConnectionParameters,
  kFromIdAsync,
  kWatcherStatus,
  kWatcherStart,
  kWatcherStop,
  kWatcherSubscribe,
  kWatcherRevoke,
  kInformationId,
  kInformationName,
  kInformationPairing,
  kUpdateId,
  kIsPaired,
  kCustomPairing,
  kUnpairAsync,
  kGroupOwnerIntent,
  kPreferredPairingProcedure,
  kPairingRequestedSubscribe,
  kPairAsync,
  kPairingStatus,
  kPairingKind,
  kGetDeferral,
  kAccept,
  kConnectionStatus,
  kConnectionStatusSubscribe,
  kGetConnectionEndpointPairs,
  kEndpointPairAt,
  kHostNameOf,
  kDisplayName,
  kDeviceClose,
  // Of the system, which can give none and raises nothing.
  kOpenIcmpSocket,
  kOpenFile,
};
// Their number.
inline constexpr std::size_t kCalls = static_cast<std::size_t>(Call::kOpenFile) + 1;

struct Failure {
  enum class Kind {
    kError,      // platform::Error with the code and message below
    kCancelled,  // platform::CancelledError
    kOther,      // an exception that is not the platform's
    kNone,       // no exception; a call that can return none does so
  };
  Kind kind = Kind::kError;
  std::uint32_t hresult = platform::kErrorFail;
  std::u16string message = u"Unspecified error";
};

class Faults {
 public:
  explicit Faults(std::uint64_t seed) : random_(seed) {}

  // Calls are counted from the moment of the order; `nth` is 1 for the next one. A later order for
  // the same call replaces the earlier one.
  void FailNth(Call call, unsigned nth = 1, Failure failure = {});
  void FailFrom(Call call, unsigned nth = 1, Failure failure = {});
  // Each call fails with the given probability.
  void FailShare(Call call, double probability, Failure failure = {});
  // Runs `hook` at the beginning of every such call, whose failure it may still order; a way to get
  // between two steps.
  void OnCall(Call call, std::function<void()> hook);
  void Clear();

  // How often the call was made, failures included.
  unsigned Count(Call call) const;
  // How many calls have failed by order.
  unsigned Failures() const;

  // Made by the simulation at the start of each call. Raises the failure that is due; false: the
  // call has to return none.
  bool Enter(Call call);

 private:
  struct Order {
    unsigned from = 0;
    unsigned to = 0;
    double probability = 1.0;
    Failure failure;
  };
  void Place(Call call, unsigned first, unsigned count, double probability, Failure failure);

  mutable std::mutex mutex_;  // guards everything below
  std::mt19937_64 random_;
  std::map<Call, unsigned> counts_;
  unsigned failures_ = 0;
  std::map<Call, Order> orders_;
  std::map<Call, std::function<void()>> hooks_;
};

}  // namespace lanvoss::simulated
