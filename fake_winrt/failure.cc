#include "failure.h"

#include <atomic>
#include <exception>
#include <oleauto.h>
#include <string>
#include <utility>

#include "backends/windows/com_pointer.h"
#include "backends/windows/wide_text.h"
#include "backends/windows/winrt_abi.h"
#include "platform/unicode.h"

namespace lanvoss::fake_winrt {
namespace {

namespace abi = windows::abi;

HRESULT GiveText(const std::u16string& text, BSTR* receiver) {
  *receiver = SysAllocStringLen(windows::AsWide(text.data()), static_cast<UINT>(text.size()));
  return *receiver == nullptr ? E_OUTOFMEMORY : S_OK;
}

// The message of one failure. A thread keeps the last one for as long as it likes, so these objects
// are not part of any session.
class ErrorInfo final : public IErrorInfo, public abi::IRestrictedErrorInfo {
 public:
  explicit ErrorInfo(platform::Error error) : error_(std::move(error)) {}
  virtual ~ErrorInfo() = default;

  STDMETHOD(QueryInterface)(REFIID iid, void** object) noexcept override {
    if (iid == abi::kIid<abi::IRestrictedErrorInfo>) {
      *object = static_cast<abi::IRestrictedErrorInfo*>(this);
    } else if (iid == abi::kIid<IErrorInfo> || iid == abi::kIid<IUnknown>) {
      *object = static_cast<IErrorInfo*>(this);
    } else {
      *object = nullptr;
      return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
  }
  STDMETHOD_(ULONG, AddRef)() noexcept override { return ++references_; }
  STDMETHOD_(ULONG, Release)() noexcept override {
    const ULONG left = --references_;
    if (left == 0) {
      delete this;
    }
    return left;
  }

  STDMETHOD(GetErrorDetails)
  (BSTR* description, HRESULT* error, BSTR* restricted, BSTR* capability) noexcept override {
    *error = static_cast<HRESULT>(error_.Hresult());
    *restricted = nullptr;
    *capability = nullptr;
    return GiveText(error_.Message(), description);
  }
  STDMETHOD(GetReference)(BSTR* reference) noexcept override {
    *reference = nullptr;
    return S_OK;
  }

  STDMETHOD(GetDescription)(BSTR* description) noexcept override {
    return GiveText(error_.Message(), description);
  }
  STDMETHOD(GetGUID)(GUID*) noexcept override { return E_NOTIMPL; }
  STDMETHOD(GetSource)(BSTR*) noexcept override { return E_NOTIMPL; }
  STDMETHOD(GetHelpFile)(BSTR*) noexcept override { return E_NOTIMPL; }
  STDMETHOD(GetHelpContext)(DWORD*) noexcept override { return E_NOTIMPL; }

 private:
  std::atomic<ULONG> references_ = 1;
  const platform::Error error_;
};

}  // namespace

platform::Error CurrentError() {
  try {
    throw;
  } catch (const platform::Error& error) {
    return error;
  } catch (const std::exception& error) {
    return {platform::kErrorFail, platform::Utf8ToUtf16(error.what())};
  }
}

HRESULT Report(const platform::Error& error) {
  const auto info = windows::ComPointer<ErrorInfo>::Adopt(new ErrorInfo(error));
  SetErrorInfo(0, info.Get());
  return static_cast<HRESULT>(error.Hresult());
}

}  // namespace lanvoss::fake_winrt
