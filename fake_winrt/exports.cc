// What the runtime and the tests find in the module.
#include <activation.h>
#include <combaseapi.h>
#include <utility>

#include "backends/windows/winrt_string.h"
#include "factories.h"
#include "failure.h"
#include "fake_winrt.h"
#include "session.h"

namespace lanvoss::fake_winrt {
namespace {

bool HasApartment() {
  APTTYPE type = APTTYPE_CURRENT;
  APTTYPEQUALIFIER qualifier = APTTYPEQUALIFIER_NONE;
  return SUCCEEDED(CoGetApartmentType(&type, &qualifier));
}

// The runtime unloads a module whose factory it could not get. But error messages and the threads
// of the process's default air remain, and need the module.
void StayLoaded() {
  HMODULE module = nullptr;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                     reinterpret_cast<const wchar_t*>(&StayLoaded), &module);
}

HRESULT GetFactory(HSTRING className, IActivationFactory** factory) {
  const HRESULT result =
      Reported([&] { *factory = FactoryOf(windows::WinrtString::TextOf(className)).Detach(); });
  return SUCCEEDED(result) && *factory == nullptr ? CLASS_E_CLASSNOTAVAILABLE : result;
}

}  // namespace

void Use(std::shared_ptr<platform::WiFiDirect> radio, std::shared_ptr<events::Threads> threads) {
  BeginSession(std::move(radio), std::move(threads));
}

void SetHabits(const simulated::Habits& habits) { CurrentSession().SetHabits(habits); }

Ledger Finish() { return EndSession(); }

}  // namespace lanvoss::fake_winrt

extern "C" {

// Exported by fake_winrt.def.
HRESULT WINAPI DllGetActivationFactory(HSTRING className, IActivationFactory** factory);

HRESULT WINAPI DllGetActivationFactory(HSTRING className, IActivationFactory** factory) {
  if (factory == nullptr) {
    return E_POINTER;
  }
  *factory = nullptr;
  lanvoss::fake_winrt::StayLoaded();
  // Not every runtime checks this itself.
  return lanvoss::fake_winrt::HasApartment() ? lanvoss::fake_winrt::GetFactory(className, factory)
                                             : CO_E_NOTINITIALIZED;
}

HRESULT WINAPI DllCanUnloadNow() { return S_FALSE; }

}  // extern "C"
