#include "stage_time.h"

#include <string>

#include "environment.h"

namespace lanvoss::test {

bool IsTimeFree() { return Environment("LANVOSS_TEST_TIME") == "free"; }

std::shared_ptr<StageTime> NewTime() {
  const std::string seed = Environment("LANVOSS_TEST_SEED");
  return IsTimeFree() ? StageTime::Free() : StageTime::Seeded(seed.empty() ? 1 : std::stoull(seed));
}

}  // namespace lanvoss::test
