#include "information.h"

#include <utility>

#include "async_operation.h"
#include "listener.h"
#include "platform/error.h"
#include "session.h"
#include "text.h"

namespace lanvoss::fake_winrt {
namespace {

using abi::DevicePairingKinds;
using abi::DevicePairingProtectionLevel;
using abi::DevicePairingResultStatus;
using abi::IDeviceInformationCustomPairing;
using abi::IDevicePairingRequestedEventArgs;
using abi::IDevicePairingResult;
using PairingOperation = abi::IAsyncOperation<IDevicePairingResult*>;
using UnpairingOperation = abi::IAsyncOperation<abi::IDeviceUnpairingResult*>;

class Deferral final : public Facade<platform::Deferral, abi::IDeferral, abi::IClosable> {
 public:
  Deferral(Session& session, std::shared_ptr<platform::Deferral> deferral)
      : Facade(session, "Deferral", std::move(deferral)) {}

  STDMETHOD(Complete)() noexcept override {
    return TakeTarget() == nullptr ? Ended(__func__) : S_OK;
  }
  STDMETHOD(Close)() noexcept override { return NotUsed(__func__); }
};

class PairingRequest final
    : public Facade<platform::DevicePairingRequestedEventArgs, IDevicePairingRequestedEventArgs> {
 public:
  PairingRequest(Session& session, std::shared_ptr<platform::DevicePairingRequestedEventArgs> args)
      : Facade(session, "DevicePairingRequestedEventArgs", std::move(args)) {}

  STDMETHOD(get_PairingKind)(DevicePairingKinds* value) noexcept override {
    return Give(__func__, value, [](auto& args) { return args.PairingKind(); });
  }
  STDMETHOD(GetDeferral)(abi::IDeferral** result) noexcept override {
    return Give(__func__, result, [this](auto& args) {
      return session().template Wrap<Deferral>(args.GetDeferral()).Detach();
    });
  }
  STDMETHOD(Accept)() noexcept override {
    return Do(__func__, [](auto& args) { args.Accept(); });
  }

  STDMETHOD(get_DeviceInformation)(abi::IDeviceInformation**) noexcept override {
    return NotUsed(__func__);
  }
  STDMETHOD(get_Pin)(HSTRING*) noexcept override { return NotUsed(__func__); }
  STDMETHOD(AcceptWithPin)(HSTRING) noexcept override { return NotUsed(__func__); }
};

class PairingResult final : public Facade<platform::DevicePairingResult, IDevicePairingResult> {
 public:
  PairingResult(Session& session, std::shared_ptr<platform::DevicePairingResult> result)
      : Facade(session, "DevicePairingResult", std::move(result)) {}

