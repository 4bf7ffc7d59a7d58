// System, against the system itself.

#include <cstdio>
#include <ctime>
#include <filesystem>
#include <functional>
#include <future>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

#ifdef _WIN32
#include "backends/windows/windows_system.h"
namespace native = lanvoss::windows;
#else
#include <sys/stat.h>

#include "backends/posix/posix_system.h"
namespace native = lanvoss::posix;
#endif
#include "backends/events/event_dispatcher.h"
#include "scenario_test.h"

namespace lanvoss {
namespace {

TEST(System, EventsStaySetAndTimeOut) {
  const auto system = native::CreateSystem();
  const auto event = system->CreateManualResetEvent(true);
  EXPECT_TRUE(event->Wait(0));
  EXPECT_TRUE(event->Wait(platform::kWaitForever));
  event->Reset();
  EXPECT_FALSE(event->Wait(1));
  std::thread setter([&] { event->Set(); });
  EXPECT_TRUE(event->Wait(platform::kWaitForever));
  setter.join();
}

TEST(System, ASetThatIsResetAtOnceEndsTheWaitsUnderWay) {
  const auto system = native::CreateSystem();
  const auto event = system->CreateManualResetEvent(false);
  bool isSet = false;
  std::thread waiter([&] { isSet = event->Wait(10'000); });
  system->Sleep(100);  // by then it waits
  event->Set();
  event->Reset();
  waiter.join();
  EXPECT_TRUE(isSet);
}

TEST(System, AFileIsOpenOnceAtATime) {
  using platform::FileUse;
  const auto system = native::CreateSystem();
  const test::TemporaryDirectory directory;
  const std::string path = (directory.path / "file").string();
  EXPECT_EQ(system->OpenFile(path, FileUse::kUpdate), nullptr) << "it is not there";
  EXPECT_EQ(system->OpenFile(directory.path.string(), FileUse::kUpdate), nullptr);
  {
    const auto file = system->OpenFile(path, FileUse::kReplace);
    ASSERT_NE(file, nullptr);
    std::fputs("kept", file.get());
    std::fflush(file.get());
    for (const FileUse use : {FileUse::kReplace, FileUse::kUpdate}) {
      EXPECT_EQ(native::CreateSystem()->OpenFile(path, use), nullptr) << "another object has it";
    }
  }
  EXPECT_EQ(test::ReadFile(path), "kept");
  EXPECT_NE(system->OpenFile(path, FileUse::kUpdate), nullptr);
  EXPECT_EQ(test::ReadFile(path), "kept");
  EXPECT_NE(system->OpenFile(path, FileUse::kReplace), nullptr);
  EXPECT_EQ(test::ReadFile(path), "");
}

#ifndef _WIN32
TEST(System, APipeOrADeviceIsNoFile) {
  const auto system = native::CreateSystem();
  const test::TemporaryDirectory directory;
  const std::string pipe = (directory.path / "pipe").string();
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  for (const auto use : {platform::FileUse::kReplace, platform::FileUse::kUpdate}) {
    EXPECT_EQ(system->OpenFile(pipe, use), nullptr);
    EXPECT_EQ(system->OpenFile("/dev/null", use), nullptr);
  }
}
#endif

TEST(System, TheClockCountsWallTimeFromTheStartOfTheProcess) {
  const auto first = native::CreateSystem();
  const std::int32_t begun = first->Clock();
  first->Sleep(30);
  EXPECT_GE(first->Clock() - begun, 29) << "wall time: no processor time passes in a sleep";
  EXPECT_GE(native::CreateSystem()->Clock(), begun + 29) << "the same for every System";
  // A test process is young; a clock that counted from the boot would not be.
  EXPECT_LT(begun, 30 * 60 * 1000);
}

TEST(System, TheCurrentDirectoryFitsOrIsEmpty) {
  const auto system = native::CreateSystem();
  const std::string here = std::filesystem::current_path().string();
  EXPECT_EQ(system->CurrentDirectory(here.size() + 1), here);
  EXPECT_EQ(system->CurrentDirectory(here.size()), "");
}

TEST(System, LocalTimeIsTheCalendars) {
  const std::time_t before = std::time(nullptr);
  const platform::LocalTime now = native::CreateSystem()->GetLocalTime();
  std::tm calendar{};
  calendar.tm_year = now.year - 1900;
  calendar.tm_mon = now.month - 1;
  calendar.tm_mday = now.day;
  calendar.tm_hour = now.hour;
  calendar.tm_min = now.minute;
  calendar.tm_sec = now.second;
  calendar.tm_isdst = -1;
  EXPECT_NEAR(static_cast<double>(std::mktime(&calendar) - before), 0, 2);
  EXPECT_LT(now.millisecond, 1000);
}

// A machine that gives one thread and no further one.
class OneThread final : public events::Threads {
 public:
  std::unique_ptr<events::Thread> Start(std::string name, std::function<void()> body) override {
    if (started_++ > 0) {
      throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
    }
    return threads_->Start(std::move(name), std::move(body));
  }

 private:
  const std::shared_ptr<events::Threads> threads_ = events::RealThreads();
  int started_ = 0;
};

TEST(EventDispatcher, AnEventWithoutAThreadWaitsForOneThatThereIs) {
  std::promise<void> mayEnd;
  std::promise<void> isDelivered;
  events::EventDispatcher dispatcher(native::CreateSystem(), std::make_shared<OneThread>());
  dispatcher.Send(nullptr, [waits = mayEnd.get_future().share()] { waits.wait(); });
  dispatcher.Send(nullptr, [&] { isDelivered.set_value(); });
  mayEnd.set_value();
  isDelivered.get_future().wait();
}

}  // namespace
}  // namespace lanvoss
