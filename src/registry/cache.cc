// The watcher object's part of the cache: loading it at construction, writing it after changes.
#include "registry/cache_file.h"
#include "registry/split_text.h"
#include "watcher/device_watcher_winrt.h"

namespace lanvoss {

void CDeviceWatcherWinRT::LoadCache() {
  int number = 0;  // position in the file's lines, skipped ones included
  const std::string content = ReadCacheFile(*platform_.system, strCachePath);
  for (const std::string_view text : SplitText(content, "\n")) {
    ++number;
    auto line = ParseCacheLine(text);
    if (!line) {
      continue;
    }
    std::string name = line->record.name;
    std::string logText = std::to_string(number) + " Device:" + name + " id:" + line->id;
    {
      const Lock lock(mutex);
      deviceTable.Load(std::move(line->id), std::move(line->record));
    }
    Notify("watch", std::move(name));
    WriteLog(std::move(logText));
  }
}

// One thread writes at a time. A change that arrives meanwhile is left to that thread, which writes
// again until the file holds the table as it is; so the last state wins and nobody waits.
void CDeviceWatcherWinRT::WriteCache() {
  {
    const Lock lock(mutex);
    bCacheChanged = true;
    if (bCacheWriting) {
      return;
    }
    bCacheWriting = true;
  }
  try {
    while (const auto content = TakeCacheContent()) {
      WriteCacheFile(*platform_.system, strCachePath, *content);
    }
  } catch (...) {
    const Lock lock(mutex);
    bCacheWriting = false;
    throw;
  }
}

// The content that the file should have; none, which also ends the writing, when it has it already.
std::optional<std::string> CDeviceWatcherWinRT::TakeCacheContent() {
  const Lock lock(mutex);
  bCacheWriting = std::exchange(bCacheChanged, false);
  return bCacheWriting ? std::optional(FormatCache(deviceTable.mapIdRecord)) : std::nullopt;
}

}  // namespace lanvoss
