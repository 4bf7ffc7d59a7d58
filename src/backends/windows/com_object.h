// The base of the objects that the platform gets from us.
#pragma once

#include <atomic>
#include <new>
#include <type_traits>
#include <utility>

#include "backends/windows/com_pointer.h"
#include "backends/windows/module_reference.h"
#include "backends/windows/winrt_abi.h"
#include "backends/windows/winrt_error.h"

namespace lanvoss::windows {

// Counts the references to an object with one interface. The object may be called on any thread
// and in any apartment: it is agile, and it marshals as the pointer that it is.
template <typename Interface>
class ComObject : public Interface {
 public:
  virtual ~ComObject() = default;
  ComObject(const ComObject&) = delete;
  ComObject& operator=(const ComObject&) = delete;

  STDMETHOD(QueryInterface)(REFIID iid, void** object) noexcept final {
    if (object == nullptr) {
      return E_POINTER;
    }
    *object = nullptr;
    if (iid == abi::kIid<IMarshal>) {
      return marshaler_->QueryInterface(iid, object);
    }
    const bool isInspectable = std::is_base_of_v<IInspectable, Interface>;
    if (iid != abi::kIid<Interface> && iid != abi::kIid<IUnknown> &&
        iid != abi::kIid<IAgileObject> && !(isInspectable && iid == abi::kIid<IInspectable>)) {
      return E_NOINTERFACE;
    }
    *object = static_cast<Interface*>(this);
    AddRef();
    return S_OK;
  }
  STDMETHOD_(ULONG, AddRef)() noexcept final { return ++references_; }
  STDMETHOD_(ULONG, Release)() noexcept final {
    const ULONG left = --references_;
    if (left == 0) {
      delete this;
    }
    return left;
  }

 protected:
  ComObject() { Check(CoCreateFreeThreadedMarshaler(this, marshaler_.Out())); }

 private:
  std::atomic<ULONG> references_ = 1;
  const ModuleReference module_;
  ComPointer<IUnknown> marshaler_;  // a part of this object, which passes its references on
};

// An object with one reference, which the caller gets.
template <typename Object, typename... Arguments>
ComPointer<Object> MakeObject(Arguments&&... arguments) {
  return ComPointer<Object>::Adopt(new Object(std::forward<Arguments>(arguments)...));
}

// Runs what the platform asks of an object; no exception leaves it.
template <typename Body>
HRESULT Guarded(Body body) noexcept {
  try {
    body();
    return S_OK;
  } catch (...) {
    return ResultOfException();
  }
}

}  // namespace lanvoss::windows
