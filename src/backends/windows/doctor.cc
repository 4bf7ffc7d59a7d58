#include "backends/windows/doctor.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace lanvoss::windows {
namespace {

using platform::Finding;
using Findings = std::vector<Finding>;

Finding Fine(std::string what) { return {.what = std::move(what)}; }

Finding Missing(std::string what, std::string remedy) {
  return {.isFine = false, .what = std::move(what), .remedy = std::move(remedy)};
}

// What may hinder, or not: the facts do not tell.
Finding Doubtful(std::string what, std::string remedy) {
  return {
      .isFine = false, .what = std::move(what), .remedy = std::move(remedy), .isCertain = false};
}

// ---- Windows itself

Finding ExamineClasses(const std::string& problem) {
  return problem.empty()
             ? Fine("the classes of Wi-Fi Direct")
             : Missing("the classes of Wi-Fi Direct: " + problem, "use Windows 10 or later");
}

Finding ExamineWlanService(ServiceState state) {
  const std::string service = "the service WLAN AutoConfig (WlanSvc)";
  switch (state) {
    case ServiceState::kRunning:
      return Fine(service + " runs");
    case ServiceState::kStopped:
      return Missing(
          service + " is stopped",
          "as administrator: sc.exe config WlanSvc start= auto, then sc.exe start WlanSvc");
    case ServiceState::kAbsent:
      return Missing(service + " is not installed",
                     "on Windows Server: Install-WindowsFeature Wireless-Networking in PowerShell");
    case ServiceState::kUnknown:
      break;
  }
  return Doubtful(service + " cannot be asked for its state",
                  "sc.exe query WlanSvc must say RUNNING");
}

// It opens only the service. Whether the adapter supports Wi-Fi Direct is another question.
Finding ExamineWiFiDirect(std::optional<std::uint32_t> error) {
  const std::string service = "the Wi-Fi Direct service (WFDOpenHandle)";
  if (!error) {
    return Missing(service + ", which this Windows does not have",
                   "install the service WLAN AutoConfig");
  }
  if (*error != 0) {
    return Missing(service + " does not open: error " + std::to_string(*error),
                   "start the service WLAN AutoConfig; if it runs, ask whether a group policy "
                   "forbids Wi-Fi Direct");
  }
  return Fine(service + " opens");
}

// ---- The adapters

std::string Describe(const WiFiAdapter& adapter) {
  const std::string& version = adapter.driverVersion;
  const std::string& date = adapter.driverDate;
  return "the adapter " + adapter.name + ", driver " + (version.empty() ? "unknown" : version) +
         (date.empty() ? "" : " of " + date);
}

bool IsOff(RadioState state) {
  return state == RadioState::kOffInSettings || state == RadioState::kOffBySwitch;
}

bool CanWork(const WiFiAdapter& adapter) { return adapter.problem == 0 && !IsOff(adapter.radio); }

Finding ExamineDriver(const WiFiAdapter& adapter) {
  if (adapter.problem == 0) {
    return Fine(Describe(adapter));
  }
  return Missing(Describe(adapter) + ", does not work: problem " + std::to_string(adapter.problem),
                 adapter.problem == kProblemDisabled
                     ? "enable it in the device manager"
                     : "install the driver of the adapter's maker; the device manager says more");
}

Finding ExamineRadioOf(const WiFiAdapter& adapter) {
  const std::string radio = "the radio of " + adapter.name;
  switch (adapter.radio) {
    case RadioState::kOn:
      return Fine(radio + " is on");
    case RadioState::kOffInSettings:
      return Missing(radio + " is switched off in the settings",
                     "switch Wi-Fi on, and airplane mode off");
    case RadioState::kOffBySwitch:
      return Missing(radio + " is switched off by hardware",
                     "use the switch or the key for Wi-Fi, or the setup of the firmware");
    case RadioState::kUnknown:
      break;
  }
  return Doubtful("the state of " + radio + " is unknown",
                  "start WLAN AutoConfig; if it runs, install the driver of the adapter's maker");
}

// An adapter that cannot work hinders nothing where another one can.
void ExamineAdapters(Findings& findings, const std::vector<WiFiAdapter>& adapters) {
  if (adapters.empty()) {
    findings.push_back(Missing("a Wi-Fi adapter", "connect one, or install its driver"));
    findings.back().meansNoAdapter = true;
  }
  const bool oneCanWork = std::ranges::any_of(adapters, CanWork);
  for (const WiFiAdapter& adapter : adapters) {
    findings.push_back(ExamineDriver(adapter));
    findings.back().isCertain = !oneCanWork;
    if (adapter.problem == 0) {
      const bool isKnown = adapter.radio != RadioState::kUnknown;
      findings.push_back(ExamineRadioOf(adapter));
      findings.back().isCertain = isKnown && !oneCanWork;
    }
  }
}

void ExamineSupport(Findings& findings, const WiFiAdapters& adapters) {
  if (adapters.real.empty()) {
    return;
  }
  const std::string kind = "Microsoft Wi-Fi Direct Virtual Adapter";
  if (adapters.forWiFiDirect.empty()) {
    findings.push_back(Doubtful(
        "no " + kind + ", which Windows makes on an adapter that supports Wi-Fi Direct",
        "netsh wlan show wirelesscapabilities says what is supported; if Wi-Fi Direct is not, use "
        "another driver or adapter"));
  } else if (std::ranges::any_of(adapters.forWiFiDirect, CanWork)) {
    findings.push_back(Fine("a " + kind));
  } else {
    findings.push_back(Missing(
        "a " + kind + " that works: problem " +
            std::to_string(adapters.forWiFiDirect.front().problem),
        "enable it in the device manager, where View, Show hidden devices makes it visible"));
  }
  if (adapters.leftForWiFiDirect > 0) {
    findings.push_back(Doubtful(
        "unused devices of the kind " + kind + ": " + std::to_string(adapters.leftForWiFiDirect),
        "if links fail: uninstall them in the device manager (View, Show hidden devices), "
        "and let it scan for hardware changes"));
  }
}

// ---- What else uses the radio

Finding ExamineHotspot(ServiceState state) {
  switch (state) {
    case ServiceState::kStopped:
    case ServiceState::kAbsent:
      return Fine("Mobile Hotspot is off: its service (icssvc) does not run");
    case ServiceState::kRunning:
    case ServiceState::kUnknown:
      break;
  }
  return Doubtful(state == ServiceState::kRunning
                      ? "Mobile Hotspot may be on, because its service (icssvc) runs"
                      : "Mobile Hotspot may be on: its service (icssvc) cannot be asked",
                  "switch Mobile Hotspot off in the settings: it takes the radio for itself");
}

// ---- The echo probe

// For example "0:*" among "0:*,8:*".
bool CoversEchoReplies(const std::string& types) {
  constexpr std::string_view kSeparators = ",; ";
  constexpr std::string_view kEchoReply = "0:";
  if (types.empty()) {
    return true;
  }
  for (std::size_t begin = 0; begin < types.size();) {
    const std::size_t end = std::min(types.find_first_of(kSeparators, begin), types.size());
    const auto type = std::string_view(types).substr(begin, end - begin);
    if (type == "*" || type == "0" || type.starts_with(kEchoReply)) {
      return true;
    }
    begin = end + 1;
  }
  return false;
}

bool IsAboutReplies(const FirewallRule& rule) {
  const std::string& remote = rule.remoteAddresses;
  const bool isForPeers =
      remote.empty() || remote == "*" || remote.find("LocalSubnet") != std::string::npos;
  return rule.isForThisProgram && isForPeers &&
         (rule.protocol == kAnyProtocol ||
          (rule.protocol == kIcmpV4 && CoversEchoReplies(rule.icmpTypes)));
}

const FirewallRule* FindRule(const Firewall& firewall, bool blocks) {
  const auto rule = std::ranges::find_if(firewall.rules, [&](const FirewallRule& candidate) {
    return candidate.blocks == blocks && IsAboutReplies(candidate);
  });
  return rule == firewall.rules.end() ? nullptr : &*rule;
}

// A firewall that keeps state lets the answer to a request in without a rule. Whether a rule that
// blocks also takes the answers away from a raw socket, the rules do not tell.
Finding ExamineFirewall(const std::optional<Firewall>& firewall) {
  const std::string remedy =
      "if no echo reply comes back, as administrator: netsh advfirewall firewall add rule "
      "name=\"Echo replies\" dir=in action=allow protocol=icmpv4:0,any";
  if (!firewall) {
    return Doubtful("the rules of Windows Firewall cannot be read", remedy);
  }
  if (!firewall->isOn) {
    return Fine("Windows Firewall is off for public networks");
  }
  if (const FirewallRule* rule = FindRule(*firewall, true)) {
    return Doubtful("the rule \"" + rule->name + "\" of Windows Firewall blocks echo replies",
                    "disable this rule if no echo reply comes back");
  }
  const FirewallRule* rule = FindRule(*firewall, false);
  return rule != nullptr
             ? Fine("the rule \"" + rule->name + "\" of Windows Firewall lets echo replies in")
             : Finding{.what = "no rule of Windows Firewall blocks echo replies", .remedy = remedy};
}

Finding ExamineRawSockets(bool hasRight) {
  return hasRight ? Fine("the right to send echo requests")
                  : Missing("the right to send echo requests", kHowToAllowRawSockets);
}

}  // namespace

std::vector<platform::Finding> Examine(const Machine& machine) {
  Findings findings = {ExamineClasses(machine.problemOfClasses),
                       ExamineWlanService(machine.wlanService),
                       ExamineWiFiDirect(machine.wiFiDirectError)};
  ExamineAdapters(findings, machine.adapters.real);
  ExamineSupport(findings, machine.adapters);
  findings.push_back(ExamineHotspot(machine.hotspotService));
  if (machine.hasHostedNetwork) {
    findings.push_back(Doubtful("the hosted network is on, which may take the radio for itself",
                                "as administrator: netsh wlan stop hostednetwork"));
  }
  findings.push_back(ExamineRawSockets(machine.hasRawSockets));
  findings.push_back(ExamineFirewall(machine.firewall));
  return findings;
}

}  // namespace lanvoss::windows
