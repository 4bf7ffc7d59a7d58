#include "child.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace lanvoss::nth {
namespace {

// A run that takes longer hangs. In seconds of real time; one takes milliseconds.
constexpr unsigned kLongestRunS = 20;

bool IsLast(const Result& result) { return result.violated || !result.failed; }

}  // namespace

std::vector<Result> Child::Play(NthRun::Script script, const Plan& plan) const {
  int ends[2];
  if (pipe(ends) != 0) {
    throw std::system_error(errno, std::generic_category(), "pipe");
  }
  const pid_t child = fork();
  if (child == 0) {
    Run(script, plan, ends[1]);
  }
  close(ends[1]);
  std::vector<Result> results;
  for (Result result; read(ends[0], &result, sizeof result) == sizeof result;) {
    results.push_back(result);
  }
  close(ends[0]);
  int status = 0;
  waitpid(child, &status, 0);
  if (results.empty() || !IsLast(results.back())) {
    std::ofstream(folder_.path / "log", std::ios::app)
        << "VIOLATED: the process ended with the status " << status << "\n";
    results.push_back({.violated = true});
  }
  return results;
}

void Child::Run(NthRun::Script script, Plan plan, int resultPipe) const {
  Result result;
  do {
    alarm(kLongestRunS);
    // By lines, so that none is lost in a crash.
    if (std::freopen((folder_.path / "log").c_str(), "w", stdout) == nullptr ||
        std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ) != 0 ||
        dup2(fileno(stdout), fileno(stderr)) < 0) {
      _exit(EXIT_FAILURE);
    }
    result = NthRun(plan, folder_.path).Play(script);
    std::fflush(stdout);
    if (write(resultPipe, &result, sizeof result) != sizeof result) {
      _exit(EXIT_FAILURE);
    }
    ++plan.nth;
  } while (!IsLast(result));
  _exit(EXIT_SUCCESS);
}

std::string Child::Log() const {
  std::ifstream file(folder_.path / "log", std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace lanvoss::nth
