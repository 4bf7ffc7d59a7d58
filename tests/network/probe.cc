// Probes one host on the real system. The last line of the output has the process and the result;
// the lines before are those of the probe.
#include <cstdio>

#include "backends/posix/posix_system.h"
#include "supervision/ping_host.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fputs("usage: lanvoss_probe HOST\n", stderr);
    return 2;
  }
  const auto system = lanvoss::posix::CreateSystem();
  const int replies = lanvoss::PingHost(*system, argv[1]);
  std::printf("process %u replies %d\n", system->ProcessId(), replies);
}
