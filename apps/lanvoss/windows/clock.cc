#include "clock.h"

namespace lanvoss::program {

std::tm LocalTime(std::time_t time) {
  std::tm local{};
  localtime_s(&local, &time);
  return local;
}

}  // namespace lanvoss::program
