// The device watcher.
#pragma once

#include <memory>

#include "backends/windows/winrt_abi.h"
#include "information.h"
#include "object.h"
#include "platform/wifi_direct.h"

namespace lanvoss::fake_winrt {

class Watcher final : public Facade<platform::DeviceWatcher, abi::IDeviceWatcher> {
 public:
  using AddedDelegate = abi::TypedEventHandler<abi::IDeviceWatcher*, abi::IDeviceInformation*>;
  using UpdateDelegate =
      abi::TypedEventHandler<abi::IDeviceWatcher*, abi::IDeviceInformationUpdate*>;
  using PassDelegate = abi::TypedEventHandler<abi::IDeviceWatcher*, IInspectable*>;
  using Token = EventRegistrationToken;

  Watcher(Session& session, std::shared_ptr<platform::DeviceWatcher> watcher);

  STDMETHOD(add_Added)(AddedDelegate* handler, Token* token) noexcept override;
  STDMETHOD(add_Updated)(UpdateDelegate* handler, Token* token) noexcept override;
  STDMETHOD(add_Removed)(UpdateDelegate* handler, Token* token) noexcept override;
  STDMETHOD(add_EnumerationCompleted)(PassDelegate* handler, Token* token) noexcept override;
  STDMETHOD(add_Stopped)(PassDelegate* handler, Token* token) noexcept override;

  STDMETHOD(remove_Added)(Token token) noexcept override;
  STDMETHOD(remove_Updated)(Token token) noexcept override;
  STDMETHOD(remove_Removed)(Token token) noexcept override;
  STDMETHOD(remove_EnumerationCompleted)(Token token) noexcept override;
  STDMETHOD(remove_Stopped)(Token token) noexcept override;

  STDMETHOD(get_Status)(abi::DeviceWatcherStatus* status) noexcept override;
  STDMETHOD(Start)() noexcept override;
  STDMETHOD(Stop)() noexcept override;

 private:
  // One way to subscribe, and to revoke, for each kind of event.
  using Revoke = void (platform::DeviceWatcher::*)(platform::EventToken token);
  template <typename Add>
  HRESULT AddUpdates(const char* method, Add add, UpdateDelegate* handler, Token* token) noexcept;
  template <typename Add>
  HRESULT AddPasses(const char* method, Add add, PassDelegate* handler, Token* token) noexcept;
  HRESULT Remove(const char* method, Revoke revoke, Token token) noexcept;
};

}  // namespace lanvoss::fake_winrt
