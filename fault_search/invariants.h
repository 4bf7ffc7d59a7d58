// What holds in every story, whatever the platform and the host do.
//
// Each check returns what is wrong, or nothing. The rules:
//  - An operation ends within its stated worst case, which grows only by what hangs or is late in
//  the
//    platform and by what the host does in its callbacks.
//  - An address text is empty, or the pair of addresses of a device of the story.
//  - Every stamped line is told to the host as "info", in the same order, and nothing else is.
//  - The numbers in a line about a link agree with each other.
//  - A request that waits out its time has been denied its end by something in the story.
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
// `inOrder`: threads did not run side by side.
std::string CheckOutput(const std::string& printed, Lines infos, bool inOrder);
std::string CheckLine(const std::string& info);
// `devices`: names by id, as the log told of them.
std::string CheckCache(const std::string& file, const std::map<std::string, std::string>& devices);

// Why a request that began a new attempt came back empty, by the lines that it logged: the name of
// a known story, or nothing.
std::string ReasonOfFailure(const Lines& log);

}  // namespace lanvoss::search
