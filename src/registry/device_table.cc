#include "registry/device_table.h"

#include <utility>

#include "base/limits.h"
#include "registry/compare_seconds.h"

namespace lanvoss {

RecordChange DeviceTable::Report(const std::string& name, const std::string& id,
                                 const DeviceRecord& record, Information& info) {
  std::swap(mapNameInfo[name], info);
  const auto [stored, inserted] = mapIdRecord.try_emplace(id, record);
  mapNameId[name] = &*stored;
  if (inserted) {
    return RecordChange::kNew;
  }
  return stored->second.name == name ? RecordChange::kNone : RecordChange::kRenamed;
}

void DeviceTable::Refresh(const std::string& id, const DeviceRecord& record) {
  mapIdRecord[id] = record;
}

DeviceTable::Reported DeviceTable::TakeReported() { return std::exchange(mapNameInfo, {}); }

void DeviceTable::Load(std::string id, DeviceRecord record) {
  std::string name = record.name;
  const platform::LocalTime seen = record.seen;
  // The hint is right for a file whose lines are in the order of their ids.
  const auto stored = mapIdRecord.try_emplace(mapIdRecord.end(), std::move(id), std::move(record));
  const auto [mapped, inserted] = mapNameId.try_emplace(std::move(name), &*stored);
  if (!inserted && CompareSeconds(seen, mapped->second->second.seen) > 0) {
    mapped->second = &*stored;
  }
}

const std::string* DeviceTable::IdOf(const std::string& name) const {
  const auto entry = mapNameId.find(name);
  return entry == mapNameId.end() ? nullptr : &entry->second->first;
}

DeviceTable::Information DeviceTable::InformationOf(const std::string& name) const {
  const auto entry = mapNameInfo.find(name);
  return entry == mapNameInfo.end() ? nullptr : entry->second;
}

std::string DeviceTable::NameOf(const std::string& id) const {
  const auto entry = mapIdRecord.find(id);
  return entry == mapIdRecord.end() ? std::string() : entry->second.name;
}

std::string MacOf(const std::string& id) {
  return id.size() < kMacLength ? std::string() : id.substr(id.size() - kMacLength);
}

}  // namespace lanvoss
