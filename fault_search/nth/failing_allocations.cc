// The core's operator new. The linker directs every call of it in this module to this one;
// the core uses no other form.
#include <cstddef>

#include "failing_core.h"

void* RealNew(std::size_t size) __asm__("__real__Znwm");
void* FailingNew(std::size_t size) __asm__("__wrap__Znwm");

void* FailingNew(std::size_t size) {
  using namespace lanvoss::nth;
  if (IsDue(Failure::kAllocation)) {
    throw PlantedBadAlloc();
  }
  return RealNew(size);
}
