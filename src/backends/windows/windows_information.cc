#include "backends/windows/windows_information.h"

#include <utility>

#include "backends/windows/async.h"
#include "backends/windows/delegate.h"
#include "backends/windows/winrt_string.h"

namespace lanvoss::windows {
namespace {

class WindowsDeferral final : public platform::Deferral {
 public:
  explicit WindowsDeferral(ComPointer<abi::IDeferral> deferral) : deferral_(std::move(deferral)) {}

 private:
  const ComPointer<abi::IDeferral> deferral_;
};

class WindowsPairingRequest final : public platform::DevicePairingRequestedEventArgs {
 public:
  explicit WindowsPairingRequest(abi::IDevicePairingRequestedEventArgs* borrowed)
      : args_(borrowed) {}

  platform::DevicePairingKinds PairingKind() override {
    return Read<platform::DevicePairingKinds>(
        args_, &abi::IDevicePairingRequestedEventArgs::get_PairingKind);
  }
  std::shared_ptr<platform::Deferral> GetDeferral() override {
    return std::make_shared<WindowsDeferral>(
        Get<abi::IDeferral>(args_, &abi::IDevicePairingRequestedEventArgs::GetDeferral));
  }
  void Accept() override { Check(args_->Accept()); }

 private:
  const ComPointer<abi::IDevicePairingRequestedEventArgs> args_;
};

class WindowsPairingResult final : public platform::DevicePairingResult {
 public:
  explicit WindowsPairingResult(ComPointer<abi::IDevicePairingResult> result)
      : result_(std::move(result)) {
    if (!result_) {
      Raise(E_POINTER);
    }
  }

  platform::DevicePairingResultStatus Status() override {
    return Read<platform::DevicePairingResultStatus>(result_,
                                                     &abi::IDevicePairingResult::get_Status);
  }

 private:
  const ComPointer<abi::IDevicePairingResult> result_;
};

class WindowsCustomPairing final : public platform::DeviceInformationCustomPairing {
 public:
  WindowsCustomPairing(ComPointer<abi::IDeviceInformationCustomPairing> custom,
                       std::shared_ptr<platform::System> system)
      : custom_(std::move(custom)), system_(std::move(system)) {}

  platform::EventToken PairingRequested(PairingRequestedHandler handler) override {
    return Subscribe(custom_, &abi::IDeviceInformationCustomPairing::add_PairingRequested,
                     [handler = std::move(handler), system = system_](
                         abi::IDeviceInformationCustomPairing* sender,
                         abi::IDevicePairingRequestedEventArgs* args) {
                       WindowsCustomPairing pairing{ComPointer(sender), system};
                       WindowsPairingRequest request(args);
                       handler(pairing, request);
                     });
  }

  std::shared_ptr<platform::DevicePairingResult> PairAsync(
      platform::DevicePairingKinds kinds, platform::DevicePairingProtectionLevel minProtectionLevel,
      std::shared_ptr<platform::WiFiDirectConnectionParameters> settings) override {
    // Every parameters object comes from this backend.
    const auto pairingSettings =
        static_cast<const WindowsConnectionParameters&>(*settings).Settings();
    const auto operation = Get<abi::IAsyncOperation<abi::IDevicePairingResult*>>(
        custom_, &abi::IDeviceInformationCustomPairing::PairWithProtectionLevelAndSettingsAsync,
        kinds, minProtectionLevel, pairingSettings.Get());
    return std::make_shared<WindowsPairingResult>(Await(system_, operation));
  }

 private:
  const ComPointer<abi::IDeviceInformationCustomPairing> custom_;
  const std::shared_ptr<platform::System> system_;
};

class WindowsPairing final : public platform::DeviceInformationPairing {
 public:
  WindowsPairing(ComPointer<abi::IDeviceInformationPairing> pairing,
                 std::shared_ptr<platform::System> system)
      : pairing_(std::move(pairing)), system_(std::move(system)) {}

  bool IsPaired() override {
    return Read<boolean>(pairing_, &abi::IDeviceInformationPairing::get_IsPaired) != 0;
  }

  std::shared_ptr<platform::DeviceInformationCustomPairing> Custom() override {
    return std::make_shared<WindowsCustomPairing>(
        Get<abi::IDeviceInformationCustomPairing>(pairing_.As<abi::IDeviceInformationPairing2>(),
                                                  &abi::IDeviceInformationPairing2::get_Custom),
        system_);
  }

  void UnpairAsync() override {
    Get<abi::IAsyncOperation<abi::IDeviceUnpairingResult*>>(
        pairing_.As<abi::IDeviceInformationPairing2>(),
        &abi::IDeviceInformationPairing2::UnpairAsync);
  }

 private:
  const ComPointer<abi::IDeviceInformationPairing> pairing_;
  const std::shared_ptr<platform::System> system_;
};

}  // namespace

WindowsInformation::WindowsInformation(ComPointer<abi::IDeviceInformation> information,
                                       std::shared_ptr<platform::System> system)
    : information_(std::move(information)), system_(std::move(system)) {}

std::u16string WindowsInformation::Id() {
  return ReadText(information_, &abi::IDeviceInformation::get_Id);
}

std::u16string WindowsInformation::Name() {
  return ReadText(information_, &abi::IDeviceInformation::get_Name);
}

std::shared_ptr<platform::DeviceInformationPairing> WindowsInformation::Pairing() {
  auto pairing = Get<abi::IDeviceInformationPairing>(information_.As<abi::IDeviceInformation2>(),
                                                     &abi::IDeviceInformation2::get_Pairing);
  return pairing ? std::make_shared<WindowsPairing>(std::move(pairing), system_) : nullptr;
}

WindowsConnectionParameters::WindowsConnectionParameters(ComPointer<IInspectable> parameters)
    : parameters_(std::move(parameters)) {}

void WindowsConnectionParameters::GroupOwnerIntent(std::int16_t intent) {
  Check(parameters_.As<abi::IWiFiDirectConnectionParameters>()->put_GroupOwnerIntent(intent));
}

void WindowsConnectionParameters::PreferredPairingProcedure(
    platform::WiFiDirectPairingProcedure procedure) {
  Check(parameters_.As<abi::IWiFiDirectConnectionParameters2>()->put_PreferredPairingProcedure(
      procedure));
}

ComPointer<abi::IDevicePairingSettings> WindowsConnectionParameters::Settings() const {
  return parameters_.As<abi::IDevicePairingSettings>();
}

}  // namespace lanvoss::windows
