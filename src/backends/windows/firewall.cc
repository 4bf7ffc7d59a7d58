#include "backends/windows/firewall.h"

#include <array>
#include <windows.h>
// Behind windows.h.
#include <netfw.h>

#include "backends/windows/com_pointer.h"
#include "backends/windows/com_text.h"
#include "platform/error.h"

namespace lanvoss::windows {

// Windows' headers only declare these.
template <>
inline constexpr GUID abi::kIid<INetFwPolicy2> = abi::Guid("98325047-c671-4174-8d81-defcd3f03186");
template <>
inline constexpr GUID abi::kIid<INetFwRule> = abi::Guid("af230d27-baba-4e42-aced-f524f22cfce2");
template <>
inline constexpr GUID abi::kIid<IEnumVARIANT> = abi::Guid("00020404-0000-0000-c000-000000000046");

namespace {

constexpr GUID kPolicyClass = abi::Guid("e2b3c97f-6ae1-41ac-817a-f6f92166d7dd");

// The thread's COM apartment, for as long as it exists.
class Apartment {
 public:
  Apartment() : isEntered_(SUCCEEDED(CoInitializeEx(nullptr, COINIT_MULTITHREADED))) {}
  ~Apartment() {
    if (isEntered_) {
      CoUninitialize();
    }
  }
  Apartment(const Apartment&) = delete;
  Apartment& operator=(const Apartment&) = delete;

 private:
  const bool isEntered_;
};

// One of the values that an enumerator gives out.
class Variant {
 public:
  Variant() { VariantInit(&value_); }
  ~Variant() { VariantClear(&value_); }
  Variant(const Variant&) = delete;
  Variant& operator=(const Variant&) = delete;

  VARIANT* Out() { return &value_; }
  ComPointer<IDispatch> Object() const {
    return ComPointer<IDispatch>(value_.vt == VT_DISPATCH ? value_.pdispVal : nullptr);
  }

 private:
  VARIANT value_;
};

using TextOfRule = HRESULT (STDMETHODCALLTYPE INetFwRule::*)(BSTR*);

std::u16string TextOf(const ComPointer<INetFwRule>& rule, TextOfRule property) {
  ComText text;
  Check((rule.Get()->*property)(text.Out()));
  return std::u16string(text.Text());
}

// Whether the path in a rule, which may have the names of variables in it, is this program's.
bool IsThisProgram(const std::u16string& path) {
  std::array<wchar_t, MAX_PATH> expanded{};
  std::array<wchar_t, MAX_PATH> own{};
  return ExpandEnvironmentStringsW(AsWide(path.c_str()), expanded.data(), MAX_PATH) <= MAX_PATH &&
         GetModuleFileNameW(nullptr, own.data(), MAX_PATH) < MAX_PATH &&
         CompareStringOrdinal(expanded.data(), -1, own.data(), -1, TRUE) == CSTR_EQUAL;
}

// Whether it is enabled for what comes in from public networks.
bool IsOfInterest(const ComPointer<INetFwRule>& rule) {
  return Read<VARIANT_BOOL>(rule, &INetFwRule::get_Enabled) != VARIANT_FALSE &&
         Read<NET_FW_RULE_DIRECTION>(rule, &INetFwRule::get_Direction) == NET_FW_RULE_DIR_IN &&
         (Read<long>(rule, &INetFwRule::get_Profiles) & NET_FW_PROFILE2_PUBLIC) != 0;
}

FirewallRule ReadRule(const ComPointer<INetFwRule>& rule, platform::System& system) {
  const auto text = [&](TextOfRule property) { return system.WideToAnsi(TextOf(rule, property)); };
  const std::u16string program = TextOf(rule, &INetFwRule::get_ApplicationName);
  return {.name = text(&INetFwRule::get_Name),
          .blocks = Read<NET_FW_ACTION>(rule, &INetFwRule::get_Action) == NET_FW_ACTION_BLOCK,
          .isForThisProgram = program.empty() || IsThisProgram(program),
          .protocol = Read<long>(rule, &INetFwRule::get_Protocol),
          .icmpTypes = text(&INetFwRule::get_IcmpTypesAndCodes),
          .remoteAddresses = text(&INetFwRule::get_RemoteAddresses)};
}

}  // namespace

std::optional<Firewall> ReadFirewall(platform::System& system) {
  const Apartment apartment;
  try {
    ComPointer<INetFwPolicy2> policy;
    Check(CoCreateInstance(kPolicyClass, nullptr, CLSCTX_INPROC_SERVER, abi::kIid<INetFwPolicy2>,
                           reinterpret_cast<void**>(policy.Out())));
    Firewall firewall;
    firewall.isOn = Read<VARIANT_BOOL>(policy, &INetFwPolicy2::get_FirewallEnabled,
                                       NET_FW_PROFILE2_PUBLIC) != VARIANT_FALSE;
    const auto rules = Get<INetFwRules>(policy, &INetFwPolicy2::get_Rules);
    const auto enumerator = Get<IUnknown>(rules, &INetFwRules::get__NewEnum).As<IEnumVARIANT>();
    Variant entry;
    while (enumerator->Next(1, entry.Out(), nullptr) == S_OK) {
      const auto rule = entry.Object().As<INetFwRule>();
      if (IsOfInterest(rule)) {
        firewall.rules.push_back(ReadRule(rule, system));
      }
      VariantClear(entry.Out());
    }
    return firewall;
  } catch (const platform::Error&) {
    return std::nullopt;
  }
}

}  // namespace lanvoss::windows
