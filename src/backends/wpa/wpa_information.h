// The information about a device, and pairing with it.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

#include "backends/events/event_source.h"
#include "backends/wpa/p2p_adapter.h"

namespace lanvoss::wpa {

// A device's id is this and its address, in six groups of two hexadecimal digits.
std::u16string IdOf(const std::string& address);
// Empty for what is no id.
std::string AddressOf(const std::u16string& id);

// A device as it was when it was reported; its pairing is as it is now.
class WpaInformation final : public platform::DeviceInformation {
 public:
  WpaInformation(std::shared_ptr<P2pAdapter> adapter, std::string address, const std::string& name);

  std::u16string Id() override { return IdOf(address_); }
  std::u16string Name() override { return name_; }
  std::shared_ptr<platform::DeviceInformationPairing> Pairing() override;

 private:
  const std::shared_ptr<P2pAdapter> adapter_;
  const std::string address_;
  const std::u16string name_;
};

class WpaInformationUpdate final : public platform::DeviceInformationUpdate {
 public:
  explicit WpaInformationUpdate(const std::string& address) : id_(IdOf(address)) {}

  std::u16string Id() override { return id_; }

 private:
  const std::u16string id_;
};

class WpaPairing final : public platform::DeviceInformationPairing {
 public:
  WpaPairing(std::shared_ptr<P2pAdapter> adapter, std::string address)
      : adapter_(std::move(adapter)), address_(std::move(address)) {}

  bool IsPaired() override { return adapter_->IsPaired(address_); }
  std::shared_ptr<platform::DeviceInformationCustomPairing> Custom() override;
  void UnpairAsync() override { adapter_->Unpair(address_); }

 private:
  const std::shared_ptr<P2pAdapter> adapter_;
  const std::string address_;
};

class WpaConnectionParameters final : public platform::WiFiDirectConnectionParameters {
 public:
  void GroupOwnerIntent(std::int16_t intent) override { intent_ = intent; }
  // wpa_supplicant negotiates about the owner whenever it pairs.
  void PreferredPairingProcedure(platform::WiFiDirectPairingProcedure) override {}

  int Intent() const { return intent_; }

 private:
  std::atomic<int> intent_ = 0;
};

// The ceremony is the push button's. The handlers push the button.
class WpaCustomPairing final : public platform::DeviceInformationCustomPairing,
                               public std::enable_shared_from_this<WpaCustomPairing> {
 public:
  WpaCustomPairing(std::shared_ptr<P2pAdapter> adapter, std::string address)
      : adapter_(std::move(adapter)),
        address_(std::move(address)),
        queue_(adapter_->dispatcher.NewQueue()) {}

  platform::EventToken PairingRequested(PairingRequestedHandler handler) override;
  std::shared_ptr<platform::DevicePairingResult> PairAsync(
      platform::DevicePairingKinds kinds, platform::DevicePairingProtectionLevel minProtectionLevel,
      std::shared_ptr<platform::WiFiDirectConnectionParameters> settings) override;

 private:
  platform::DevicePairingResultStatus RunCeremony(platform::DevicePairingKinds kinds,
                                                  int ownerIntent);
  bool AskHandlers();

  const std::shared_ptr<P2pAdapter> adapter_;
  const std::string address_;
  const std::shared_ptr<events::EventQueue> queue_;

  std::mutex mutex_;  // guards the subscriptions
  events::EventSource<PairingRequestedHandler> requested_;
};

}  // namespace lanvoss::wpa
