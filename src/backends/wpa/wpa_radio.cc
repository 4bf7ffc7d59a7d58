#include "backends/wpa/wpa_radio.h"

#include <mutex>
#include <utility>
#include <vector>

#include "backends/wpa/adapter.h"
#include "backends/wpa/fail.h"
#include "backends/wpa/p2p_adapter.h"
#include "backends/wpa/wpa_device.h"
#include "backends/wpa/wpa_information.h"
#include "backends/wpa/wpa_watcher.h"

namespace lanvoss::wpa {
namespace {

class WpaRadio final : public platform::WiFiDirect {
 public:
  WpaRadio(std::shared_ptr<platform::System> system, std::string interface)
      : system_(std::move(system)), interface_(std::move(interface)) {}
  // Here, and not in the adapter's destructor: an event's thread may hold that longer, and would
  // not be waited for at the end of the process.
  ~WpaRadio() override {
    if (adapter_ != nullptr) {
      adapter_->End();
    }
  }
  WpaRadio(const WpaRadio&) = delete;
  WpaRadio& operator=(const WpaRadio&) = delete;

  // There is one kind of device here, so nothing to select by.
  std::u16string GetDeviceSelector(platform::WiFiDirectDeviceSelectorType) override { return {}; }

  std::shared_ptr<platform::DeviceWatcher> CreateWatcher(
      const std::u16string&, const std::vector<std::u16string>&) override {
    const auto adapter = TheAdapter();
    auto watcher = std::make_shared<WpaWatcher>(adapter);
    adapter->Register(watcher);
    return watcher;
  }

  std::shared_ptr<platform::WiFiDirectConnectionParameters> CreateConnectionParameters() override {
    return std::make_shared<WpaConnectionParameters>();
  }

  std::shared_ptr<platform::WiFiDirectDevice> FromIdAsync(const std::u16string& deviceId) override {
    const std::string address = AddressOf(deviceId);
    return address.empty() ? nullptr : TheAdapter()->Open(address);
  }

 private:
  std::shared_ptr<P2pAdapter> TheAdapter() {
    std::call_once(made_, [this] {
      const Adapter found = LookForAdapter(interface_);
      if (found.problem != AdapterProblem::kNothing) {
        Fail(Explain(found));
      }
      adapter_ = P2pAdapter::Create(system_, found.socketPath);
    });
    return adapter_;
  }

  const std::shared_ptr<platform::System> system_;
  const std::string interface_;
  std::once_flag made_;  // again after a failure
  std::shared_ptr<P2pAdapter> adapter_;
};

}  // namespace

std::shared_ptr<platform::WiFiDirect> CreateRadio(std::shared_ptr<platform::System> system,
                                                  std::string interface) {
  return std::make_shared<WpaRadio>(std::move(system), std::move(interface));
}

}  // namespace lanvoss::wpa
