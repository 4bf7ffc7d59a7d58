#include "backends/wpa/credentials.h"

#include <algorithm>
#include <vector>

namespace lanvoss::wpa {
namespace {

// The columns of a line of LIST_NETWORKS.
constexpr std::size_t kId = 0;
constexpr std::size_t kOwner = 2;  // of the group; wpa_supplicant's own address where it owns it
constexpr std::size_t kFlags = 3;
constexpr std::size_t kColumns = 4;

constexpr char kPersistentFlag[] = "[P2P-PERSISTENT]";

bool HasClient(const Supplicant& supplicant, const std::string& group, const std::string& address) {
  const std::string reply = supplicant.Ask("GET_NETWORK " + group + " p2p_client_list");
  const std::vector<std::string> clients = Lines(reply, ' ');
  return std::find(clients.begin(), clients.end(), address) != clients.end();
}

}  // namespace

std::optional<std::string> StoredGroupWith(const Supplicant& supplicant,
                                           const std::string& address) {
  for (const std::string& line : Lines(supplicant.Ask("LIST_NETWORKS"))) {
    const std::vector<std::string> columns = Lines(line, '\t');
    if (columns.size() < kColumns || columns[kFlags].find(kPersistentFlag) == std::string::npos) {
      continue;
    }
    if (columns[kOwner] == address || HasClient(supplicant, columns[kId], address)) {
      return columns[kId];
    }
  }
  return std::nullopt;
}

bool Forget(const Supplicant& supplicant, const std::string& group) {
  const bool removed = supplicant.Do("REMOVE_NETWORK " + group);
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
