// A list of texts that the library passes in.
#pragma once

#include <string>
#include <vector>

#include "backends/windows/winrt_abi.h"
#include "session.h"

namespace lanvoss::fake_winrt {

// Reads the list item by item, and reports it when it reads differently in batches.
std::vector<std::u16string> ReadProperties(Session& session, abi::IIterable<HSTRING>* list);

}  // namespace lanvoss::fake_winrt
