#include "backends/simulated/virtual_time.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <list>
#include <mutex>
#include <random>
#include <thread>
#include <utility>
#include <vector>

#include "platform/since_epoch.h"
#include "platform/unicode.h"

namespace lanvoss::simulated {
namespace {

constexpr std::uint32_t kProcessId = 0x0001'ABCD;
constexpr std::int64_t kNoDeadline = std::numeric_limits<std::int64_t>::max();

// A thread that takes part.
struct Participant {
  enum class State { kRunning, kReady, kWaiting };

  explicit Participant(std::string text) : name(std::move(text)) {}

  const std::string name;
  // Guarded by the scheduler's mutex.
  State state = State::kReady;
  std::int64_t deadlineMs = kNoDeadline;  // while it waits
  const void* event = nullptr;            // what it waits for; null in a sleep
  bool eventSet = false;                  // how its wait ended
  std::condition_variable mayRun;
};

// The participant that the current thread is; null on a thread that takes no part.
thread_local Participant* current = nullptr;

}  // namespace

// Who runs, who waits, and what time it is.
class VirtualTime::Scheduler {
 public:
  explicit Scheduler(std::optional<std::uint64_t> seed) : seeded_(seed), random_(seed.value_or(0)) {
    participants_.emplace_back("main").state = Participant::State::kRunning;
    current = &participants_.back();
  }

  ~Scheduler() { current = nullptr; }

  std::int64_t NowMs() {
    const std::lock_guard lock(mutex_);
    return nowMs_;
  }

  // Waits for the time to pass, or for `event` to be set. True when it was set. A time of 0 lets
  // the others run in between.
  bool Wait(std::uint32_t timeoutMs, const void* event, const bool* isSet) {
    std::unique_lock lock(mutex_);
    Participant& self = Self();
    const bool alreadySet = isSet != nullptr && *isSet;
    self.eventSet = alreadySet;
    if (alreadySet || timeoutMs == 0) {
      self.state = Participant::State::kReady;
    } else {
      self.state = Participant::State::kWaiting;
      self.event = event;
      self.deadlineMs = timeoutMs == platform::kWaitForever ? kNoDeadline : nowMs_ + timeoutMs;
    }
    PickNext();
    self.mayRun.wait(lock, [&self] { return self.state == Participant::State::kRunning; });
    return self.eventSet;
  }

  // `value` is an event's state, which belongs under the mutex here.
  void SetEvent(const void* event, bool& value) {
    const std::lock_guard lock(mutex_);
    value = true;
    for (Participant& participant : participants_) {
      if (participant.state == Participant::State::kWaiting && participant.event == event) {
        participant.eventSet = true;
        MakeReady(participant);
      }
    }
  }

  void ResetEvent(bool& value) {
    const std::lock_guard lock(mutex_);
    value = false;
  }

  Participant& Join(std::string name) {
    const std::lock_guard lock(mutex_);
    Participant& added = participants_.emplace_back(std::move(name));
    MakeReady(added);
    return added;
  }

  // First and last thing that a started thread does.
  void Begin(Participant& self) {
    current = &self;
    std::unique_lock lock(mutex_);
    self.mayRun.wait(lock, [&self] { return self.state == Participant::State::kRunning; });
  }
  void End(Participant& self) {
    const std::lock_guard lock(mutex_);
    participants_.remove_if([&self](const Participant& each) { return &each == &self; });
    current = nullptr;
    PickNext();
  }

  // The machine. Set before anything else uses it, so it needs no lock.
  platform::LocalTime startTime{2024, 3, 1, 9, 0, 0, 0};
  AnsiCodePage codePage = AnsiCodePage::kUtf8;
  std::string directory = ".";

  bool NextEventFails() {
    const std::lock_guard lock(mutex_);
    if (failEventsFrom_ > 1) {
      --failEventsFrom_;
      return false;
    }
    return failEventsFrom_ == 1;
  }
  void FailEventsFrom(unsigned nth) {
    const std::lock_guard lock(mutex_);
    failEventsFrom_ = nth;
  }

 private:
  static Participant& Self() {
    if (current == nullptr) {
      std::fputs("VirtualTime: a thread that takes no part in it called it\n", stderr);
      std::abort();
    }
    return *current;
  }

