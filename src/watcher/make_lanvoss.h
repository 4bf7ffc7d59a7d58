// Makes the library's object over a platform. Each shipped library defines `getLanvossPtr` with it.
#pragma once

#include <memory>
#include <string>

#include "lanvoss/lanvoss.h"

#include "platform/platform.h"

namespace lanvoss {

// As `getLanvossPtr`, on the platform that is given.
std::shared_ptr<LanvossInterface> MakeLanvoss(platform::Platform platform, NotifyCallback notify,
                                              std::string directory);

}  // namespace lanvoss
