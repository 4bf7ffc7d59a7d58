#include "object.h"

#include <array>

#include "backends/windows/wide_text.h"
#include "platform/unicode.h"
#include "session.h"

namespace lanvoss::fake_winrt {
namespace {

// "{30d5a829-7fa4-4026-83bb-d75bae4ea99e}"
std::string TextOf(REFIID iid) {
  std::array<wchar_t, 39> text{};
  StringFromGUID2(iid, text.data(), static_cast<int>(text.size()));
  return platform::Utf16ToUtf8(windows::AsUtf16(text.data()));
}

}  // namespace

FakeObject::FakeObject(Session& session, const char* className, std::shared_ptr<void> target)
    : session_(session), className_(className), target_(std::move(target)) {
  ++session_.created;
  ++session_.addRefs;
}

ULONG FakeObject::References() {
  const std::lock_guard lock(mutex_);
  return references_;
}

std::shared_ptr<void> FakeObject::AnyTarget() {
  const std::lock_guard lock(mutex_);
  return target_;
}

std::shared_ptr<void> FakeObject::TakeTarget() {
  const std::lock_guard lock(mutex_);
  return std::exchange(target_, nullptr);
}

ULONG FakeObject::AddReference() {
  ULONG references = 0;
  {
    const std::lock_guard lock(mutex_);
    if (references_ > 0) {
      references = ++references_;
    }
  }
  if (references == 0) {
    AddFault("used after its end (AddRef)");
    return 0;
  }
  ++session_.addRefs;
  return references;
}

ULONG FakeObject::DropReference() {
  std::shared_ptr<void> dropped;  // released after the lock
  {
    const std::lock_guard lock(mutex_);
    if (references_ > 0) {
      ++session_.releases;
      if (--references_ > 0) {
        return references_;
      }
      ++session_.destroyed;
      dropped.swap(target_);
      return 0;
    }
  }
  AddFault("released twice");
  return 0;
}

void FakeObject::TakeBack() {
  TakeTarget();
  if (const ULONG kept = References() - 1; kept > 0) {
    AddFault("kept after the call, " + std::to_string(kept) + " references");
  }
}

void FakeObject::Abandon() {
  TakeTarget();
  AddFault("leaked, " + std::to_string(References()) + " references");
}

void FakeObject::AddFault(const std::string& what) {
  session_.AddFault(std::string(className_) + ": " + what);
}

HRESULT FakeObject::NotUsed(const char* method) {
  session_.AddFault(std::string(className_) + "." + method + " is not used");
  return E_NOTIMPL;
}

HRESULT FakeObject::Ended(const char* method) {
  AddFault(std::string("used after its end (") + method + ")");
  return RPC_E_DISCONNECTED;
}

HRESULT FakeObject::NoPlaceForResult(const char* method) {
  AddFault(std::string(method) + " has no place for its result");
  return E_POINTER;
}

// Callers ask for marshalling to learn whether an object is agile, so this is no fault.
HRESULT FakeObject::NoInterface(REFIID iid) {
  if (iid != abi::kIid<IMarshal>) {
    AddFault("unknown interface " + TextOf(iid));
  }
  return E_NOINTERFACE;
}

}  // namespace lanvoss::fake_winrt
