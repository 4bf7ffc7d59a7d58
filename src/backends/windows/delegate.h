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

  // What leaves the body ends here: a source drops a handler that returns a failure, or ends the
  // process.
  STDMETHOD(Invoke)(Sender sender, Args args) noexcept override {
    if (const HRESULT result = Guarded([&] { body_(sender, args); }); FAILED(result)) {
      TellDebugger(result);
    }
    return S_OK;
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
