#include "backends/simulated/scenario_file/scenario_file.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string_view>
#include <system_error>

#include "backends/simulated/scenario_file/json_value.h"
#include "backends/simulated/scenario_file/scenario_values.h"

namespace lanvoss::simulated {
namespace {

using nlohmann::json;

void Read(const JsonValue& value, Habits& habits);
void Read(const JsonValue& value, Peer& peer);
void Read(const JsonValue& value, ScriptStep& step);
void Read(const JsonValue& value, AddressPair& pair);
void Read(const JsonValue& value, std::optional<std::vector<AddressPair>>& out);

template <typename Element>
void Read(const JsonValue& value, std::vector<Element>& out) {
  value.ReadElements([&out](const JsonValue& element) { Read(element, out.emplace_back()); });
}

// The reader of a key whose value goes into `field`.
template <typename Field>
JsonValue::Reader Into(Field& field) {
  return [&field](const JsonValue& value) { Read(value, field); };
}

JsonValue::Reader IntoCount(std::uint32_t& field) {
  return [&field](const JsonValue& value) { ReadCount(value, field); };
}

JsonValue::Reader IntoHresult(std::uint32_t& field) {
  return [&field](const JsonValue& value) { ReadHresult(value, field); };
}

void Read(const JsonValue& value, AddressPair& pair) {
  value.ReadMembers({{"local", Into(pair.local)}, {"remote", Into(pair.remote)}});
}

void Read(const JsonValue& value, std::optional<std::vector<AddressPair>>& out) {
  Read(value, out.emplace());
}

void Read(const JsonValue& value, ScriptStep& step) {
  value.ReadMembers(
      {{"at_ms", Into(step.atMs)}, {"do", Into(step.act)}, {"to", Into(step.newName)}});
  value.Require("do");
  if (step.act == Act::kRename) {
    value.Require("to");
  } else if (value.Has("to")) {
    value.RefuseMember("to", "only a rename has it");
  }
}

void Read(const JsonValue& value, Peer& peer) {
  value.ReadMembers({{"name", Into(peer.name)},
                     {"id", Into(peer.id)},
                     {"present", Into(peer.present)},
                     {"paired", Into(peer.paired)},
                     {"has_pairing_object", Into(peer.hasPairingObject)},
                     {"nameless_reports", IntoCount(peer.namelessReports)},
                     {"local_address", Into(peer.localAddress)},
                     {"remote_address", Into(peer.remoteAddress)},
                     {"endpoint_pairs", Into(peer.endpointPairs)},
                     {"appear_ms", Into(peer.appearMs)},
                     {"pair_ms", Into(peer.pairMs)},
                     {"open_ms", Into(peer.openMs)},
                     {"endpoint_pairs_ms", Into(peer.endpointPairsMs)},
                     {"close_ms", Into(peer.closeMs)},
                     {"unpair_ms", Into(peer.unpairMs)},
                     {"pairings", Into(peer.pairings)},
                     {"openings", Into(peer.openings)},
                     {"links_per_pairing", IntoCount(peer.linksPerPairing)},
                     {"open_error", IntoHresult(peer.openError)},
                     {"pairing_status", Into(peer.pairingStatus)},
                     {"ceremony", Into(peer.ceremony)},
                     {"echoes", Into(peer.echoes)},
                     {"echo_share", Into(peer.echoShare)},
                     {"echo_ms", Into(peer.echoMs)},
                     {"script", Into(peer.script)}});
  value.Require("name");
  if (value.Has("endpoint_pairs") && (value.Has("local_address") || value.Has("remote_address"))) {
    value.RefuseMember("endpoint_pairs", "takes the place of local_address and remote_address");
  }
}

void Read(const JsonValue& value, Habits& habits) {
  value.ReadMembers({{"ignored_starts", IntoCount(habits.ignoredStarts)},
                     {"enumeration_ms", Into(habits.enumerationMs)},
                     {"find_ms", Into(habits.findMs)},
                     {"stop_ms", Into(habits.stopMs)},
                     {"status_report_ms", Into(habits.statusReportMs)},
                     {"stop_elsewhere", Into(habits.stopElsewhere)},
                     {"handlers_overlap", Into(habits.handlersOverlap)},
                     {"stopped_reported", Into(habits.stoppedReported)},
                     {"stop_waits_for_handlers", Into(habits.stopWaitsForHandlers)},
                     {"aborted_reported", Into(habits.abortedReported)},
                     {"absent_reported", Into(habits.absentReported)},
                     {"ids_vary", Into(habits.idsVary)},
                     {"paired_as_reported", Into(habits.pairedAsReported)},
                     {"on_close", Into(habits.onClose)},
                     {"on_unpair", Into(habits.onUnpair)},
                     {"on_drop", Into(habits.onDrop)},
                     {"closed_status_raises", Into(habits.closedStatusRaises)},
                     {"no_result_is_error", Into(habits.noResultIsError)},
                     {"simulates_echo", Into(habits.simulatesEcho)}});
}

void CheckIds(const JsonValue& document, const std::vector<Peer>& peers) {
  for (std::size_t i = 0; i < peers.size(); ++i) {
    const auto idOf = [](const Peer& peer) { return InCapitals(peer.id); };
    const auto same = std::ranges::find(peers, idOf(peers[i]), idOf) - peers.begin();
    if (!peers[i].id.empty() && static_cast<std::size_t>(same) != i) {
      document.RefuseMember("peers[" + std::to_string(i) + "].id",
                            "peers[" + std::to_string(same) + "] has the same");
    }
  }
}

// The JSON library's message without the text before `mark`, its own codes and positions.
std::string TextAfter(std::string_view mark, const std::string& message) {
  const auto at = message.find(mark);
  return at == std::string::npos ? message : message.substr(at + mark.size());
}

json ParseJson(const std::string& text, const std::string& file) {
  try {
    return json::parse(text);
  } catch (const json::parse_error& error) {
    const auto before = std::string_view(text).substr(0, error.byte - 1);
    const auto line = 1 + std::ranges::count(before, '\n');
    throw ScenarioError(file + ":" + std::to_string(line) + ": " + TextAfter(": ", error.what()));
  } catch (const json::exception& error) {  // a number that no number type can hold
    throw ScenarioError(file + ": " + TextAfter("] ", error.what()));
  }
}

std::string ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  file.peek();  // a directory can be opened, but not read
  if (!file.is_open() || file.bad()) {
    throw ScenarioError(path + ": " + std::generic_category().message(errno));
  }
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

Scenario LoadScenario(const std::string& file) { return ParseScenario(ReadFile(file), file); }

Scenario ParseScenario(const std::string& text, const std::string& file) {
  const json document = ParseJson(text, file);
  const JsonValue root(document, file);
  Scenario scenario;
  root.ReadMembers({{"seed", Into(scenario.seed)},
                    {"habits", Into(scenario.habits)},
                    {"aborts_at_ms", Into(scenario.abortsAtMs)},
                    {"peers", Into(scenario.peers)},
                    {"comment", Into(scenario.comment)}});
  CheckIds(root, scenario.peers);
  return scenario;
}

}  // namespace lanvoss::simulated
