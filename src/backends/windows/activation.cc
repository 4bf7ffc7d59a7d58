#include "backends/windows/activation.h"

#include <roapi.h>

#include "backends/windows/winrt_string.h"

namespace lanvoss::windows {
namespace {

template <typename Attempt>
void TryInApartment(Attempt attempt) {
  HRESULT result = attempt();
  if (result == CO_E_NOTINITIALIZED) {
    // Kept until the process ends, because the objects made now belong to this apartment.
    CO_MTA_USAGE_COOKIE usage = nullptr;
    Check(CoIncrementMTAUsage(&usage));
    result = attempt();
  }
  Check(result);
}

}  // namespace

ComPointer<IInspectable> Activate(std::u16string_view className) {
  const WinrtString name(className);
  ComPointer<IInspectable> instance;
  TryInApartment([&] { return RoActivateInstance(name.Get(), instance.Out()); });
  return instance;
}

void GetStatics(std::u16string_view className, const GUID& iid, void** statics) {
  const WinrtString name(className);
  TryInApartment([&] { return RoGetActivationFactory(name.Get(), iid, statics); });
}

}  // namespace lanvoss::windows
