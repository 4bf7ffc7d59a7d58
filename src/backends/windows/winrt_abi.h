// The interfaces of the Windows Runtime that control the radio: their ids and the order of their
// methods, with the platform's names.
//
// Rules of the binary interface
//  - Every method returns an HRESULT; its result is the last parameter.
//  - The caller owns a pointer or text that a method returns; the method borrows its arguments.
//  - Nothing virtual may be added to an interface, not even a destructor, and no two methods of one
//    may share a name: each takes a slot, in the order of its declaration.
//  - Interfaces do not inherit from one another; QueryInterface gives the other interfaces.
//
// Unused results and arguments appear as IInspectable and as INT32.
#pragma once

#include <cstddef>
#include <eventtoken.h>
#include <hstring.h>
#include <inspectable.h>
#include <oaidl.h>

#include "platform/wifi_direct.h"

namespace lanvoss::windows::abi {

using platform::DevicePairingKinds;
using platform::DevicePairingProtectionLevel;
using platform::DevicePairingResultStatus;
using platform::DeviceWatcherStatus;
using platform::WiFiDirectConnectionStatus;
using platform::WiFiDirectDeviceSelectorType;
using platform::WiFiDirectPairingProcedure;

enum class AsyncStatus : INT32 { Started = 0, Completed = 1, Canceled = 2, Error = 3 };

// "30d5a829-7fa4-4026-83bb-d75bae4ea99e"
consteval GUID Guid(const char (&text)[37]) {
  const auto number = [&text](std::size_t first, std::size_t digits) {
    unsigned long value = 0;
    for (std::size_t at = first; at < first + digits; ++at) {
      const char digit = text[at];
      value =
          value * 16 + static_cast<unsigned long>(digit <= '9' ? digit - '0' : digit - 'a' + 10);
    }
    return value;
  };
  GUID guid{number(0, 8),
            static_cast<unsigned short>(number(9, 4)),
            static_cast<unsigned short>(number(14, 4)),
            {}};
  for (std::size_t i = 0; i < 8; ++i) {
    guid.Data4[i] = static_cast<unsigned char>(number((i < 2 ? 19 : 20) + 2 * i, 2));
  }
  return guid;
}

// The id of an interface; one that was given none does not compile.
template <typename Interface>
inline constexpr GUID kIid = Interface::kHasNoId;

template <>
inline constexpr GUID kIid<IUnknown> = Guid("00000000-0000-0000-c000-000000000046");
template <>
inline constexpr GUID kIid<IInspectable> = Guid("af86e2e0-b12d-4c6a-9c5a-d7aa65101e90");
template <>
inline constexpr GUID kIid<IAgileObject> = Guid("94ea2b94-e9cc-49e0-c0ff-ee64ca8f5b90");
template <>
inline constexpr GUID kIid<IMarshal> = Guid("00000003-0000-0000-c000-000000000046");
template <>
inline constexpr GUID kIid<IErrorInfo> = Guid("1cf2b120-547d-101b-8e65-08002b2bd119");

// ---- Generic interfaces. Each instance has its own id, next to the type of its argument.

template <typename Result>
struct IAsyncOperation;

template <typename Result>
struct AsyncOperationCompletedHandler : IUnknown {
  STDMETHOD(Invoke)(IAsyncOperation<Result>* operation, AsyncStatus status) PURE;
};

template <typename Result>
struct IAsyncOperation : IInspectable {
  STDMETHOD(put_Completed)(AsyncOperationCompletedHandler<Result>* handler) PURE;
  STDMETHOD(get_Completed)(AsyncOperationCompletedHandler<Result>** handler) PURE;
  STDMETHOD(GetResults)(Result* result) PURE;
};

template <typename Sender, typename Args>
struct TypedEventHandler : IUnknown {
  STDMETHOD(Invoke)(Sender sender, Args args) PURE;
};

template <typename Item>
struct IIterator : IInspectable {
  STDMETHOD(get_Current)(Item* result) PURE;
  STDMETHOD(get_HasCurrent)(boolean* result) PURE;
  STDMETHOD(MoveNext)(boolean* result) PURE;
  STDMETHOD(GetMany)(UINT32 capacity, Item* items, UINT32* actual) PURE;
};

template <typename Item>
struct IIterable : IInspectable {
  STDMETHOD(First)(IIterator<Item>** result) PURE;
};

template <typename Item>
struct IVectorView : IInspectable {
  STDMETHOD(GetAt)(UINT32 index, Item* result) PURE;
  STDMETHOD(get_Size)(UINT32* result) PURE;
  STDMETHOD(IndexOf)(Item value, UINT32* index, boolean* result) PURE;
  STDMETHOD(GetMany)(UINT32 startIndex, UINT32 capacity, Item* items, UINT32* actual) PURE;
};

template <>
inline constexpr GUID kIid<IIterator<HSTRING>> = Guid("8c304ebb-6615-50a4-8829-879ecd443236");
template <>
inline constexpr GUID kIid<IIterable<HSTRING>> = Guid("e2fcc7c1-3bfc-5a0b-b2b0-72e769d1cb7e");

// ---- Foundation

struct IClosable : IInspectable {
  STDMETHOD(Close)() PURE;
};
template <>
inline constexpr GUID kIid<IClosable> = Guid("30d5a829-7fa4-4026-83bb-d75bae4ea99e");

struct IAsyncInfo : IInspectable {
  STDMETHOD(get_Id)(UINT32* result) PURE;
  STDMETHOD(get_Status)(AsyncStatus* result) PURE;
  STDMETHOD(get_ErrorCode)(HRESULT* result) PURE;
  STDMETHOD(Cancel)() PURE;
  STDMETHOD(Close)() PURE;
};
template <>
inline constexpr GUID kIid<IAsyncInfo> = Guid("00000036-0000-0000-c000-000000000046");

struct IDeferral : IInspectable {
  STDMETHOD(Complete)() PURE;
};
template <>
inline constexpr GUID kIid<IDeferral> = Guid("d6269732-3b7f-46a7-b40b-4fdca2a2c693");

struct IRestrictedErrorInfo : IUnknown {
  STDMETHOD(GetErrorDetails)
  (BSTR* description, HRESULT* error, BSTR* restrictedDescription, BSTR* capabilitySid) PURE;
  STDMETHOD(GetReference)(BSTR* reference) PURE;
};
template <>
inline constexpr GUID kIid<IRestrictedErrorInfo> = Guid("82ba7092-4c88-427d-a7bc-16dd93feb67e");

// ---- Pairing

struct IDeviceInformation;

// A marker: settings of one pairing.
struct IDevicePairingSettings : IInspectable {};
template <>
inline constexpr GUID kIid<IDevicePairingSettings> = Guid("482cb27c-83bb-420e-be51-6602b222de54");

struct IDevicePairingResult : IInspectable {
  STDMETHOD(get_Status)(DevicePairingResultStatus* status) PURE;
  STDMETHOD(get_ProtectionLevelUsed)(DevicePairingProtectionLevel* value) PURE;
};
template <>
inline constexpr GUID kIid<IDevicePairingResult> = Guid("072b02bf-dd95-4025-9b37-de51adba37b7");
template <>
inline constexpr GUID kIid<IAsyncOperation<IDevicePairingResult*>> =
    Guid("1002db74-8948-591e-815d-e40b667599a3");
template <>
inline constexpr GUID kIid<AsyncOperationCompletedHandler<IDevicePairingResult*>> =
    Guid("7ee0247f-5f57-5cb2-b40e-18b5a211d6c3");

// Nobody waits for the end of an unpairing.
struct IDeviceUnpairingResult;
template <>
inline constexpr GUID kIid<IAsyncOperation<IDeviceUnpairingResult*>> =
    Guid("2bb4df3d-bd7e-5fe0-9020-56dc0d30b935");

struct IDevicePairingRequestedEventArgs : IInspectable {
  STDMETHOD(get_DeviceInformation)(IDeviceInformation** value) PURE;
  STDMETHOD(get_PairingKind)(DevicePairingKinds* value) PURE;
  STDMETHOD(get_Pin)(HSTRING* value) PURE;
  STDMETHOD(Accept)() PURE;
  STDMETHOD(AcceptWithPin)(HSTRING pin) PURE;
  STDMETHOD(GetDeferral)(IDeferral** result) PURE;
};
template <>
inline constexpr GUID kIid<IDevicePairingRequestedEventArgs> =
    Guid("f717fc56-de6b-487f-8376-0180aca69963");

struct IDeviceInformationCustomPairing : IInspectable {
  STDMETHOD(PairAsync)
  (DevicePairingKinds pairingKindsSupported, IAsyncOperation<IDevicePairingResult*>** result) PURE;
  STDMETHOD(PairWithProtectionLevelAsync)
  (DevicePairingKinds pairingKindsSupported, DevicePairingProtectionLevel minProtectionLevel,
   IAsyncOperation<IDevicePairingResult*>** result) PURE;
  STDMETHOD(PairWithProtectionLevelAndSettingsAsync)
  (DevicePairingKinds pairingKindsSupported, DevicePairingProtectionLevel minProtectionLevel,
   IDevicePairingSettings* devicePairingSettings,
   IAsyncOperation<IDevicePairingResult*>** result) PURE;
  STDMETHOD(add_PairingRequested)
  (TypedEventHandler<IDeviceInformationCustomPairing*, IDevicePairingRequestedEventArgs*>* handler,
   EventRegistrationToken* token) PURE;
  STDMETHOD(remove_PairingRequested)(EventRegistrationToken token) PURE;
};
template <>
inline constexpr GUID kIid<IDeviceInformationCustomPairing> =
    Guid("85138c02-4ee6-4914-8370-107a39144c0e");
template <>
inline constexpr GUID
    kIid<TypedEventHandler<IDeviceInformationCustomPairing*, IDevicePairingRequestedEventArgs*>> =
        Guid("fa65231f-4178-5de1-b2cc-03e22d7702b4");

struct IDeviceInformationPairing : IInspectable {
  STDMETHOD(get_IsPaired)(boolean* value) PURE;
  STDMETHOD(get_CanPair)(boolean* value) PURE;
  STDMETHOD(PairAsync)(IAsyncOperation<IDevicePairingResult*>** result) PURE;
  STDMETHOD(PairWithProtectionLevelAsync)
  (DevicePairingProtectionLevel minProtectionLevel,
   IAsyncOperation<IDevicePairingResult*>** result) PURE;
};
template <>
inline constexpr GUID kIid<IDeviceInformationPairing> =
    Guid("2c4769f5-f684-40d5-8469-e8dbaab70485");

struct IDeviceInformationPairing2 : IInspectable {
  STDMETHOD(get_ProtectionLevel)(DevicePairingProtectionLevel* value) PURE;
  STDMETHOD(get_Custom)(IDeviceInformationCustomPairing** value) PURE;
  STDMETHOD(PairWithProtectionLevelAndSettingsAsync)
  (DevicePairingProtectionLevel minProtectionLevel, IDevicePairingSettings* devicePairingSettings,
   IAsyncOperation<IDevicePairingResult*>** result) PURE;
  STDMETHOD(UnpairAsync)(IAsyncOperation<IDeviceUnpairingResult*>** result) PURE;
};
template <>
inline constexpr GUID kIid<IDeviceInformationPairing2> =
    Guid("f68612fd-0aee-4328-85cc-1c742bb1790d");

// ---- Device enumeration

struct IDeviceInformationUpdate : IInspectable {
  STDMETHOD(get_Id)(HSTRING* value) PURE;
  STDMETHOD(get_Properties)(IInspectable** value) PURE;
};
template <>
inline constexpr GUID kIid<IDeviceInformationUpdate> = Guid("8f315305-d972-44b7-a37e-9e822c78213b");

struct IDeviceInformation : IInspectable {
  STDMETHOD(get_Id)(HSTRING* value) PURE;
  STDMETHOD(get_Name)(HSTRING* value) PURE;
  STDMETHOD(get_IsEnabled)(boolean* value) PURE;
  STDMETHOD(get_IsDefault)(boolean* value) PURE;
  STDMETHOD(get_EnclosureLocation)(IInspectable** value) PURE;
  STDMETHOD(get_Properties)(IInspectable** value) PURE;
  STDMETHOD(Update)(IDeviceInformationUpdate* updateInfo) PURE;
  STDMETHOD(GetThumbnailAsync)(IInspectable** asyncOp) PURE;
  STDMETHOD(GetGlyphThumbnailAsync)(IInspectable** asyncOp) PURE;
};
template <>
inline constexpr GUID kIid<IDeviceInformation> = Guid("aba0fb95-4398-489d-8e44-e6130927011f");

struct IDeviceInformation2 : IInspectable {
  STDMETHOD(get_Kind)(INT32* value) PURE;
  STDMETHOD(get_Pairing)(IDeviceInformationPairing** value) PURE;
};
template <>
inline constexpr GUID kIid<IDeviceInformation2> = Guid("f156a638-7997-48d9-a10c-269d46533f48");

struct IDeviceWatcher : IInspectable {
  STDMETHOD(add_Added)
  (TypedEventHandler<IDeviceWatcher*, IDeviceInformation*>* handler,
   EventRegistrationToken* token) PURE;
  STDMETHOD(remove_Added)(EventRegistrationToken token) PURE;
  STDMETHOD(add_Updated)
  (TypedEventHandler<IDeviceWatcher*, IDeviceInformationUpdate*>* handler,
   EventRegistrationToken* token) PURE;
  STDMETHOD(remove_Updated)(EventRegistrationToken token) PURE;
  STDMETHOD(add_Removed)
  (TypedEventHandler<IDeviceWatcher*, IDeviceInformationUpdate*>* handler,
   EventRegistrationToken* token) PURE;
  STDMETHOD(remove_Removed)(EventRegistrationToken token) PURE;
  STDMETHOD(add_EnumerationCompleted)
  (TypedEventHandler<IDeviceWatcher*, IInspectable*>* handler, EventRegistrationToken* token) PURE;
  STDMETHOD(remove_EnumerationCompleted)(EventRegistrationToken token) PURE;
  STDMETHOD(add_Stopped)
  (TypedEventHandler<IDeviceWatcher*, IInspectable*>* handler, EventRegistrationToken* token) PURE;
  STDMETHOD(remove_Stopped)(EventRegistrationToken token) PURE;
  STDMETHOD(get_Status)(DeviceWatcherStatus* status) PURE;
  STDMETHOD(Start)() PURE;
  STDMETHOD(Stop)() PURE;
};
template <>
inline constexpr GUID kIid<IDeviceWatcher> = Guid("c9eab97d-8f6b-4f96-a9f4-abc814e22271");
template <>
inline constexpr GUID kIid<TypedEventHandler<IDeviceWatcher*, IDeviceInformation*>> =
    Guid("03c5a07b-990c-5d09-b0b8-5734eaa38222");
template <>
inline constexpr GUID kIid<TypedEventHandler<IDeviceWatcher*, IDeviceInformationUpdate*>> =
    Guid("906f1254-79ad-54fc-93c4-cdb99b437899");
template <>
inline constexpr GUID kIid<TypedEventHandler<IDeviceWatcher*, IInspectable*>> =
    Guid("9234630f-1ff4-54f6-9e3f-ac20369b7725");

struct IDeviceInformationStatics : IInspectable {
  STDMETHOD(CreateFromIdAsync)(HSTRING deviceId, IInspectable** asyncOp) PURE;
  STDMETHOD(CreateFromIdAsyncAdditionalProperties)
  (HSTRING deviceId, IIterable<HSTRING>* additionalProperties, IInspectable** asyncOp) PURE;
  STDMETHOD(FindAllAsync)(IInspectable** asyncOp) PURE;
  STDMETHOD(FindAllAsyncDeviceClass)(INT32 deviceClass, IInspectable** asyncOp) PURE;
  STDMETHOD(FindAllAsyncAqsFilter)(HSTRING aqsFilter, IInspectable** asyncOp) PURE;
  STDMETHOD(FindAllAsyncAqsFilterAndAdditionalProperties)
  (HSTRING aqsFilter, IIterable<HSTRING>* additionalProperties, IInspectable** asyncOp) PURE;
  STDMETHOD(CreateWatcher)(IDeviceWatcher** watcher) PURE;
  STDMETHOD(CreateWatcherDeviceClass)(INT32 deviceClass, IDeviceWatcher** watcher) PURE;
  STDMETHOD(CreateWatcherAqsFilter)(HSTRING aqsFilter, IDeviceWatcher** watcher) PURE;
  STDMETHOD(CreateWatcherAqsFilterAndAdditionalProperties)
  (HSTRING aqsFilter, IIterable<HSTRING>* additionalProperties, IDeviceWatcher** watcher) PURE;
};
template <>
inline constexpr GUID kIid<IDeviceInformationStatics> =
    Guid("c17f100e-3a46-4a78-8013-769dc9b97390");

// ---- Links

struct IHostName : IInspectable {
  STDMETHOD(get_IPInformation)(IInspectable** value) PURE;
  STDMETHOD(get_RawName)(HSTRING* value) PURE;
  STDMETHOD(get_DisplayName)(HSTRING* value) PURE;
  STDMETHOD(get_CanonicalName)(HSTRING* value) PURE;
  STDMETHOD(get_Type)(INT32* value) PURE;
  STDMETHOD(IsEqual)(IHostName* hostName, boolean* isEqual) PURE;
};
template <>
inline constexpr GUID kIid<IHostName> = Guid("bf8ecaad-ed96-49a7-9084-d416cae88dcb");

struct IEndpointPair : IInspectable {
  STDMETHOD(get_LocalHostName)(IHostName** value) PURE;
  STDMETHOD(put_LocalHostName)(IHostName* value) PURE;
  STDMETHOD(get_LocalServiceName)(HSTRING* value) PURE;
  STDMETHOD(put_LocalServiceName)(HSTRING value) PURE;
  STDMETHOD(get_RemoteHostName)(IHostName** value) PURE;
  STDMETHOD(put_RemoteHostName)(IHostName* value) PURE;
  STDMETHOD(get_RemoteServiceName)(HSTRING* value) PURE;
  STDMETHOD(put_RemoteServiceName)(HSTRING value) PURE;
};
template <>
inline constexpr GUID kIid<IEndpointPair> = Guid("33a0aa36-f8fa-4b30-b856-76517c3bd06d");
template <>
inline constexpr GUID kIid<IVectorView<IEndpointPair*>> =
    Guid("8780a851-6d48-5006-9288-81f3d7045a96");

struct IWiFiDirectDevice : IInspectable {
  STDMETHOD(get_ConnectionStatus)(WiFiDirectConnectionStatus* value) PURE;
  STDMETHOD(get_DeviceId)(HSTRING* value) PURE;
  STDMETHOD(add_ConnectionStatusChanged)
  (TypedEventHandler<IWiFiDirectDevice*, IInspectable*>* handler,
   EventRegistrationToken* token) PURE;
  STDMETHOD(remove_ConnectionStatusChanged)(EventRegistrationToken token) PURE;
  STDMETHOD(GetConnectionEndpointPairs)(IVectorView<IEndpointPair*>** value) PURE;
};
template <>
inline constexpr GUID kIid<IWiFiDirectDevice> = Guid("72deaaa8-72eb-4dae-8a28-8513355d2777");
template <>
inline constexpr GUID kIid<IAsyncOperation<IWiFiDirectDevice*>> =
    Guid("dad01b61-a82d-566c-ba82-224c11500669");
template <>
inline constexpr GUID kIid<AsyncOperationCompletedHandler<IWiFiDirectDevice*>> =
    Guid("d34abe17-fb19-57be-bc41-0eb83dea151c");
template <>
inline constexpr GUID kIid<TypedEventHandler<IWiFiDirectDevice*, IInspectable*>> =
    Guid("9208929a-2a3c-50ad-aa08-a0a986edbabe");

struct IWiFiDirectConnectionParameters : IInspectable {
  STDMETHOD(get_GroupOwnerIntent)(INT16* value) PURE;
  STDMETHOD(put_GroupOwnerIntent)(INT16 value) PURE;
};
template <>
inline constexpr GUID kIid<IWiFiDirectConnectionParameters> =
    Guid("b2e55405-5702-4b16-a02c-bbcd21ef6098");

struct IWiFiDirectConnectionParameters2 : IInspectable {
  STDMETHOD(get_PreferenceOrderedConfigurationMethods)(IInspectable** value) PURE;
  STDMETHOD(get_PreferredPairingProcedure)(WiFiDirectPairingProcedure* value) PURE;
  STDMETHOD(put_PreferredPairingProcedure)(WiFiDirectPairingProcedure value) PURE;
};
template <>
inline constexpr GUID kIid<IWiFiDirectConnectionParameters2> =
    Guid("ab3b0fbe-aa82-44b4-88c8-e3056b89801d");

struct IWiFiDirectDeviceStatics : IInspectable {
  STDMETHOD(GetDeviceSelector)(HSTRING* deviceSelector) PURE;
  STDMETHOD(FromIdAsync)(HSTRING deviceId, IAsyncOperation<IWiFiDirectDevice*>** asyncOp) PURE;
};
template <>
inline constexpr GUID kIid<IWiFiDirectDeviceStatics> = Guid("e86cb57c-3aac-4851-a792-482aaf931b04");

struct IWiFiDirectDeviceStatics2 : IInspectable {
  STDMETHOD(GetDeviceSelector)(WiFiDirectDeviceSelectorType type, HSTRING* result) PURE;
  STDMETHOD(FromIdAsync)
  (HSTRING deviceId, IWiFiDirectConnectionParameters* connectionParameters,
   IAsyncOperation<IWiFiDirectDevice*>** result) PURE;
};
template <>
inline constexpr GUID kIid<IWiFiDirectDeviceStatics2> =
    Guid("1a953e49-b103-437e-9226-ab67971342f9");

}  // namespace lanvoss::windows::abi
