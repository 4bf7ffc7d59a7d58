// With clang, Wine defines a function that clang has built in.
#pragma push_macro("__clang__")
#undef __clang__
#include_next <winnt.h>
#pragma pop_macro("__clang__")
