/// @file
/// Lanvoss: reach a named device over Wi-Fi Direct and learn the IP addresses of the link.
///
/// One function builds one object; seven operations drive it. This is the bare interface, on which
/// everything else is built. Most hosts take `lanvoss::Client` of `lanvoss/client.h`: it says why
/// there is no link, keeps deadlines, and serves one request after the other.
///
/// @code
/// // Throws when the platform has no radio, so do the operations below.
/// const auto lanvoss = getLanvossPtr(&OnNotify, "");  // the device cache in the current directory
/// std::string pair = lanvoss->GetDeviceIp("Cam-7F21");  // "LOCAL,REMOTE", empty without a link
/// ...
/// lanvoss->PingCheck();                        // from time to time, these two keep the link alive
/// pair = lanvoss->GetDeviceIp("Cam-7F21");
/// ...
/// lanvoss->DisConnect("");
/// @endcode
///
/// The library writes its log to standard output. While nobody reads a pipe that standard output
/// goes to, every operation that logs blocks as soon as the pipe is full, without a time limit.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

/// The version of this header. With another number before the first dot, the binary interface is
/// another one.
#define LANVOSS_VERSION "0.1.0"
#define LANVOSS_VERSION_MAJOR 0  ///< The first number of LANVOSS_VERSION.
#define LANVOSS_VERSION_MINOR 1  ///< The second.
#define LANVOSS_VERSION_PATCH 0  ///< The third.

/// The version of the header that the caller was built with, as "0.1.0". It is no part of the
/// library, which exports `getLanvossPtr` alone.
inline const char* lanvossVersion() { return LANVOSS_VERSION; }

/// Marks what the library exports. LANVOSS_STATIC is for programs that contain the library itself
/// instead of using its DLL.
#if !defined(_WIN32)
#define LANVOSS_API __attribute__((visibility("default")))
#elif defined(LANVOSS_BUILD)
#define LANVOSS_API __declspec(dllexport)
#elif defined(LANVOSS_STATIC)
#define LANVOSS_API
#else
#define LANVOSS_API __declspec(dllimport)
#endif

/// The host's function. The library calls it to report what happens.
///
/// `kind` is one of
///  - "info": a log line, without its time stamp and without a line end;
///  - "watch": the name of a device that is new, has a new name, or was loaded from the cache;
///  - "watchdone": the watcher has finished one enumeration;
///  - "stopdone": the watcher has stopped;
///  - "deviceip": the remote address of a link that has just come up.
///
/// Texts are narrow; device names are in the system's ANSI code page (UTF-8 on Linux). A name is
/// whatever a device in range sends: bytes to be shown, never to be trusted.
///
/// It is called synchronously, on the host's threads (from inside the operations, and from inside
/// `getLanvossPtr`) and on threads of the platform, on several at once. It should return at once.
/// It may call any operation and may drop the last reference to the object; the routine that called
/// it then ends at once. But do not call `GetDeviceIp` or `PingCheck` from inside it: they wait for
/// an event of the platform, and this event may wait for this call to return, up to their
/// time-outs. An exception goes into the operation or the event handler that called the function;
/// if the function has dropped the last reference before, the exception ends there.
using NotifyCallback = void (*)(std::string kind, std::string message);

/// The one object of the library, made by `getLanvossPtr`.
///
/// Every operation may be called from any thread, at the same time as any other, and from inside
/// the host's function; each runs on its caller's thread. But two requests at the same time
/// disturb each other, see `GetDeviceIp`. The times are the longest times. The time
/// of the platform's own calls and of the host's function is added to them.
class LanvossInterface {
 public:
  /// Starts to look for devices and returns. Found devices arrive as notifications.
  ///
  /// @param name "" lists the devices of one pass; "NAME" looks, without a time limit, until the
  /// device
  ///   NAME is found once; a line feed followed by NAME looks until NAME is found and then
  ///   continues until a pass no longer sees it. Names are compared byte for byte.
  /// @return 0 when the watcher runs, -1 when there is none or the platform refused.
  /// @par Blocks
  ///   while the platform starts its watcher, for 60.5 s at most.
  /// @throws std::exception when the platform refuses the start, and then the stop too.
  /// @note Forgets the address of the link, but does not close the link.
  virtual std::int32_t StartWatch(std::string name) = 0;

  /// Asks the watcher to stop and waits for it.
  ///
  /// Releases every call that waits for an attempt to finish. A named watch may still
  /// start its next pass; to end the watch, call `AbortConnect` or `DisConnect` first.
  ///
  /// @return 0 when the watcher was not running or the tries have ended, -1 when there is no
  /// watcher
  ///   or the stop failed.
  /// @par Blocks
  ///   for 15 s at most. From inside the host's function it takes 2 s at least, if the
  ///   platform raises its events one after the other.
  virtual std::int32_t StopWatch() = 0;

