#include "backends/wpa/machine.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <netinet/in.h>
#include <sys/socket.h>
#include <system_error>
#include <unistd.h>

#include "backends/wpa/message.h"

namespace lanvoss::wpa {
namespace {

namespace fs = std::filesystem;

// Empty where nothing can be read.
std::string ReadFile(const fs::path& path) {
  std::error_code none;
  if (fs::is_directory(path, none)) {
    return {};  // to read one would raise an error
  }
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// The folders of /proc that are processes of this program.
std::vector<fs::path> ProcessesOf(const std::string& program) {
  constexpr std::size_t kKeptOfName = 15;  // letters, by the system
  std::vector<fs::path> processes;
  std::error_code none;
  for (const auto& entry : fs::directory_iterator("/proc", none)) {
    if (ReadFile(entry.path() / "comm") == program.substr(0, kKeptOfName) + "\n") {
      processes.push_back(entry.path());
    }
  }
  return processes;
}

// The value of an option that is written "-o VALUE" or "-oVALUE"; empty without one.
std::string ValueOf(const std::string& option, const std::vector<std::string>& arguments) {
  for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
    if (*argument == option && std::next(argument) != arguments.end()) {
      return *std::next(argument);
    }
    if (argument->starts_with(option)) {
      return argument->substr(option.size());
    }
  }
  return {};
}

}  // namespace

bool IsRunning(const std::string& program) { return !ProcessesOf(program).empty(); }

std::vector<std::string> WirelessInterfaces() {
  std::vector<std::string> interfaces;
  std::error_code none;
  for (const auto& entry : fs::directory_iterator("/sys/class/net", none)) {
    if (fs::exists(entry.path() / "phy80211", none)) {
      interfaces.push_back(entry.path().filename());
    }
  }
  std::ranges::sort(interfaces);
  return interfaces;
}

std::string ConfigurationOf(const std::string& interface) {
  for (const fs::path& process : ProcessesOf("wpa_supplicant")) {
    const std::vector<std::string> arguments = Lines(ReadFile(process / "cmdline"), '\0');
    if (ValueOf("-i", arguments) == interface) {
      return ValueOf("-c", arguments);
    }
  }
  return {};
}

std::string ServiceFile(const std::string& interface) {
  return "/etc/wpa_supplicant/wpa_supplicant-nl80211-" + interface + ".conf";
}

std::string HowToStartService(const std::string& interface) {
  return "write the configuration " + ServiceFile(interface) + " with the lines " +
         kControlSetting + " and update_config=1, and " +
         "sudo systemctl enable --now wpa_supplicant-nl80211@" + interface;
}

bool AnySets(const std::vector<std::string>& paths, const std::string& key,
             const std::string& text) {
  for (const fs::path path : paths) {
    std::vector<std::string> inside;
    std::error_code none;
    for (const auto& entry : fs::directory_iterator(path, none)) {
      inside.push_back(entry.path());
    }
    const std::vector<std::string> lines = Lines(ReadFile(path));
    const bool isSet = std::ranges::any_of(lines, [&](const std::string& line) {
      return line.starts_with(key) && line.find(text) != std::string::npos;
    });
    if (isSet || AnySets(inside, key, text)) {
      return true;
    }
  }
  return false;
}

// Asks for it as dnsmasq does, which shares the port with a server that shares it too.
bool IsServerPortFree() {
  constexpr std::uint16_t kServerPort = 67;
  sockaddr_in any{};
  any.sin_family = AF_INET;
  any.sin_port = htons(kServerPort);
  const int one = 1;
  const int opened = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  setsockopt(opened, SOL_SOCKET, SO_REUSEADDR, &one, sizeof one);
  const bool isTaken =
      bind(opened, reinterpret_cast<const sockaddr*>(&any), sizeof any) != 0 && errno == EADDRINUSE;
  close(opened);
  return !isTaken;
}

}  // namespace lanvoss::wpa
