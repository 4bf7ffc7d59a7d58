// The radio that the program stands on.
#pragma once

#include <string>

namespace lanvoss::program {

// What can be chosen on this system, for people.
std::string RadioNames();

// Chooses one, before the library's object is made. False: there is none of that name.
bool ChooseRadio(const std::string& name);

}  // namespace lanvoss::program
