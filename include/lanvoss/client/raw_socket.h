/// @file
/// Whether the echo probe can work here.
#pragma once

#if defined(_WIN32)

#include <cstdint>

// As in the platform's own headers, which are not included: their order matters to hosts.
#if defined(NO_STRICT)
using LanvossModule = void*;
#else
struct HINSTANCE__;
using LanvossModule = HINSTANCE__*;
#endif
extern "C" {
__declspec(dllimport) LanvossModule __stdcall LoadLibraryA(const char* name);
__declspec(dllimport) int __stdcall FreeLibrary(LanvossModule module);
__declspec(dllimport) long long(__stdcall* __stdcall GetProcAddress(LanvossModule module,
                                                                    const char* name))();
}

#else

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#endif

namespace lanvoss {

#if defined(_WIN32)

namespace detail {

template <class Function>
Function FunctionOf(LanvossModule module, const char* name) {
  return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

// Of Windows Sockets, in the module.
inline bool CanOpenRawSocketWith(LanvossModule sockets) {
  constexpr std::uint16_t kVersion = 0x0202;
  constexpr int kInternet = 2;
  constexpr int kRaw = 3;
  constexpr int kIcmp = 1;
  constexpr std::uintptr_t kNoSocket = ~std::uintptr_t{0};
  unsigned char startData[1024];  // longer than the platform's structure

  const auto start = FunctionOf<int(__stdcall*)(std::uint16_t, void*)>(sockets, "WSAStartup");
  const auto end = FunctionOf<int(__stdcall*)()>(sockets, "WSACleanup");
  const auto open = FunctionOf<std::uintptr_t(__stdcall*)(int, int, int)>(sockets, "socket");
  const auto close = FunctionOf<int(__stdcall*)(std::uintptr_t)>(sockets, "closesocket");
  if (start == nullptr || end == nullptr || open == nullptr || close == nullptr ||
      start(kVersion, startData) != 0) {
    return false;
  }
  const std::uintptr_t socket = open(kInternet, kRaw, kIcmp);
  if (socket != kNoSocket) {
    close(socket);
  }
  end();
  return socket != kNoSocket;
}

}  // namespace detail

#endif

/// Whether this process has the right to open a raw ICMP socket now. Without it `PingCheck` finds
/// every device silent, and unpairs and pairs a healthy one again.
inline bool CanOpenRawSocket() {
#if defined(_WIN32)
  const LanvossModule sockets = LoadLibraryA("ws2_32.dll");
  const bool can = sockets != nullptr && detail::CanOpenRawSocketWith(sockets);
  if (sockets != nullptr) {
    FreeLibrary(sockets);
  }
  return can;
#else
  const int socket = ::socket(AF_INET, SOCK_RAW, IPPROTO_ICMP);
  if (socket < 0) {
    return false;
  }
  ::close(socket);
  return true;
#endif
}

}  // namespace lanvoss
