// The base of the objects that the library gets.
#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <utility>

#include "backends/windows/winrt_abi.h"
#include "failure.h"

namespace lanvoss::fake_winrt {

class Session;

namespace abi = windows::abi;

// Counts the references to an object, and reports wrong use. The target of the object is released
// with the last reference. The fake object itself stays until the end of the session, so that a
// late call is reported instead of ending the process.
class FakeObject {
 public:
  FakeObject(Session& session, const char* className, std::shared_ptr<void> target);
  virtual ~FakeObject() = default;
  FakeObject(const FakeObject&) = delete;
  FakeObject& operator=(const FakeObject&) = delete;

  ULONG References();
  // Ends a loan: the borrower of the object for a call must have released its references.
  void TakeBack();
  // Ends an object that is still referenced when nothing should be.
  void Abandon();

 protected:
  Session& session() const { return session_; }
  // None once the object has ended.
  std::shared_ptr<void> AnyTarget();
  // Ends the object while it is still referenced.
  std::shared_ptr<void> TakeTarget();
  ULONG AddReference();
  ULONG DropReference();

  void AddFault(const std::string& what);
  HRESULT NotUsed(const char* method);
  HRESULT Ended(const char* method);
  HRESULT NoPlaceForResult(const char* method);
  HRESULT NoInterface(REFIID iid);

 private:
  Session& session_;
  const char* const className_;

  std::mutex mutex_;  // guards everything below
  ULONG references_ = 1;
  std::shared_ptr<void> target_;
};

// An object of the runtime's in front of an `Inner` one.
template <typename Inner, typename First, typename... Others>
class Facade : public FakeObject, public First, public Others... {
 public:
  Facade(Session& session, const char* className, std::shared_ptr<Inner> target)
      : FakeObject(session, className, std::move(target)) {}

  STDMETHOD(QueryInterface)(REFIID iid, void** object) noexcept final {
    if (object == nullptr) {
      return NoPlaceForResult(__func__);
    }
    *object = Find(iid);
    if (*object == nullptr) {
      return NoInterface(iid);
    }
    AddReference();
    return S_OK;
  }
  STDMETHOD_(ULONG, AddRef)() noexcept final { return AddReference(); }
  STDMETHOD_(ULONG, Release)() noexcept final { return DropReference(); }

  STDMETHOD(GetIids)(ULONG*, IID**) noexcept final { return NotUsed(__func__); }
  STDMETHOD(GetRuntimeClassName)(HSTRING*) noexcept final { return NotUsed(__func__); }
  STDMETHOD(GetTrustLevel)(TrustLevel*) noexcept final { return NotUsed(__func__); }

 protected:
  // None once the object has ended.
  std::shared_ptr<Inner> Target() { return std::static_pointer_cast<Inner>(AnyTarget()); }

  // Runs `body(target)` for a method; what it throws becomes the method's failure.
  template <typename Body>
  HRESULT Do(const char* method, Body body) noexcept {
    const auto target = Target();
    return target == nullptr ? Ended(method) : Reported([&] { body(*target); });
  }

  // The same for a method with a result, which `body(target)` returns.
  template <typename Result, typename Body>
  HRESULT Give(const char* method, Result* result, Body body) noexcept {
    if (result == nullptr) {
      return NoPlaceForResult(method);
    }
    *result = {};
    return Do(method, [&](Inner& target) { *result = body(target); });
  }

 private:
  void* Find(REFIID iid) {
    if (iid == abi::kIid<IUnknown> || iid == abi::kIid<IInspectable> ||
        iid == abi::kIid<IAgileObject>) {
      return static_cast<First*>(this);
    }
    void* found = iid == abi::kIid<First> ? static_cast<First*>(this) : nullptr;
    ((iid == abi::kIid<Others> ? found = static_cast<Others*>(this) : nullptr), ...);
    return found;
  }
};

}  // namespace lanvoss::fake_winrt
