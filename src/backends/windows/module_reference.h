// Keeps the module that this code is part of loaded.
#pragma once

#include <windows.h>

namespace lanvoss::windows {

// Every object that the platform holds has one, because the platform may release its last reference
// shortly after the host has unloaded the library. The system's thread pool unloads the module
// kUnloadGraceMs later, so that a platform thread can still return from this code.
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
