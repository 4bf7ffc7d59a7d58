// The contract with the operating system: time, waiting, events, files, code pages, ICMP.
//
// All blocking of the core goes through System, so an implementation controls time. Every operation
// may be called from any thread, several at once, and raises only std::bad_alloc.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace lanvoss::platform {

inline constexpr std::uint32_t kWaitForever = 0xFFFFFFFF;

// A local date and time, as the system's clock on the wall shows it.
struct LocalTime {
  std::uint16_t year = 0;
  std::uint16_t month = 0;  // 1 to 12
  std::uint16_t day = 0;    // 1 to 31
  std::uint16_t hour = 0;
  std::uint16_t minute = 0;
  std::uint16_t second = 0;
  std::uint16_t millisecond = 0;

  friend bool operator==(const LocalTime&, const LocalTime&) = default;
};

// A manual-reset event: once set it stays set, and every wait passes, until it is reset. A wait
// that was under way when it was set passes too, however soon it is reset. Set and Reset never
// block. An event must be destroyed before its System.
class Event {
 public:
  virtual ~Event() = default;

  virtual void Set() = 0;
  virtual void Reset() = 0;
  // Blocks until the event is set, for `timeoutMs` milliseconds at most. False: it timed out.
  virtual bool Wait(std::uint32_t timeoutMs) = 0;
};

// An open file; its end closes it.
struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

enum class FileUse {
  kUpdate,   // a file that is there, to be read and written
  kReplace,  // an empty file, made where there is none
};

// In the order of the wire: 192.168.49.1 is {192, 168, 49, 1}.
using Ipv4Address = std::array<std::uint8_t, 4>;

struct Received {
  enum class Outcome { kDatagram, kTimedOut, kFailed };
  Outcome outcome = Outcome::kFailed;
  std::size_t length = 0;  // of a datagram
};

// A raw IPv4 socket for ICMP, used by one thread at a time. What it sends gets its IP header from
// the system; what it receives begins with one. It receives every ICMP datagram of the machine.
class IcmpSocket {
 public:
  virtual ~IcmpSocket() = default;

  // How long one Receive and one Send may block.
  virtual void SetTimeouts(std::uint32_t receiveMs, std::uint32_t sendMs) = 0;
  virtual void SetTimeToLive(int hops) = 0;
  // A message that cannot be sent is lost, as any other may be.
  virtual void Send(const Ipv4Address& destination, std::span<const std::uint8_t> message) = 0;
  // The next datagram. One that is longer than the buffer is a failure.
  virtual Received Receive(std::span<std::uint8_t> buffer) = 0;
};

class System {
 public:
  virtual ~System() = default;

  // Milliseconds since the process started, on a clock that a correction of the time of day does
  // not reach; wraps at 2^31.
  virtual std::int32_t Clock() = 0;
  // Blocks for `milliseconds`.
  virtual void Sleep(std::uint32_t milliseconds) = 0;
  // An event in the given state; none when the system has no more of them.
  virtual std::unique_ptr<Event> CreateManualResetEvent(bool set) = 0;

  virtual LocalTime GetLocalTime() = 0;
  // The current directory; empty when it does not fit into `capacity` bytes with its closing zero.
  virtual std::string CurrentDirectory(std::size_t capacity) = 0;

  // Opens a binary file, unshared: none when anybody has it open, another object of this process
  // included, when it is no regular file (a pipe, a device, a directory), or when the system
  // refuses. Does not wait. A file that cannot be opened keeps its content. The path is in the ANSI
  // code page.
  virtual File OpenFile(const std::string& path, FileUse use) = 0;

  // Into the system's ANSI code page; what it cannot represent becomes its default character.
  virtual std::string WideToAnsi(std::u16string_view wide) = 0;
  virtual std::string WideToUtf8(std::u16string_view wide) = 0;
  virtual std::u16string Utf8ToWide(std::string_view utf8) = 0;

  virtual std::uint32_t ProcessId() = 0;
  // The address of a host: a dotted address is used as it is; for any other text the system's name
  // service is asked, and its first answer counts. None when there is no such host. May block as
  // long as the name service does.
  virtual std::optional<Ipv4Address> ResolveHost(const std::string& host) = 0;
  // None when the process may not open raw sockets or the system has no more of them.
  virtual std::unique_ptr<IcmpSocket> OpenIcmpSocket() = 0;
};

}  // namespace lanvoss::platform
