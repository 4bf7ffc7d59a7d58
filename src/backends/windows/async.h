// Waiting for the platform's asynchronous operations.
#pragma once

#include <atomic>
#include <memory>
#include <utility>

#include "backends/windows/com_object.h"
#include "platform/error.h"
#include "platform/system.h"

namespace lanvoss::windows {

// The end of an operation. The platform may hold it, and call it, longer than anybody waits.
template <typename Result>
class Completion final : public ComObject<abi::AsyncOperationCompletedHandler<Result>> {
 public:
  explicit Completion(std::shared_ptr<platform::System> system)
      : system_(std::move(system)), ended_(system_->CreateManualResetEvent(false)) {
    if (ended_ == nullptr) {
      Raise(E_OUTOFMEMORY);
    }
  }

  STDMETHOD(Invoke)(abi::IAsyncOperation<Result>*, abi::AsyncStatus status) noexcept override {
    status_ = status;
    ended_->Set();
    return S_OK;
  }

  abi::AsyncStatus Wait() {
    ended_->Wait(platform::kWaitForever);
    return status_;
  }

 private:
  const std::shared_ptr<platform::System> system_;  // outlives its event
  const std::unique_ptr<platform::Event> ended_;
  std::atomic<abi::AsyncStatus> status_ = abi::AsyncStatus::Started;
};

// Blocks until the operation has ended, without a time limit, and returns its result, which may be
// none; raises its failure or its cancellation.
//
// The operation is agile and ends on a thread of the platform's, so a single-threaded apartment may
// wait here too; its messages are not looked at meanwhile.
template <typename Other>
ComPointer<Other> Await(const std::shared_ptr<platform::System>& system,
                        const ComPointer<abi::IAsyncOperation<Other*>>& operation) {
  const auto completion = MakeObject<Completion<Other*>>(system);
  Check(operation->put_Completed(completion.Get()));
  const abi::AsyncStatus status = completion->Wait();

  // Of an operation that failed this leaves the message for this thread.
  ComPointer<Other> result;
  const HRESULT outcome = operation->GetResults(result.Out());
  if (status == abi::AsyncStatus::Canceled) {
    Raise(static_cast<HRESULT>(platform::kErrorCancelled));
  }
  Check(outcome);
  if (status == abi::AsyncStatus::Error) {
    Check(Read<HRESULT>(operation.template As<abi::IAsyncInfo>(), &abi::IAsyncInfo::get_ErrorCode));
    return {};  // Some operations end in Error although nothing says what failed.
  }
  return result;
}

}  // namespace lanvoss::windows
