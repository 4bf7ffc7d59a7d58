// Any text as a request for an address, on virtual time and right after a disconnect, so that its
// gap counts. Exactly the one device around is found, by its name, and in time.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <memory>
#include <string>
#include <string_view>

#include "lanvoss/lanvoss.h"

#include "backends/simulated/air.h"
#include "backends/simulated/virtual_time.h"
#include "require.h"
#include "watcher/make_lanvoss.h"

namespace {

using lanvoss::simulated::Air;
using lanvoss::simulated::VirtualTime;

constexpr char kName[] = "Cam";
constexpr char kAddress[] = "192.168.49.1,192.168.49.20";
// A place where no cache file can be, so that no input has an effect on the next one.
constexpr char kNoDirectory[] = "/dev/null";

constexpr std::uint64_t kSeed = 1;
constexpr std::uint32_t kOpenMs = 400;
// One pass takes all the time of an attempt. More would only make the fuzzer slower.
constexpr std::uint32_t kEnumerationMs = 60'000;
constexpr std::uint32_t kRequestLimitMs = 100'000;  // after the gap, without the connection
constexpr std::uint32_t kSettleMs = 1'000;          // events that are still on their way

constexpr std::uint64_t kLongestGapMs = std::numeric_limits<std::int32_t>::max();

std::string_view NameIn(std::string_view request) {
  const std::size_t lineFeed = request.find('\n');
  return lineFeed == std::string_view::npos ? request : request.substr(lineFeed + 1);
}

// A gap below 0 is none.
std::uint32_t GapMsIn(std::string_view request) {
  const std::size_t lineFeed = request.find('\n');
  const std::string_view line =
      request.substr(0, lineFeed == std::string_view::npos ? 0 : lineFeed);
  std::size_t at = std::min(line.find_first_not_of(" \t\v\f\r"), line.size());
  if (at < line.size() && line[at] == '-') {
    return 0;
  }
  if (at < line.size() && line[at] == '+') {
    ++at;
  }
  std::uint64_t gapMs = 0;
  for (; at < line.size() && line[at] >= '0' && line[at] <= '9'; ++at) {
    gapMs = std::min(10 * gapMs + static_cast<std::uint64_t>(line[at] - '0'), kLongestGapMs);
  }
  return static_cast<std::uint32_t>(gapMs);
}

// The longest gap takes the clock across its wrap.
std::uint32_t ElapsedMs(std::int32_t since, VirtualTime& time) {
  return static_cast<std::uint32_t>(time.Clock()) - static_cast<std::uint32_t>(since);
}

void Ask(const std::string& request, const Air& air, VirtualTime& time) {
  const auto lanvoss = lanvoss::MakeLanvoss({air.System(), air.Radio()}, nullptr, kNoDirectory);
  Require(lanvoss->GetDeviceIp(kName) == kAddress, "the device can be reached");
  const std::int32_t disconnecting = time.Clock();
  Require(lanvoss->DisConnect("") == 1, "the link can be closed");

  const std::int32_t begun = time.Clock();
  const std::string address = lanvoss->GetDeviceIp(request);
  Require(address == (NameIn(request) == kName ? kAddress : ""), "the named device is reached");
  Require(ElapsedMs(disconnecting, time) >= GapMsIn(request), "the gap is kept");
  Require(ElapsedMs(begun, time) <= GapMsIn(request) + kRequestLimitMs + kOpenMs,
          "the request returns in time");
}

}  // namespace

// The log is the library's standard output; the fuzzer's own is standard error.
extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
  Require(std::freopen("/dev/null", "w", stdout) != nullptr, "standard output can be dropped");
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto time = VirtualTime::Seeded(kSeed);
  Air air(time, time, {.enumerationMs = kEnumerationMs});
  air.Add({.name = u"Cam", .paired = true, .openMs = kOpenMs});
  Ask(std::string(data, data + size), air, *time);
  time->Sleep(kSettleMs);
  Require(air.LiveObjects() == 0, "no platform object is leaked");
  Require(air.EscapedExceptions() == 0, "no exception leaves an event handler");
  return 0;
}
