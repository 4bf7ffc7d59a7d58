#include "backends/wpa/credentials.h"

#include <algorithm>
#include <utility>

#include "backends/wpa/limits.h"

namespace lanvoss::wpa {
namespace {

// The columns of a line of LIST_NETWORKS.
constexpr std::size_t kId = 0;
constexpr std::size_t kSsid = 1;
constexpr std::size_t kOwner = 2;
constexpr std::size_t kFlags = 3;
constexpr std::size_t kColumns = 4;

constexpr char kPersistentFlag[] = "[P2P-PERSISTENT]";

bool HasClient(const Supplicant& supplicant, const std::string& group, const std::string& address) {
  const std::string reply = supplicant.Ask("GET_NETWORK " + group + " p2p_client_list");
  const std::vector<std::string> clients = Lines(reply, ' ');
  return std::find(clients.begin(), clients.end(), address) != clients.end();
}

// The next networks of the list, which fits into several replies.
std::vector<std::vector<std::string>> NetworksAfter(const Supplicant& supplicant,
                                                    const std::string& lastId) {
  const std::string after = lastId.empty() ? std::string() : " LAST_ID=" + lastId;
  std::vector<std::vector<std::string>> networks;
  for (const std::string& line : Lines(supplicant.Ask("LIST_NETWORKS" + after))) {
    std::vector<std::string> columns = Lines(line, '\t');
    if (columns.size() >= kColumns) {
      networks.push_back(std::move(columns));
    }
  }
  return networks;
}

}  // namespace

std::vector<StoredGroup> StoredGroups(const Supplicant& supplicant) {
  std::vector<StoredGroup> groups;
  std::string lastId;
  for (int replies = 0; replies < kNetworkReplies; ++replies) {
    const auto networks = NetworksAfter(supplicant, lastId);
    if (networks.empty()) {
      break;
    }
    for (const auto& columns : networks) {
      if (columns[kFlags].find(kPersistentFlag) != std::string::npos) {
        groups.push_back({columns[kId], columns[kSsid], columns[kOwner]});
      }
    }
    lastId = networks.back()[kId];
  }
  return groups;
}

std::optional<StoredGroup> StoredGroupWith(const Supplicant& supplicant,
                                           const std::string& address) {
  for (const StoredGroup& group : StoredGroups(supplicant)) {
    if (group.owner == address || HasClient(supplicant, group.id, address)) {
      return group;
    }
  }
  return std::nullopt;
}

bool Forget(const Supplicant& supplicant, const StoredGroup& group) {
  const bool removed = supplicant.Do("REMOVE_NETWORK " + group.id);
  supplicant.Do("SAVE_CONFIG");
  return removed;
}

void ForgetAll(const Supplicant& supplicant, const std::string& address) {
  auto group = StoredGroupWith(supplicant, address);
  while (group && Forget(supplicant, *group)) {
    group = StoredGroupWith(supplicant, address);
  }
}

}  // namespace lanvoss::wpa
