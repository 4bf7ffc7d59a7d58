// The platform's classes by their names.
#pragma once

#include <string_view>

#include "backends/windows/com_pointer.h"
#include "backends/windows/winrt_abi.h"

namespace lanvoss::windows {

// Both may be called on a thread of any apartment or of none, and change no apartment: where there
// is none, the process gets its multithreaded one, which every such thread then belongs to.

// A new object of a class.
ComPointer<IInspectable> Activate(std::u16string_view className);

void GetStatics(std::u16string_view className, const GUID& iid, void** statics);

// One of a class's static interfaces.
template <typename Statics>
ComPointer<Statics> StaticsOf(std::u16string_view className) {
  ComPointer<Statics> statics;
  GetStatics(className, abi::kIid<Statics>, reinterpret_cast<void**>(statics.Out()));
  return statics;
}

}  // namespace lanvoss::windows
