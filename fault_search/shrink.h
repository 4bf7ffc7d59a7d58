// Makes a failing case short.
#pragma once

#include "test_case.h"

namespace lanvoss::search {

// Leaves out one part of the case after the other as long as it still fails.
TestCase Shrink(TestCase testCase, bool free);

}  // namespace lanvoss::search
