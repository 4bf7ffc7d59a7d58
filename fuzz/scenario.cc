// Any bytes as a scenario file: accepted values are within their ranges, and an error says in one
// line where and why.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>

#include "backends/simulated/scenario_file/scenario_file.h"
#include "require.h"

namespace {

using lanvoss::simulated::Act;
using lanvoss::simulated::Peer;
using lanvoss::simulated::Scenario;
using lanvoss::simulated::ScenarioError;

constexpr char kFile[] = "home.json";

void CheckScenario(const Scenario& scenario) {
  std::set<std::u16string> ids;
  for (const Peer& peer : scenario.peers) {
    Require(peer.echoShare >= 0 && peer.echoShare <= 1, "a share is from 0 to 1");
    Require(peer.id.empty() || ids.insert(lanvoss::simulated::InCapitals(peer.id)).second,
            "an id is unique");
    for (const auto& step : peer.script) {
      Require(step.act == Act::kRename || step.newName.empty(), "only a rename has a new name");
    }
  }
}

// "FILE:LINE: WHY" or "FILE: WHY".
void CheckRefusal(std::string_view message, const std::string& text) {
  Require(message.find('\n') == std::string_view::npos, "a refusal is one line");
  Require(message.starts_with(kFile), "a refusal begins with the file");
  message.remove_prefix(std::string_view(kFile).size());
  if (const std::size_t why = message.find(": "); why > 0) {
    Require(why != std::string_view::npos && message[0] == ':', "a line follows the file");
    const auto line = std::stoll(std::string(message.substr(1, why - 1)));
    Require(line >= 1 && line <= 1 + std::ranges::count(text, '\n'), "the file has that line");
    message.remove_prefix(why);
  }
  Require(message.starts_with(": ") && message.size() > 2, "a refusal says why");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(data, data + size);
  try {
    CheckScenario(lanvoss::simulated::ParseScenario(text, kFile));
  } catch (const ScenarioError& refusal) {
    CheckRefusal(refusal.what(), text);
  }
  return 0;
}
