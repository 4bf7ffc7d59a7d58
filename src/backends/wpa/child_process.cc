#include "backends/wpa/child_process.h"

#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "backends/wpa/fail.h"

namespace lanvoss::wpa {
namespace {

// Where an administrator's programs are, which the path of a user may lack.
constexpr const char* kFolders[] = {"/usr/sbin/", "/sbin/", "/usr/bin/", "/bin/"};

// Empty when there is none.
std::string PathOf(const std::string& program) {
  for (const std::string folder : kFolders) {
    if (access((folder + program).c_str(), X_OK) == 0) {
      return folder + program;
    }
  }
  return {};
}

// Standard input, output and error of the child.
class Silence {
 public:
  Silence() {
    posix_spawn_file_actions_init(&actions_);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
      posix_spawn_file_actions_addopen(&actions_, stream, "/dev/null", O_RDWR, 0);
    }
  }
  ~Silence() { posix_spawn_file_actions_destroy(&actions_); }
  Silence(const Silence&) = delete;
  Silence& operator=(const Silence&) = delete;

  const posix_spawn_file_actions_t* Actions() const { return &actions_; }

 private:
  posix_spawn_file_actions_t actions_{};
};

}  // namespace

bool IsInstalled(const std::string& program) { return !PathOf(program).empty(); }

ChildProcess::ChildProcess(const std::vector<std::string>& arguments) {
  const std::string path = PathOf(arguments.front());
  if (path.empty()) {
    Fail("there is no program " + arguments.front());
  }
  std::vector<char*> words;
  words.reserve(arguments.size() + 1);
  for (const std::string& argument : arguments) {
    words.push_back(const_cast<char*>(argument.c_str()));
  }
  words.push_back(nullptr);
  if (const int error =
          posix_spawn(&process_, path.c_str(), Silence().Actions(), nullptr, words.data(), environ);
      error != 0) {
    Fail(path, error);
  }
}

ChildProcess::~ChildProcess() {
  kill(process_, SIGKILL);
  waitpid(process_, nullptr, 0);
}

}  // namespace lanvoss::wpa
