// What Windows' own library for Wi-Fi says.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "backends/windows/machine.h"

namespace lanvoss::windows {

struct WlanState {
  std::optional<std::uint32_t> wiFiDirectError = {};  // as Machine has it
  std::map<std::wstring, RadioState> radios = {};     // by the id of the network interface, "{...}"
  bool hasHostedNetwork = false;
};

WlanState ReadWlanState();

}  // namespace lanvoss::windows
