// Asynchronous operations over calls of the contract that block.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

#include "backends/windows/com_pointer.h"
#include "failure.h"
#include "identity.h"
#include "object.h"
#include "platform/error.h"
#include "session.h"

namespace lanvoss::fake_winrt {

// A second handler of the completion.
inline constexpr std::uint32_t kErrorIllegalDelegateAssignment = 0x80000018;

template <typename Interface>
struct AsyncState {
  std::mutex mutex;  // guards everything below
  abi::AsyncStatus status = abi::AsyncStatus::Started;
  std::optional<platform::Error>
      failure;  // in the statuses Error, where it may be none, and Canceled
  windows::ComPointer<Interface> result;  // in the status Completed; may be none
  bool handled = false;                   // a handler was given
  windows::ComPointer<abi::AsyncOperationCompletedHandler<Interface*>> handler;
};

inline abi::AsyncStatus StatusAfter(const std::optional<platform::Error>& failure,
                                    bool endsInError) {
  if (!failure) {
    return endsInError ? abi::AsyncStatus::Error : abi::AsyncStatus::Completed;
  }
  return failure->Hresult() == platform::kErrorCancelled ? abi::AsyncStatus::Canceled
                                                         : abi::AsyncStatus::Error;
}

template <typename Interface>
class AsyncOperation final
    : public Facade<AsyncState<Interface>, abi::IAsyncOperation<Interface*>, abi::IAsyncInfo> {
 public:
  using State = AsyncState<Interface>;
  using Handler = abi::AsyncOperationCompletedHandler<Interface*>;

  explicit AsyncOperation(Session& session)
      : Facade<State, abi::IAsyncOperation<Interface*>, abi::IAsyncInfo>(
            session, "AsyncOperation", std::make_shared<State>()) {}

  // Ends with what `work` returns or throws. Called once.
  template <typename Work>
  void Run(Work work) {
    const auto state = this->Target();
    windows::ComPointer<Interface> result;
    std::optional<platform::Error> failure;
    try {
      result = windows::ComPointer<Interface>::Adopt(work().Detach());
    } catch (...) {
      failure = CurrentError();
    }
    windows::ComPointer<Handler> handler;
    {
      const std::lock_guard lock(state->mutex);
      state->status =
          StatusAfter(failure, !result && this->session().CurrentHabits().noResultIsError);
      state->failure = std::move(failure);
      state->result = std::move(result);
      handler = std::move(state->handler);
    }
    InvokeHandler(*state, handler);
  }

  STDMETHOD(put_Completed)(Handler* handler) noexcept override {
    return this->Do(__func__, [&](State& state) {
      if (handler == nullptr) {
        RaiseNull(this->session(), "completed handler");
      }
      CheckIdentity(this->session(), "completed handler", *handler, abi::kIid<Handler>);
      if (!Accept(state, *handler)) {
        this->AddFault("a second handler");
        throw platform::Error(kErrorIllegalDelegateAssignment,
                              u"A delegate was assigned when not allowed.");
      }
    });
  }
  STDMETHOD(get_Completed)(Handler**) noexcept override { return this->NotUsed(__func__); }

  STDMETHOD(GetResults)(Interface** result) noexcept override {
    return this->Give(__func__, result, [this](State& state) {
      const std::lock_guard lock(state.mutex);
      if (state.status == abi::AsyncStatus::Started) {
        this->AddFault("results before the end");
        throw platform::Error(platform::kErrorIllegalMethodCall,
                              u"A method was called at an unexpected time.");
      }
      if (state.failure) {
        throw *state.failure;
      }
      return windows::ComPointer<Interface>(state.result).Detach();
    });
  }

  STDMETHOD(get_Status)(abi::AsyncStatus* status) noexcept override {
    return this->Give(__func__, status, [](State& state) {
      const std::lock_guard lock(state.mutex);
      return state.status;
    });
  }
  STDMETHOD(get_ErrorCode)(HRESULT* code) noexcept override {
    return this->Give(__func__, code, [](State& state) {
      const std::lock_guard lock(state.mutex);
      return state.failure ? static_cast<HRESULT>(state.failure->Hresult()) : S_OK;
    });
  }
  STDMETHOD(get_Id)(UINT32*) noexcept override { return this->NotUsed(__func__); }
  STDMETHOD(Cancel)() noexcept override { return this->NotUsed(__func__); }
  STDMETHOD(Close)() noexcept override { return this->NotUsed(__func__); }

 private:
  // False: there was a handler before.
  bool Accept(State& state, Handler& handler) {
    windows::ComPointer<Handler> due;
    {
      const std::lock_guard lock(state.mutex);
      if (std::exchange(state.handled, true)) {
        return false;
      }
      auto& place = state.status == abi::AsyncStatus::Started ? state.handler : due;
      place = windows::ComPointer<Handler>(&handler);
    }
    InvokeHandler(state, due);
    return true;
  }

  void InvokeHandler(const State& state, const windows::ComPointer<Handler>& handler) {
    if (handler && FAILED(handler->Invoke(this, state.status))) {
      this->AddFault("its handler failed");
    }
  }
};

// Starts `work`, which blocks and returns an object or none, on a thread of its own.
template <typename Interface, typename Work>
windows::ComPointer<AsyncOperation<Interface>> StartOperation(Session& session, std::string name,
                                                              Work work) {
  const auto operation = session.Make<AsyncOperation<Interface>>();
  session.StartThread(std::move(name), [operation, work] { operation->Run(work); });
  return operation;
}

}  // namespace lanvoss::fake_winrt
