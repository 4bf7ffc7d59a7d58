#include "backends/windows/winrt_error.h"

#include <cstdio>
#include <memory>
#include <new>
#include <string>
#include <string_view>

#include "backends/windows/com_pointer.h"
#include "backends/windows/com_text.h"
#include "backends/windows/wide_text.h"
#include "backends/windows/winrt_abi.h"
#include "platform/error.h"

namespace lanvoss::windows {
namespace {

std::u16string Trimmed(std::u16string_view text) {
  const auto last = text.find_last_not_of(u" \t\r\n");
  return std::u16string(text.substr(0, last == std::u16string_view::npos ? 0 : last + 1));
}

// The message of the failed call for this thread; empty if there is none, or only an older one.
std::u16string MessageOfThread(HRESULT failure) {
  ComPointer<IErrorInfo> info;
  if (GetErrorInfo(0, info.Out()) != S_OK) {
    return {};
  }
  ComPointer<abi::IRestrictedErrorInfo> restricted;
  if (FAILED(info->QueryInterface(abi::kIid<abi::IRestrictedErrorInfo>,
                                  reinterpret_cast<void**>(restricted.Out())))) {
    return {};
  }
  ComText description;
  ComText details;
  ComText capability;
  HRESULT code = S_OK;
  if (FAILED(
          restricted->GetErrorDetails(description.Out(), &code, details.Out(), capability.Out())) ||
      code != failure) {
    return {};
  }
  return Trimmed(details.Text().empty() ? description.Text() : details.Text());
}

// `source` says where FormatMessage looks for the text, and how it writes it.
std::u16string StoredMessage(DWORD source, HMODULE module, DWORD code) {
  constexpr DWORD kAnyLanguage = 0;
  wchar_t* text = nullptr;
  const DWORD length =
      FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_IGNORE_INSERTS | source,
                     module, code, kAnyLanguage, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
  const std::unique_ptr<wchar_t, decltype(&LocalFree)> owner(text, &LocalFree);
  return length == 0 ? std::u16string() : Trimmed(AsUtf16({text, length}));
}

std::u16string MessageOfSystem(HRESULT failure) {
  const auto code = static_cast<DWORD>(failure);
  if ((code & FACILITY_NT_BIT) != 0) {
    // A status of the kernel. Its texts are in ntdll, many of them with a title on a line of its
    // own.
    return StoredMessage(FORMAT_MESSAGE_FROM_HMODULE | FORMAT_MESSAGE_MAX_WIDTH_MASK,
                         GetModuleHandleW(L"ntdll.dll"), code & ~DWORD{FACILITY_NT_BIT});
  }
  return StoredMessage(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, code);
}

std::u16string Number(HRESULT failure) {
  char digits[11];
  std::snprintf(digits, sizeof digits, "0x%08lX", static_cast<unsigned long>(failure));
  return {digits, digits + std::string_view(digits).size()};
}

std::u16string MessageOf(HRESULT failure) {
  std::u16string message = MessageOfThread(failure);
  if (message.empty()) {
    message = MessageOfSystem(failure);
  }
  return message.empty() ? Number(failure) : message;
}

}  // namespace

void Raise(HRESULT failure) {
  const auto code = static_cast<std::uint32_t>(failure);
  if (code == platform::kErrorCancelled) {
    throw platform::CancelledError(MessageOf(failure));
  }
  throw platform::Error(code, MessageOf(failure));
}

HRESULT ResultOfException() noexcept {
  try {
    throw;
  } catch (const platform::Error& error) {
    return static_cast<HRESULT>(error.Hresult());
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (...) {
    return E_FAIL;
  }
}

// The runtime's own reports of unhandled errors may end the process.
void TellDebugger(HRESULT failure) noexcept {
  char line[64];
  std::snprintf(line, sizeof line, "lanvoss: an event handler failed with 0x%08lX\n",
                static_cast<unsigned long>(failure));
  OutputDebugStringA(line);
}

}  // namespace lanvoss::windows
