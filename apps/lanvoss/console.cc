#include "console.h"

#include <cstdio>

namespace lanvoss::program {

void Complain(const std::string& text) { std::fprintf(stderr, "lanvoss: %s\n", text.c_str()); }

int Report(const Outcome& outcome) {
  std::fputs(outcome.result.c_str(), stdout);
  std::fflush(stdout);
  if (!outcome.complaint.empty()) {
    Complain(outcome.complaint);
  }
  return outcome.exitCode;
}

}  // namespace lanvoss::program
