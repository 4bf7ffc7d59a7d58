// The library, and the host program, on a real Wi-Fi Direct stack.
#include "host.h"

namespace lanvoss::test {
namespace {

const std::string kPairing = "PairAsync... ";
const std::string kRequest = "P2P-GO-NEG-REQUEST";

TEST_F(Radio, FindsPairsAndConnectsByName) {
  Connect("connect a new camera", kName);
  EXPECT_EQ(camera->Count(kRequest), 1U);
  EXPECT_EQ(camera->Count(" go_intent=14"), 1U);
  EXPECT_EQ(Ask("ask again, the link is up", kName), "192.168.49.1," + camera->Address());
}

TEST_F(Radio, ConnectsAgainWithoutPairing) {
  Connect("connect", kName);
  DisConnect();
  Connect("connect again", kName);
  EXPECT_EQ(Logged(kPairing), 0);
  EXPECT_EQ(camera->Count(kRequest), 1U);
}

TEST_F(Radio, ConnectsByTheRememberedId) {
  Connect("connect", kName);
  Open();
  Connect("connect by id, new object", "\n" + kName);
  EXPECT_EQ(Logged("(watch) Connect Dev for id,name=" + kName), 1);
  EXPECT_EQ(Logged("watch start..."), 0);
  EXPECT_EQ(camera->Count(kRequest), 1U);
}

TEST_F(Radio, ServesAHostProgram) {
  const std::string addresses = "192.168.49.1,192.168.49.10";
  EXPECT_EQ(RunProgram("program: connect a new camera", "ip " + kName), addresses);
  EXPECT_EQ(RunProgram("program: connect by id", "ip --direct " + kName), addresses);
  EXPECT_EQ(Logged("FromIdAsync done"), 1) << "not at the first try";
  EXPECT_EQ(camera->Count(kRequest), 1U);
}

TEST_F(Radio, UnpairTakesTheLinkDown) {
  Connect("connect", kName);
  EXPECT_EQ(lanvoss->Unpair(kName), 0);
  EXPECT_TRUE(IsLoggedSoon(kDown));
  Connect("connect after unpairing", kName);
  EXPECT_EQ(camera->Count(kRequest), 2U);
}

TEST_F(Radio, PairsAnewACameraThatHasForgotten) {
  Connect("connect", kName);
  DisConnect();
  camera->ForgetCredentials();
  EXPECT_EQ(Ask("connect, the camera has forgotten", kName), "");
  Connect("ask again", kName);
  EXPECT_EQ(camera->Count(kRequest), 2U);
}

TEST_F(Radio, RecoversASilentLink) {
  Connect("connect", kName);
  camera->DropEchoes();
  Measure("check a silent camera", [this] { return lanvoss->PingCheck(); });
  EXPECT_EQ(Logged("(watch) ping done ret:0"), 1);
  EXPECT_EQ(Logged("(watch) Ping Failed,Unpair,Re Pair... " + kName), 1);
  EXPECT_EQ(Logged("PairAsync Status: Paired"), 1);
  Connect("and ask", kName);
  EXPECT_EQ(camera->Count(kRequest), 2U);
}

TEST_F(Radio, NoticesTheDeathOfTheCamera) {
  Connect("connect", kName);
  camera->Kill();
  EXPECT_TRUE(IsLoggedSoon(kDown));
  camera->SwitchOn();
  Connect("connect after a restart of the camera", kName);
  EXPECT_EQ(Logged(kPairing), 0);
}

TEST_F(Radio, ReportsARejection) {
  Open();
  EXPECT_EQ(lanvoss->StartWatch(""), 0);
  camera->Reject();
  EXPECT_TRUE(IsLoggedSoon("(watch) DeviceWatcher stopped."));
  EXPECT_EQ(Ask("connect, rejected", kName), "");
  EXPECT_EQ(Logged("PairAsync Status: ConnectionRejected"), 1);
  camera->EndRejection();
  Connect("connect, pardoned", kName);
}

TEST_F(Radio, TakesEitherOfTwoDevicesOfOneName) {
  auto twin = std::make_unique<Camera>("wlan2");
  Open();
  EXPECT_NE(Ask("connect one of two of that name", kName), "");
  ExpectReplies();
  EXPECT_TRUE(Await([&] { return camera->HasAddress() != twin->HasAddress(); }));
  if (twin->HasAddress()) {
    std::swap(camera, twin);
  }
  camera->Kill();
  EXPECT_TRUE(IsLoggedSoon(kDown));
  std::swap(camera, twin);
  Connect("connect the other one", kName);
}

TEST_F(Radio, TakesANameAsItIs) {
  const std::string name = "Cam | 7F '21'";
  camera->Rename(name);
  Connect("connect a name with blanks, bar, quotes", name);
  DisConnect();
  Connect("connect it by id", "\n" + name);
  EXPECT_EQ(camera->Count(kRequest), 1U);
}

TEST_F(Radio, JoinsAGroupOfTheCamera) {
  const std::string addresses = "192.168.50.10,192.168.50.1";
  camera->OwnTheGroup();
  Open();
  EXPECT_EQ(Ask("connect, the camera owns the group", kName), addresses);
  ExpectReplies();
  EXPECT_TRUE(RunCommand("grep -q 0 /proc/sys/net/ipv6/conf/p2p-wlan0-*/accept_ra"));
  DisConnect();
  EXPECT_EQ(Ask("connect again, the camera owns it", kName), addresses);
  ExpectReplies();
  EXPECT_EQ(camera->Count(kRequest), 1U);
  camera->Kill();
  EXPECT_TRUE(IsLoggedSoon(kDown));
}

TEST_F(Radio, ServesAnAddressThatTheHandshakeDoesNotGive) {
  Open();
  SendToSupplicant("SET ip_addr_start 0.0.0.0");
  Connect("connect, the camera asks for an address", kName);
}

TEST_F(Radio, TakesAnAddressThatTheHandshakeDoesNotGive) {
  camera->OwnTheGroup();
  camera->ServeAddresses();
  Open();
  EXPECT_TRUE(Ask("connect, the camera serves an address", kName).ends_with(",192.168.50.1"));
  ExpectReplies();
}

TEST_F(Radio, GivesUpACameraThatNeverAnswers) {
  camera->KeepSilent();
  Open();
  EXPECT_EQ(Ask("connect, never answered", kName), "");
  EXPECT_EQ(Logged("PairAsync Status: AuthenticationTimeout"), 1);
  camera->Answer();
  Connect("connect, answered", kName);
}

}  // namespace
}  // namespace lanvoss::test

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  const int result = RUN_ALL_TESTS();
  const std::vector<std::string> heads = {"find", "pair", "open", "probe", "total", "own"};
  std::printf("\n%s%s", lanvoss::test::Row("", heads).c_str(), lanvoss::test::table.c_str());
  return result;
}
