// Fakes of the classes of the Windows Runtime that the library activates: strict COM objects over
// any radio. The library calls these objects through COM, and they call the radio.
//
//   fake_winrt::Use(air.Radio(), time);
//   ... let the library work on windows::CreateRadio(system), then let its last events pass ...
//   const fake_winrt::Ledger ledger = fake_winrt::Finish();
//   EXPECT_EQ(ledger.created, ledger.destroyed);
//   EXPECT_THAT(ledger.faults, IsEmpty());
//
// A process that never calls Use gets simulated devices in real time: from the scenario file in the
// environment variable LANVOSS_FAKE_WINRT_SCENARIO, otherwise those of the demo.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "backends/events/threads.h"
#include "backends/simulated/peer.h"
#include "platform/wifi_direct.h"

#ifdef LANVOSS_FAKE_WINRT_BUILD
#define LANVOSS_FAKE_WINRT_API __declspec(dllexport)
#else
#define LANVOSS_FAKE_WINRT_API __declspec(dllimport)
#endif

namespace lanvoss::fake_winrt {

// What was seen since Use.
struct Ledger {
  unsigned created = 0;
  unsigned destroyed = 0;
  // The reference with which an object is created counts too: nothing leaked when both are equal.
  unsigned long long addRefs = 0;
  unsigned long long releases = 0;
  std::vector<std::string> faults = {};  // in UTF-8
};

// From now on the classes use this radio. The threads of asynchronous operations come from
// `threads`.
LANVOSS_FAKE_WINRT_API void Use(std::shared_ptr<platform::WiFiDirect> radio,
                                std::shared_ptr<events::Threads> threads);

// From now on the classes have those of these habits that only they can have.
LANVOSS_FAKE_WINRT_API void SetHabits(const simulated::Habits& habits);

// Waits for the asynchronous operations to end, drops the radio, and returns what was seen. The
// library must have released everything: an object that is still referenced counts as leaked.
LANVOSS_FAKE_WINRT_API Ledger Finish();

}  // namespace lanvoss::fake_winrt
