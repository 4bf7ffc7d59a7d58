// The bare interface, without lanvoss/client.h. Here the host itself has to see to this:
//  - it makes one request after the other: two at once can end with each other's address;
//  - it catches what the operations throw;
//  - it reads the log to know why there is no link;
//  - it ends a request that takes too long, by AbortConnect and StopWatch on another thread.
#include <cstdio>
#include <exception>
#include <string>

#include "lanvoss/lanvoss.h"

// Called on several threads at once, and without an argument of the host's own. It must return
// soon.
static void OnNotify(std::string kind, std::string message) {
  if (kind == "deviceip") {
    std::printf("link to %s is up\n", message.c_str());
  }
}

int main() {
  try {
    const auto lanvoss = getLanvossPtr(&OnNotify, "");    // throws when there is no radio
    std::string pair = lanvoss->GetDeviceIp("Cam-7F21");  // may block for 3 minutes
    if (pair.empty()) {
      pair = lanvoss->GetDeviceIp("Cam-7F21");  // the end of an older link may end the first
    }
    std::printf("local,remote: %s\n", pair.c_str());  // empty: no link came up
    lanvoss->DisConnect("");
    return pair.empty() ? 1 : 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
