// The platform of an object: one System and one radio.
#pragma once

#include <memory>

#include "platform/system.h"
#include "platform/wifi_direct.h"

namespace lanvoss::platform {

struct Platform {
  std::shared_ptr<System> system;
  std::shared_ptr<WiFiDirect> wifiDirect;
};

}  // namespace lanvoss::platform
