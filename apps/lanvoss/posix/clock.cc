#include "clock.h"

namespace lanvoss::program {

std::tm LocalTime(std::time_t time) {
  std::tm local{};
  localtime_r(&time, &local);
  return local;
}

}  // namespace lanvoss::program
