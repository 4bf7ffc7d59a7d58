#include "backends/simulated/demo.h"

#include <vector>

namespace lanvoss::simulated {
namespace {

constexpr Habits kHabits = {.enumerationMs = 1800, .stopMs = 60, .statusReportMs = 25};

std::vector<Peer> Peers() {
  return {
      {.name = u"Cam-7F21",
       .id = u"WiFiDirect#02:11:22:33:7f:21",
       .localAddress = u"192.168.137.1",
       .remoteAddress = u"192.168.137.21",
       .appearMs = 620,
       .pairMs = 950,
       .openMs = 480,
       .closeMs = 70},
      {.name = u"Cam-90A4",
       .id = u"WiFiDirect#02:11:22:33:90:a4",
       .paired = true,
       .localAddress = u"192.168.137.1",
       .remoteAddress = u"192.168.137.94",
       .appearMs = 240,
       .openMs = 410},
      // Wakes up late: its first open request gives no link.
      {.name = u"Projector Aula",
       .id = u"WiFiDirect#02:5e:10:00:00:07",
       .localAddress = u"192.168.137.1",
       .remoteAddress = u"192.168.137.7",
       .appearMs = 1350,
       .pairMs = 1400,
       .openMs = 700,
       .openings = {Outcome::kNone}},
      // Never agrees to pair.
      {.name = u"Drucker Büro 2",
       .id = u"WiFiDirect#02:9c:44:0b:6d:30",
       .appearMs = 880,
       .pairMs = 600,
       .pairingStatus = platform::DevicePairingResultStatus::RejectedByHandler},
  };
}

}  // namespace

Scenario DemoScenario() { return {.habits = kHabits, .peers = Peers()}; }

}  // namespace lanvoss::simulated
