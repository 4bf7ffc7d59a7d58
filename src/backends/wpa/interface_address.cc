#include "backends/wpa/interface_address.h"

#include <arpa/inet.h>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include "backends/wpa/fail.h"

namespace lanvoss::wpa {
namespace {

// Any IPv4 socket takes the requests to interfaces.
class RequestSocket {
 public:
  RequestSocket() : socket_(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {}
  ~RequestSocket() { close(socket_); }
  RequestSocket(const RequestSocket&) = delete;
  RequestSocket& operator=(const RequestSocket&) = delete;

  // Raises platform::Error when it is refused.
  void Set(unsigned long request, const std::string& interface, const std::string& address) const {
    ifreq what{};
    interface.copy(what.ifr_name, sizeof what.ifr_name - 1);
    sockaddr_in value{};
    value.sin_family = AF_INET;
    errno = EINVAL;
    if (inet_pton(AF_INET, address.c_str(), &value.sin_addr) == 1) {
      std::memcpy(&what.ifr_addr, &value, sizeof value);
      if (ioctl(socket_, request, &what) == 0) {
        return;
      }
    }
    Fail("the address " + address + " for " + interface, errno);
  }

 private:
  const int socket_;
};

}  // namespace

void SetInterfaceAddress(const std::string& interface, const std::string& address,
                         const std::string& mask) {
  const RequestSocket requests;
  requests.Set(SIOCSIFADDR, interface, address);
  requests.Set(SIOCSIFNETMASK, interface, mask);
}

void ClearInterfaceAddress(const std::string& interface) {
  try {
    RequestSocket().Set(SIOCSIFADDR, interface, "0.0.0.0");
  } catch (const platform::Error&) {
    // The interface is gone, and the address with it.
  }
}

void IgnoreRouters(const std::string& interface) {
  std::ofstream("/proc/sys/net/ipv6/conf/" + interface + "/accept_ra") << "0";
}

}  // namespace lanvoss::wpa
