// A host as others write it: the public header and the shared library, nothing else.
#include <cstdio>

#include "lanvoss/lanvoss.h"

int main() {
  static int notifications = 0;
  const auto lanvoss =
      getLanvossPtr([](std::string, std::string) { ++notifications; }, "/nonexistent");
  const std::string addresses = lanvoss->GetDeviceIp("Cam-90A4");
  std::printf("%s after %d notifications\n", addresses.c_str(), notifications);
  return addresses == "192.168.137.1,192.168.137.94" && notifications > 0 ? 0 : 1;
}
