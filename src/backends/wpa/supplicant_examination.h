// What hinders a link, as far as wpa_supplicant itself knows.
#pragma once

#include <string>
#include <vector>

#include "backends/wpa/supplicant.h"
#include "platform/finding.h"

namespace lanvoss::wpa {

// `interface`: the adapter's. `configuration`: the file that this wpa_supplicant was started with;
// empty when it has none.
std::vector<platform::Finding> ExamineSupplicant(const Supplicant& supplicant,
                                                 const std::string& interface,
                                                 const std::string& configuration);

}  // namespace lanvoss::wpa
