// The smallest host: finds the device Cam-7F21, pairs and connects it, and prints the addresses.
#include <cstdio>

#include "lanvoss/lanvoss.h"

// Called on the library's threads too: keep it short.
static void OnNotify(std::string kind, std::string message) {
  if (kind == "deviceip") {
    std::printf("link to %s is up\n", message.c_str());
  }
}

int main() {
  const auto lanvoss = getLanvossPtr(&OnNotify, "");          // cache in the current directory
  const std::string pair = lanvoss->GetDeviceIp("Cam-7F21");  // blocks for 100 s at most
  std::printf("local,remote: %s\n", pair.c_str());            // empty: no link came up
  lanvoss->DisConnect("");
}
