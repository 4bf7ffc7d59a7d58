// Handlers of the platform's events.
#pragma once

#include <utility>

#include "backends/windows/com_object.h"
#include "platform/wifi_direct.h"

namespace lanvoss::windows {

template <typename Sender, typename Args, typename Body>
class EventDelegate final : public ComObject<abi::TypedEventHandler<Sender, Args>> {
 public:
  explicit EventDelegate(Body body) : body_(std::move(body)) {}

  STDMETHOD(Invoke)(Sender sender, Args args) noexcept override {
    return Guarded([&] { body_(sender, args); });
  }

 private:
  const Body body_;
};

// Subscribes `body(sender, args)`, which gets borrowed pointers.
template <typename Interface, typename Sender, typename Args, typename Body>
platform::EventToken Subscribe(const ComPointer<Interface>& source,
                               HRESULT (STDMETHODCALLTYPE Interface::*add)(
                                   abi::TypedEventHandler<Sender, Args>*, EventRegistrationToken*),
                               Body body) {
  const auto handler = MakeObject<EventDelegate<Sender, Args, Body>>(std::move(body));
  EventRegistrationToken token{};
  Check((source.Get()->*add)(handler.Get(), &token));
  return token.value;
}

}  // namespace lanvoss::windows
