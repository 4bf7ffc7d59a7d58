#include "backends/wpa/wpa_information.h"

#include <future>
#include <regex>

#include "platform/unicode.h"

namespace lanvoss::wpa {
namespace {

using platform::DevicePairingResultStatus;

constexpr char kIdStart[] = "WiFiDirect#";

// One request to the handlers. It is answered when no reference to it remains: the handlers have
// returned, and every deferral is released.
class Ceremony final : public platform::DevicePairingRequestedEventArgs {
 public:
  struct Answer {
    std::atomic<bool> accepted = false;
    std::promise<void> given;
  };

  explicit Ceremony(std::shared_ptr<Answer> answer)
      : answer_(std::move(answer)), open_(std::make_shared<Holder>(answer_)) {}

  platform::DevicePairingKinds PairingKind() override {
    return platform::DevicePairingKinds::ConfirmOnly;
  }
  std::shared_ptr<platform::Deferral> GetDeferral() override { return open_; }
  void Accept() override { answer_->accepted = true; }

 private:
  class Holder final : public platform::Deferral {
   public:
    explicit Holder(std::shared_ptr<Answer> answer) : answer_(std::move(answer)) {}
    ~Holder() override { answer_->given.set_value(); }
    Holder(const Holder&) = delete;
    Holder& operator=(const Holder&) = delete;

   private:
    const std::shared_ptr<Answer> answer_;
  };

  const std::shared_ptr<Answer> answer_;
  const std::shared_ptr<Holder> open_;
};

class WpaPairingResult final : public platform::DevicePairingResult {
 public:
  explicit WpaPairingResult(DevicePairingResultStatus status) : status_(status) {}

  DevicePairingResultStatus Status() override { return status_; }

 private:
  const DevicePairingResultStatus status_;
};

}  // namespace

std::u16string IdOf(const std::string& address) {
  return platform::Utf8ToUtf16(kIdStart + address);
}

// Ids also come from the cache file, and their addresses go into commands.
std::string AddressOf(const std::u16string& id) {
  static const std::regex whole(kIdStart + std::string("((?:[0-9a-f]{2}:){5}[0-9a-f]{2})"));
  const std::string text = platform::Utf16ToUtf8(id);
  std::smatch match;
  return std::regex_match(text, match, whole) ? match[1].str() : std::string();
}

WpaInformation::WpaInformation(std::shared_ptr<P2pAdapter> adapter, std::string address,
                               const std::string& name)
    : adapter_(std::move(adapter)),
      address_(std::move(address)),
      name_(platform::Utf8ToUtf16(name)) {}

std::shared_ptr<platform::DeviceInformationPairing> WpaInformation::Pairing() {
  return std::make_shared<WpaPairing>(adapter_, address_);
}

std::shared_ptr<platform::DeviceInformationCustomPairing> WpaPairing::Custom() {
  return std::make_shared<WpaCustomPairing>(adapter_, address_);
}

platform::EventToken WpaCustomPairing::PairingRequested(PairingRequestedHandler handler) {
  const std::lock_guard lock(mutex_);
  return requested_.Subscribe(std::move(handler));
}

std::shared_ptr<platform::DevicePairingResult> WpaCustomPairing::PairAsync(
    platform::DevicePairingKinds kinds, platform::DevicePairingProtectionLevel,
    std::shared_ptr<platform::WiFiDirectConnectionParameters> settings) {
  const auto parameters = std::dynamic_pointer_cast<WpaConnectionParameters>(settings);
  return std::make_shared<WpaPairingResult>(
      RunCeremony(kinds, parameters == nullptr ? 0 : parameters->Intent()));
}

DevicePairingResultStatus WpaCustomPairing::RunCeremony(platform::DevicePairingKinds kinds,
                                                        int ownerIntent) {
  if (kinds != platform::DevicePairingKinds::ConfirmOnly) {
    return DevicePairingResultStatus::NoSupportedProfiles;
  }
  {
    const std::lock_guard lock(mutex_);
    if (requested_.IsEmpty()) {
      return DevicePairingResultStatus::RequiredHandlerNotRegistered;
    }
  }
  if (!AskHandlers()) {
    return DevicePairingResultStatus::RejectedByHandler;
  }
  return adapter_->Pair(address_, ownerIntent);
}

// Whether the handlers accept the ceremony.
bool WpaCustomPairing::AskHandlers() {
  const auto answer = std::make_shared<Ceremony::Answer>();
  const auto given = answer->given.get_future();
  {
    const auto args = std::make_shared<Ceremony>(answer);
    const std::lock_guard lock(mutex_);
    adapter_->Raise(queue_, requested_.Subscribers(),
                    [self = shared_from_this(), args](const PairingRequestedHandler& handler) {
                      handler(*self, *args);
                    });
  }
  given.wait();
  return answer->accepted;
}

}  // namespace lanvoss::wpa
