// The scenario files that come with the program.
#pragma once

#include <string>
#include <vector>

namespace lanvoss::program {

struct KnownScenario {
  std::string name;  // as --scenario takes it: of the file, without its ending
  std::string file;
};

// By their names; none if the folder is not where the program expects it.
std::vector<KnownScenario> ScenariosOfProgram();

// The file that --scenario means: `given` if there is such a file, otherwise the one of that name,
// with or without its ending, that comes with the program. Throws a std::runtime_error when there
// is neither.
std::string FindScenario(const std::string& given);

}  // namespace lanvoss::program
