// What the machines of users do: long names, left groups, rivals, radios that are switched off.
#include <arpa/inet.h>
#include <fstream>
#include <future>
#include <netinet/in.h>
#include <sys/socket.h>

#include "host.h"
#include "platform/error.h"

namespace lanvoss::test {
namespace {

using namespace std::chrono_literals;

const std::string kAddresses = "192.168.49.1,192.168.49.10";

class Field : public Radio {
 protected:
  // Starts the program and kills it as soon as the camera has an address.
  void KillTheProgramInALink() {
    EXPECT_TRUE(RunCommand(ProgramCommand("exec setsid", "keep " + kName) +
                           " & echo $! >/run/program.pid"));
    EXPECT_TRUE(Await([this] { return camera->HasAddress(); }));
    std::this_thread::sleep_for(1s);
    EXPECT_TRUE(RunCommand("kill -9 $(cat /run/program.pid)"));
  }

  bool HasAddress(const std::string& interface) const {
    return RunCommand("ip addr show dev " + interface + " | grep -q 'inet '");
  }

  // Whether `doctor` says that something with this text is missing, and how to fix it.
  bool DoctorMisses(const std::string& text, const std::string& remedy = "") const {
    RunCommand(ProgramCommand("", "doctor"));
    const std::string output = kProgramOutput;
    return RunCommand("cat " + output + "; grep -A1 'missing .*" + text + "' " + output +
                      " | grep -q 'fix: .*" + remedy + "'");
  }
};

TEST_F(Field, ReachesADeviceOverALongInterfaceName) {
  supplicant.Kill();
  supplicant.Rename("wlp0s20f3");
  supplicant.Start();
  EXPECT_EQ(RunProgram("program: long interface name", "ip " + kName), kAddresses);
  EXPECT_EQ(RunProgram("program: and by id", "ip --direct " + kName), kAddresses);
}

// Another adapter has the same wpa_supplicant, and then a name that is cut to the same.
TEST_F(Field, SaysThatAnotherAdapterIsInTheWay) {
  EXPECT_TRUE(RunCommand("nsenter --net=/run/netns/camera iw phy#2 set netns 1"));
  supplicant.Kill();
  EXPECT_TRUE(
      RunCommand("wpa_supplicant -B -i wlan2 -c /lab/host.conf -N -i wlan0 "
                 "-c /lab/host.conf -P /run/host.pid >/dev/null"));
  EXPECT_TRUE(DoctorMisses("another adapter than wlan0", "wpa_supplicant-nl80211-wlan0.conf"));
  RunCommand(ProgramCommand("", "ip " + kName));
  EXPECT_TRUE(RunCommand(std::string("grep 'another adapter' ") + kProgramOutput));
  supplicant.Kill();
  RunCommand("ip link set wlan2 down; ip link set wlan2 name wlx001122334466");
  supplicant.Rename("wlx001122334455");
  supplicant.Start();
  EXPECT_TRUE(DoctorMisses("begin alike", "wlx001122334466 name wlan0"));
  RunCommand("ip link set wlx001122334466 name wlan2; iw phy phy2 set netns name camera");
}

TEST_F(Field, UsesTheAdaptersOwnInterface) {
  supplicant.Kill();
  supplicant.Start("p2p_no_group_iface=1\n");
  Connect("connect on the adapter's own interface", kName);
  EXPECT_TRUE(HasAddress("wlan0"));
  DisConnect();
  EXPECT_FALSE(HasAddress("wlan0"));
  Connect("and again", "\n" + kName);
  lanvoss.reset();
  EXPECT_FALSE(HasAddress("wlan0"));
  KillTheProgramInALink();
  EXPECT_TRUE(DoctorMisses("busy with the group wlan0", "p2p-dev-wlan0 p2p_group_remove wlan0"));
  EXPECT_EQ(RunProgram("program: after a killed one", "ip " + kName), kAddresses);
  KillTheProgramInALink();
  EXPECT_EQ(RunProgram("program: after a killed one, by id", "ip --direct " + kName), kAddresses);
  KillTheProgramInALink();
  EXPECT_EQ(RunProgram("program: close it", "disconnect " + kName),
            "the link to " + kName + " is closed");
  EXPECT_EQ(RunProgram("program: close it again", "disconnect " + kName),
            "there is no link to " + kName);
}

TEST_F(Field, ReachesADeviceThatAKilledProgramHasLeftInItsGroup) {
  KillTheProgramInALink();
  EXPECT_EQ(RunProgram("program: after a killed one", "ip " + kName), kAddresses);
  KillTheProgramInALink();
  EXPECT_EQ(RunProgram("program: after a killed one, by id", "ip --direct " + kName), kAddresses);
  camera->OwnTheGroup();
}

TEST_F(Field, ReachesADeviceWhoseGroupAKilledProgramHasLeft) {
  camera->OwnTheGroup();
  KillTheProgramInALink();
  EXPECT_EQ(RunProgram("program: after a killed one, camera owns", "ip " + kName),
            "192.168.50.10,192.168.50.1");
}

// Every command after every other.
TEST_F(Field, ServesOneProgramAfterTheOther) {
  const std::string once = "ip " + kName;
  const std::string byId = "ip --direct " + kName;
  for (const auto pause : {0s, 3s}) {
    for (const char next : std::string("iikkddkidi")) {
      std::this_thread::sleep_for(pause);
      if (next == 'k') {
        RunCommand(ProgramCommand("timeout -s INT 5", "keep " + kName));
        EXPECT_NE(FirstLine(kProgramOutput), "") << "keep";
        EXPECT_TRUE(RunCommand(std::string("grep -q ' up ' ") + kProgramOutput)) << "keep";
      } else {
        EXPECT_EQ(RunProgram("program: " + std::string(1, next), next == 'i' ? once : byId),
                  kAddresses);
      }
    }
  }
  EXPECT_FALSE(DoctorMisses("busy"));
}

TEST_F(Field, SaysThatAnotherServerHasThePort) {
  const int rival = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  constexpr std::uint16_t kServerPort = 67;
  sockaddr_in any{};
  any.sin_family = AF_INET;
  any.sin_port = htons(kServerPort);
  ASSERT_EQ(bind(rival, reinterpret_cast<const sockaddr*>(&any), sizeof any), 0);
  EXPECT_TRUE(DoctorMisses("port 67"));
  Open();
  SendToSupplicant("SET ip_addr_start 0.0.0.0");
  auto asked = std::async(std::launch::async, [this] { return lanvoss->GetDeviceIp(kName); });
  EXPECT_TRUE(IsLoggedSoon("failed to bind DHCP server socket: Address already in use"));
  close(rival);
  EXPECT_NE(asked.get(), "");
}

TEST_F(Field, NamesTheProgramsThatTakeTheAdapterOrItsGroups) {
  for (const std::string rival : {"/run/iwd", "/run/NetworkManager", "/run/dhcpcd"}) {
    std::ofstream(rival) << "#!/bin/sh\nsleep 10\n";
    RunCommand("chmod +x " + rival + "; " + rival + " &");
  }
  std::this_thread::sleep_for(1s);
  std::filesystem::create_directories("/etc/NetworkManager/conf.d");
  std::ofstream("/etc/NetworkManager/conf.d/a.conf") << "#unmanaged-devices=interface-name:p2p*\n";
  EXPECT_TRUE(DoctorMisses("iwd runs", "disable --now iwd"));
  EXPECT_TRUE(DoctorMisses("NetworkManager leaves", "interface-name:wlan0 into /etc/Network"));
  EXPECT_TRUE(DoctorMisses("dhcpcd leaves", "into /etc/dhcpcd.conf"));
  std::ofstream("/etc/NetworkManager/conf.d/b.conf") << "unmanaged-devices=interface-name:p2p*\n";
  std::ofstream("/etc/dhcpcd.conf") << "denyinterfaces eth0 p2p*\n";
  EXPECT_FALSE(DoctorMisses("NetworkManager"));
  EXPECT_FALSE(DoctorMisses("dhcpcd"));
  std::this_thread::sleep_for(10s);
}

TEST_F(Field, RefusesTheAddressesOfAnotherNetwork) {
  EXPECT_TRUE(RunCommand("ip addr add 192.168.50.77/24 dev lo"));
  camera->OwnTheGroup();
  Open();
  auto asked = std::async(std::launch::async, [this] { return lanvoss->GetDeviceIp(kName); });
  EXPECT_TRUE(IsLoggedSoon("ConnDevice Err:the device gives an address of the network of lo"));
  EXPECT_TRUE(RunCommand("ip addr del 192.168.50.77/24 dev lo"));
  EXPECT_EQ(asked.get(), "192.168.50.10,192.168.50.1");
}

TEST_F(Field, TakesTheLinkThatTheCameraOffersMeanwhile) {
  Connect("connect", kName);
  for (const auto ahead : {0ms, 20ms, 100ms, 300ms}) {
    DisConnect();
    std::this_thread::sleep_for(1s);
    camera->InviteTheHost();
    std::this_thread::sleep_for(ahead);
    EXPECT_EQ(Ask("connect, the camera invites too", "\n" + kName), kAddresses);
    ExpectReplies();
    EXPECT_EQ(Logged("FromIdAsync done"), 1);
  }
}

TEST_F(Field, EndsALinkThatNobodyTakes) {
  const auto system = posix::CreateSystem();
  const auto radio = wpa::CreateRadio(system, supplicant.Interface());
  const auto watcher = radio->CreateWatcher(u"", {});
  std::promise<std::shared_ptr<platform::DeviceInformation>> found;
  watcher->Added([&](auto&, const auto& info) { found.set_value(info); });
  watcher->Start();
  const auto pairing = found.get_future().get()->Pairing()->Custom();
  watcher->Stop();
  pairing->PairingRequested([](auto&, auto& args) { args.Accept(); });
  pairing->PairAsync(platform::DevicePairingKinds::ConfirmOnly,
                     platform::DevicePairingProtectionLevel::Default,
                     radio->CreateConnectionParameters());
  EXPECT_TRUE(Await([this] { return camera->HasAddress(); }));
  std::this_thread::sleep_for(10s);
  EXPECT_TRUE(camera->HasAddress());
  EXPECT_TRUE(Await([this] { return !camera->HasAddress(); }));
}

TEST_F(Field, SurvivesTheEndOfTheSupplicant) {
  Connect("connect", kName);
  supplicant.Kill();
  EXPECT_TRUE(IsLoggedSoon(kDown));
  supplicant.Start();
  Connect("connect, after a new supplicant in a link", kName);
  DisConnect();
  camera->Kill();
  auto asked = std::async(std::launch::async, [this] { return lanvoss->GetDeviceIp(kName); });
  std::this_thread::sleep_for(3s);
  supplicant.Kill();
  std::this_thread::sleep_for(3s);
  supplicant.Start();
  camera->SwitchOn();
  EXPECT_EQ(asked.get(), kAddresses);
}

TEST_F(Field, ReportsARadioThatIsSwitchedOff) {
  const auto block = [](const char* on) {
    return RunCommand(std::string("echo ") + on + " | tee /sys/class/ieee80211/phy0/rfkill*/soft");
  };
  Connect("connect", kName);
  EXPECT_TRUE(block("1"));
  EXPECT_TRUE(IsLoggedSoon(kDown));
  EXPECT_TRUE(DoctorMisses("switched off"));
  EXPECT_TRUE(block("0"));
  std::this_thread::sleep_for(1s);
  Connect("connect, the radio is on again", kName);
}

// A group takes the channel of that network.
TEST_F(Field, LeavesTheNetworkOfTheAdapterAlone) {
  std::ofstream("/run/office.conf") << "network={\nssid=\"office\"\nmode=2\nkey_mgmt=NONE\n"
                                       "frequency=2437\n}\n";
  EXPECT_TRUE(
      RunCommand("nsenter --net=/run/netns/camera wpa_supplicant -B -i wlan2 -D nl80211 -c "
                 "/run/office.conf -P /run/office.pid >/dev/null"));
  const auto ask = [](const std::string& command) {
    return HostSupplicant::AskAt("wlan0", command);
  };
  ask("ADD_NETWORK");
  ask("SET_NETWORK 0 ssid \"office\"");
  ask("SET_NETWORK 0 key_mgmt NONE");
  ask("SELECT_NETWORK 0");
  const auto isInNetwork = [&] {
    return ask("STATUS").find("wpa_state=COMPLETED") != std::string::npos;
  };
  EXPECT_TRUE(Await(isInNetwork));
  Connect("connect, the adapter is in a network", kName);
  EXPECT_TRUE(isInNetwork());
  EXPECT_NE(camera->Log().find("freq=2437"), std::string::npos);
  DisConnect();
  Connect("and again", "\n" + kName);
  EXPECT_TRUE(isInNetwork());
  ask("REMOVE_NETWORK 0");
  RunCommand("kill $(cat /run/office.pid)");
}

}  // namespace
}  // namespace lanvoss::test
