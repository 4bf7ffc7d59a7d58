#include "scenario_folder.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <system_error>

#include "suggestion.h"
#include "system.h"

namespace lanvoss::program {
namespace {

namespace fs = std::filesystem;

constexpr char kEnding[] = ".json";

// A folder cannot be what is meant, so that a folder of a scenario's name does not hide it.
bool IsFile(const std::string& path) {
  std::error_code unknown;
  return fs::exists(path, unknown) && !fs::is_directory(path, unknown);
}

std::string Join(const std::vector<std::string>& names) {
  std::string list;
  for (const std::string& name : names) {
    list += (list.empty() ? "" : ", ") + name;
  }
  return list;
}

}  // namespace

std::vector<KnownScenario> ScenariosOfProgram() {
  std::vector<KnownScenario> scenarios;
  std::error_code unknown;
  // From the place of the program, as it may be moved together with its data.
  const fs::path folder = ProgramFile().parent_path() / LANVOSS_DATA_FROM_PROGRAM / "scenarios";
  for (const fs::directory_entry& entry : fs::directory_iterator(folder, unknown)) {
    if (entry.path().extension() == kEnding) {
      scenarios.push_back({entry.path().stem().string(), entry.path().lexically_normal().string()});
    }
  }
  std::ranges::sort(scenarios, {}, &KnownScenario::name);
  return scenarios;
}

std::string FindScenario(const std::string& given) {
  const bool isBare = given.find_first_of("/\\") == std::string::npos;
  if (!isBare || IsFile(given)) {
    return given;
  }
  const std::string name = given.substr(
      0, given.ends_with(kEnding) ? given.size() - (sizeof kEnding - 1) : std::string::npos);
  std::vector<std::string> names;
  for (const KnownScenario& scenario : ScenariosOfProgram()) {
    if (scenario.name == name) {
      return scenario.file;
    }
    names.push_back(scenario.name);
  }
  throw std::runtime_error("no scenario " + given + DidYouMean(name, names) +
                           (names.empty() ? "" : "; there are: " + Join(names)));
}

}  // namespace lanvoss::program
