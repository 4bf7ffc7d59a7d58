// A host that loads the DLL, connects a device and unloads the DLL, many times. The fake radio has
// the devices of the demo, or those of its environment variable.
#include <cstdio>
#include <memory>
#include <string>
#include <windows.h>

#include "lanvoss/lanvoss.h"

namespace {

// The factory's decorated name, which each compiler forms in its own way.
constexpr char kFactory[] =
#ifdef _MSC_VER
    "?getLanvossPtr@@YA?AV?$shared_ptr@VLanvossInterface@@@std@@P6AXV?$basic_string@DU?$char_"
    "traits@D@std@@V?$allocator@D@2@@2@0@Z0@Z";
#else
    "_Z13getLanvossPtrPFvNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEES4_ES4_";
#endif
constexpr int kRounds = 100;
// Far beyond the grace that the DLL gives to the platform's threads.
constexpr DWORD kUnloadLimitMs = 20'000;
constexpr DWORD kUnloadPollMs = 20;

using Factory = std::shared_ptr<LanvossInterface> (*)(NotifyCallback, std::string);

Factory Load(HMODULE library) {
  return reinterpret_cast<Factory>(reinterpret_cast<void*>(GetProcAddress(library, kFactory)));
}

bool IsUnloaded() {
  for (DWORD waited = 0; waited < kUnloadLimitMs; waited += kUnloadPollMs) {
    if (GetModuleHandleW(L"lanvoss.dll") == nullptr) {
      return true;
    }
    Sleep(kUnloadPollMs);
  }
  return false;
}

// What went wrong; empty when all went well.
std::string UseOnce(const char* device) {
  const HMODULE library = LoadLibraryW(L"lanvoss.dll");
  const Factory factory = library == nullptr ? nullptr : Load(library);
  if (factory == nullptr) {
    return "the DLL does not load";
  }
  auto lanvoss = factory([](std::string, std::string) {}, "");
  const std::string addresses = lanvoss->GetDeviceIp(device);
  lanvoss->DisConnect("");
  lanvoss.reset();
  FreeLibrary(library);
  if (addresses.empty()) {
    return "no link";
  }
  return IsUnloaded() ? "" : "the DLL stays loaded";
}

}  // namespace

int main(int argc, char** argv) {
  for (int round = 1; argc == 2 && round <= kRounds; ++round) {
    if (const std::string fault = UseOnce(argv[1]); !fault.empty()) {
      std::fprintf(stderr, "round %d: %s\n", round, fault.c_str());
      return 1;
    }
  }
  std::fprintf(stderr, "loaded, used and unloaded %d times\n", kRounds);
  return 0;
}
