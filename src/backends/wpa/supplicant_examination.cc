#include "backends/wpa/supplicant_examination.h"

#include <algorithm>

#include "backends/wpa/credentials.h"
#include "backends/wpa/groups.h"
#include "backends/wpa/machine.h"
#include "backends/wpa/message.h"

namespace lanvoss::wpa {
namespace {

using Findings = std::vector<platform::Finding>;

// A group uses the time of the adapter, and most adapters can have only one group.
void ExamineGroups(Findings& findings, const Supplicant& supplicant) {
  const std::vector<Group> groups = GroupsOf(supplicant);
  if (groups.empty()) {
    findings.push_back({.what = "the adapter is free"});
  }
  for (const Group& group : groups) {
    findings.push_back({.isFine = false,
                        .what = "the adapter is busy with the group " + group.interface,
                        .remedy = "sudo wpa_cli -i " + supplicant.SocketName() +
                                  " p2p_group_remove " + group.interface});
  }
}

// The wpa_supplicant that NetworkManager uses has no file to keep pairings in.
void ExamineMemory(Findings& findings, const Supplicant& supplicant, const std::string& interface,
                   const std::string& configuration) {
  findings.push_back(
      {.isFine = supplicant.Ask("GET update_config").starts_with('1'),
       .what = "wpa_supplicant keeps pairings when it ends",
       .remedy = configuration.empty()
                     ? "sudo nmcli device set " + interface + " managed no, " +
                           HowToStartService(interface)
                     : "put the line update_config=1 into " + configuration + kAndStartAgain});
}

// The stored groups of this machine contain its own address, which some drivers change at each
// start.
void ExamineStoredGroups(Findings& findings, const Supplicant& supplicant) {
  constexpr char kOwnerMode[] = "3";
  const std::string own = LineOf(supplicant.Ask("STATUS"), "p2p_device_address");
  for (const StoredGroup& group : StoredGroups(supplicant)) {
    const std::string mode = supplicant.Ask("GET_NETWORK " + group.id + " mode");
    if (mode == kOwnerMode && group.owner != own) {
      findings.push_back({.isFine = false,
                          .what = "the pairing " + group.id + " (" + group.ssid +
                                  ") was made with another address of this adapter",
                          .remedy = "sudo wpa_cli -i " + supplicant.SocketName() +
                                    " remove_network " + group.id + ", and pair again"});
    }
  }
}

// Whether a group may be formed there, by the rules of the country.
bool IsAllowed(const std::vector<std::string>& channels, const std::string& frequency) {
  return std::ranges::any_of(channels, [&](const std::string& line) {
    return line.find(" = " + frequency + " MHz") != std::string::npos &&
           line.find('(') == std::string::npos;  // what is forbidden there
  });
}

// A group is formed where devices listen, or on the channel of the network that the adapter is in.
void ExamineChannels(Findings& findings, const Supplicant& supplicant, const std::string& interface,
                     const std::string& configuration) {
  const std::vector<std::string> channels = Lines(supplicant.Ask("GET_CAPABILITY freq"));
  const std::string network = LineOf(supplicant.AskAbout(interface, "STATUS"), "freq");
  const std::vector<std::string> wanted =
      network.empty() ? std::vector<std::string>{"2412", "2437", "2462"} : std::vector{network};
  const auto allowed = std::ranges::find_if(
      wanted, [&](const std::string& frequency) { return IsAllowed(channels, frequency); });
  const std::string setCountry = "set the country, for example country=DE in " +
                                 (configuration.empty() ? ServiceFile(interface) : configuration);
  findings.push_back({.isFine = allowed != wanted.end(),
                      .what = "a channel on which a group may be formed, " +
                              (allowed == wanted.end() ? wanted.front() : *allowed) + " MHz",
                      .remedy = network.empty() ? setCountry
                                                : "move the access point of " + interface +
                                                      " to another channel; or " + setCountry});
}

}  // namespace

Findings ExamineSupplicant(const Supplicant& supplicant, const std::string& interface,
                           const std::string& configuration) {
  Findings findings;
  ExamineGroups(findings, supplicant);
  ExamineMemory(findings, supplicant, interface, configuration);
  ExamineStoredGroups(findings, supplicant);
  ExamineChannels(findings, supplicant, interface, configuration);
  return findings;
}

}  // namespace lanvoss::wpa
