#include "backends/windows/wlan.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <objbase.h>
#include <vector>
#include <windows.h>
// Behind windows.h.
#include <wlanapi.h>

namespace lanvoss::windows {
namespace {

// What not every wlanapi.h declares.
using WfdOpenHandle = DWORD(WINAPI*)(DWORD clientVersion, DWORD* version, HANDLE* service);
using WfdCloseHandle = DWORD(WINAPI*)(HANDLE service);
constexpr DWORD kWfdVersion = 1;

struct HostedNetwork {
  std::int32_t state;  // and more, which is not needed here
};
constexpr std::int32_t kHostedNetworkIsActive = 2;
using QueryHostedNetwork = DWORD(WINAPI*)(HANDLE client, HostedNetwork** status, void* reserved);

constexpr DWORD kWlanVersion = 2;

// wlanapi.dll. A Windows Server has none until its feature for Wi-Fi is installed, so it is loaded
// when it is needed: the program starts without it.
class WlanLibrary {
 public:
  WlanLibrary() = default;
  ~WlanLibrary() {
    if (library_ != nullptr) {
      FreeLibrary(library_);
    }
  }
  WlanLibrary(const WlanLibrary&) = delete;
  WlanLibrary& operator=(const WlanLibrary&) = delete;

  // A function of the library, or none.
  template <typename Function>
  Function Find(const char* name) const {
    using AnyFunction = void (*)();
    return library_ == nullptr ? nullptr
                               : reinterpret_cast<Function>(
                                     reinterpret_cast<AnyFunction>(GetProcAddress(library_, name)));
  }

 private:
  const HMODULE library_ = LoadLibraryExW(L"wlanapi.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
};

std::optional<std::uint32_t> WiFiDirectError(const WlanLibrary& library) {
  const auto open = library.Find<WfdOpenHandle>("WFDOpenHandle");
  const auto close = library.Find<WfdCloseHandle>("WFDCloseHandle");
  if (open == nullptr || close == nullptr) {
    return std::nullopt;
  }
  DWORD version = 0;
  HANDLE service = nullptr;
  const DWORD error = open(kWfdVersion, &version, &service);
  if (error == ERROR_SUCCESS) {
    close(service);
  }
  return error;
}

// A connection to the WLAN service. Without the service, or the library, it says nothing.
class WlanClient {
 public:
  explicit WlanClient(const WlanLibrary& library)
      : open_(library.Find<decltype(&WlanOpenHandle)>("WlanOpenHandle")),
        close_(library.Find<decltype(&WlanCloseHandle)>("WlanCloseHandle")),
        enumerate_(library.Find<decltype(&WlanEnumInterfaces)>("WlanEnumInterfaces")),
        query_(library.Find<decltype(&WlanQueryInterface)>("WlanQueryInterface")),
        queryHosted_(library.Find<QueryHostedNetwork>("WlanHostedNetworkQueryStatus")),
        free_(library.Find<decltype(&WlanFreeMemory)>("WlanFreeMemory")) {
    DWORD version = 0;
    if (open_ == nullptr || close_ == nullptr || enumerate_ == nullptr || query_ == nullptr ||
        free_ == nullptr || open_(kWlanVersion, nullptr, &version, &client_) != ERROR_SUCCESS) {
      client_ = nullptr;
    }
  }
  ~WlanClient() {
    if (client_ != nullptr) {
      close_(client_, nullptr);
    }
  }
  WlanClient(const WlanClient&) = delete;
  WlanClient& operator=(const WlanClient&) = delete;

  // The ids of their network interfaces.
  std::vector<GUID> Adapters() const {
    WLAN_INTERFACE_INFO_LIST* list = nullptr;
    if (client_ == nullptr || enumerate_(client_, nullptr, &list) != ERROR_SUCCESS) {
      return {};
    }
    std::vector<GUID> adapters;
    std::transform(list->InterfaceInfo, list->InterfaceInfo + list->dwNumberOfItems,
                   std::back_inserter(adapters),
                   [](const WLAN_INTERFACE_INFO& info) { return info.InterfaceGuid; });
    free_(list);
    return adapters;
  }

  // The state of its radios; none where the driver does not tell.
  std::optional<WLAN_RADIO_STATE> RadiosOf(const GUID& adapter) const {
    DWORD size = 0;
    void* data = nullptr;
    if (query_(client_, &adapter, wlan_intf_opcode_radio_state, nullptr, &size, &data, nullptr) !=
        ERROR_SUCCESS) {
      return std::nullopt;
    }
    WLAN_RADIO_STATE radios{};
    std::memcpy(&radios, data, std::min<std::size_t>(size, sizeof radios));
    free_(data);
    return radios;
  }

  bool HasHostedNetwork() const {
    HostedNetwork* hosted = nullptr;
    if (client_ == nullptr || queryHosted_ == nullptr ||
        queryHosted_(client_, &hosted, nullptr) != ERROR_SUCCESS) {
      return false;
    }
    const bool isActive = hosted->state == kHostedNetworkIsActive;
    free_(hosted);
    return isActive;
  }

 private:
  const decltype(&WlanOpenHandle) open_;
  const decltype(&WlanCloseHandle) close_;
  const decltype(&WlanEnumInterfaces) enumerate_;
  const decltype(&WlanQueryInterface) query_;
  const QueryHostedNetwork queryHosted_;
  const decltype(&WlanFreeMemory) free_;
  HANDLE client_ = nullptr;
};

// An adapter can have several radios, and works with one that is on.
RadioState StateOf(const WLAN_RADIO_STATE& radios) {
  const auto count = std::min<std::size_t>(radios.dwNumberOfPhys, std::size(radios.PhyRadioState));
  RadioState state = RadioState::kUnknown;
  for (std::size_t index = 0; index < count; ++index) {
    const WLAN_PHY_RADIO_STATE& radio = radios.PhyRadioState[index];
    if (radio.dot11HardwareRadioState == dot11_radio_state_off) {
      state = RadioState::kOffBySwitch;
    } else if (radio.dot11SoftwareRadioState == dot11_radio_state_off) {
      state = RadioState::kOffInSettings;
    } else if (radio.dot11HardwareRadioState == dot11_radio_state_on &&
               radio.dot11SoftwareRadioState == dot11_radio_state_on) {
      return RadioState::kOn;
    }
  }
  return state;
}

std::wstring TextOf(const GUID& id) {
  constexpr int kLength = 39;  // with its terminator
  std::array<wchar_t, kLength> text{};
  StringFromGUID2(id, text.data(), kLength);
  return text.data();
}

}  // namespace

WlanState ReadWlanState() {
  const WlanLibrary library;
  WlanState state = {.wiFiDirectError = WiFiDirectError(library)};
  const WlanClient client(library);
  for (const GUID& adapter : client.Adapters()) {
    const auto radios = client.RadiosOf(adapter);
    state.radios[TextOf(adapter)] = radios ? StateOf(*radios) : RadioState::kUnknown;
  }
  // Only an adapter can have one.
  state.hasHostedNetwork = !state.radios.empty() && client.HasHostedNetwork();
  return state;
}

}  // namespace lanvoss::windows
