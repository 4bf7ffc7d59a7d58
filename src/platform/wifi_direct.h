// The contract with the radio: watching for devices, pairing, links.
//
// Names, enum values and operations are the platform's; only what the library uses is here.
//
// Rules for every operation below
//  - It may be called from any thread, several at once.
//  - It raises platform::Error, and CancelledError where the platform cancels; nothing else but
//    std::bad_alloc.
//  - Texts are UTF-16. References are shared pointers; "may be none" says where one can be null.
//  - It returns at once unless "blocks" says otherwise.
//  - Releasing the last reference to an object may call into the platform, so it counts as a call.
//
// Rules for every handler
//  - It is called on a thread of the platform's, never on a thread that is inside an operation.
//  - Several may run at once, of one object as well as of many; they may block, for minutes.
//  - A handler that was under way when its subscription was revoked may still run afterwards.
//  - What leaves a handler as an exception the platform reports in its own way; it never ends the
//    process.
//  - The references that a handler receives are valid for the call.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/error.h"

namespace lanvoss::platform {

// Identifies a subscription to its event source; 0 is none.
using EventToken = std::int64_t;

template <typename Sender, typename Args>
using Handler = std::function<void(Sender& sender, Args& args)>;
template <typename Sender>
using PlainHandler = std::function<void(Sender& sender)>;

// ---- Pairing --------------------------------------------------------------------------------

enum class DevicePairingKinds : std::uint32_t {
  None = 0,
  ConfirmOnly = 1,
  DisplayPin = 2,
  ProvidePin = 4,
  ConfirmPinMatch = 8,
  ProvidePasswordCredential = 16,
};

enum class DevicePairingProtectionLevel : std::int32_t { Default = 0 };

enum class DevicePairingResultStatus : std::int32_t {
  Paired = 0,
  NotReadyToPair = 1,
  NotPaired = 2,
  AlreadyPaired = 3,
  ConnectionRejected = 4,
  TooManyConnections = 5,
  HardwareFailure = 6,
  AuthenticationTimeout = 7,
  AuthenticationNotAllowed = 8,
  AuthenticationFailure = 9,
  NoSupportedProfiles = 10,
  ProtectionLevelCouldNotBeMet = 11,
  AccessDenied = 12,
  InvalidCeremonyData = 13,
  PairingCanceled = 14,
  OperationAlreadyInProgress = 15,
  RequiredHandlerNotRegistered = 16,
  RejectedByHandler = 17,
  RemoteDeviceHasAssociation = 18,
  Failed = 19,
};

enum class WiFiDirectPairingProcedure : std::int32_t { GroupOwnerNegotiation = 0, Invitation = 1 };

// Settings of one pairing.
class WiFiDirectConnectionParameters {
 public:
  virtual ~WiFiDirectConnectionParameters() = default;

  // The wish to own the group, 0 to 15.
  virtual void GroupOwnerIntent(std::int16_t intent) = 0;
  virtual void PreferredPairingProcedure(WiFiDirectPairingProcedure procedure) = 0;
};

// Holds a pairing ceremony open; the ceremony continues when the last reference is released.
class Deferral {
 public:
  virtual ~Deferral() = default;
};

class DevicePairingRequestedEventArgs {
 public:
  virtual ~DevicePairingRequestedEventArgs() = default;

  virtual DevicePairingKinds PairingKind() = 0;
  virtual std::shared_ptr<Deferral> GetDeferral() = 0;
  // Accepts the ceremony without a PIN.
  virtual void Accept() = 0;
};

class DevicePairingResult {
 public:
  virtual ~DevicePairingResult() = default;

  virtual DevicePairingResultStatus Status() = 0;
};

class DeviceInformationCustomPairing {
 public:
  virtual ~DeviceInformationCustomPairing() = default;

  using PairingRequestedHandler =
      Handler<DeviceInformationCustomPairing, DevicePairingRequestedEventArgs>;
  // Subscribes; the subscription ends with this object.
  virtual EventToken PairingRequested(PairingRequestedHandler handler) = 0;
  // Runs the ceremony. Blocks until it has ended, without a time limit. Never none.
  virtual std::shared_ptr<DevicePairingResult> PairAsync(
      DevicePairingKinds kinds, DevicePairingProtectionLevel minProtectionLevel,
      std::shared_ptr<WiFiDirectConnectionParameters> settings) = 0;
};

class DeviceInformationPairing {
 public:
  virtual ~DeviceInformationPairing() = default;

