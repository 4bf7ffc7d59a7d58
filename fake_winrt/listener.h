// The library's delegates, as a radio's handlers.
#pragma once

#include <atomic>
#include <memory>

#include "backends/windows/com_pointer.h"
#include "identity.h"
#include "object.h"
#include "session.h"

namespace lanvoss::fake_winrt {

// A delegate, held for as long as any event may need it.
template <typename Sender, typename Args>
class Listener {
 public:
  using Delegate = abi::TypedEventHandler<Sender, Args>;

  Listener(Session& session, Delegate& delegate) : session_(session), delegate_(&delegate) {}
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;
  ~Listener() {
    if (delegate_.Detach()->Release() != 0 && subscribed_) {
      session_.AddFault("delegate: leaked");
    }
  }

  // From now on only this object holds the delegate.
  void Subscribed() { subscribed_ = true; }

  // A delegate that fails is not called again.
  void Invoke(Sender sender, Args args) {
    if (!failed_ && FAILED(delegate_->Invoke(sender, args))) {
      failed_ = true;
      session_.AddFault("delegate: failed");
    }
  }

 private:
  Session& session_;
  windows::ComPointer<Delegate> delegate_;
  bool subscribed_ = false;
  std::atomic<bool> failed_ = false;  // its events may overlap
};

// Subscribes through `add(listener)`, which returns the token.
template <typename Sender, typename Args, typename Add>
EventRegistrationToken Subscribe(Session& session, abi::TypedEventHandler<Sender, Args>* delegate,
                                 Add add) {
  if (delegate == nullptr) {
    RaiseNull(session, "delegate");
  }
  CheckIdentity(session, "delegate", *delegate, abi::kIid<abi::TypedEventHandler<Sender, Args>>);
  const auto listener = std::make_shared<Listener<Sender, Args>>(session, *delegate);
  const EventRegistrationToken token{add(listener)};
  listener->Subscribed();
  return token;
}

// An object in front of what the contract lends for the length of a handler's call.
template <typename Object>
class Lent {
 public:
  template <typename Target>
  Lent(Session& session, Target& borrowed)
      : object_(session.Make<Object>(std::shared_ptr<Target>(std::shared_ptr<void>(), &borrowed))) {
  }
  Lent(const Lent&) = delete;
  Lent& operator=(const Lent&) = delete;
  ~Lent() { object_->TakeBack(); }

  Object* Get() const { return object_.Get(); }

 private:
  const windows::ComPointer<Object> object_;
};

}  // namespace lanvoss::fake_winrt
