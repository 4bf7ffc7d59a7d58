#include "backends/posix/posix_system.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <mutex>
#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <sstream>
#include <string>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

#include "platform/unicode.h"

namespace lanvoss::posix {
namespace {

namespace chrono = std::chrono;

constexpr std::int64_t kMsPerSecond = 1000;
constexpr std::int64_t kNsPerMs = 1'000'000;

std::int64_t MsSinceBoot() {
  timespec now{};
  clock_gettime(CLOCK_BOOTTIME, &now);
  return now.tv_sec * kMsPerSecond + now.tv_nsec / kNsPerMs;
}

// The start of this process, on the clock of MsSinceBoot; now, if the kernel does not say it.
std::int64_t ProcessStartMs() {
  std::ifstream file("/proc/self/stat");
  const std::string stat{std::istreambuf_iterator<char>(file), {}};
  // Fields are counted after the program's name, which is in parentheses and may contain anything.
  constexpr int kFieldsBeforeStart = 19;
  std::istringstream fields(stat.substr(stat.rfind(')') + 1));
  std::string field;
  for (int i = 0; i < kFieldsBeforeStart; ++i) {
    fields >> field;
  }
  std::int64_t ticks = 0;
  if (!(fields >> ticks)) {
    return MsSinceBoot();
  }
  return ticks * kMsPerSecond / sysconf(_SC_CLK_TCK);
}

class PosixEvent final : public platform::Event {
 public:
  explicit PosixEvent(bool set) : set_(set) {}

