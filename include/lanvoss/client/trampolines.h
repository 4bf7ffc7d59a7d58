// The way from the library's callback, which has no context, to the object that it is for.
#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <utility>

#include "lanvoss/lanvoss.h"

namespace lanvoss {

/// So many clients can exist at the same time in a program, or in a DLL that contains the header.
inline constexpr std::size_t kMaxClients = 16;

namespace detail {

// What a callback is for.
class Listener {
 public:
  virtual ~Listener() = default;
  // On any thread, on several at once.
  virtual void OnNotify(std::string kind, std::string message) = 0;
};

// One of the callbacks, for one listener as long as this lives.
class Trampoline {
 public:
  // Throws std::runtime_error if all are taken.
  explicit Trampoline(const std::shared_ptr<Listener>& listener) : slot_(Take(listener)) {}
  Trampoline(const Trampoline&) = delete;
  Trampoline& operator=(const Trampoline&) = delete;
  ~Trampoline() {
    const std::lock_guard<std::mutex> lock(Mutex());
    Slots()[slot_] = {};
  }

  NotifyCallback Callback() const { return Callbacks()[slot_]; }

 private:
  struct Slot {
    bool isTaken = false;
    std::weak_ptr<Listener> listener;
  };

  static std::size_t Take(const std::shared_ptr<Listener>& listener) {
    const std::lock_guard<std::mutex> lock(Mutex());
    for (std::size_t slot = 0; slot < kMaxClients; ++slot) {
      if (!Slots()[slot].isTaken) {
        Slots()[slot] = {true, listener};
        return slot;
      }
    }
    throw std::runtime_error("lanvoss: there are " + std::to_string(kMaxClients) +
                             " clients already");
  }

  template <std::size_t slot>
  static void Call(std::string kind, std::string message) {
    std::shared_ptr<Listener> listener;
    {
      const std::lock_guard<std::mutex> lock(Mutex());
      listener = Slots()[slot].listener.lock();
    }
    if (listener != nullptr) {
      listener->OnNotify(std::move(kind), std::move(message));
    }
  }

  template <std::size_t... slots>
  static constexpr std::array<NotifyCallback, kMaxClients> MakeCallbacks(
      std::index_sequence<slots...>) {
    return {&Call<slots>...};
  }
  static const std::array<NotifyCallback, kMaxClients>& Callbacks() {
    static constexpr auto callbacks = MakeCallbacks(std::make_index_sequence<kMaxClients>());
    return callbacks;
  }

  static std::mutex& Mutex() {  // guards the slots
    static std::mutex mutex;
    return mutex;
  }
  static std::array<Slot, kMaxClients>& Slots() {
    static std::array<Slot, kMaxClients> slots;
    return slots;
  }

  const std::size_t slot_;
};

}  // namespace detail
}  // namespace lanvoss
