#include "backends/windows/network_devices.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cwctype>
#include <optional>
#include <windows.h>
// Behind windows.h.
#include <cfgmgr32.h>
#include <setupapi.h>

#include "backends/windows/wide_text.h"

namespace lanvoss::windows {
namespace {

// Windows' headers only declare these two.
constexpr GUID kNetworkClass = {
    0x4d36e972, 0xe325, 0x11ce, {0xbf, 0xc1, 0x08, 0x00, 0x2b, 0xe1, 0x03, 0x18}};
constexpr DEVPROPKEY kDriverDate = {
    {0xa8b865dd, 0x2e3d, 0x4094, {0xad, 0x97, 0xe5, 0x93, 0xa7, 0x0c, 0x75, 0xd6}}, 2};

constexpr DWORD kInterfaceTypeWiFi = 71;  // of a driver's *IfType
constexpr wchar_t kVirtual[] = L"\\vwifimp";
constexpr wchar_t kVirtualForWiFiDirect[] = L"\\vwifimp_wfd";

// What the system reports of one device of the class.
class NetworkDevice {
 public:
  // `device` must outlive it; so must `devices`, which lists the device.
  NetworkDevice(HDEVINFO devices, SP_DEVINFO_DATA& device)
      : devices_(devices),
        device_(device),
        driverKey_(SetupDiOpenDevRegKey(devices, &device, DICS_FLAG_GLOBAL, 0, DIREG_DRV,
                                        KEY_QUERY_VALUE)) {}
  ~NetworkDevice() {
    if (driverKey_ != INVALID_HANDLE_VALUE) {
      RegCloseKey(driverKey_);
    }
  }
  NetworkDevice(const NetworkDevice&) = delete;
  NetworkDevice& operator=(const NetworkDevice&) = delete;

  bool IsPresent() const { return Status().has_value(); }
  std::uint32_t Problem() const { return Status().value_or(0); }

  std::wstring Name() const {
    const std::wstring friendly = Property(SPDRP_FRIENDLYNAME);
    return friendly.empty() ? Property(SPDRP_DEVICEDESC) : friendly;
  }
  std::wstring HardwareId() const { return Property(SPDRP_HARDWAREID); }
  std::wstring DriverVersion() const { return DriverText(L"DriverVersion"); }
  std::wstring InterfaceId() const { return DriverText(L"NetCfgInstanceId"); }

  // As 2021-11-23; empty if it is unknown.
  std::string DriverDate() const {
    FILETIME date{};
    DEVPROPTYPE type = 0;
    SYSTEMTIME day{};
    if (SetupDiGetDevicePropertyW(devices_, &device_, &kDriverDate, &type,
                                  reinterpret_cast<BYTE*>(&date), sizeof date, nullptr,
                                  0) == FALSE ||
        FileTimeToSystemTime(&date, &day) == FALSE) {
      return {};
    }
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02d-%02d", day.wYear, day.wMonth, day.wDay);
    return text.data();
  }

  DWORD InterfaceType() const {
    DWORD type = 0;
    DWORD size = sizeof type;
    RegGetValueW(driverKey_, nullptr, L"*IfType", RRF_RT_REG_DWORD, nullptr, &type, &size);
    return type;
  }

 private:
  // None: the device is only remembered.
  std::optional<std::uint32_t> Status() const {
    ULONG status = 0;
    ULONG problem = 0;
    if (CM_Get_DevNode_Status(&status, &problem, device_.DevInst, 0) != CR_SUCCESS) {
      return std::nullopt;
    }
    return (status & DN_HAS_PROBLEM) != 0 ? problem : 0;
  }

  // The first text, of a property that can have several.
  std::wstring Property(DWORD property) const {
    std::array<wchar_t, kTextLength + 1> text{};
    const BOOL isRead =
        SetupDiGetDeviceRegistryPropertyW(devices_, &device_, property, nullptr,
                                          reinterpret_cast<BYTE*>(text.data()), kTextSize, nullptr);
    return isRead == FALSE ? L"" : text.data();
  }

  std::wstring DriverText(const wchar_t* name) const {
    std::array<wchar_t, kTextLength> text{};
    DWORD size = kTextSize;
    const LSTATUS error =
        RegGetValueW(driverKey_, nullptr, name, RRF_RT_REG_SZ, nullptr, text.data(), &size);
    return error == ERROR_SUCCESS ? text.data() : L"";
  }

  // A longer text is left out.
  static constexpr std::size_t kTextLength = 512;
  static constexpr DWORD kTextSize = kTextLength * sizeof(wchar_t);

  const HDEVINFO devices_;
  SP_DEVINFO_DATA& device_;
  const HKEY driverKey_;
};

// The class's devices, those that are only remembered too.
class NetworkDevices {
 public:
  NetworkDevices() = default;
  ~NetworkDevices() {
    if (devices_ != INVALID_HANDLE_VALUE) {
      SetupDiDestroyDeviceInfoList(devices_);
    }
  }
  NetworkDevices(const NetworkDevices&) = delete;
  NetworkDevices& operator=(const NetworkDevices&) = delete;

  template <typename Visitor>
  void ForEach(Visitor visit) {
    SP_DEVINFO_DATA device{};
    device.cbSize = sizeof device;
    for (DWORD index = 0; SetupDiEnumDeviceInfo(devices_, index, &device) != FALSE; ++index) {
      visit(NetworkDevice(devices_, device));
    }
  }

 private:
  const HDEVINFO devices_ = SetupDiGetClassDevsW(&kNetworkClass, nullptr, nullptr, 0);
};

enum class Kind { kOther, kReal, kForWiFiDirect };

Kind KindOf(const NetworkDevice& device, const WlanState& wlan) {
  std::wstring id = device.HardwareId();
  std::ranges::transform(id, id.begin(), [](wchar_t letter) { return std::towlower(letter); });
  if (id.find(kVirtualForWiFiDirect) != std::wstring::npos) {
    return Kind::kForWiFiDirect;
  }
  const bool isWiFi =
      device.InterfaceType() == kInterfaceTypeWiFi || wlan.radios.contains(device.InterfaceId());
  return isWiFi && id.find(kVirtual) == std::wstring::npos ? Kind::kReal : Kind::kOther;
}

WiFiAdapter Read(const NetworkDevice& device, platform::System& system, const WlanState& wlan) {
  const auto radio = wlan.radios.find(device.InterfaceId());
  return {.name = system.WideToAnsi(AsUtf16(device.Name())),
          .driverVersion = system.WideToAnsi(AsUtf16(device.DriverVersion())),
          .driverDate = device.DriverDate(),
          .problem = device.Problem(),
          .radio = radio == wlan.radios.end() ? RadioState::kUnknown : radio->second};
}

}  // namespace

WiFiAdapters ReadWiFiAdapters(platform::System& system, const WlanState& wlan) {
  WiFiAdapters adapters;
  NetworkDevices().ForEach([&](const NetworkDevice& device) {
    const Kind kind = KindOf(device, wlan);
    if (kind == Kind::kOther) {
      return;
    }
    if (device.IsPresent()) {
      auto& present = kind == Kind::kReal ? adapters.real : adapters.forWiFiDirect;
      present.push_back(Read(device, system, wlan));
    } else if (kind == Kind::kForWiFiDirect) {
      ++adapters.leftForWiFiDirect;
    }
  });
  return adapters;
}

}  // namespace lanvoss::windows
