#include "watcher.h"

#include <utility>

#include "listener.h"
#include "session.h"

namespace lanvoss::fake_winrt {

using Contract = platform::DeviceWatcher;

Watcher::Watcher(Session& session, std::shared_ptr<platform::DeviceWatcher> watcher)
    : Facade(session, "DeviceWatcher", std::move(watcher)) {}

HRESULT Watcher::get_Status(abi::DeviceWatcherStatus* status) noexcept {
  return Give(__func__, status, [](Contract& watcher) { return watcher.Status(); });
}

HRESULT Watcher::Start() noexcept {
  return Do(__func__, [](Contract& watcher) { watcher.Start(); });
}

HRESULT Watcher::Stop() noexcept {
  return Do(__func__, [](Contract& watcher) { watcher.Stop(); });
}

// The handlers in the radio's watcher must not hold this object, so each event gets a new sender.

HRESULT Watcher::add_Added(AddedDelegate* handler, Token* token) noexcept {
  return Give(__func__, token, [&](Contract& watcher) {
    return Subscribe(session(), handler, [&](auto listener) {
      return watcher.Added([listener, &session = session()](Contract& sender, auto information) {
        const Lent<Watcher> lentSender(session, sender);
        const auto given = session.Make<Information>(std::move(information));
        listener->Invoke(lentSender.Get(), given.Get());
      });
    });
  });
}

template <typename Add>
HRESULT Watcher::AddUpdates(const char* method, Add add, UpdateDelegate* handler,
                            Token* token) noexcept {
  return Give(method, token, [&](Contract& watcher) {
    return Subscribe(session(), handler, [&](auto listener) {
      return (watcher.*add)([listener, &session = session()](Contract& sender, auto& update) {
        const Lent<Watcher> lentSender(session, sender);
        const Lent<InformationUpdate> lentUpdate(session, update);
        listener->Invoke(lentSender.Get(), lentUpdate.Get());
      });
    });
  });
}

template <typename Add>
HRESULT Watcher::AddPasses(const char* method, Add add, PassDelegate* handler,
                           Token* token) noexcept {
  return Give(method, token, [&](Contract& watcher) {
    return Subscribe(session(), handler, [&](auto listener) {
      return (watcher.*add)([listener, &session = session()](Contract& sender) {
        const Lent<Watcher> lentSender(session, sender);
        listener->Invoke(lentSender.Get(), nullptr);
      });
    });
  });
}

HRESULT Watcher::add_Updated(UpdateDelegate* handler, Token* token) noexcept {
  return AddUpdates(__func__, &Contract::Updated, handler, token);
}
HRESULT Watcher::add_Removed(UpdateDelegate* handler, Token* token) noexcept {
  return AddUpdates(__func__, &Contract::Removed, handler, token);
}
HRESULT Watcher::add_EnumerationCompleted(PassDelegate* handler, Token* token) noexcept {
  return AddPasses(__func__, &Contract::EnumerationCompleted, handler, token);
}
HRESULT Watcher::add_Stopped(PassDelegate* handler, Token* token) noexcept {
  return AddPasses(__func__, &Contract::Stopped, handler, token);
}

HRESULT Watcher::Remove(const char* method, Revoke revoke, Token token) noexcept {
  return Do(method, [&](Contract& watcher) { (watcher.*revoke)(token.value); });
}

HRESULT Watcher::remove_Added(Token token) noexcept {
  return Remove(__func__, &Contract::RevokeAdded, token);
}
HRESULT Watcher::remove_Updated(Token token) noexcept {
  return Remove(__func__, &Contract::RevokeUpdated, token);
}
HRESULT Watcher::remove_Removed(Token token) noexcept {
  return Remove(__func__, &Contract::RevokeRemoved, token);
}
HRESULT Watcher::remove_EnumerationCompleted(Token token) noexcept {
  return Remove(__func__, &Contract::RevokeEnumerationCompleted, token);
}
HRESULT Watcher::remove_Stopped(Token token) noexcept {
  return Remove(__func__, &Contract::RevokeStopped, token);
}

}  // namespace lanvoss::fake_winrt
