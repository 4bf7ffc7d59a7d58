#include "camera.h"

#include <chrono>
#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <sched.h>
#include <unistd.h>
#include <utility>

#include "host_supplicant.h"
#include "platform/error.h"

namespace lanvoss::test {
namespace {

using namespace std::chrono_literals;

constexpr char kNetwork[] = "/run/netns/camera";
constexpr char kLeaseScript[] = "/run/lease-script";
constexpr char kHostDevice[] = "42:00:00:00:00:00";
constexpr auto kPatience = 20s;
constexpr std::uint32_t kReplyMs = 10'000;
constexpr std::uint32_t kPollMs = 100;

// Whoever wants it more owns the group; the host asks with 14.
constexpr char kLeavesIt[] = "1";
constexpr char kWantsIt[] = "15";
constexpr char kOwnAddress[] = "192.168.50.1";

// Carries out a command in the camera's network.
bool Run(const std::string& command) {
  const std::string within = std::string("nsenter --net=") + kNetwork + " sh -c '" + command + "'";
  return RunCommand(within);
}

// Takes this thread there. A control socket can be answered only in the network of its maker.
void EnterNetwork() {
  const int network = open(kNetwork, O_RDONLY | O_CLOEXEC);
  EXPECT_EQ(setns(network, CLONE_NEWNET), 0);
  close(network);
}

}  // namespace

bool Await(const std::function<bool()>& isSo) {
  const auto deadline = std::chrono::steady_clock::now() + kPatience;
  while (!isSo()) {
    if (std::chrono::steady_clock::now() > deadline) {
      return false;
    }
    std::this_thread::sleep_for(10ms);
  }
  return true;
}

Camera::Camera(std::string radio) : radio_(std::move(radio)), ownerIntent_(kLeavesIt) {
  Run("cp /lab/camera.conf /run/" + radio_ + ".conf");
  SwitchOn();
}

void Camera::SwitchOn() {
  EXPECT_TRUE(Run("wpa_supplicant -B -i " + radio_ + " -D nl80211 -c /run/" + radio_ +
                  ".conf -P /run/" + radio_ + ".pid >/dev/null"));
  life_ = std::thread([this] { Live(); });
  EXPECT_TRUE(Await([this] { return on_.load(); })) << "the camera does not start";
}

void Camera::Kill() {
  on_ = false;
  if (life_.joinable()) {
    life_.join();
    const std::string process = FirstLine("/run/" + radio_ + ".pid");
    Run("kill -9 " + process + "; rm /run/" + radio_ + ".pid");
    EXPECT_TRUE(Await([&] { return !Run("kill -0 " + process + " 2>/dev/null"); }));
  }
  if (serves_) {
    Run("kill $(cat /run/dnsmasq.pid)");
  }
  SetAddress("");
}

void Camera::Live() {
  EnterNetwork();
  const std::string path = "/run/camera/p2p-dev-" + radio_;
  std::unique_ptr<wpa::ControlSocket> events;
  EXPECT_TRUE(Await([&] {
    try {
      const std::lock_guard lock(asking_);
      commands_ = std::make_unique<wpa::ControlSocket>(path);
      events = std::make_unique<wpa::ControlSocket>(path);
      events->Send("ATTACH", kReplyMs);
      return events->Receive(kReplyMs).has_value();
    } catch (const platform::Error&) {
      return false;  // it has not come so far
    }
  }));
  Do("P2P_LISTEN");
  for (on_ = true; on_;) {
    if (const auto text = events->Receive(kPollMs)) {
      {
        const std::lock_guard lock(mutex_);
        log_ += radio_ + ": " + text->substr(0, text->find(" psk=")) + "\n";
      }
      React(wpa::ParseMessage(*text));
    }
  }
}

void Camera::React(const wpa::Message& message) {
  const char* const intent = ownerIntent_;
  if (message.name == "P2P-GO-NEG-REQUEST" && intent != nullptr) {
    Do("P2P_CONNECT " + message.Word(0) + " pbc persistent go_intent=" + intent);
  } else if (message.name == "P2P-GROUP-STARTED") {
    Enter(message.Word(0), message);
  } else if (message.name == "AP-STA-DISCONNECTED") {
    Do("P2P_GROUP_REMOVE *");
  } else if (message.name == "P2P-GROUP-REMOVED" || message.name == "P2P-GO-NEG-FAILURE") {
    SetAddress("");
    Do("P2P_LISTEN");
  }
}

// Sets up the camera's end of the link.
void Camera::Enter(const std::string& group, const wpa::Message& started) {
  Run("echo 0 >/proc/sys/net/ipv4/icmp_echo_ignore_all");
  std::string address = started.Word(1) == "GO" ? kOwnAddress : started.Field("ip_addr");
  if (!address.empty()) {
    Run("ip addr add " + address + "/24 dev " + group);
  } else {
    std::ofstream(kLeaseScript) << "#!/bin/sh\n[ -z \"$ip\" ] && exit\n"
                                   "ip addr add $ip/24 dev $interface\necho $ip >/run/lease\n";
    Run(std::string("chmod +x ") + kLeaseScript + "; udhcpc -q -n -t 10 -T 1 -i " + group + " -s " +
        kLeaseScript + " >/dev/null 2>&1");
    address = FirstLine("/run/lease");
  }
  if (serves_) {
    Run("dnsmasq -C /dev/null --user=root --port=0 --bind-interfaces --interface=" + group +
        " --no-ping --dhcp-authoritative --dhcp-leasefile=/run/leases --pid-file=/run/dnsmasq.pid"
        " --dhcp-range=192.168.50.10,192.168.50.20,255.255.255.0");
  }
  SetAddress(address);
}

void Camera::Answer() { ownerIntent_ = kLeavesIt; }
void Camera::KeepSilent() { ownerIntent_ = nullptr; }
void Camera::OwnTheGroup() { ownerIntent_ = kWantsIt; }

void Camera::Reject() {
  EXPECT_TRUE(Await([this] { return Do(std::string("P2P_REJECT ") + kHostDevice); }));
  Do("P2P_LISTEN");
}

void Camera::EndRejection() {
  Do("P2P_FLUSH");
  Do("P2P_LISTEN");
}

void Camera::Rename(const std::string& name) { EXPECT_TRUE(Do("SET device_name " + name)); }

void Camera::ForgetCredentials() {
  EXPECT_TRUE(Do("REMOVE_NETWORK all"));
  EXPECT_TRUE(Do("SAVE_CONFIG"));
}

void Camera::ServeAddresses() {
  EXPECT_TRUE(Do("SET ip_addr_start 0.0.0.0"));
  serves_ = true;
}

void Camera::GiveAddressesOf(const std::string& network) {
  EXPECT_TRUE(Do("SET ip_addr_go " + network + ".1"));
  EXPECT_TRUE(Do("SET ip_addr_start " + network + ".10"));
  EXPECT_TRUE(Do("SET ip_addr_end " + network + ".20"));
}

void Camera::InviteTheHost() {
  Do("P2P_STOP_FIND");
  Do(std::string("P2P_INVITE persistent=0 peer=") + kHostDevice);
}

void Camera::DropEchoes() { Run("echo 1 >/proc/sys/net/ipv4/icmp_echo_ignore_all"); }

bool Camera::Do(const std::string& command) {
  const std::lock_guard lock(asking_);
  commands_->Send(command, kReplyMs);
  return commands_->Receive(kReplyMs).value_or("").starts_with("OK");
}

std::size_t Camera::Count(const std::string& event) {
  const std::string log = Log();
  std::size_t count = 0;
  for (auto at = log.find(event); at != std::string::npos; at = log.find(event, at + 1)) {
    ++count;
  }
  return count;
}

std::string Camera::Log() {
  const std::lock_guard lock(mutex_);
  return log_;
}

void Camera::ForgetLog() {
  const std::lock_guard lock(mutex_);
  log_.clear();
}

bool Camera::HasAddress() {
  const std::lock_guard lock(mutex_);
  return !address_.empty();
}

std::string Camera::Address() {
  Await([this] { return HasAddress(); });
  const std::lock_guard lock(mutex_);
  return address_;
}

void Camera::SetAddress(const std::string& address) {
  const std::lock_guard lock(mutex_);
  address_ = address;
}

}  // namespace lanvoss::test
