// The subscriptions of one platform event.
#pragma once

#include <functional>
#include <map>
#include <utility>
#include <vector>

#include "platform/wifi_direct.h"

namespace lanvoss::events {

// Not safe by itself: its owner locks it.
template <typename Handler>
class EventSource {
 public:
  platform::EventToken Subscribe(Handler handler) {
    handlers_.emplace(++lastToken_, std::move(handler));
    return lastToken_;
  }
  // Gives the handler back, to be released outside the owner's lock; none for an unknown token.
  Handler Revoke(platform::EventToken token) {
    const auto found = handlers_.find(token);
    if (found == handlers_.end()) {
      return nullptr;
    }
    Handler handler = std::move(found->second);
    handlers_.erase(found);
    return handler;
  }
  // Whoever is subscribed now. An event that is on its way reaches them even when they revoke
  // before it is delivered.
  std::vector<Handler> Subscribers() const {
    std::vector<Handler> all;
    for (const auto& [token, handler] : handlers_) {
      all.push_back(handler);
    }
    return all;
  }
  bool IsEmpty() const { return handlers_.empty(); }

 private:
  platform::EventToken lastToken_ = 0;
  std::map<platform::EventToken, Handler> handlers_;
};

}  // namespace lanvoss::events
