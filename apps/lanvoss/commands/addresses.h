// The address text of a link, "LOCAL,REMOTE", as facts.
#pragma once

#include <string>

#include "facts.h"

namespace lanvoss::program {

inline Facts LinkFacts(const std::string& name, const std::string& addresses) {
  const auto comma = addresses.find(',');
  return Facts()
      .AddText("name", name)
      .AddText("local", addresses.substr(0, comma))
      .AddText("remote", addresses.substr(comma + 1));
}

}  // namespace lanvoss::program
