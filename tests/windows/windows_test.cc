// What only Windows can show: apartments, code pages, line ends, Winsock. One process a test: what
// the process is joined to stays.
#include <combaseapi.h>
#include <windows.h>

#include "fake_winrt/fake_winrt.h"
#include "scenario_test.h"

namespace lanvoss::test {
namespace {

class Windows : public ScenarioTest {
 protected:
  // Finds, pairs, opens and closes on a new thread, and returns this thread's apartment before and
  // after.
  void ConnectIn(DWORD model, HRESULT expectedBefore, APTTYPE expectedType) {
    const auto host = Host([&] {
      if (model != kNoApartment) {
        ASSERT_EQ(CoInitializeEx(nullptr, model), S_OK);
      }
      APTTYPE type{};
      APTTYPEQUALIFIER qualifier{};
      EXPECT_EQ(CoGetApartmentType(&type, &qualifier), expectedBefore);
      Open();
      EXPECT_EQ(lanvoss->GetDeviceIp("Cam"), kAddress);
      EXPECT_EQ(lanvoss->DisConnect(""), 1);
      EXPECT_EQ(lanvoss->StartWatch(""), 0);
      EXPECT_EQ(CoGetApartmentType(&type, &qualifier), S_OK);
      EXPECT_EQ(type, expectedType);
      lanvoss.reset();
      if (model != kNoApartment) {
        CoUninitialize();
      }
    });
  }
  static constexpr DWORD kNoApartment = ~DWORD{0};

