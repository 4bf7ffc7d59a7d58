// wpa_supplicant, as far as one Wi-Fi Direct adapter is concerned: commands to it, events from it.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "backends/wpa/control_socket.h"
#include "backends/wpa/message.h"

namespace lanvoss::wpa {

using Clock = std::chrono::steady_clock;

// The time point in `milliseconds` from now.
inline Clock::time_point After(std::uint32_t milliseconds) {
  return Clock::now() + std::chrono::milliseconds(milliseconds);
}

inline constexpr char kFoundEvent[] = "P2P-DEVICE-FOUND";
// A field: the device's own address, which unlike that of its interface in a group is always the
// same.
inline constexpr char kAddressField[] = "p2p_dev_addr";

// The events for the end of wpa_supplicant, whatever its cause, and for its return.
inline constexpr char kGoneEvent[] = "CTRL-EVENT-TERMINATING";
inline constexpr char kBackEvent[] = "BACK";

class Inbox;

class Supplicant {
 public:
  // Receives every event in order, on one thread of this object. It must not block.
  using Listener = std::function<void(const Message&)>;

  // `socketPath`: the control socket on which the adapter's peer-to-peer commands are taken. Raises
  // platform::Error when wpa_supplicant does not answer there.
  Supplicant(std::string socketPath, Listener listener);
  ~Supplicant();
  Supplicant(const Supplicant&) = delete;
  Supplicant& operator=(const Supplicant&) = delete;

  // Sends a command and returns the reply; blocks for kReplyMs at most. Raises platform::Error when
  // none comes. Several threads may ask at once.
  std::string Ask(const std::string& command) const;
  // The same of another of its interfaces.
  std::string AskAbout(const std::string& interface, const std::string& command) const;
  // The name of its control socket.
  std::string SocketName() const;
  // A command that has no answer but "OK". False: it was refused.
  bool Do(const std::string& command) const;

 private:
  friend class Inbox;
  std::unique_ptr<ControlSocket> Attach() const;
  std::unique_ptr<ControlSocket> AttachAgain() const;
  void ReceiveAll(std::unique_ptr<ControlSocket> events);
  void ReceiveUntilGone(ControlSocket& events);
  void Deliver(const Message& message);
  bool IsEnding(std::uint32_t withinMs) const;

  const std::string socketPath_;
  const Listener listener_;
  const int end_;     // readable when the thread has to end
  std::mutex mutex_;  // guards the list below
  std::vector<Inbox*> inboxes_;
  std::thread receiver_;
};

// Collects the events from its making on, for one thread that waits for some of them.
class Inbox {
 public:
  explicit Inbox(Supplicant& supplicant);
  ~Inbox();
  Inbox(const Inbox&) = delete;
  Inbox& operator=(const Inbox&) = delete;

  // The next event. None: the time is up.
  std::optional<Message> Next(Clock::time_point deadline);

 private:
  friend class Supplicant;
  void Put(const Message& message);

  Supplicant& supplicant_;
  std::mutex mutex_;  // guards everything below
  std::condition_variable arrived_;
  std::deque<Message> messages_;
};

}  // namespace lanvoss::wpa
