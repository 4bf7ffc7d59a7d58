// A C++ library that does nothing.
#include <string>

__attribute__((visibility("default"))) std::string Nothing();
std::string Nothing() { return {}; }
