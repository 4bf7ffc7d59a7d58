// The factories of the classes that the library activates.
#pragma once

#include <activation.h>
#include <string_view>

#include "backends/windows/com_pointer.h"

namespace lanvoss::fake_winrt {

// None for any other class.
windows::ComPointer<IActivationFactory> FactoryOf(std::u16string_view className);

}  // namespace lanvoss::fake_winrt
