// Keeps the module that this code is part of loaded.
#pragma once

#include <windows.h>

namespace lanvoss::windows {

// Every object that the platform holds has one: the platform may release its last reference a
// little after the host has let go of the library and unloaded it. The module is let go
// kUnloadGraceMs later, by the system's thread pool, so that a platform thread that is about to
// return from here finds its way out.
class ModuleReference {
 public:
  ModuleReference();
  ~ModuleReference();
  ModuleReference(const ModuleReference&) = delete;
  ModuleReference& operator=(const ModuleReference&) = delete;

 private:
  HMODULE module_ = nullptr;
};

}  // namespace lanvoss::windows
