// A reported device and its pairing.
#pragma once

#include <memory>
#include <string>

#include "backends/windows/com_pointer.h"
#include "backends/windows/winrt_abi.h"
#include "platform/system.h"
#include "platform/wifi_direct.h"

namespace lanvoss::windows {

class WindowsInformation final : public platform::DeviceInformation {
 public:
  WindowsInformation(ComPointer<abi::IDeviceInformation> information,
                     std::shared_ptr<platform::System> system);

  std::u16string Id() override;
  std::u16string Name() override;
  std::shared_ptr<platform::DeviceInformationPairing> Pairing() override;

 private:
  const ComPointer<abi::IDeviceInformation> information_;
  const std::shared_ptr<platform::System> system_;
};

class WindowsConnectionParameters final : public platform::WiFiDirectConnectionParameters {
 public:
  explicit WindowsConnectionParameters(ComPointer<IInspectable> parameters);

  void GroupOwnerIntent(std::int16_t intent) override;
  void PreferredPairingProcedure(platform::WiFiDirectPairingProcedure procedure) override;

  ComPointer<abi::IDevicePairingSettings> Settings() const;

 private:
  const ComPointer<IInspectable> parameters_;
};

}  // namespace lanvoss::windows
