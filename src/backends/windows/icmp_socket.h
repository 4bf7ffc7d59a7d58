// What the echo probe asks of Winsock.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/system.h"

namespace lanvoss::windows {

std::optional<platform::Ipv4Address> ResolveHost(const std::string& host);
std::unique_ptr<platform::IcmpSocket> OpenIcmpSocket();

}  // namespace lanvoss::windows
