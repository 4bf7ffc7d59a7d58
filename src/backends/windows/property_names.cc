#include "backends/windows/property_names.h"

#include <cstddef>
#include <memory>
#include <utility>

#include "backends/windows/com_object.h"
#include "backends/windows/winrt_string.h"
#include "platform/error.h"

namespace lanvoss::windows {
namespace {

using Names = std::shared_ptr<const std::vector<std::u16string>>;

// What an object without a runtime class reports about itself.
template <typename Interface>
class ListObject : public ComObject<Interface> {
 public:
  STDMETHOD(GetIids)(ULONG* count, IID** iids) noexcept override {
    *count = 0;
    *iids = nullptr;
    return S_OK;
  }
  STDMETHOD(GetRuntimeClassName)(HSTRING* name) noexcept override {
    *name = nullptr;
    return S_OK;
  }
  STDMETHOD(GetTrustLevel)(TrustLevel* level) noexcept override {
    *level = BaseTrust;
    return S_OK;
  }
};

// Used by one thread at a time.
class NameIterator final : public ListObject<abi::IIterator<HSTRING>> {
 public:
  explicit NameIterator(Names names) : names_(std::move(names)) {}

  STDMETHOD(get_Current)(HSTRING* name) noexcept override {
    *name = nullptr;
    return HasCurrent() ? WinrtString::Give((*names_)[at_], name)
                        : static_cast<HRESULT>(platform::kErrorBounds);
  }
  STDMETHOD(get_HasCurrent)(boolean* has) noexcept override {
    *has = HasCurrent();
    return S_OK;
  }
  STDMETHOD(MoveNext)(boolean* has) noexcept override {
    if (HasCurrent()) {
      ++at_;
    }
    *has = HasCurrent();
    return S_OK;
  }
  STDMETHOD(GetMany)(UINT32 capacity, HSTRING* names, UINT32* actual) noexcept override {
    HRESULT result = S_OK;
    for (*actual = 0; *actual < capacity && HasCurrent() && SUCCEEDED(result); ++*actual, ++at_) {
      result = WinrtString::Give((*names_)[at_], &names[*actual]);
    }
    return result;
  }

 private:
  bool HasCurrent() const { return at_ < names_->size(); }

  const Names names_;
  std::size_t at_ = 0;
};

class NameList final : public ListObject<abi::IIterable<HSTRING>> {
 public:
  explicit NameList(const std::vector<std::u16string>& names)
      : names_(std::make_shared<const std::vector<std::u16string>>(names)) {}

  STDMETHOD(First)(abi::IIterator<HSTRING>** iterator) noexcept override {
    *iterator = nullptr;
    return Guarded([&] { *iterator = MakeObject<NameIterator>(names_).Detach(); });
  }

 private:
  const Names names_;
};

}  // namespace

ComPointer<abi::IIterable<HSTRING>> PropertyNames(const std::vector<std::u16string>& names) {
  return ComPointer<abi::IIterable<HSTRING>>::Adopt(MakeObject<NameList>(names).Detach());
}

}  // namespace lanvoss::windows
