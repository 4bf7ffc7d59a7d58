// A counted reference to an object of the platform's.
#pragma once

#include <unknwn.h>
#include <utility>

#include "backends/windows/winrt_abi.h"
#include "backends/windows/winrt_error.h"

namespace lanvoss::windows {

template <typename Interface>
class ComPointer {
 public:
  ComPointer() = default;
  // Shares a borrowed pointer, which may be null.
  explicit ComPointer(Interface* borrowed) : pointer_(borrowed) {
    if (pointer_ != nullptr) {
      pointer_->AddRef();
    }
  }
  ComPointer(const ComPointer& other) : ComPointer(other.pointer_) {}
  ComPointer(ComPointer&& other) noexcept : pointer_(std::exchange(other.pointer_, nullptr)) {}
  ComPointer& operator=(ComPointer other) noexcept {
    std::swap(pointer_, other.pointer_);
    return *this;
  }
  ~ComPointer() {
    if (pointer_ != nullptr) {
      pointer_->Release();
    }
  }

  // Takes over a reference that the caller owns.
  static ComPointer Adopt(Interface* owned) {
    ComPointer pointer;
    pointer.pointer_ = owned;
    return pointer;
  }

  Interface* operator->() const { return pointer_; }
  Interface* Get() const { return pointer_; }
  explicit operator bool() const { return pointer_ != nullptr; }
  // Gives the reference to the caller.
  Interface* Detach() { return std::exchange(pointer_, nullptr); }
  // Where a method puts its result. Only for a pointer that is empty.
  Interface** Out() { return &pointer_; }

  // Another interface of the same object. Raises when it has none.
  template <typename Other>
  ComPointer<Other> As() const {
    ComPointer<Other> other;
    Check(pointer_->QueryInterface(abi::kIid<Other>, reinterpret_cast<void**>(other.Out())));
    return other;
  }

 private:
  Interface* pointer_ = nullptr;
};

// Calls a method whose last parameter is its result, a plain value:
//   Read<DeviceWatcherStatus>(watcher, &IDeviceWatcher::get_Status)
template <typename Value, typename Interface, typename... Parameters, typename... Arguments>
Value Read(const ComPointer<Interface>& object,
           HRESULT (STDMETHODCALLTYPE Interface::*method)(Parameters...), Arguments... arguments) {
  Value value{};
  Check((object.Get()->*method)(arguments..., &value));
  return value;
}

// The same for a method that gives out an object, or none.
template <typename Other, typename Interface, typename... Parameters, typename... Arguments>
ComPointer<Other> Get(const ComPointer<Interface>& object,
                      HRESULT (STDMETHODCALLTYPE Interface::*method)(Parameters...),
                      Arguments... arguments) {
  return ComPointer<Other>::Adopt(Read<Other*>(object, method, arguments...));
}

}  // namespace lanvoss::windows
