// The host's function, and whoever listens to it.
#pragma once

#include <functional>
#include <string>

#include "notification.h"

namespace lanvoss::program {

// Called on whatever thread the library calls its host on, several at once. It must not throw.
using Listener = std::function<void(const Notification& notification)>;

// To be called before the library's object is made.
void Listen(Listener listener);

// The NotifyCallback that the object is to be made with.
void Hear(std::string kind, std::string message);

}  // namespace lanvoss::program
