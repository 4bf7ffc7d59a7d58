#include "stages/ledger_report.h"

#include <cstdio>
#include <gtest/gtest.h>

namespace lanvoss::test {
namespace {

struct Sums {
  unsigned tests = 0;
  unsigned long long objects = 0;
  unsigned long long addRefs = 0;
  unsigned long long releases = 0;
};
Sums sums;

class SumsPrinter final : public testing::Environment {
 public:
  void TearDown() override {
    std::printf("%u tests: %llu platform objects, %llu references taken, %llu released\n",
                sums.tests, sums.objects, sums.addRefs, sums.releases);
  }
};

// Owned by the test framework.
const auto* const printer = testing::AddGlobalTestEnvironment(new SumsPrinter);

}  // namespace

void ExpectClean(const fake_winrt::Ledger& ledger) {
  EXPECT_EQ(ledger.created, ledger.destroyed);
  for (const std::string& fault : ledger.faults) {
    ADD_FAILURE() << fault;
  }
  ++sums.tests;
  sums.objects += ledger.created;
  sums.addRefs += ledger.addRefs;
  sums.releases += ledger.releases;
}

}  // namespace lanvoss::test
