// Any bytes as an event of wpa_supplicant, which contains names that devices choose themselves: no
// secret is kept, and what is kept was in the event.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "backends/wpa/message.h"
#include "require.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const lanvoss::wpa::Message message = lanvoss::wpa::ParseMessage(text);
  Require(message.Field("passphrase").empty() && message.Field("psk").empty(), "no secret is kept");
  std::size_t kept = message.name.size();
  for (const std::string& word : message.words) {
    Require(text.find(word) != std::string::npos, "a word stood in the event");
    kept += word.size();
  }
  for (const auto& [key, value] : message.fields) {
    Require(text.find(key + "=") != std::string::npos, "a field stood in the event");
    Require(text.find(value) != std::string::npos, "so did its value");
    kept += key.size() + value.size();
  }
  Require(kept <= text.size(), "nothing is kept twice");
  const std::string line = lanvoss::wpa::LineOf(text, "device_name");
  Require(line.find('\n') == std::string::npos, "a line is one line");
  return 0;
}
