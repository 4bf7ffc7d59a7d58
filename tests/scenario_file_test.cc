// Scenario files: their content, and the errors in them.
#include "backends/simulated/scenario_file/scenario_file.h"

#include <gtest/gtest.h>

namespace lanvoss::simulated {
namespace {

std::string Refusal(const std::string& text) {
  try {
    ParseScenario(text, "home.json");
  } catch (const ScenarioError& error) {
    return error.what();
  }
  return "accepted";
}

std::string PeerRefusal(const std::string& members) {
  return Refusal(R"({"peers": [{"name": "A"}, {"name": "B", )" + members + "}]}");
}

TEST(Scenario, SetsEveryKindOfField) {
  const Scenario scenario = ParseScenario(R"({
    "seed": 18446744073709551615,
    "aborts_at_ms": [5, 70],
    "habits": {"enumeration_ms": "never", "stop_elsewhere": "refused", "handlers_overlap": true,
               "on_close": "stays_up_reported", "ignored_starts": 3, "simulates_echo": false},
    "peers": [{"name": "Büro", "id": "x", "paired": true, "local_address": null, "open_ms": 7,
               "openings": ["none", "hangs"], "pairing_status": "AuthenticationTimeout",
               "ceremony": "DisplayPin", "echo_share": 0.5,
               "echoes": [[], ["reply", "late_reply"]], "open_error": "0x80004005",
               "script": [{"at_ms": 5, "do": "rename", "to": "Büro 2"}]},
              {"name": "B", "endpoint_pairs": [{"local": "a", "remote": "b"}, {}]},
              {"name": "C", "endpoint_pairs": []}]})",
                                          "home.json");
  EXPECT_EQ(scenario.seed, 18446744073709551615U);
  EXPECT_EQ(scenario.habits.enumerationMs, kNever);
  EXPECT_EQ(scenario.habits.stopElsewhere, StopElsewhere::kRefused);
  EXPECT_EQ(scenario.habits.onClose, LinkEnd::kStaysUpReported);
  EXPECT_EQ(scenario.habits.ignoredStarts, 3U);
  const Peer& peer = scenario.peers.at(0);
  EXPECT_EQ(peer.name, u"Büro");
  EXPECT_EQ(peer.localAddress, std::nullopt);
  EXPECT_EQ(peer.remoteAddress, u"192.168.49.20") << "left out, so the default";
  EXPECT_EQ(peer.openings.at(1), Outcome::kHangs);
  EXPECT_EQ(peer.pairingStatus, platform::DevicePairingResultStatus::AuthenticationTimeout);
  EXPECT_EQ(peer.echoShare, 0.5);
  EXPECT_EQ(peer.echoes.at(1).at(1), Echo::kLateReply);
  EXPECT_FALSE(scenario.habits.simulatesEcho);
  EXPECT_EQ(peer.script.at(0).newName, u"Büro 2");
  EXPECT_EQ(peer.openError, 0x80004005U);
  EXPECT_EQ(scenario.abortsAtMs, (std::vector<std::uint32_t>{5, 70}));
  EXPECT_EQ(EndpointPairsOf(peer).at(0).remote, u"192.168.49.20");
  const auto pairs = EndpointPairsOf(scenario.peers.at(1));
  EXPECT_EQ(pairs.at(0).local, u"a");
  EXPECT_EQ(pairs.at(1).remote, std::nullopt);
  EXPECT_TRUE(EndpointPairsOf(scenario.peers.at(2)).empty());
}

TEST(Scenario, NamesTheLineOrTheKeyThatIsWrong) {
  EXPECT_TRUE(Refusal("{\n\n \"seed\": }").starts_with("home.json:3: ")) << Refusal("{\n\n]");
  EXPECT_TRUE(Refusal("").starts_with("home.json:1: "));
  EXPECT_TRUE(Refusal("[]").starts_with("home.json: expected an object")) << Refusal("[]");
  EXPECT_EQ(Refusal(R"({"seeds": 1})"), "home.json: seeds: unknown key");
  EXPECT_EQ(Refusal(R"({"peers": [{}]})"), "home.json: peers[0].name: missing");
  EXPECT_EQ(PeerRefusal(R"("pair_ms": -1)"),
            "home.json: peers[1].pair_ms: expected a whole number of milliseconds or \"never\"");
  EXPECT_EQ(PeerRefusal(R"("pair_ms": 4294967295)"), PeerRefusal(R"("pair_ms": "soon")"));
  EXPECT_EQ(PeerRefusal(R"("echo_share": 1.5)"),
            "home.json: peers[1].echo_share: expected a number from 0 to 1");
  EXPECT_TRUE(PeerRefusal(R"("openings": ["perhaps"])")
                  .starts_with("home.json: peers[1].openings[0]: expected one of \"succeeds\""));
  EXPECT_TRUE(PeerRefusal(R"("script": [{"at_ms": 1, "do": "rename"}])")
                  .starts_with("home.json: peers[1].script[0].to: "));
  EXPECT_TRUE(Refusal(R"({"peers": [{"name": "A", "id": "x"}, {"name": "B", "id": "X"}]})")
                  .starts_with("home.json: peers[1].id: "));
  EXPECT_TRUE(PeerRefusal(R"("endpoint_pairs": [], "local_address": "a")")
                  .starts_with("home.json: peers[1].endpoint_pairs: takes the place of "));
  for (const char* const wrong :
       {"2147942405", R"("80070490")", R"("0x8007049G")", R"("0x800704900")", R"("0x-0070490")"}) {
    EXPECT_EQ(PeerRefusal(std::string(R"("open_error": )") + wrong),
              "home.json: peers[1].open_error: expected an error as \"0x80070490\"");
  }
  EXPECT_THROW(LoadScenario("/nonexistent/home.json"), ScenarioError);
}

}  // namespace
}  // namespace lanvoss::simulated
