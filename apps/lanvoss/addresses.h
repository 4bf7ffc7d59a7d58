// The address text of a link, "LOCAL,REMOTE", as facts.
#pragma once

#include <string>

#include "outcome.h"
#include "texts.h"

namespace lanvoss::program {

inline Facts LinkFacts(const std::string& name, const std::string& addresses) {
  const auto comma = addresses.find(',');
  return {{"name", ToUtf8(name)},
          {"local", addresses.substr(0, comma)},
          {"remote", addresses.substr(comma + 1)}};
}

}  // namespace lanvoss::program
