#include "backends/simulated/simulated_watcher.h"

#include <utility>

#include "backends/simulated/simulated_information.h"

namespace lanvoss::simulated {
namespace {

using Status = platform::DeviceWatcherStatus;

[[noreturn]] void Refuse() {
  throw platform::Error(platform::kErrorIllegalMethodCall,
                        u"A method was called at an unexpected time.");
}

}  // namespace

SimulatedWatcher::SimulatedWatcher(std::shared_ptr<AirState> owner)
    : Counted(std::move(owner)), queue_(air->dispatcher.NewQueue()) {}

platform::DeviceWatcherStatus SimulatedWatcher::Status() {
  air->faults.Enter(Call::kWatcherStatus);
  const std::lock_guard lock(mutex_);
  return status_;
}

void SimulatedWatcher::Start() {
  air->faults.Enter(Call::kWatcherStart);
  const std::uint32_t ignoredStarts = air->CurrentHabits().ignoredStarts;
  {
    const std::lock_guard lock(mutex_);
    if (IsRunning() || status_ == Status::Stopping) {
      Refuse();
    }
    if (ignored_ < ignoredStarts) {
      ++ignored_;
      return;
    }
    ignored_ = 0;
    ++pass_;
    status_ = Status::Started;
    startedAt_ = air->system->Clock();
    seen_.clear();
  }
  const std::size_t peers = air->PeerCount();
  for (std::size_t index = 0; index < peers; ++index) {
    if (air->IsReported(index)) {
      PeerAppeared(index);
    }
  }
  Later(air->CurrentHabits().enumerationMs,
        [](SimulatedWatcher& watcher) { watcher.CompletePass(); });
}

void SimulatedWatcher::CompletePass() {
  const std::lock_guard lock(mutex_);
  if (status_ == Status::Started) {
    status_ = Status::EnumerationCompleted;
    RaisePlain(completed_);
  }
}

void SimulatedWatcher::Stop() {
  air->faults.Enter(Call::kWatcherStop);
  const Habits habits = air->CurrentHabits();
  {
    const std::lock_guard lock(mutex_);
    if (!IsRunning()) {
      if (habits.stopElsewhere == StopElsewhere::kRefused) {
        Refuse();
      }
      return;
    }
    status_ = Status::Stopping;
  }
  Later(habits.stopMs, [](SimulatedWatcher& watcher) { watcher.FinishStop(); });
}

void SimulatedWatcher::FinishStop() {
  const std::lock_guard lock(mutex_);
  stopDue_ = true;
  StopIfDue();
}

// Also while an exception leaves the handler, so another thread raises what may follow.
void SimulatedWatcher::OnHandlerReturned() {
  {
    const std::lock_guard lock(mutex_);
    --underWay_;
    if (!stopDue_ || underWay_ > 0) {
      return;
    }
  }
  Later(0, [](SimulatedWatcher& watcher) {
    const std::lock_guard lock(watcher.mutex_);
    watcher.StopIfDue();
  });
}

void SimulatedWatcher::StopIfDue() {
  const Habits habits = air->CurrentHabits();
  if (!stopDue_ || (underWay_ > 0 && habits.stopWaitsForHandlers)) {
    return;
  }
  stopDue_ = false;
  status_ = Status::Stopped;
  if (habits.stoppedReported) {
    RaisePlain(stopped_);
  }
}

void SimulatedWatcher::Abort() {
  const bool reported = air->CurrentHabits().abortedReported;
  const std::lock_guard lock(mutex_);
  if (!IsRunning()) {
    return;
  }
  status_ = Status::Aborted;
  if (reported) {
    RaisePlain(stopped_);
  }
}

void SimulatedWatcher::Later(std::uint32_t delayMs, std::function<void(SimulatedWatcher&)> step) {
  unsigned pass = 0;
  {
    const std::lock_guard lock(mutex_);
    pass = pass_;
  }
  air->delayedActions.After(delayMs, [self = weak_from_this(), pass, step = std::move(step)] {
    const auto watcher = self.lock();
    if (watcher == nullptr) {
      return;
    }
    {
      const std::lock_guard lock(watcher->mutex_);
      if (watcher->pass_ != pass) {
        return;
      }
    }
    step(*watcher);
  });
}

void SimulatedWatcher::PeerAppeared(std::size_t index) {
  Later(air->StateOf(index).peer.appearMs,
        [index](SimulatedWatcher& watcher) { watcher.Report(index); });
}

void SimulatedWatcher::PeerDisappeared(std::size_t index) {
  const std::lock_guard lock(mutex_);
  if (IsRunning() && !air->IsReported(index) && seen_.erase(index) == 1) {
    RaiseUpdate(removed_, index);
  }
}

void SimulatedWatcher::PeerRenamed(std::size_t index) {
  const std::lock_guard lock(mutex_);
  if (IsRunning() && seen_.contains(index)) {
    RaiseUpdate(updated_, index);
  }
}

// The device's report in this pass, if it is still due and has not been made.
void SimulatedWatcher::Report(std::size_t index) {
  const std::lock_guard lock(mutex_);
  const auto passMs =
      static_cast<std::uint32_t>(air->system->Clock()) - static_cast<std::uint32_t>(startedAt_);
  if (!IsRunning() || passMs > air->CurrentHabits().findMs || !air->IsReported(index) ||
      !seen_.insert(index).second) {
    return;
  }
  const auto info = std::make_shared<SimulatedInformation>(air, index, air->NextReport(index));
  Raise(added_, [this, info](const AddedHandler& handler) { handler(*this, info); });
}

template <typename Handler, typename Invoke>
void SimulatedWatcher::Raise(const events::EventSource<Handler>& source, Invoke invoke) {
  struct UnderWay {
    SimulatedWatcher& watcher;
    ~UnderWay() { watcher.OnHandlerReturned(); }
  };
  auto handlers = source.Subscribers();
  underWay_ += handlers.size();
  air->Raise(queue_, std::move(handlers),
             [self = shared_from_this(), invoke](const Handler& handler) {
               const UnderWay underWay{*self};
               invoke(handler);
             });
}

void SimulatedWatcher::RaisePlain(const events::EventSource<PassHandler>& source) {
  Raise(source, [this](const PassHandler& handler) { handler(*this); });
}

void SimulatedWatcher::RaiseUpdate(const events::EventSource<UpdateHandler>& source,
                                   std::size_t index) {
  const auto update =
      std::make_shared<SimulatedInformationUpdate>(air, air->StateOf(index).peer.id);
  Raise(source, [this, update](const UpdateHandler& handler) { handler(*this, *update); });
}

}  // namespace lanvoss::simulated
