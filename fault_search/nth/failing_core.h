// What the program asks of the failing core: an object, and which step fails.
//
// A step is one call across the seam to the radio, one operation on the cache file or one
// allocation in the core's code, as the failure has it. Nothing here is locked: on seeded
// virtual time one thread runs at a time.
#pragma once

#include <memory>
#include <new>
#include <string>

#include "lanvoss/lanvoss.h"

#include "platform/platform.h"

namespace lanvoss::nth {

enum class Failure {
  kRadioError,      // a platform::Error
  kRadioCancelled,  // a platform::CancelledError
  kRadioForeign,    // an exception that is not the platform's
  kFile,
  kAllocation,
};

// What every planted exception says of itself.
inline constexpr char kPlantedText[] = "planted failure";

struct PlantedBadAlloc : std::bad_alloc {
  const char* what() const noexcept override { return kPlantedText; }
};

// An object of the failing core.
LANVOSS_API std::shared_ptr<LanvossInterface> MakeFailing(platform::Platform platform,
                                                          NotifyCallback notify,
                                                          std::string directory);

// Lets the `nth` step from now on fail, and all later ones when it lasts.
LANVOSS_API void Plant(Failure failure, unsigned nth, bool lasts);
// Nothing fails any more.
LANVOSS_API void Unplant();
// Whether the planted step has come.
LANVOSS_API bool HasFailed();
// The steps of this thread do not count.
LANVOSS_API void ExemptThisThread();
// Counts a step of this failure. Whether it has to fail.
LANVOSS_API bool IsDue(Failure failure);

}  // namespace lanvoss::nth
