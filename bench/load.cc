// Loads and unloads the given library once and prints how many nanoseconds that took.
#include <chrono>
#include <cstdio>
#include <dlfcn.h>

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fputs("usage: lanvoss_bench_load LIBRARY\n", stderr);
    return 2;
  }
  const auto begun = std::chrono::steady_clock::now();
  void* library = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr || dlclose(library) != 0) {
    std::fprintf(stderr, "%s\n", dlerror());
    return 1;
  }
  const auto took = std::chrono::steady_clock::now() - begun;
  std::printf("%lld\n", static_cast<long long>(took / std::chrono::nanoseconds(1)));
}