  virtual bool IsPaired() = 0;
  virtual std::shared_ptr<DeviceInformationCustomPairing> Custom() = 0;
  // Starts to remove the system's pairing, and does not wait for the end.
  virtual void UnpairAsync() = 0;
};

// ---- Device enumeration ---------------------------------------------------------------------

enum class DeviceWatcherStatus : std::uint32_t {
  Created = 0,
  Started = 1,
  EnumerationCompleted = 2,
  Stopping = 3,
  Stopped = 4,
  Aborted = 5,
};

class DeviceInformation {
 public:
  virtual ~DeviceInformation() = default;

  virtual std::u16string Id() = 0;
  virtual std::u16string Name() = 0;
  // May be none.
  virtual std::shared_ptr<DeviceInformationPairing> Pairing() = 0;
};

class DeviceInformationUpdate {
 public:
  virtual ~DeviceInformationUpdate() = default;

  virtual std::u16string Id() = 0;
};

// Enumerates the devices in passes. Start is refused (Error) in any status but Created, Stopped and
// Aborted; Stop outside Started and EnumerationCompleted is refused or does nothing, by platform.
class DeviceWatcher {
 public:
  virtual ~DeviceWatcher() = default;

  virtual DeviceWatcherStatus Status() = 0;
  virtual void Start() = 0;
  // Asks for the stop; Stopped is raised when it has happened.
  virtual void Stop() = 0;

  // Unlike the other handlers' arguments the device information is handed over to be kept.
  using AddedHandler =
      std::function<void(DeviceWatcher& sender, std::shared_ptr<DeviceInformation> info)>;
  using UpdateHandler = Handler<DeviceWatcher, DeviceInformationUpdate>;
  using PassHandler = PlainHandler<DeviceWatcher>;

  virtual EventToken Added(AddedHandler handler) = 0;
  virtual EventToken Removed(UpdateHandler handler) = 0;
  virtual EventToken Updated(UpdateHandler handler) = 0;
  virtual EventToken EnumerationCompleted(PassHandler handler) = 0;
  virtual EventToken Stopped(PassHandler handler) = 0;

  // Revoke one subscription each; an unknown token does nothing.
  virtual void RevokeAdded(EventToken token) = 0;
  virtual void RevokeRemoved(EventToken token) = 0;
  virtual void RevokeUpdated(EventToken token) = 0;
  virtual void RevokeEnumerationCompleted(EventToken token) = 0;
  virtual void RevokeStopped(EventToken token) = 0;
};

// ---- Links ----------------------------------------------------------------------------------

enum class WiFiDirectConnectionStatus : std::int32_t { Disconnected = 0, Connected = 1 };

class HostName {
 public:
  virtual ~HostName() = default;

  // An IP address in the platform's display form.
  virtual std::u16string DisplayName() = 0;
};

class EndpointPair {
 public:
  virtual ~EndpointPair() = default;

  virtual std::shared_ptr<HostName> LocalHostName() = 0;   // may be none
  virtual std::shared_ptr<HostName> RemoteHostName() = 0;  // may be none
};

class EndpointPairView {
 public:
  virtual ~EndpointPairView() = default;

  // Raises kErrorBounds beyond the last pair.
  virtual std::shared_ptr<EndpointPair> GetAt(std::uint32_t index) = 0;
};

// One opened link. Releasing the last reference closes it.
class WiFiDirectDevice {
 public:
  virtual ~WiFiDirectDevice() = default;

  virtual WiFiDirectConnectionStatus ConnectionStatus() = 0;
  // Subscribes; the subscription ends with this object.
  virtual EventToken ConnectionStatusChanged(PlainHandler<WiFiDirectDevice> handler) = 0;
  virtual std::shared_ptr<EndpointPairView> GetConnectionEndpointPairs() = 0;
  // Asks for the link to be taken down.
  virtual void Close() = 0;
};

// ---- The radio ------------------------------------------------------------------------------

enum class WiFiDirectDeviceSelectorType : std::int32_t {
  DeviceInterface = 0,
  AssociationEndpoint = 1,
};

// The additional property that watchers of Wi-Fi Direct devices are created with.
inline constexpr char16_t kInformationElements[] = u"System.Devices.WiFiDirect.InformationElements";

class WiFiDirect {
 public:
  virtual ~WiFiDirect() = default;

  virtual std::u16string GetDeviceSelector(WiFiDirectDeviceSelectorType type) = 0;
  // May be none.
  virtual std::shared_ptr<DeviceWatcher> CreateWatcher(
      const std::u16string& selector, const std::vector<std::u16string>& additionalProperties) = 0;
  virtual std::shared_ptr<WiFiDirectConnectionParameters> CreateConnectionParameters() = 0;
  // Opens the link to a device. Blocks until that has ended, without a time limit. May be none.
  virtual std::shared_ptr<WiFiDirectDevice> FromIdAsync(const std::u16string& deviceId) = 0;
};

}  // namespace lanvoss::platform
