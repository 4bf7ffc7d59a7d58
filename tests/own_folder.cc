#include "own_folder.h"

#include <random>
#include <string>
#ifdef __linux__
#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#endif

namespace lanvoss::test {
namespace {

std::filesystem::path NewFolder(const std::filesystem::path& parent) {
  std::random_device random;
  std::filesystem::path path;
  do {
    path = parent / ("lanvoss-test-" + std::to_string(random()));
  } while (!std::filesystem::create_directory(path));
  return path;
}

#ifdef __linux__

void Require(bool holds, const char* what) {
  if (!holds) {
    throw std::system_error(errno, std::generic_category(), what);
  }
}

// Becomes a process that waits for the end of standard input and then removes the folder. No
// child of the test and in its own session, so that a signal to the test does not end it.
[[noreturn]] void BecomeCleaner(int input, const char* path) {
  setsid();
  if (fork() == 0) {
    const int nowhere = open("/dev/null", O_WRONLY);
    dup2(input, STDIN_FILENO);
    dup2(nowhere, STDOUT_FILENO);
    dup2(nowhere, STDERR_FILENO);
    close_range(STDERR_FILENO + 1, UINT_MAX, 0);
    execl("/bin/sh", "sh", "-c", "cat; rm -rf \"$0\"", path, nullptr);
  }
  _exit(0);
}

int StartCleaner(const std::filesystem::path& path) {
  int ends[2];
  Require(pipe2(ends, O_CLOEXEC) == 0, "pipe");
  const pid_t child = fork();
  Require(child >= 0, "fork");
  if (child == 0) {
    BecomeCleaner(ends[0], path.c_str());
  }
  close(ends[0]);
  waitpid(child, nullptr, 0);
  return ends[1];
}

#else

int StartCleaner(const std::filesystem::path& /*path*/) { return -1; }
void close(int /*alive*/) {}

#endif

}  // namespace

OwnFolder::OwnFolder(const std::filesystem::path& parent)
    : path(NewFolder(parent)), alive_(StartCleaner(path)) {}

OwnFolder::~OwnFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path, ignored);
  close(alive_);
}

}  // namespace lanvoss::test
