// What holds in every story, whatever the platform and the host do.
//
// Each check returns what is wrong, or nothing. The rules:
//  - An operation ends within its stated worst case, which grows only by what hangs or is late in
//  the
//    platform and by what the host does in its callbacks.
//  - An address text is empty, or the pair of addresses of a device of the story.
//  - Every stamped line is told to the host as "info", in the same order, and nothing else is.
//  - The numbers in a line about a link agree with each other.
//  - A request that waits out its time comes back empty, and when nothing fails any more an empty
//    answer has one of the known reasons.
//  - Where nothing fails, the calls to the platform are those that the log tells of, and every
//    subscription to the watcher is ended.
//  - Within a number of requests the host's loop has the address of a link that is up, and keeps
//  it.
//  - The cache file holds the devices that were reported, under their last names.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "story.h"

namespace lanvoss::search {

using Lines = std::vector<std::string>;

// The worst case of an operation, in virtual milliseconds.
std::int64_t LongestMs(const Step& step, const Story& story);

std::string CheckDuration(const Step& step, std::int64_t tookMs, std::int64_t allowedMs);
std::string CheckAddress(const std::string& address, const Story& story);
std::string CheckWait(const Step& step, const std::string& address, std::int64_t tookMs,
                      std::int64_t excusedMs);
// `inOrder`: threads did not run side by side.
std::string CheckOutput(const std::string& printed, Lines infos, bool inOrder);
std::string CheckLine(const std::string& info);
// `devices`: names by id, as the log told of them.
std::string CheckCache(const std::string& file, const std::map<std::string, std::string>& devices);

// Calls to the platform in a whole story.
struct Counts {
  unsigned watcherStops = 0;
  unsigned openRequests = 0;
  unsigned pairings = 0;
  unsigned subscriptions = 0;  // to the watcher's events
  unsigned revocations = 0;
};
std::string CheckCounts(const Lines& log, const Counts& counts);

// Whether a check found the link dead and did not recover it.
bool IsDeadAndKept(const Lines& log);

// Why a request that began a new attempt came back empty, by the lines that it logged: the name of
// a known story, or nothing.
std::string ReasonOfFailure(const Lines& log, std::int64_t tookMs);

}  // namespace lanvoss::search
