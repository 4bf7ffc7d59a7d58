#include "watcher/log_sink.h"

#include <cstdio>
#include <utility>

namespace lanvoss {

LogSink::LogSink(platform::System& system, platform::WiFiDirect& wifiDirect,
                 std::shared_ptr<LifetimeGate> gate, NotifyCallback notify)
    : system_(system), wifiDirect_(wifiDirect), gate_(std::move(gate)), pfnNotify(notify) {}

void LogSink::WriteLog(std::string text) const {
  const platform::LocalTime now = system_.GetLocalTime();
  std::printf("[%04d-%02d-%02d %02d:%02d:%02d.%03d] %s\n", now.year, now.month, now.day, now.hour,
              now.minute, now.second, now.millisecond, text.c_str());
  LifetimeGate::CallHost(gate_, pfnNotify, "info", std::move(text));
}

}  // namespace lanvoss
