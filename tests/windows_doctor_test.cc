// What doctor concludes from the facts about a Windows machine.
#include <algorithm>
#include <functional>
#include <gtest/gtest.h>

#include "backends/windows/doctor.h"

namespace lanvoss::windows {
namespace {

using platform::Finding;

// A machine that reaches devices.
Machine GoodMachine() {
  return {.wlanService = ServiceState::kRunning,
          .wiFiDirectError = 0,
          .adapters = {.real = {{.name = "Wi-Fi 6",
                                 .driverVersion = "22.10.0.7",
                                 .driverDate = "2021-11-23",
                                 .radio = RadioState::kOn}},
                       .forWiFiDirect = {{.name = "Virtual"}}},
          .hotspotService = ServiceState::kStopped,
          .hasRawSockets = true,
          .firewall = Firewall{}};
}

std::vector<Finding> NotFine(const Machine& machine) {
  std::vector<Finding> findings = Examine(machine);
  std::erase_if(findings, [](const Finding& finding) { return finding.isFine; });
  return findings;
}

bool Says(const Machine& machine, const std::string& text) {
  const auto findings = Examine(machine);
  return std::ranges::any_of(findings, [&](const Finding& finding) {
    return finding.isFine && finding.what.find(text) != std::string::npos;
  });
}

TEST(WindowsDoctor, AMachineThatReachesDevicesLacksNothing) {
  const Machine machine = GoodMachine();
  EXPECT_TRUE(NotFine(machine).empty());
  EXPECT_TRUE(Says(machine, "Wi-Fi 6, driver 22.10.0.7 of 2021-11-23"));
}

TEST(WindowsDoctor, OfAMachineOfWhichNothingIsKnownNothingIsFineButTheClasses) {
  for (const Finding& finding : Examine({})) {
    EXPECT_EQ(finding.isFine, finding.what == "the classes of Wi-Fi Direct") << finding.what;
  }
}

// Each of these alone stops a link, or may stop one. The rest of the machine stays fine.
TEST(WindowsDoctor, EachFactThatHindersIsFoundAndHasARemedy) {
  struct Case {
    const char* text;
    bool isCertain;
    std::function<void(Machine&)> spoil;
  };
  const Case cases[] = {
      {"Not implemented", true, [](Machine& it) { it.problemOfClasses = "Not implemented"; }},
      {"stopped", true, [](Machine& it) { it.wlanService = ServiceState::kStopped; }},
      {"not installed", true, [](Machine& it) { it.wlanService = ServiceState::kAbsent; }},
      {"cannot be asked", false, [](Machine& it) { it.wlanService = ServiceState::kUnknown; }},
      {"error 1062", true, [](Machine& it) { it.wiFiDirectError = 1062; }},
      {"does not have", true, [](Machine& it) { it.wiFiDirectError.reset(); }},
      {"a Wi-Fi adapter", true, [](Machine& it) { it.adapters = {}; }},
      {"problem 22", true, [](Machine& it) { it.adapters.real[0].problem = kProblemDisabled; }},
      {"settings", true,
       [](Machine& it) { it.adapters.real[0].radio = RadioState::kOffInSettings; }},
      {"hardware", true, [](Machine& it) { it.adapters.real[0].radio = RadioState::kOffBySwitch; }},
      {"unknown", false, [](Machine& it) { it.adapters.real[0].radio = RadioState::kUnknown; }},
      {"no Microsoft Wi-Fi Direct", false, [](Machine& it) { it.adapters.forWiFiDirect.clear(); }},
      {"problem 10", true, [](Machine& it) { it.adapters.forWiFiDirect[0].problem = 10; }},
      {"unused", false, [](Machine& it) { it.adapters.leftForWiFiDirect = 3; }},
      {"Hotspot may be on", false, [](Machine& it) { it.hotspotService = ServiceState::kRunning; }},
      {"Hotspot may be on", false, [](Machine& it) { it.hotspotService = ServiceState::kUnknown; }},
      {"hosted network", false, [](Machine& it) { it.hasHostedNetwork = true; }},
      {"the right", true, [](Machine& it) { it.hasRawSockets = false; }},
      {"cannot be read", false, [](Machine& it) { it.firewall.reset(); }},
      {"\"No pings\"", false,
       [](Machine& it) { it.firewall->rules = {{.name = "No pings", .blocks = true}}; }},
  };
  for (const Case& each : cases) {
    Machine machine = GoodMachine();
    each.spoil(machine);
    const auto found = NotFine(machine);
    ASSERT_EQ(found.size(), 1) << each.text;
    EXPECT_NE(found[0].what.find(each.text), std::string::npos) << found[0].what;
    EXPECT_EQ(found[0].isCertain, each.isCertain) << each.text;
    EXPECT_FALSE(found[0].remedy.empty()) << each.text;
  }
}

TEST(WindowsDoctor, AnAdapterThatIsOffIsNoHindranceForCertainBesideAnotherOne) {
  Machine machine = GoodMachine();
  machine.adapters.real.push_back({.name = "Stick", .radio = RadioState::kOffInSettings});
  machine.adapters.real.push_back({.name = "Card", .problem = kProblemDisabled});
  auto found = NotFine(machine);
  ASSERT_EQ(found.size(), 2);
  EXPECT_FALSE(found[0].isCertain || found[1].isCertain);

  machine.adapters.real[0].radio = RadioState::kOffBySwitch;
  found = NotFine(machine);
  EXPECT_EQ(std::ranges::count(found, true, &Finding::isCertain), 3) << "now none is on";
}

TEST(WindowsDoctor, OnlyRulesAboutEchoRepliesToThisProgramCount) {
  const FirewallRule others[] = {
      {.name = "Rule", .isForThisProgram = false},
      {.name = "Rule", .protocol = 6},
      {.name = "Rule", .protocol = kIcmpV4, .icmpTypes = "8:*"},
      {.name = "Rule", .protocol = kIcmpV4, .icmpTypes = "10:0,3:*"},
      {.name = "Rule", .remoteAddresses = "10.0.0.0/255.0.0.0"},
  };
  const FirewallRule aboutReplies[] = {
      {.name = "Rule"},
      {.name = "Rule", .protocol = kIcmpV4},
      {.name = "Rule", .protocol = kIcmpV4, .icmpTypes = "*"},
      {.name = "Rule", .protocol = kIcmpV4, .icmpTypes = "8:*,0:*"},
      {.name = "Rule", .protocol = kIcmpV4, .icmpTypes = "0:0;3:1", .remoteAddresses = "*"},
      {.name = "Rule", .remoteAddresses = "LocalSubnet"},
  };
  Machine machine = GoodMachine();
  const auto isNamed = [&](FirewallRule rule, bool blocks) {
    rule.blocks = blocks;
    machine.firewall->rules = {rule};
    return blocks ? !NotFine(machine).empty() : Says(machine, "\"Rule\"");
  };
  for (const bool blocks : {true, false}) {
    EXPECT_TRUE(std::ranges::none_of(others, [&](auto& rule) { return isNamed(rule, blocks); }));
    EXPECT_TRUE(
        std::ranges::all_of(aboutReplies, [&](auto& rule) { return isNamed(rule, blocks); }));
  }

  machine.firewall->rules = {{.name = "Yes"}, {.name = "No", .blocks = true}};
  EXPECT_FALSE(NotFine(machine).empty()) << "a rule that blocks is stronger";
  machine.firewall->isOn = false;
  EXPECT_TRUE(NotFine(machine).empty());
}

}  // namespace
}  // namespace lanvoss::windows
