#include "backends/wpa/child_process.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <fcntl.h>
#include <linux/capability.h>
#include <linux/sched.h>
#include <memory>
#include <string_view>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

#include "backends/wpa/descriptor.h"
#include "backends/wpa/fail.h"
#include "backends/wpa/no_signals.h"

namespace lanvoss::wpa {
namespace {

// Where an administrator's programs are, which the path of a user may lack.
constexpr const char* kFolders[] = {"/usr/sbin/", "/sbin/", "/usr/bin/", "/bin/"};
constexpr char kPath[] = "PATH=/usr/sbin:/sbin:/usr/bin:/bin";

// Where a program has the file that it receives. udhcpc takes the numbers after the streams for
// itself, whatever is there.
constexpr int kFileDescriptor = 10;

// The user and the group nobody, which own no file.
constexpr unsigned kNobody = 65534;

// Empty when there is none.
std::string PathOf(const std::string& program) {
  for (const std::string folder : kFolders) {
    if (access((folder + program).c_str(), X_OK) == 0) {
      return folder + program;
    }
  }
  return {};
}

// What the new process needs to become the program. All of it is made before the process: there it
// is alone with the memory of this one, whose locks other threads may have held, so that it may
// only make system calls.
struct Start {
  const char* path;
  char* const* arguments;
  const std::vector<unsigned>& capabilities;
  int output;
  int file;  // -1: none
  pid_t parent;
};

// The library's own functions for these would try to reach the other threads, which are not there.
// False: the system refuses it, for example where there is no such user.
bool BecomeNobody() {
  return geteuid() != 0 ||
         (prctl(PR_SET_KEEPCAPS, 1, 0, 0, 0) == 0 && syscall(SYS_setgroups, 0, nullptr) == 0 &&
          syscall(SYS_setresgid, kNobody, kNobody, kNobody) == 0 &&
          syscall(SYS_setresuid, kNobody, kNobody, kNobody) == 0);
}

// Keeps of the rights those that are needed, also when it becomes the program. False: it would have
// others too.
bool KeepRights(const std::vector<unsigned>& capabilities) {
  __user_cap_header_struct header{.version = _LINUX_CAPABILITY_VERSION_3, .pid = 0};
  __user_cap_data_struct had[_LINUX_CAPABILITY_U32S_3] = {};
  __user_cap_data_struct kept[_LINUX_CAPABILITY_U32S_3] = {};
  syscall(SYS_capget, &header, had);
  for (const unsigned capability : capabilities) {
    auto& words = kept[CAP_TO_INDEX(capability)];
    words.permitted |= had[CAP_TO_INDEX(capability)].permitted & CAP_TO_MASK(capability);
    words.effective = words.permitted;
    words.inheritable = words.permitted;
  }
  if (syscall(SYS_capset, &header, kept) != 0 || prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) {
    return false;
  }
  for (const unsigned capability : capabilities) {
    prctl(PR_CAP_AMBIENT, PR_CAP_AMBIENT_RAISE, capability, 0, 0);
  }
  return true;
}

// No signal is blocked or ignored, whatever the host has done.
void ResetSignals() {
  struct sigaction byDefault {};
  byDefault.sa_handler = SIG_DFL;
  for (int number = 1; number < NSIG; ++number) {
    sigaction(number, &byDefault, nullptr);
  }
  sigset_t none;
  sigemptyset(&none);
  pthread_sigmask(SIG_SETMASK, &none, nullptr);
}

// Leaves open the three streams and the file alone. A host may have closed its own streams, so that
// what is needed here has their numbers. False: the process would have what the host has open.
bool ReplaceStreams(const Start& start) {
  constexpr unsigned kFirst = STDERR_FILENO + 1;
  constexpr unsigned kAbove = kFileDescriptor + 1;
  const int output = fcntl(start.output, F_DUPFD, kAbove);
  const int file = start.file < 0 ? -1 : fcntl(start.file, F_DUPFD, kAbove);
  const int input = open("/dev/null", O_RDONLY);
  if (dup2(input, STDIN_FILENO) < 0 || dup2(output, STDOUT_FILENO) < 0 ||
      dup2(output, STDERR_FILENO) < 0) {
    return false;
  }
  if (start.file < 0) {
    return close_range(kFirst, ~0U, 0) == 0;
  }
  return dup2(file, kFileDescriptor) >= 0 && close_range(kFirst, kFileDescriptor - 1, 0) == 0 &&
         close_range(kAbove, ~0U, 0) == 0;
}

[[noreturn]] void GiveUp(int output, std::string_view reason) {
  const ssize_t written = write(output, reason.data(), reason.size());
  _exit(written < 0 ? 2 : 1);
}

[[noreturn]] void Become(const Start& start) {
  constexpr std::string_view kNotAlone = "it cannot give up the files and rights of its host\n";
  constexpr std::string_view kNotStarted = "it cannot be started\n";
  ResetSignals();
  if (!ReplaceStreams(start)) {
    GiveUp(start.output, kNotAlone);
  }
  if (!BecomeNobody() || !KeepRights(start.capabilities)) {
    GiveUp(STDERR_FILENO, kNotAlone);
  }
  // After the change of the user, which would undo it.
  prctl(PR_SET_PDEATHSIG, SIGKILL, 0, 0, 0);
  if (getppid() == start.parent) {  // else it has died before that
    const char* const environment[] = {kPath, nullptr};
    execve(start.path, start.arguments, const_cast<char* const*>(environment));
  }
  GiveUp(STDERR_FILENO, kNotStarted);
}

// A descriptor of the new process; -1 when there can be none. Unlike a number, it never means
// another process: the host may have the system forget children that have ended.
int Spawn(const Start& start) {
  int process = -1;
  if (syscall(SYS_clone, CLONE_PIDFD | SIGCHLD, nullptr, &process, nullptr, nullptr) == 0) {
    Become(start);
  }
  return process;
}

// The end of the calling thread ends it too, so where the system refuses this it is not waited for.
void End(int process) {
  if (syscall(SYS_pidfd_send_signal, process, SIGKILL, nullptr, 0) == 0) {
    siginfo_t ended{};
    while (waitid(P_PIDFD, static_cast<id_t>(process), &ended, WEXITED) != 0 && errno == EINTR) {
    }
  }
  close(process);
}

// A file that may be executed, also where newer systems want to be asked for that. Older ones do
// not know the request.
int OpenInMemory() {
  constexpr unsigned kExecutable = 0x10;
  const int file = memfd_create("lanvoss", MFD_CLOEXEC | kExecutable);
  return file < 0 && errno == EINVAL ? memfd_create("lanvoss", MFD_CLOEXEC) : file;
}

}  // namespace

bool IsInstalled(const std::string& program) { return !PathOf(program).empty(); }

NamelessFile::NamelessFile(const std::string& content) : descriptor_(OpenInMemory()) {
  if (write(descriptor_, content.data(), content.size()) != static_cast<ssize_t>(content.size())) {
    const int error = errno;
    close(descriptor_);
    Fail("a file in memory", error);
  }
}

NamelessFile::~NamelessFile() { close(descriptor_); }

std::string NamelessFile::Path() { return "/proc/self/fd/" + std::to_string(kFileDescriptor); }

ChildProcess::ChildProcess(const Settings& settings) : name_(settings.arguments.front()) {
  const std::string path = PathOf(name_);
  if (path.empty()) {
    Fail("there is no program " + name_);
  }
  std::vector<char*> words;
  words.reserve(settings.arguments.size() + 1);
  for (const std::string& argument : settings.arguments) {
    words.push_back(const_cast<char*>(argument.c_str()));
  }
  words.push_back(nullptr);
  std::array<int, 2> pipe{};
  if (pipe2(pipe.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
    Fail(path, errno);
  }
  output_ = pipe[0];
  const Start start{.path = path.c_str(),
                    .arguments = words.data(),
                    .capabilities = settings.capabilities,
                    .output = pipe[1],
                    .file = settings.file == nullptr ? -1 : settings.file->Descriptor(),
                    .parent = getpid()};
  const auto started = std::make_shared<std::promise<int>>();  // 0, or an errno
  try {
    owner_ = StartThreadWithoutSignals([&start, started, end = end_.get_future()]() mutable {
      const int process = Spawn(start);
      started->set_value(process < 0 ? errno : 0);
      if (process >= 0) {
        end.wait();
        End(process);
      }
    });
  } catch (...) {
    close(pipe[0]);
    close(pipe[1]);
    throw;
  }
  const int error = started->get_future().get();
  close(pipe[1]);
  if (error != 0) {
    owner_.join();
    close(output_);
    Fail(path, error);
  }
}

ChildProcess::~ChildProcess() {
  end_.set_value();
  owner_.join();
  close(output_);
}

std::optional<std::string> ChildProcess::NextLine(std::chrono::steady_clock::time_point deadline) {
  while (true) {
    if (auto line = TakeLine()) {
      lastLine_ = *line;
      return line;
    }
    if (!WaitFor(output_, POLLIN, deadline)) {
      return std::nullopt;
    }
    std::array<char, 512> text;
    const ssize_t length = read(output_, text.data(), text.size());
    if (length == 0) {
      Fail(name_ + " has ended: " + lastLine_);
    }
    if (length > 0) {
      printed_.append(text.data(), static_cast<std::size_t>(length));
    }
  }
}

// None: there is no whole line.
std::optional<std::string> ChildProcess::TakeLine() {
  const std::size_t end = printed_.find('\n');
  if (end == std::string::npos) {
    return std::nullopt;
  }
  std::string line = printed_.substr(0, end);
  printed_.erase(0, end + 1);
  return line;
}

}  // namespace lanvoss::wpa