  /// Finds, pairs and connects a device, and returns the addresses of the link.
  ///
  /// @param request one of
  ///   - "NAME": look for the device and connect it;
  ///   - "GAP", a line feed, "NAME": the same, at least GAP milliseconds after the last disconnect;
  ///   - a line feed, "NAME": connect at once to the id that the cache has for NAME; look for NAME
  ///     when there is none.
  /// @return the local and the remote IP address, joined by a comma; empty when no link came up, or
  ///   a link without a remote address. When NAME is connected already, returns at once.
  /// @par Blocks
  ///   for the gap, for 60.5 s at most while the platform starts its watcher, for 100 s at most
  ///   until the attempt has ended, and for 15 s at most to stop the watcher when it has not. A
  ///   direct request connects on the caller's thread, and the platform's pairing and opening have
  ///   no time limit. Do not call it from inside the host's function: the attempt continues only
  ///   when that has returned, so the call waits its full 100 s.
  /// @throws std::exception a platform error other than a cancellation.
  /// @warning Of two requests at the same time, each can end with the addresses of the other's
  ///   device, or with none: an object has one attempt and one link. Make one request after the
  ///   other, as `lanvoss::Client` does for all threads.
  virtual std::string GetDeviceIp(std::string request) = 0;

  /// Gives up the attempt: no further open request, no further pass, no reconnect gap. Wakes no
  /// waiting call and does not call the platform.
  ///
  /// @param unused not used.
  /// @return 0.
  /// @par Blocks
  ///   never.
  virtual std::int32_t AbortConnect(std::string unused) = 0;

  /// Forgets the device and its address and closes the link.
  ///
  /// @param unused not used.
  /// @return 1 when no link is held any more, 0 when the platform did not close it.
  /// @par Blocks
  ///   for 10 s at most.
  /// @throws std::exception a platform error other than a cancellation.
  virtual std::int32_t DisConnect(std::string unused) = 0;

  /// Starts to remove the system's pairing with the named device, which the watcher must have
  /// reported, and returns without waiting.
  ///
  /// @param name the device.
  /// @return 0.
  /// @par Blocks
  ///   never.
  /// @throws std::exception a platform error.
  virtual std::int32_t Unpair(std::string name) = 0;

  /// Probes the remote address of the link with four ICMP echo requests. When none is answered
  /// although the link is neither given up nor reported down, recovers it, once between two address
  /// requests: unpairs, pairs and connects the device that was last looked for.
  ///
  /// @return the new address text when the recovery brought a link up; empty in every other case,
  ///   an answering link included. So a host keeps a link alive by two calls in turn: `PingCheck`,
  ///   then `GetDeviceIp` with the device's name, which returns the stored address at once while
  ///   the link is up and connects again when it is not. After an empty answer it asks once more.
  /// @par Blocks
  ///   for 12 s when the device is silent, longer while ICMP messages for others keep arriving.
  ///   Then for the recovery, as long as a request, and 100 s more when no report follows the
  ///   unpairing. Do not call it from inside the host's function.
  /// @throws std::exception a platform error.
  /// @note Without the right to open raw sockets every device seems silent. IPv4 only.
  virtual std::string PingCheck() = 0;

 protected:
  // The shared pointer of `getLanvossPtr` destroys the object; it is never deleted through this
  // class.
  ~LanvossInterface() = default;
};

/// Builds the watcher object. It does not start to look for devices.
///
/// Texts and the pointer are the standard library's own: build host and library against the same
/// standard library.
///
/// @param notify the host's function; may be null. While the cache is loaded, it is called once
/// with
///   "watch" and once with "info" for each device.
/// @param directory the directory of the cache file `deviceinfo.bin`; empty for the current one.
///   A missing or unusable directory means no cache, and is no error. The same is true for a file
///   that another object or process has open at that moment.
/// @return the object; it lives until the last copy of the pointer is dropped. Dropping it stops
///   the watcher, for 15 s at most, and waits until no operation and no event handler runs on
///   another thread. There every wait of the library itself ends at once, and its operation returns
///   an empty result. But a call of the platform on such a thread must end by itself (that of the
///   probe within 3 s; a pairing and an open request have no time limit), and so must the host's
///   function. So do not drop the pointer under a lock that the host's function takes.
/// @throws std::exception when the platform cannot make its watcher or the system its events, or
///   what the host's function throws.
LANVOSS_API std::shared_ptr<LanvossInterface> getLanvossPtr(NotifyCallback notify,
                                                            std::string directory);
