// System on Linux, against the system itself.
#include "backends/posix/posix_system.h"

#include <ctime>
#include <filesystem>
#include <gtest/gtest.h>
#include <thread>
#include <unistd.h>

namespace lanvoss {
namespace {

TEST(PosixSystem, EventsStaySetAndTimeOut) {
  const auto system = posix::CreateSystem();
  const auto event = system->CreateManualResetEvent(true);
  EXPECT_TRUE(event->Wait(0));
  EXPECT_TRUE(event->Wait(platform::kWaitForever));
  event->Reset();
  EXPECT_FALSE(event->Wait(1));
  std::thread setter([&] { event->Set(); });
  EXPECT_TRUE(event->Wait(platform::kWaitForever));
  setter.join();
}

TEST(PosixSystem, TheClockCountsWallTimeFromTheStartOfTheProcess) {
  const auto first = posix::CreateSystem();
  const std::int32_t begun = first->Clock();
  first->Sleep(30);
  EXPECT_GE(first->Clock() - begun, 29);
  EXPECT_GE(posix::CreateSystem()->Clock(), begun + 29) << "the same for every System";
  // A test process is young; a clock that counted from the boot would not be.
  EXPECT_LT(begun, 30 * 60 * 1000);
}

TEST(PosixSystem, TheCurrentDirectoryFitsOrIsEmpty) {
  const auto system = posix::CreateSystem();
  const std::string here = std::filesystem::current_path();
  EXPECT_EQ(system->CurrentDirectory(here.size() + 1), here);
  EXPECT_EQ(system->CurrentDirectory(here.size()), "");
}

TEST(PosixSystem, LocalTimeIsTheCalendars) {
  const std::time_t before = std::time(nullptr);
  const platform::LocalTime now = posix::CreateSystem()->GetLocalTime();
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

}  // namespace
}  // namespace lanvoss
