#include "watcher/log_sink.h"

#include <cstddef>
#include <cstdio>
#include <utility>

#include "base/text.h"

namespace lanvoss {
namespace {

constexpr std::size_t kStampSpace = 32;  // for the time stamp in its brackets

}  // namespace

LogSink::LogSink(platform::System& system, platform::WiFiDirect& wifiDirect,
                 std::shared_ptr<LifetimeGate> gate, NotifyCallback notify)
    : system_(system), wifiDirect_(wifiDirect), gate_(std::move(gate)), pfnNotify(notify) {}

void LogSink::WriteLog(std::string text) const {
  std::string line = "[";
  line.reserve(kStampSpace + text.size());
  AppendStamp(line, system_.GetLocalTime());
  line.append("] ").append(text);
  std::printf("%s\n", line.c_str());
  LifetimeGate::CallHost(gate_, pfnNotify, "info", std::move(text));
}

}  // namespace lanvoss
