#include "identity.h"

#include "backends/windows/com_pointer.h"
#include "backends/windows/winrt_abi.h"
#include "platform/error.h"

namespace lanvoss::fake_winrt {
namespace {

// An id that no interface has.
constexpr GUID kNobody = abi::Guid("5c1d6f0e-93b2-4d47-a8c5-0e7f21b6d934");

windows::ComPointer<IUnknown> Ask(IUnknown& object, REFIID iid) {
  windows::ComPointer<IUnknown> answer;
  object.QueryInterface(iid, reinterpret_cast<void**>(answer.Out()));
  return answer;
}

bool Refuses(IUnknown& object, REFIID iid) {
  void* answer = &object;
  return object.QueryInterface(iid, &answer) == E_NOINTERFACE && answer == nullptr;
}

}  // namespace

void CheckIdentity(Session& session, const std::string& name, IUnknown& object, REFIID iid) {
  const auto expect = [&](bool condition, const char* fault) {
    if (!condition) {
      session.AddFault(name + ": " + fault);
    }
  };
  const auto identity = Ask(object, abi::kIid<IUnknown>);
  const auto self = Ask(object, iid);
  expect(identity && Ask(object, abi::kIid<IUnknown>).Get() == identity.Get(), "has no identity");
  expect(self.Get() == &object, "does not answer to its own id");
  expect(self && Ask(*self.Get(), abi::kIid<IUnknown>).Get() == identity.Get(), "is two objects");
  expect(bool{Ask(object, abi::kIid<IAgileObject>)}, "is not agile");
  expect(bool{Ask(object, abi::kIid<IMarshal>)}, "does not marshal");
  expect(Refuses(object, kNobody), "answers to an unknown id");
}

void RaiseNull(Session& session, const std::string& name) {
  session.AddFault(name + ": is null");
  throw platform::Error(static_cast<std::uint32_t>(E_POINTER), u"Invalid pointer");
}

}  // namespace lanvoss::fake_winrt
