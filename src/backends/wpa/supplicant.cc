#include "backends/wpa/supplicant.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>
#include <utility>

#include "backends/wpa/fail.h"
#include "backends/wpa/limits.h"
#include "backends/wpa/no_signals.h"

namespace lanvoss::wpa {
namespace {

constexpr char kEventMark = '<';  // an event begins with its level, "<3>"; a reply does not

// Sets the level of the events that we get to what it is from the start. It is refused when we get
// none any more: wpa_supplicant forgets whoever did not take its events for a while.
constexpr char kStillAttached[] = "LEVEL 3";
constexpr char kRefusal[] = "FAIL";

}  // namespace

Supplicant::Supplicant(std::string socketPath, Listener listener)
    : socketPath_(std::move(socketPath)),
      listener_(std::move(listener)),
      end_(eventfd(0, EFD_CLOEXEC)) {
  if (end_ < 0) {
    Fail("no event for wpa_supplicant", errno);
  }
  try {
    receiver_ = StartThreadWithoutSignals(
        [this, events = Attach()]() mutable { ReceiveAll(std::move(events)); });
  } catch (...) {
    close(end_);
    throw;
  }
}

Supplicant::~Supplicant() {
  eventfd_write(end_, 1);
  receiver_.join();
  close(end_);
}

std::string Supplicant::Ask(const std::string& command) const {
  return wpa::Ask(socketPath_, command);
}

std::string Supplicant::AskAbout(const std::string& interface, const std::string& command) const {
  return wpa::Ask(std::filesystem::path(socketPath_).replace_filename(interface), command);
}

std::string Supplicant::SocketName() const { return std::filesystem::path(socketPath_).filename(); }

bool Supplicant::Do(const std::string& command) const { return Ask(command).starts_with("OK"); }

std::unique_ptr<ControlSocket> Supplicant::Attach() const {
  auto events = std::make_unique<ControlSocket>(socketPath_);
  events->Send("ATTACH", kReplyMs, end_);
  if (!events->Receive(kReplyMs, end_).value_or("").starts_with("OK")) {
    Fail("wpa_supplicant at " + socketPath_ + " does not answer");
  }
  return events;
}

// After wpa_supplicant has ended: waits for the next one. None: this object ends.
std::unique_ptr<ControlSocket> Supplicant::AttachAgain() const {
  while (!IsEnding(kReturnPauseMs)) {
    try {
      return Attach();
    } catch (const platform::Error&) {
      // Still gone.
    }
  }
  return nullptr;
}

void Supplicant::ReceiveAll(std::unique_ptr<ControlSocket> events) {
  ReceiveUntilGone(*events);
  while (!IsEnding(0)) {
    Deliver({.name = kGoneEvent, .words = {}, .fields = {}});
    events = AttachAgain();
    if (events != nullptr) {
      Deliver({.name = kBackEvent, .words = {}, .fields = {}});
      ReceiveUntilGone(*events);
    }
  }
}

// A datagram socket does not report that its peer is gone or has forgotten us, so after silence we
// ask.
void Supplicant::ReceiveUntilGone(ControlSocket& events) {
  bool asked = false;
  while (!IsEnding(0)) {
    const auto text = events.Receive(kSilenceMs, end_);
    if (text) {
      asked = false;
      const Message message = ParseMessage(*text);
      if (message.name == kGoneEvent || text->starts_with(kRefusal)) {
        return;
      }
      if (text->starts_with(kEventMark)) {
        Deliver(message);
      }
    } else if (asked) {
      return;
    } else {
      try {
        events.Send(kStillAttached, kReplyMs, end_);
        asked = true;
      } catch (const platform::Error&) {
        return;
      }
    }
  }
}

void Supplicant::Deliver(const Message& message) {
  {
    const std::lock_guard lock(mutex_);
    for (Inbox* inbox : inboxes_) {
      inbox->Put(message);
    }
  }
  listener_(message);
}

// The receiver's thread takes no signals, so nothing ends the wait early.
bool Supplicant::IsEnding(std::uint32_t withinMs) const {
  pollfd end{end_, POLLIN, 0};
  return poll(&end, 1, static_cast<int>(withinMs)) > 0;
}

Inbox::Inbox(Supplicant& supplicant) : supplicant_(supplicant) {
  const std::lock_guard lock(supplicant_.mutex_);
  supplicant_.inboxes_.push_back(this);
}

Inbox::~Inbox() {
  const std::lock_guard lock(supplicant_.mutex_);
  std::erase(supplicant_.inboxes_, this);
}

void Inbox::Put(const Message& message) {
  const std::lock_guard lock(mutex_);
  messages_.push_back(message);
  arrived_.notify_one();
}

std::optional<Message> Inbox::Next(Clock::time_point deadline) {
  std::unique_lock lock(mutex_);
  if (!arrived_.wait_until(lock, deadline, [this] { return !messages_.empty(); })) {
    return std::nullopt;
  }
  Message message = std::move(messages_.front());
  messages_.pop_front();
  return message;
}

}  // namespace lanvoss::wpa
