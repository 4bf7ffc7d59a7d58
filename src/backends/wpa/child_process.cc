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

// How a child begins: nothing on its standard streams, and no signal blocked or ignored, whatever
// the thread that starts it has.
class Beginning {
 public:
  Beginning() {
    posix_spawn_file_actions_init(&actions_);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
      posix_spawn_file_actions_addopen(&actions_, stream, "/dev/null", O_RDWR, 0);
    }
    sigset_t none;
    sigset_t all;
    sigemptyset(&none);
    sigfillset(&all);
    posix_spawnattr_init(&attributes_);
    posix_spawnattr_setsigmask(&attributes_, &none);
    posix_spawnattr_setsigdefault(&attributes_, &all);
    posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
  }
  ~Beginning() {
    posix_spawn_file_actions_destroy(&actions_);
    posix_spawnattr_destroy(&attributes_);
  }
  Beginning(const Beginning&) = delete;
  Beginning& operator=(const Beginning&) = delete;

  const posix_spawn_file_actions_t* Actions() const { return &actions_; }
  const posix_spawnattr_t* Attributes() const { return &attributes_; }

 private:
  posix_spawn_file_actions_t actions_{};
  posix_spawnattr_t attributes_{};
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
  const Beginning beginning;
  if (const int error = posix_spawn(&process_, path.c_str(), beginning.Actions(),
                                    beginning.Attributes(), words.data(), environ);
      error != 0) {
    Fail(path, error);
  }
}

ChildProcess::~ChildProcess() {
  kill(process_, SIGKILL);
  waitpid(process_, nullptr, 0);
}

}  // namespace lanvoss::wpa
