// The names that the platform's status values have in the log. A value without a name is written as
// an unsigned decimal number.
#pragma once

#include <cstdint>
#include <string>

namespace lanvoss {

std::string WatcherStatusName(std::uint32_t status);    // of a DeviceWatcherStatus
std::string PairingStatusName(std::int32_t status);     // of a DevicePairingResultStatus
std::string ConnectionStatusName(std::int32_t status);  // of a WiFiDirectConnectionStatus

}  // namespace lanvoss
