// A list of texts as the platform takes it.
#pragma once

#include <string>
#include <vector>

#include "backends/windows/com_pointer.h"
#include "backends/windows/winrt_abi.h"

namespace lanvoss::windows {

ComPointer<abi::IIterable<HSTRING>> PropertyNames(const std::vector<std::u16string>& names);

}  // namespace lanvoss::windows