  void MakeReady(Participant& participant) {
    participant.state = Participant::State::kReady;
    participant.event = nullptr;
    participant.deadlineMs = kNoDeadline;
    if (!seeded_) {
      LetRun(participant);
    }
  }

  static void LetRun(Participant& participant) {
    participant.state = Participant::State::kRunning;
    participant.mayRun.notify_one();
  }

  // The caller has stopped running. Moves the clock if all threads wait, and lets the next thread
  // run.
  void PickNext() {
    if (participants_.empty() || AnyIn(Participant::State::kRunning)) {
      if (!seeded_) {
        RunAllReady();
      }
      return;
    }
    if (!AnyIn(Participant::State::kReady)) {
      MoveClock();
    }
    if (seeded_) {
      RunOneReady();
    } else {
      RunAllReady();
    }
  }

  bool AnyIn(Participant::State state) const {
    return std::any_of(participants_.begin(), participants_.end(),
                       [state](const Participant& each) { return each.state == state; });
  }

  void RunAllReady() {
    for (Participant& participant : participants_) {
      if (participant.state == Participant::State::kReady) {
        LetRun(participant);
      }
    }
  }

  void RunOneReady() {
    std::vector<Participant*> ready;
    for (Participant& participant : participants_) {
      if (participant.state == Participant::State::kReady) {
        ready.push_back(&participant);
      }
    }
    if (!ready.empty()) {
      LetRun(*ready[random_() % ready.size()]);
    }
  }

  void MoveClock() {
    std::int64_t earliest = kNoDeadline;
    for (const Participant& participant : participants_) {
      earliest = std::min(earliest, participant.deadlineMs);
    }
    if (earliest == kNoDeadline) {
      ReportDeadlock();
    }
    nowMs_ = earliest;
    for (Participant& participant : participants_) {
      if (participant.state == Participant::State::kWaiting && participant.deadlineMs <= nowMs_) {
        MakeReady(participant);
      }
    }
  }

  [[noreturn]] void ReportDeadlock() const {
    std::fprintf(stderr, "VirtualTime: at %lld ms every thread waits for ever:\n",
                 static_cast<long long>(nowMs_));
    for (const Participant& participant : participants_) {
      std::fprintf(stderr, "  %s\n", participant.name.c_str());
    }
    std::abort();
  }

  const std::optional<std::uint64_t> seeded_;

  std::mutex mutex_;  // guards everything below
  std::mt19937_64 random_;
  std::int64_t nowMs_ = 0;
  std::list<Participant> participants_;  // in the order in which they joined
  unsigned failEventsFrom_ = 0;          // counts down to 1, from which on all fail; 0: none does
};

class VirtualTime::TimedEvent final : public platform::Event {
 public:
  TimedEvent(Scheduler& scheduler, bool set) : scheduler_(scheduler), set_(set) {}

  void Set() override { scheduler_.SetEvent(this, set_); }
  void Reset() override { scheduler_.ResetEvent(set_); }
  bool Wait(std::uint32_t timeoutMs) override { return scheduler_.Wait(timeoutMs, this, &set_); }

 private:
  Scheduler& scheduler_;
  bool set_;  // guarded by the scheduler's mutex
};

class VirtualTime::TimedThread final : public events::Thread {
 public:
  TimedThread(Scheduler& scheduler, std::string name, std::function<void()> body)
      : ended_(std::make_shared<TimedEvent>(scheduler, false)),
        thread_([&scheduler, &self = scheduler.Join(std::move(name)), ended = ended_,
                 run = std::move(body)]() mutable {
          scheduler.Begin(self);
          run();
          run = nullptr;  // releases what it held while the thread still takes part
          ended->Set();
          scheduler.End(self);
        }) {}

  ~TimedThread() override {
    if (thread_.get_id() == std::this_thread::get_id()) {
      thread_.detach();
      return;
    }
    ended_->Wait(platform::kWaitForever);
    thread_.join();
  }

