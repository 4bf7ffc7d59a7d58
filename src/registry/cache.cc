// The watcher object's part of the cache: loading it at construction, writing it after changes.
#include "registry/cache_file.h"
#include "registry/split_text.h"
#include "watcher/device_watcher_winrt.h"
#include "watcher/text.h"

namespace lanvoss {

void CDeviceWatcherWinRT::LoadCache() {
  int number = 0;  // position in the file's lines, skipped ones included
  for (const std::string& text : SplitText(ReadCacheFile(strCachePath), "\n")) {
    ++number;
    const auto line = ParseCacheLine(text);
    if (!line) {
      continue;
    }
    {
      const Lock lock(mutex);
      deviceTable.Load(line->id, line->record);
    }
    Notify("watch", line->record.name);
    WriteLog(Format("%d Device:%s id:%s", number, line->record.name.c_str(), line->id.c_str()));
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
      WriteCacheFile(strCachePath, *content);
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
