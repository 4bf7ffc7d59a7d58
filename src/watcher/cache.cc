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

void CDeviceWatcherWinRT::NoteCacheChange() {
  const Lock lock(mutex);
  bCacheChanged = true;
}

// Writes the file if the table has changed. One thread writes at a time. It also writes the changes
// that arrive meanwhile, until the file is equal to the table. So the last state wins, and no
// thread waits. After a write that threw, the next report writes the changes.
void CDeviceWatcherWinRT::WriteCache() {
  if (!BeginCacheWrite()) {
    return;
  }
  do {
    try {
      WriteCacheFile(*platform_.system, strCachePath, TakeCacheContent());
    } catch (...) {
      if (!KeepCacheChange()) {
        throw;
      }
    }
  } while (!EndCacheWrite());
}

// Whether there is something to write and no thread writes. Then this thread does.
bool CDeviceWatcherWinRT::BeginCacheWrite() {
  const Lock lock(mutex);
  return bCacheChanged && !std::exchange(bCacheWriting, true);
}

// What the file should hold now.
std::string CDeviceWatcherWinRT::TakeCacheContent() {
  const Lock lock(mutex);
  bCacheChanged = false;
  return FormatCache(deviceTable.AllRecords());
}

// After a write that threw: the table's change is still to be written. Whether this thread has to,
// because another one has left a change to it; otherwise it writes no more.
bool CDeviceWatcherWinRT::KeepCacheChange() {
  const Lock lock(mutex);
  bCacheWriting = std::exchange(bCacheChanged, true);
  return bCacheWriting;
}

// Whether the file holds the table as it is; if so, this thread writes no more.
bool CDeviceWatcherWinRT::EndCacheWrite() {
  const Lock lock(mutex);
  bCacheWriting = bCacheChanged;
  return !bCacheWriting;
}

}  // namespace lanvoss
