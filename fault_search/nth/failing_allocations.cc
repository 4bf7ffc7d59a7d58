// The core's operator new. The linker leads every call of it here that is made in this module;
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
