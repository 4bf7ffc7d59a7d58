// How the program's waits can be ended.
#pragma once

namespace lanvoss::program {

// A wait looks at its stop token this often. A std::stop_callback would tell it at once, but the
// standard library of MinGW can lose the wake-up that the callback's destructor waits for.
inline constexpr int kNoticeMs = 20;

}  // namespace lanvoss::program
