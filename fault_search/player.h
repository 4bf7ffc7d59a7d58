// Plays a case and reports the result.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "invariants.h"
#include "test_case.h"

namespace lanvoss::search {

struct Report {
  Lines violations;
  Lines events;  // what happened, with virtual times
  std::int64_t virtualMs = 0;
  std::uint64_t calls = 0;   // across the seam to the radio
  std::uint64_t faults = 0;  // of them failed or late
  std::uint64_t operations = 0;
  unsigned linkUps = 0;
  unsigned requests = 0;                    // until the link was up in the end
  std::int32_t toLinkMs = 0;                // that these took
  std::map<std::string, unsigned> reasons;  // of requests that did not bring it up
};

// `free`: the threads run side by side, and only rules that do not depend on their order are
// checked.
Report Play(const TestCase& testCase, bool free);

}  // namespace lanvoss::search
