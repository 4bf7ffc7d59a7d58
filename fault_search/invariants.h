// What holds in every case, whatever the platform and the host do.
//
// Each check returns what is wrong, or nothing. The rules:
//  - An operation ends within its stated worst case, and so does the object; it grows only by what
//    hangs or is late in the platform and by what the host does in its callbacks.
//  - A call that waits for the end of an attempt is released when an attempt ends, or when the
//    watcher was stopped.
//  - An address text is empty, or the addresses of a device to which a link was opened; the local
//    one may be missing.
//  - A link that was reported down is not called connected before another one was up.
//  - Every stamped line is notified to the host as "info", in the same order, and nothing else is.
//  - The numbers in a line about a link agree with each other.
//  - A request that waits out its time comes back empty, and when nothing fails any more an empty
//    answer has one of the known reasons.
//  - The log has no call to the platform that was not made. If nothing fails, it has all of them,
//  and
//    every subscription to the watcher is ended.
//  - When nothing fails any more, the host's loop has the address of a link that is up within a
//    number of requests and a time, and keeps it.
//  - At any time every line of the cache file is a device that was reported, and in the end all are
//    there, under their last names.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "test_case.h"

namespace lanvoss::search {

using Lines = std::vector<std::string>;

// The worst case of an operation, in virtual milliseconds.
std::int64_t LongestMs(const Step& step, const TestCase& testCase);
// The same of the end of an object.
std::int64_t LongestEndMs(const TestCase& testCase);

std::string CheckDuration(const std::string& what, std::int64_t tookMs, std::int64_t allowedMs);
// `opened`: the devices to which a link has been opened so far.
std::string CheckAddress(const std::string& address, const std::vector<simulated::Peer>& opened);
std::string CheckWait(const Step& step, const std::string& address, std::int64_t tookMs,
                      std::int64_t excusedMs);
// `inOrder`: threads did not run side by side.
std::string CheckOutput(const std::string& printed, Lines infos, bool inOrder);
std::string CheckLine(const std::string& info);
// Follows the link in the log: `isDown` is its state from line to line.
std::string CheckConnected(const std::string& info, bool& isDown);

// Whether this line comes with a signal to all that wait for the end of an attempt.
bool EndsWaits(const std::string& info);
// Whether the thread that logged this line waits for that from now on.
bool BeginsWait(const std::string& info);
std::string CheckRelease(std::int64_t waitedMs, std::int64_t untilSignalMs);

// `devices`: names by id, as the log has them.
std::string CheckCacheSoFar(const std::string& file,
                            const std::map<std::string, std::string>& devices);
std::string CheckCache(const std::string& file, const std::map<std::string, std::string>& devices);

// Calls to the platform in a whole case.
struct Counts {
  unsigned watcherStops = 0;
  unsigned openRequests = 0;
  unsigned pairings = 0;
  unsigned subscriptions = 0;  // to the watcher's events
  unsigned revocations = 0;
};
// `failed`: calls may have failed, and then some have no line.
std::string CheckCounts(const Lines& log, const Counts& counts, bool failed);

// Why a request that began a new attempt came back empty, by the lines that it logged: the name of
// a known case, or nothing.
std::string ReasonOfFailure(const Lines& log, std::int64_t tookMs);

}  // namespace lanvoss::search
