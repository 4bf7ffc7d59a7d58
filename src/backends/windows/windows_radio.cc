#include "backends/windows/windows_radio.h"

namespace lanvoss::windows {

std::shared_ptr<platform::WiFiDirect> CreateRadio(std::shared_ptr<platform::System>) { return {}; }

}  // namespace lanvoss::windows
