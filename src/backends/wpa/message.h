// The events that wpa_supplicant sends.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace lanvoss::wpa {

// For example
//   <3>P2P-GROUP-STARTED p2p-wlan0-0 GO ssid="DIRECT-xy" freq=2412 go_dev_addr=02:00:00:00:00:00
struct Message {
  std::string name;                           // P2P-GROUP-STARTED
  std::vector<std::string> words;             // p2p-wlan0-0, GO
  std::map<std::string, std::string> fields;  // freq, go_dev_addr; the value of ssid is empty

  // Empty where there is none.
  std::string Word(std::size_t index) const;
  std::string Field(const std::string& key) const;
};

// Leaves out what is in quotes, which other devices choose, and the secrets of a group, so that
// they can reach no log.
Message ParseMessage(std::string_view text);

// The value of a line "key=value" in a reply of several lines; empty without one.
std::string LineOf(std::string_view reply, std::string_view key);

std::vector<std::string> Lines(std::string_view text, char separator = '\n');

}  // namespace lanvoss::wpa
