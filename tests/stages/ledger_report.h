// What the fake Windows Runtime has seen of the library.
#pragma once

#include "fake_winrt/fake_winrt.h"

namespace lanvoss::test {

// Expects that no reference was leaked or released twice, and that no rule was broken. The sums
// over all tests are printed when the program ends.
void ExpectClean(const fake_winrt::Ledger& ledger);

}  // namespace lanvoss::test
