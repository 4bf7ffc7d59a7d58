// Every device that the library has seen. Entries are added and replaced, never removed.
//
// Plain data and look-ups. The owner of a table locks it. Nothing here calls the platform or the
// host.
#pragma once

#include <map>
#include <memory>
#include <string>

#include "platform/system.h"
#include "platform/wifi_direct.h"

namespace lanvoss {

struct DeviceRecord {
  std::string mac;  // the end of the id, see MacOf
  std::string name;
  platform::LocalTime seen;
};

// What a report changes in the part of the table that the cache file keeps.
enum class RecordChange { kNone, kRenamed, kNew };

class DeviceTable {
 public:
  using Information = std::shared_ptr<platform::DeviceInformation>;
  using Reported = std::map<std::string, Information>;  // by name
  using Records = std::map<std::string, DeviceRecord>;  // by id, in the order of the cache file

  DeviceTable() = default;
  // Not to be copied: the copy's names would mean the original's records.
  DeviceTable(DeviceTable&&) = default;
  DeviceTable& operator=(DeviceTable&&) = default;

  // The name now means this device, and a new id gets its record. An existing record stays
  // until Refresh, so that the host is notified of a new name before the table has it. `info`
  // returns the reference that it replaced, which the caller releases outside its lock.
  RecordChange Report(const std::string& name, const std::string& id, const DeviceRecord& record,
                      Information& info);

  // Replaces the record of an id that was reported.
  void Refresh(const std::string& id, const DeviceRecord& record);

  // Forgets which devices were reported, and gives their information to the caller, to release
  // outside its lock.
  Reported TakeReported();

  // Takes up one line of the cache file: the first record of an id stays, and a name means the id
  // of its latest line, the earlier one winning ties.
  void Load(std::string id, DeviceRecord record);

  const std::string* IdOf(const std::string& name) const;    // null for an unknown name
  Information InformationOf(const std::string& name) const;  // none for a name not reported
  std::string NameOf(const std::string& id) const;           // empty for an unknown id
  const Records& AllRecords() const { return mapIdRecord; }

 private:
  // Ordered by their keys' bytes. Two devices of one name share its entry in the last two, and the
  // later report wins; their records stay apart.
  Records mapIdRecord;
  // Each points into mapIdRecord, where nothing moves or goes: the key there is the name's id.
  std::map<std::string, Records::const_pointer> mapNameId;
  Reported mapNameInfo;
};

// The last 17 characters of an id, which are the device's hardware address; empty for a shorter id.
std::string MacOf(const std::string& id);

}  // namespace lanvoss
