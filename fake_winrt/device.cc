#include "device.h"

#include <utility>

#include "listener.h"
#include "platform/error.h"
#include "session.h"
#include "text.h"

namespace lanvoss::fake_winrt {
namespace {

using abi::IEndpointPair;
using abi::IHostName;

class Host final : public Facade<platform::HostName, IHostName> {
 public:
  Host(Session& session, std::shared_ptr<platform::HostName> host)
      : Facade(session, "HostName", std::move(host)) {}

  STDMETHOD(get_DisplayName)(HSTRING* value) noexcept override {
    return Give(__func__, value, [](auto& host) { return NewText(host.DisplayName()); });
  }

  STDMETHOD(get_IPInformation)(IInspectable**) noexcept override { return NotUsed(__func__); }
  STDMETHOD(get_RawName)(HSTRING*) noexcept override { return NotUsed(__func__); }
  STDMETHOD(get_CanonicalName)(HSTRING*) noexcept override { return NotUsed(__func__); }
  STDMETHOD(get_Type)(INT32*) noexcept override { return NotUsed(__func__); }
  STDMETHOD(IsEqual)(IHostName*, boolean*) noexcept override { return NotUsed(__func__); }
};

class Pair final : public Facade<platform::EndpointPair, IEndpointPair> {
 public:
  Pair(Session& session, std::shared_ptr<platform::EndpointPair> pair)
      : Facade(session, "EndpointPair", std::move(pair)) {}

  STDMETHOD(get_LocalHostName)(IHostName** value) noexcept override {
    return Give(__func__, value, [this](auto& pair) {
      return session().template Wrap<Host>(pair.LocalHostName()).Detach();
    });
  }
  STDMETHOD(get_RemoteHostName)(IHostName** value) noexcept override {
    return Give(__func__, value, [this](auto& pair) {
      return session().template Wrap<Host>(pair.RemoteHostName()).Detach();
    });
  }

  STDMETHOD(put_LocalHostName)(IHostName*) noexcept override { return NotUsed(__func__); }
  STDMETHOD(get_LocalServiceName)(HSTRING*) noexcept override { return NotUsed(__func__); }
  STDMETHOD(put_LocalServiceName)(HSTRING) noexcept override { return NotUsed(__func__); }
  STDMETHOD(put_RemoteHostName)(IHostName*) noexcept override { return NotUsed(__func__); }
  STDMETHOD(get_RemoteServiceName)(HSTRING*) noexcept override { return NotUsed(__func__); }
  STDMETHOD(put_RemoteServiceName)(HSTRING) noexcept override { return NotUsed(__func__); }
};

class Pairs final : public Facade<platform::EndpointPairView, abi::IVectorView<IEndpointPair*>> {
 public:
  Pairs(Session& session, std::shared_ptr<platform::EndpointPairView> pairs)
      : Facade(session, "VectorView<EndpointPair>", std::move(pairs)) {}

  STDMETHOD(GetAt)(UINT32 index, IEndpointPair** result) noexcept override {
    return Give(__func__, result, [this, index](auto& pairs) {
      return session().template Wrap<Pair>(pairs.GetAt(index)).Detach();
    });
  }

  STDMETHOD(get_Size)(UINT32*) noexcept override { return NotUsed(__func__); }
  STDMETHOD(IndexOf)(IEndpointPair*, UINT32*, boolean*) noexcept override {
    return NotUsed(__func__);
  }
  STDMETHOD(GetMany)(UINT32, UINT32, IEndpointPair**, UINT32*) noexcept override {
    return NotUsed(__func__);
  }
};

}  // namespace

Device::Device(Session& session, std::shared_ptr<platform::WiFiDirectDevice> device)
    : Facade(session, "WiFiDirectDevice", std::move(device)) {}

HRESULT Device::get_ConnectionStatus(abi::WiFiDirectConnectionStatus* value) noexcept {
  return Give(__func__, value, [this](auto& device) {
    if (session().CurrentHabits().closedStatusRaises && session().IsClosed(device)) {
      throw platform::Error(platform::kErrorClosed, u"The object has been closed.");
    }
    return device.ConnectionStatus();
  });
}

// The handler in the radio's link must not hold this object, so each event gets a new sender.
HRESULT Device::add_ConnectionStatusChanged(StatusDelegate* handler,
                                            EventRegistrationToken* token) noexcept {
  return Give(__func__, token, [&](auto& device) {
    return Subscribe(session(), handler, [&](auto listener) {
      return device.ConnectionStatusChanged([listener, &session = session()](auto& sender) {
        const Lent<Device> lentSender(session, sender);
        listener->Invoke(lentSender.Get(), nullptr);
      });
    });
  });
}

HRESULT Device::GetConnectionEndpointPairs(abi::IVectorView<abi::IEndpointPair*>** value) noexcept {
  return Give(__func__, value, [this](auto& device) {
    return session().template Wrap<Pairs>(device.GetConnectionEndpointPairs()).Detach();
  });
}

HRESULT Device::Close() noexcept {
  return Do(__func__, [this](auto& device) {
    session().NoteClosed(device);
    device.Close();
  });
}

}  // namespace lanvoss::fake_winrt
