// Lets the n-th step of every script fail, for every n, and checks that nothing lasting comes of
// it.
//
//   lanvoss_fail_nth [--seed S]
//
// One line a script and kind of failure; what does not hold comes with the log of its run.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "child.h"
#include "scripts.h"

namespace {

using namespace lanvoss::nth;

constexpr struct {
  Failure failure;
  const char* name;
} kFailures[] = {
    {Failure::kRadioError, "radio error"},
    {Failure::kRadioCancelled, "radio cancellation"},
    {Failure::kRadioForeign, "radio foreign exception"},
    {Failure::kFile, "cache file"},
    {Failure::kAllocation, "allocation"},
};

// False when something did not hold.
bool FailEach(const Child& child, const NamedScript& script, const Plan& plan,
              const std::string& failure) {
  const std::vector<Result> results = child.Play(script.play, plan);
  if (results.back().violated) {
    std::printf("%s, %s, n = %zu\n%s\n", script.name, failure.c_str(), results.size(),
                child.Log().c_str());
    return false;
  }
  unsigned errors = 0;
  unsigned requests = 0;
  for (const Result& result : results) {
    errors += result.errors;
    requests = std::max(requests, result.requests);
  }
  const std::size_t tried = results.size() - 1;  // the last run did not reach its step
  std::printf("%-17s %-32s %4zu tried, %4u errors reached the host, %u requests at most\n",
              script.name, failure.c_str(), tried, errors, requests);
  return tried > 0;
}

}  // namespace

int main(int argc, char** argv) {
  const bool isSeeded = argc == 3 && std::strcmp(argv[1], "--seed") == 0;
  if (argc != 1 && !isSeeded) {
    std::fputs("usage: lanvoss_fail_nth [--seed S]\n", stderr);
    return EXIT_FAILURE;
  }
  const std::uint64_t seed = isSeeded ? std::strtoull(argv[2], nullptr, 10) : 1;

  const Child child;
  bool holds = true;
  for (const NamedScript& script : Scripts()) {
    for (const auto& [failure, name] : kFailures) {
      for (const bool lasts : {false, true}) {
        const Plan plan{.failure = failure, .lasts = lasts, .seed = seed};
        holds &= FailEach(child, script, plan, name + std::string(lasts ? ", lasting" : ", once"));
        std::fflush(stdout);  // else the next child has it too
      }
    }
  }
  return holds ? EXIT_SUCCESS : EXIT_FAILURE;
}