  // One device that appears and opens quickly.
  void AddCam() { air.Add({.name = u"Cam", .appearMs = 20, .pairMs = 20, .openMs = 20}); }
};

TEST_F(Windows, AThreadWithoutAnApartmentIsServed) {
  AddCam();
  ConnectIn(kNoApartment, CO_E_NOTINITIALIZED, APTTYPE_MTA);
}

TEST_F(Windows, AThreadInASingleThreadedApartmentIsServed) {
  AddCam();
  ConnectIn(COINIT_APARTMENTTHREADED, S_OK, APTTYPE_MAINSTA);
}

TEST_F(Windows, AThreadInTheMultithreadedApartmentIsServed) {
  AddCam();
  ConnectIn(COINIT_MULTITHREADED, S_OK, APTTYPE_MTA);
}

// Run under code pages 1252 and 936.
TEST_F(Windows, NamesLogAndCacheAreInTheAnsiCodePage) {
  ASSERT_TRUE(GetACP() == 1252 || GetACP() == 936) << GetACP();
  const bool isWestern = GetACP() == 1252;
  const std::u16string name = u"B\u00fcro \u6444\u50cf";
  const std::string ansi = isWestern ? "B\xFCro ??" : "B\xA8\xB9ro \xC9\xE3\xCF\xF1";
  const auto folder = directory.path / (isWestern ? u"Ger\u00e4te" : u"\u8bbe\u5907");
  std::filesystem::create_directory(folder);
  air.Add({.name = name, .id = u"\u6444#id", .appearMs = 20, .pairMs = 20, .openMs = 20});

  OpenIn(time->WideToAnsi(folder.u16string()));
  EXPECT_EQ(lanvoss->GetDeviceIp(ansi), kAddress);
  EXPECT_EQ(Notified().front(), "watch " + ansi);
  EXPECT_TRUE(Logged("1-1 WatchDeviceAdded:" + ansi + " id:\xE6\x91\x84#id"));
  const std::string cache = ReadFile(folder / "deviceinfo.bin");
  EXPECT_TRUE(cache.starts_with("1|\xE6\x91\x84#id||" + ansi + "|")) << cache;
  EXPECT_EQ(cache.find('\r'), std::string::npos);
  EXPECT_EQ(Printed().find('\r'), std::string::npos) << "the host's stream is binary";

  OpenIn(time->WideToAnsi(folder.u16string()));
  EXPECT_TRUE(Logged("1 Device:" + ansi + " id:\xE6\x91\x84#id"));
  EXPECT_EQ(lanvoss->GetDeviceIp("\n" + ansi), kAddress) << "the id goes back as it came";
}

TEST_F(Windows, ThePlatformsMessagesReachTheLog) {
  AddCam();
  air.faults().FailNth(Call::kPairAsync, 1, {.hresult = 0x8007001F, .message = u"Ger\u00e4t weg"});
  Open();
  const auto host = Host([&] { lanvoss->GetDeviceIp("Cam"); });
  Advance(500);
  lanvoss->AbortConnect("");
  lanvoss->StopWatch();
  EXPECT_TRUE(Logged("(watch) ConnDevice Err:" + time->WideToAnsi(u"Ger\u00e4t weg")));
}

TEST_F(Windows, AnOpenRequestThatEndsInErrorWithoutAFailureGivesNoDevice) {
  fake_winrt::SetHabits({.noResultIsError = true});
  air.Add(
      {.name = u"Cam", .appearMs = 20, .pairMs = 20, .openMs = 20, .openings = {Outcome::kNone}});
  Connect("Cam");
  EXPECT_TRUE(Logged("(watch) wfdDevice is null,Re FromIdAsync:1 Cam"));
}

TEST_F(Windows, TheStatusOfAClosedDeviceIsDisconnected) {
  fake_winrt::SetHabits({.closedStatusRaises = true});
  AddCam();
  Connect("Cam");
  EXPECT_EQ(lanvoss->DisConnect(""), 1);
  Advance(200);
  EXPECT_TRUE(Logged("(watch) Connection status changed: Disconnected"));
}

// Without a message of its own an error is described by the system. Its texts for statuses of the
// kernel are in ntdll; Wine's has none, so that the number is left.
TEST_F(Windows, AStatusOfTheKernelIsDescribedInWords) {
  constexpr DWORD kNotFound = 0xC0000225;
  wchar_t text[1024] = {};
  const DWORD length = FormatMessageW(
      FORMAT_MESSAGE_FROM_HMODULE | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK,
      GetModuleHandleW(L"ntdll.dll"), kNotFound, 0, text, 1024, nullptr);
  std::u16string message(text, text + length);
  message.erase(message.find_last_not_of(u' ') + 1);

  AddCam();
  air.faults().FailNth(Call::kPairAsync, 1,
                       {.hresult = kNotFound | FACILITY_NT_BIT, .message = u""});
  Open();
  const auto host = Host([&] { lanvoss->GetDeviceIp("Cam"); });
  Advance(500);
  lanvoss->AbortConnect("");
  lanvoss->StopWatch();
  EXPECT_TRUE(Logged("(watch) ConnDevice Err:" +
                     (message.empty() ? "0xD0000225" : time->WideToAnsi(message))));
}

// The echo requests go through Winsock, so the devices' addresses are real ones: that of this
// machine, and one of a range that is never used.
TEST_F(Windows, TheProbeGoesThroughWinsock) {
  if (time->OpenIcmpSocket() == nullptr) {
    GTEST_SKIP() << "no right to open raw sockets";
  }
  air.Add({.name = u"Here", .remoteAddress = u"127.0.0.1", .appearMs = 20, .openMs = 20});
  air.Add({.name = u"Nowhere", .remoteAddress = u"240.0.0.1", .appearMs = 20, .openMs = 20});
  Open();
  EXPECT_EQ(lanvoss->GetDeviceIp("Here"), "192.168.49.1,127.0.0.1");
  EXPECT_EQ(lanvoss->PingCheck(), "");
  EXPECT_TRUE(LoggedStart("(watch) ping done ret:4 "));

  lanvoss->DisConnect("");
  EXPECT_EQ(lanvoss->GetDeviceIp("Nowhere"), "192.168.49.1,240.0.0.1");
  lanvoss->PingCheck();
  EXPECT_TRUE(LoggedStart("(watch) ping done ret:0 "));
  EXPECT_TRUE(Logged("(watch) Ping Failed,Unpair,Re Pair... Nowhere"));
  EXPECT_TRUE(Logged("(watch) UnpairAsync ..."));
  EXPECT_EQ(lanvoss->GetDeviceIp("Nowhere"), "192.168.49.1,240.0.0.1") << "the host's second call";
}

}  // namespace
}  // namespace lanvoss::test
