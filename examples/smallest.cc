// The smallest host: finds the device Cam-7F21, pairs and connects it, and prints the addresses.
#include <cstdio>
#include <exception>

#include "lanvoss/client.h"

int main() {
  try {
    lanvoss::Client client;  // the device cache is in the current directory
    const lanvoss::Outcome outcome = client.Connect("Cam-7F21");  // 2 minutes at most
    if (!outcome) {
      std::fprintf(stderr, "%s\n", lanvoss::Explain(outcome, "Cam-7F21").c_str());
      return 1;
    }
    std::printf("local,remote: %s,%s\n", outcome.link->local.c_str(), outcome.link->remote.c_str());
  } catch (const std::exception& error) {  // there is no radio
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
