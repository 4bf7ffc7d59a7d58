#include "watcher/status_names.h"

#include <cstddef>

namespace lanvoss {
namespace {

template <std::size_t kCount>
std::string NameIn(const char* const (&names)[kCount], std::uint32_t value) {
  return value < kCount ? names[value] : std::to_string(value);
}

}  // namespace

std::string WatcherStatusName(std::uint32_t status) {
  static constexpr const char* kNames[] = {"Created",  "Started", "EnumerationCompleted",
                                           "Stopping", "Stopped", "Aborted"};
  return NameIn(kNames, status);
}

std::string PairingStatusName(std::int32_t status) {
  static constexpr const char* kNames[] = {"Paired",
                                           "NotReadyToPair",
                                           "NotPaired",
                                           "AlreadyPaired",
                                           "ConnectionRejected",
                                           "TooManyConnections",
                                           "HardwareFailure",
                                           "AuthenticationTimeout",
                                           "AuthenticationNotAllowed",
                                           "AuthenticationFailure",
                                           "NoSupportedProfiles",
                                           "ProtectionLevelCouldNotBeMet",
                                           "AccessDenied",
                                           "InvalidCeremonyData",
                                           "PairingCanceled",
                                           "OperationAlreadyInProgress",
                                           "RequiredHandlerNotRegistered",
                                           "RejectedByHandler",
                                           "RemoteDeviceHasAssociation",
                                           "Failed"};
  return NameIn(kNames, static_cast<std::uint32_t>(status));
}

std::string ConnectionStatusName(std::int32_t status) {
  static constexpr const char* kNames[] = {"Disconnected", "Connected"};
  return NameIn(kNames, static_cast<std::uint32_t>(status));
}

}  // namespace lanvoss
