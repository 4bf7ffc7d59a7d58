// The supplicant of the host's machine. A test can have it end, and start one of another kind.
#pragma once

#include <string>

namespace lanvoss::test {

// Carries out a command of the shell. False: it failed.
bool RunCommand(const std::string& command);
std::string FirstLine(const std::string& path);

class HostSupplicant {
 public:
  // One runs on wlan0. Afterwards one does so again.
  HostSupplicant() = default;
  ~HostSupplicant();
  HostSupplicant(const HostSupplicant&) = delete;
  HostSupplicant& operator=(const HostSupplicant&) = delete;

  void Kill();
  // `settings`: more lines for its configuration.
  void Start(const std::string& settings = "");
  // Gives the adapter another name, while no supplicant runs.
  void Rename(const std::string& interface);

  const std::string& Interface() const { return interface_; }
  // The reply to a command for the radio, or for one of its interfaces.
  std::string Ask(const std::string& command) const;
  static std::string AskAt(const std::string& socketName, const std::string& command);

 private:
  std::string SocketName() const;

  std::string interface_ = "wlan0";
  bool isAsAtFirst_ = true;
};

}  // namespace lanvoss::test
