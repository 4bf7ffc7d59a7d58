#include "backends/windows/module_reference.h"

namespace lanvoss::windows {
namespace {

constexpr DWORD kUnloadGraceMs = 500;
constexpr LONGLONG kFileTimePerMs = 10'000;

void CALLBACK LetGo(PTP_CALLBACK_INSTANCE instance, void* module, PTP_TIMER timer) {
  // Only once this function, which is part of the module, has returned.
  FreeLibraryWhenCallbackReturns(instance, static_cast<HMODULE>(module));
  CloseThreadpoolTimer(timer);
}

FILETIME FromNow(DWORD milliseconds) {
  ULARGE_INTEGER time{};
  time.QuadPart = static_cast<ULONGLONG>(-(milliseconds * kFileTimePerMs));  // negative: relative
  return {time.LowPart, time.HighPart};
}

}  // namespace

ModuleReference::ModuleReference() {
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                     reinterpret_cast<const wchar_t*>(&LetGo), &module_);
}

ModuleReference::~ModuleReference() {
  // Without a timer the module stays loaded, which does no harm.
  if (const PTP_TIMER timer = CreateThreadpoolTimer(&LetGo, module_, nullptr); timer != nullptr) {
    FILETIME due = FromNow(kUnloadGraceMs);
    SetThreadpoolTimer(timer, &due, 0, 0);
  }
}

}  // namespace lanvoss::windows
