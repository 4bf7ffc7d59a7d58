#include "raw_sockets.h"

#include <filesystem>
#include <system_error>

namespace lanvoss::program {

std::string HowToAllowRawSockets() {
  std::error_code unknown;
  const auto program = std::filesystem::read_symlink("/proc/self/exe", unknown);
  return "give it with: sudo setcap cap_net_raw+ep " + program.string();
}

}  // namespace lanvoss::program
