// A reported device and its pairing.
#pragma once

#include <memory>

#include "backends/windows/winrt_abi.h"
#include "object.h"
#include "platform/wifi_direct.h"

namespace lanvoss::fake_winrt {

class Information final : public Facade<platform::DeviceInformation, abi::IDeviceInformation,
                                        abi::IDeviceInformation2> {
 public:
  Information(Session& session, std::shared_ptr<platform::DeviceInformation> information);

  STDMETHOD(get_Id)(HSTRING* value) noexcept override;
  STDMETHOD(get_Name)(HSTRING* value) noexcept override;
  STDMETHOD(get_IsEnabled)(boolean*) noexcept override { return NotUsed(__func__); }
  STDMETHOD(get_IsDefault)(boolean*) noexcept override { return NotUsed(__func__); }
  STDMETHOD(get_EnclosureLocation)(IInspectable**) noexcept override { return NotUsed(__func__); }
  STDMETHOD(get_Properties)(IInspectable**) noexcept override { return NotUsed(__func__); }
  STDMETHOD(Update)(abi::IDeviceInformationUpdate*) noexcept override { return NotUsed(__func__); }
  STDMETHOD(GetThumbnailAsync)(IInspectable**) noexcept override { return NotUsed(__func__); }
  STDMETHOD(GetGlyphThumbnailAsync)(IInspectable**) noexcept override { return NotUsed(__func__); }

  STDMETHOD(get_Kind)(INT32*) noexcept override { return NotUsed(__func__); }
  STDMETHOD(get_Pairing)(abi::IDeviceInformationPairing** value) noexcept override;
};

class InformationUpdate final
    : public Facade<platform::DeviceInformationUpdate, abi::IDeviceInformationUpdate> {
 public:
  InformationUpdate(Session& session, std::shared_ptr<platform::DeviceInformationUpdate> update);

  STDMETHOD(get_Id)(HSTRING* value) noexcept override;
  STDMETHOD(get_Properties)(IInspectable**) noexcept override { return NotUsed(__func__); }
};

class ConnectionParameters final
    : public Facade<platform::WiFiDirectConnectionParameters, abi::IWiFiDirectConnectionParameters,
                    abi::IWiFiDirectConnectionParameters2, abi::IDevicePairingSettings> {
 public:
  ConnectionParameters(Session& session,
                       std::shared_ptr<platform::WiFiDirectConnectionParameters> parameters);

  // What the contract's pairing takes.
  std::shared_ptr<platform::WiFiDirectConnectionParameters> Settings();

  STDMETHOD(get_GroupOwnerIntent)(INT16*) noexcept override { return NotUsed(__func__); }
  STDMETHOD(put_GroupOwnerIntent)(INT16 value) noexcept override;
  STDMETHOD(get_PreferenceOrderedConfigurationMethods)(IInspectable**) noexcept override {
    return NotUsed(__func__);
  }
  STDMETHOD(get_PreferredPairingProcedure)
  (abi::WiFiDirectPairingProcedure*) noexcept override { return NotUsed(__func__); }
  STDMETHOD(put_PreferredPairingProcedure)
  (abi::WiFiDirectPairingProcedure value) noexcept override;
};

}  // namespace lanvoss::fake_winrt