  STDMETHOD(get_Status)(DevicePairingResultStatus* value) noexcept override {
    return Give(__func__, value, [](auto& result) { return result.Status(); });
  }
  STDMETHOD(get_ProtectionLevelUsed)(DevicePairingProtectionLevel*) noexcept override {
    return NotUsed(__func__);
  }
};

class CustomPairing final
    : public Facade<platform::DeviceInformationCustomPairing, IDeviceInformationCustomPairing> {
 public:
  CustomPairing(Session& session, std::shared_ptr<platform::DeviceInformationCustomPairing> custom)
      : Facade(session, "DeviceInformationCustomPairing", std::move(custom)) {}

  STDMETHOD(PairWithProtectionLevelAndSettingsAsync)
  (DevicePairingKinds kinds, DevicePairingProtectionLevel level,
   abi::IDevicePairingSettings* settings, PairingOperation** result) noexcept override {
    return Give(__func__, result, [&](auto&) {
      const auto pair = [&session = session(), custom = Target(), kinds, level,
                         parameters = SettingsOf(settings)] {
        return session.Make<PairingResult>(custom->PairAsync(kinds, level, parameters));
      };
      return StartOperation<IDevicePairingResult>(session(), "pairing", pair).Detach();
    });
  }

  STDMETHOD(add_PairingRequested)
  (abi::TypedEventHandler<IDeviceInformationCustomPairing*, IDevicePairingRequestedEventArgs*>*
       handler,
   EventRegistrationToken* token) noexcept override {
    return Give(__func__, token, [&](auto& custom) {
      return Subscribe(session(), handler, [&](auto listener) {
        return custom.PairingRequested([listener, &session = session()](auto& sender, auto& args) {
          const Lent<CustomPairing> lentSender(session, sender);
          const Lent<PairingRequest> lentArgs(session, args);
          listener->Invoke(lentSender.Get(), lentArgs.Get());
        });
      });
    });
  }

  STDMETHOD(remove_PairingRequested)(EventRegistrationToken) noexcept override {
    return NotUsed(__func__);
  }
  STDMETHOD(PairAsync)(DevicePairingKinds, PairingOperation**) noexcept override {
    return NotUsed(__func__);
  }
  STDMETHOD(PairWithProtectionLevelAsync)
  (DevicePairingKinds, DevicePairingProtectionLevel, PairingOperation**) noexcept override {
    return NotUsed(__func__);
  }

 private:
  std::shared_ptr<platform::WiFiDirectConnectionParameters> SettingsOf(
      abi::IDevicePairingSettings* settings) {
    auto* const parameters = dynamic_cast<ConnectionParameters*>(settings);
    if (parameters == nullptr) {
      AddFault("settings that are no connection parameters");
      throw platform::Error(static_cast<std::uint32_t>(E_INVALIDARG),
                            u"The parameter is incorrect");
    }
    return parameters->Settings();
  }
};

// Nobody waits for the end of it, so it is complete from the beginning.
class Unpairing final
    : public Facade<platform::DeviceInformationPairing, UnpairingOperation, abi::IAsyncInfo> {
 public:
  Unpairing(Session& session, std::shared_ptr<platform::DeviceInformationPairing> pairing)
      : Facade(session, "Unpairing", std::move(pairing)) {}

  STDMETHOD(get_Status)(abi::AsyncStatus* status) noexcept override {
    return Give(__func__, status, [](auto&) { return abi::AsyncStatus::Completed; });
  }

  STDMETHOD(put_Completed)
  (abi::AsyncOperationCompletedHandler<abi::IDeviceUnpairingResult*>*) noexcept override {
    return NotUsed(__func__);
  }
  STDMETHOD(get_Completed)
  (abi::AsyncOperationCompletedHandler<abi::IDeviceUnpairingResult*>**) noexcept override {
    return NotUsed(__func__);
  }
  STDMETHOD(GetResults)(abi::IDeviceUnpairingResult**) noexcept override {
    return NotUsed(__func__);
  }
  STDMETHOD(get_Id)(UINT32*) noexcept override { return NotUsed(__func__); }
  STDMETHOD(get_ErrorCode)(HRESULT*) noexcept override { return NotUsed(__func__); }
  STDMETHOD(Cancel)() noexcept override { return NotUsed(__func__); }
  STDMETHOD(Close)() noexcept override { return NotUsed(__func__); }
};

class Pairing final
    : public Facade<platform::DeviceInformationPairing, abi::IDeviceInformationPairing,
                    abi::IDeviceInformationPairing2> {
 public:
  Pairing(Session& session, std::shared_ptr<platform::DeviceInformationPairing> pairing)
      : Facade(session, "DeviceInformationPairing", std::move(pairing)) {}

  STDMETHOD(get_IsPaired)(boolean* value) noexcept override {
    return Give(__func__, value, [](auto& pairing) { return pairing.IsPaired(); });
  }
  STDMETHOD(get_Custom)(IDeviceInformationCustomPairing** value) noexcept override {
    return Give(__func__, value, [this](auto& pairing) {
      return session().template Wrap<CustomPairing>(pairing.Custom()).Detach();
    });
  }
  STDMETHOD(UnpairAsync)(UnpairingOperation** result) noexcept override {
    return Give(__func__, result, [this](auto& pairing) {
      pairing.UnpairAsync();
      return session().template Make<Unpairing>(Target()).Detach();
    });
  }

  STDMETHOD(get_CanPair)(boolean*) noexcept override { return NotUsed(__func__); }
  STDMETHOD(PairAsync)(PairingOperation**) noexcept override { return NotUsed(__func__); }
  STDMETHOD(PairWithProtectionLevelAsync)
  (DevicePairingProtectionLevel, PairingOperation**) noexcept override { return NotUsed(__func__); }
  STDMETHOD(get_ProtectionLevel)(DevicePairingProtectionLevel*) noexcept override {
    return NotUsed(__func__);
  }
  STDMETHOD(PairWithProtectionLevelAndSettingsAsync)
  (DevicePairingProtectionLevel, abi::IDevicePairingSettings*,
   PairingOperation**) noexcept override {
    return NotUsed(__func__);
  }
};

}  // namespace

Information::Information(Session& session, std::shared_ptr<platform::DeviceInformation> information)
    : Facade(session, "DeviceInformation", std::move(information)) {}

HRESULT Information::get_Id(HSTRING* value) noexcept {
  return Give(__func__, value, [](auto& information) { return NewText(information.Id()); });
}

HRESULT Information::get_Name(HSTRING* value) noexcept {
  return Give(__func__, value, [](auto& information) { return NewText(information.Name()); });
}

HRESULT Information::get_Pairing(abi::IDeviceInformationPairing** value) noexcept {
  return Give(__func__, value, [this](auto& information) {
    return session().template Wrap<Pairing>(information.Pairing()).Detach();
  });
}

InformationUpdate::InformationUpdate(Session& session,
                                     std::shared_ptr<platform::DeviceInformationUpdate> update)
    : Facade(session, "DeviceInformationUpdate", std::move(update)) {}

HRESULT InformationUpdate::get_Id(HSTRING* value) noexcept {
  return Give(__func__, value, [](auto& update) { return NewText(update.Id()); });
}

ConnectionParameters::ConnectionParameters(
    Session& session, std::shared_ptr<platform::WiFiDirectConnectionParameters> parameters)
    : Facade(session, "WiFiDirectConnectionParameters", std::move(parameters)) {}

std::shared_ptr<platform::WiFiDirectConnectionParameters> ConnectionParameters::Settings() {
  return Target();
}

HRESULT ConnectionParameters::put_GroupOwnerIntent(INT16 value) noexcept {
  return Do(__func__, [value](auto& parameters) { parameters.GroupOwnerIntent(value); });
}

HRESULT ConnectionParameters::put_PreferredPairingProcedure(
    abi::WiFiDirectPairingProcedure value) noexcept {
  return Do(__func__, [value](auto& parameters) { parameters.PreferredPairingProcedure(value); });
}

}  // namespace lanvoss::fake_winrt