 private:
  const std::shared_ptr<TimedEvent> ended_;
  std::thread thread_;
};

std::shared_ptr<VirtualTime> VirtualTime::Seeded(std::uint64_t seed) {
  return std::shared_ptr<VirtualTime>(new VirtualTime(seed));
}

std::shared_ptr<VirtualTime> VirtualTime::Free() {
  return std::shared_ptr<VirtualTime>(new VirtualTime(std::nullopt));
}

VirtualTime::VirtualTime(std::optional<std::uint64_t> seed)
    : scheduler_(std::make_unique<Scheduler>(seed)) {}

VirtualTime::~VirtualTime() = default;

void VirtualTime::SetLocalTime(const platform::LocalTime& atClockZero) {
  scheduler_->startTime = atClockZero;
}
void VirtualTime::SetAnsiCodePage(AnsiCodePage page) { scheduler_->codePage = page; }
void VirtualTime::SetCurrentDirectory(std::string directory) {
  scheduler_->directory = std::move(directory);
}
void VirtualTime::FailEventCreation(unsigned nth) { scheduler_->FailEventsFrom(nth); }

std::int32_t VirtualTime::Clock() {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(scheduler_->NowMs()));
}

void VirtualTime::Sleep(std::uint32_t milliseconds) {
  scheduler_->Wait(milliseconds, nullptr, nullptr);
}

std::unique_ptr<platform::Event> VirtualTime::CreateManualResetEvent(bool set) {
  if (scheduler_->NextEventFails()) {
    return nullptr;
  }
  return std::make_unique<TimedEvent>(*scheduler_, set);
}

platform::LocalTime VirtualTime::GetLocalTime() {
  namespace chrono = std::chrono;
  const chrono::sys_time<chrono::milliseconds> now(platform::SinceEpoch(scheduler_->startTime) +
                                                   chrono::milliseconds(scheduler_->NowMs()));
  const auto day = chrono::floor<chrono::days>(now);
  const chrono::year_month_day date(day);
  const chrono::hh_mm_ss time(now - day);
  const auto part = [](auto value) { return static_cast<std::uint16_t>(value); };
  return {part(static_cast<int>(date.year())),
          part(static_cast<unsigned>(date.month())),
          part(static_cast<unsigned>(date.day())),
          part(time.hours().count()),
          part(time.minutes().count()),
          part(time.seconds().count()),
          part(time.subseconds().count())};
}

std::string VirtualTime::CurrentDirectory(std::size_t capacity) {
  return scheduler_->directory.size() < capacity ? scheduler_->directory : std::string();
}

platform::File VirtualTime::OpenFile(const std::string& path, platform::FileUse use) {
  return platform::File(
      std::fopen(path.c_str(), use == platform::FileUse::kReplace ? "wb+" : "rb+"));
}

std::string VirtualTime::WideToAnsi(std::u16string_view wide) {
  if (scheduler_->codePage == AnsiCodePage::kUtf8) {
    return WideToUtf8(wide);
  }
  std::string narrow;
  for (const char16_t unit : wide) {
    narrow.push_back(unit < 0x100 ? static_cast<char>(unit) : '?');
  }
  return narrow;
}

std::string VirtualTime::WideToUtf8(std::u16string_view wide) {
  return platform::Utf16ToUtf8(wide);
}

std::u16string VirtualTime::Utf8ToWide(std::string_view utf8) {
  return platform::Utf8ToUtf16(utf8);
}

std::uint32_t VirtualTime::ProcessId() { return kProcessId; }

std::optional<platform::Ipv4Address> VirtualTime::ResolveHost(const std::string& host) {
  unsigned part[4] = {};
  char rest = 0;
  if (std::sscanf(host.c_str(), "%3u.%3u.%3u.%3u%c", &part[0], &part[1], &part[2], &part[3],
                  &rest) != 4) {
    return std::nullopt;
  }
  platform::Ipv4Address address{};
  for (std::size_t i = 0; i < address.size(); ++i) {
    if (part[i] > 255) {
      return std::nullopt;
    }
    address[i] = static_cast<std::uint8_t>(part[i]);
  }
  return address;
}

std::unique_ptr<events::Thread> VirtualTime::Start(std::string name, std::function<void()> body) {
  return std::make_unique<TimedThread>(*scheduler_, std::move(name), std::move(body));
}

}  // namespace lanvoss::simulated