  void Set() override {
    {
      const std::lock_guard lock(mutex_);
      set_ = true;
      ++timesSet_;
    }
    changed_.notify_all();
  }
  void Reset() override {
    const std::lock_guard lock(mutex_);
    set_ = false;
  }
  bool Wait(std::uint32_t timeoutMs) override {
    std::unique_lock lock(mutex_);
    const auto isSet = [this, before = timesSet_] { return set_ || timesSet_ != before; };
    if (timeoutMs == platform::kWaitForever) {
      changed_.wait(lock, isSet);
      return true;
    }
    return changed_.wait_for(lock, chrono::milliseconds(timeoutMs), isSet);
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool set_;                    // guarded by the mutex, as is the next
  std::uint64_t timesSet_ = 0;  // so that a wait under way sees a set that was reset at once
};

bool IsRegular(const struct stat& status) { return S_ISREG(status.st_mode); }

// Whether opening the path can do nothing but open a file. Merely opening a pipe or a device may
// have effects.
bool MayOpen(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 ? IsRegular(status) : errno == ENOENT;
}

// Locks the open file for this process alone. Also true on a file system without locks.
bool LockAlone(int file) { return flock(file, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK; }

class PosixIcmpSocket final : public platform::IcmpSocket {
 public:
  explicit PosixIcmpSocket(int socket) : socket_(socket) {}
  ~PosixIcmpSocket() override { close(socket_); }
  PosixIcmpSocket(const PosixIcmpSocket&) = delete;
  PosixIcmpSocket& operator=(const PosixIcmpSocket&) = delete;

  void SetTimeouts(std::uint32_t receiveMs, std::uint32_t sendMs) override {
    receiveMs_ = receiveMs;
    sendMs_ = sendMs;
  }

  void SetTimeToLive(int hops) override {
    setsockopt(socket_, IPPROTO_IP, IP_TTL, &hops, sizeof hops);
  }

  void Send(const platform::Ipv4Address& destination,
            std::span<const std::uint8_t> message) override {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    std::memcpy(&address.sin_addr, destination.data(), destination.size());
    const auto deadline = After(sendMs_);
    ssize_t length = -1;
    do {
      length = sendto(socket_, message.data(), message.size(), MSG_DONTWAIT,
                      reinterpret_cast<const sockaddr*>(&address), sizeof address);
    } while (length < 0 && errno == EAGAIN && Wait(POLLOUT, deadline));
  }

  platform::Received Receive(std::span<std::uint8_t> buffer) override {
    using Outcome = platform::Received::Outcome;
    const auto deadline = After(receiveMs_);
    ssize_t length = -1;
    do {  // MSG_TRUNC: the datagram's own length
      length = recv(socket_, buffer.data(), buffer.size(), MSG_TRUNC | MSG_DONTWAIT);
    } while (length < 0 && errno == EAGAIN && Wait(POLLIN, deadline));
    if (length < 0) {
      return {errno == EAGAIN ? Outcome::kTimedOut : Outcome::kFailed};
    }
    const auto whole = static_cast<std::size_t>(length);
    return whole > buffer.size() ? platform::Received{Outcome::kFailed}
                                 : platform::Received{Outcome::kDatagram, whole};
  }

 private:
  using Deadline = chrono::steady_clock::time_point;

  static Deadline After(std::uint32_t milliseconds) {
    return chrono::steady_clock::now() + chrono::milliseconds(milliseconds);
  }

  // A signal does not change how long it blocks. False: the time is up.
  bool Wait(short events, Deadline deadline) const {
    pollfd ready{socket_, events, 0};
    int count = -1;
    do {
      const auto left = chrono::ceil<chrono::milliseconds>(deadline - chrono::steady_clock::now());
      count = poll(&ready, 1, static_cast<int>(std::max<std::int64_t>(left.count(), 0)));
    } while (count < 0 && errno == EINTR);
    return count > 0;
  }

  std::uint32_t receiveMs_ = 0;
  std::uint32_t sendMs_ = 0;
  const int socket_;
};

class PosixSystem final : public platform::System {
 public:
  std::int32_t Clock() override {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(MsSinceBoot() - startMs_));
  }

  void Sleep(std::uint32_t milliseconds) override {
    std::this_thread::sleep_for(chrono::milliseconds(milliseconds));
  }

  std::unique_ptr<platform::Event> CreateManualResetEvent(bool set) override {
    return std::make_unique<PosixEvent>(set);
  }

  platform::LocalTime GetLocalTime() override {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    // Log lines follow each other closely, and their date would cost as much as all the rest.
    thread_local std::time_t second = -1;
    thread_local tm local{};
    if (second != now.tv_sec) {
      second = now.tv_sec;
      localtime_r(&second, &local);
    }
    const auto part = [](std::int64_t value) { return static_cast<std::uint16_t>(value); };
    return {part(local.tm_year + 1900),  part(local.tm_mon + 1), part(local.tm_mday),
            part(local.tm_hour),         part(local.tm_min),     part(local.tm_sec),
            part(now.tv_nsec / kNsPerMs)};
  }

  std::string CurrentDirectory(std::size_t capacity) override {
    std::vector<char> buffer(capacity);
    return getcwd(buffer.data(), buffer.size()) == nullptr ? std::string() : buffer.data();
  }

  platform::File OpenFile(const std::string& path, platform::FileUse use) override {
    if (!MayOpen(path)) {
      return nullptr;
    }
    constexpr mode_t kAnybodyMayRead = 0666;  // without the rights that the process's mask removes
    const bool replaces = use == platform::FileUse::kReplace;
    const int opened =
        open(path.c_str(), O_RDWR | O_CLOEXEC | O_NONBLOCK | O_NOCTTY | (replaces ? O_CREAT : 0),
             kAnybodyMayRead);
    if (opened < 0) {
      return nullptr;
    }
    platform::File file(fdopen(opened, "rb+"));
    if (file == nullptr) {
      close(opened);
      return nullptr;
    }
    // The path may mean something else by now.
    struct stat status {};
    const bool isOwn = fstat(opened, &status) == 0 && IsRegular(status) && LockAlone(opened);
    // Emptied only now: before, another process may have used it.
    return isOwn && (!replaces || ftruncate(opened, 0) == 0) ? std::move(file) : nullptr;
  }

  std::string WideToAnsi(std::u16string_view wide) override { return platform::Utf16ToUtf8(wide); }
  std::string WideToUtf8(std::u16string_view wide) override { return platform::Utf16ToUtf8(wide); }
  std::u16string Utf8ToWide(std::string_view utf8) override { return platform::Utf8ToUtf16(utf8); }

  std::uint32_t ProcessId() override { return static_cast<std::uint32_t>(getpid()); }

  std::optional<platform::Ipv4Address> ResolveHost(const std::string& host) override {
    addrinfo wanted{};
    wanted.ai_family = AF_INET;
    wanted.ai_socktype = SOCK_RAW;
    addrinfo* found = nullptr;
    if (getaddrinfo(host.c_str(), nullptr, &wanted, &found) != 0) {
      return std::nullopt;
    }
    const auto* first = reinterpret_cast<const sockaddr_in*>(found->ai_addr);
    platform::Ipv4Address address{};
    std::memcpy(address.data(), &first->sin_addr, address.size());
    freeaddrinfo(found);
    return address;
  }

  std::unique_ptr<platform::IcmpSocket> OpenIcmpSocket() override {
    const int opened = socket(AF_INET, SOCK_RAW | SOCK_CLOEXEC, IPPROTO_ICMP);
    return opened < 0 ? nullptr : std::make_unique<PosixIcmpSocket>(opened);
  }

 private:
  const std::int64_t startMs_ = ProcessStartMs();
};

}  // namespace

std::shared_ptr<platform::System> CreateSystem() { return std::make_shared<PosixSystem>(); }

}  // namespace lanvoss::posix
