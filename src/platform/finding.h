// What an examination of the machine has found.
#pragma once

#include <string>

namespace lanvoss::platform {

struct Finding {
  bool isFine = true;
  std::string what = {};
  std::string remedy = {};  // a command or an instruction, where something is to be fixed
  // Of what is not fine: whether it hinders for certain. Otherwise the user has to look.
  bool isCertain = true;
  bool meansNoAdapter = false;  // no adapter of this machine supports Wi-Fi Direct
};

}  // namespace lanvoss::platform
