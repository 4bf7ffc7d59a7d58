// An archive that every system opens.
#pragma once

#include <ctime>
#include <string>
#include <vector>

namespace lanvoss::report {

struct Member {
  std::string name;  // ASCII
  std::string content;
};

// A zip archive without compression, its members all of one time. Throws std::runtime_error when
// it would have 4 GB.
std::string ZipOf(const std::vector<Member>& members, const std::tm& localTime);

}  // namespace lanvoss::report
