// What happens from Use to Finish: the radio, the objects that were returned, the counts.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "backends/events/threads.h"
#include "backends/simulated/peer.h"
#include "backends/windows/com_pointer.h"
#include "fake_winrt.h"
#include "object.h"
#include "platform/wifi_direct.h"

namespace lanvoss::fake_winrt {

// A session is never destroyed: an object that was not released may still be called after its end.
class Session {
 public:
  Session(std::shared_ptr<platform::WiFiDirect> radio, std::shared_ptr<events::Threads> threads);

  // The radio; none once the session has ended.
  std::shared_ptr<platform::WiFiDirect> Radio();

  // A new object with one reference, which the caller gets.
  template <typename Object, typename... Arguments>
  windows::ComPointer<Object> Make(Arguments&&... arguments) {
    auto owner = std::make_unique<Object>(*this, std::forward<Arguments>(arguments)...);
    Object* const object = owner.get();
    Keep(std::move(owner));
    return windows::ComPointer<Object>::Adopt(object);
  }

  // The same for a target that may be none.
  template <typename Object, typename Target>
  windows::ComPointer<Object> Wrap(std::shared_ptr<Target> target) {
    return target == nullptr ? windows::ComPointer<Object>() : Make<Object>(std::move(target));
  }

  void StartThread(std::string name, std::function<void()> body);
  void AddFault(std::string fault);
  Ledger Finish();

  void SetHabits(const simulated::Habits& habits);
  simulated::Habits CurrentHabits();
  // Which devices are closed.
  void NoteOpened(const platform::WiFiDirectDevice* device);
  void NoteClosed(const platform::WiFiDirectDevice& device);
  bool IsClosed(const platform::WiFiDirectDevice& device);

  // How often it happened, for all objects.
  std::atomic<unsigned> created = 0;
  std::atomic<unsigned> destroyed = 0;
  std::atomic<unsigned long long> addRefs = 0;
  std::atomic<unsigned long long> releases = 0;

 private:
  void Keep(std::unique_ptr<FakeObject> shell);
  void JoinThreads();
  std::vector<FakeObject*> Alive();

  std::mutex mutex_;  // guards everything below
  std::shared_ptr<platform::WiFiDirect> radio_;
  std::shared_ptr<events::Threads> threads_;
  std::vector<std::unique_ptr<events::Thread>> running_;
  std::vector<std::unique_ptr<FakeObject>> shells_;  // the dead among them wait for the end
  std::vector<std::string> faults_;
  simulated::Habits habits_;
  std::set<const platform::WiFiDirectDevice*> closed_;
};

// Starts a session, which is the current one from now on.
void BeginSession(std::shared_ptr<platform::WiFiDirect> radio,
                  std::shared_ptr<events::Threads> threads);
// The current session; that of the process's default air if there never was one. Raises when the
// last one has ended.
Session& CurrentSession();
// Ends the current session; nothing was seen when there is none.
Ledger EndSession();

}  // namespace lanvoss::fake_winrt
