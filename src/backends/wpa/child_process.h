// A program of the system that runs beside this process, and ends with its object or, if this
// process is killed, with the process.
//
// It is trusted with as little as possible: where this process is root, it runs as the user nobody.
// It has the capabilities that it needs and no others, hardly any environment, and no open file of
// this process.
#pragma once

#include <chrono>
#include <future>
#include <optional>
#include <string>
#include <sys/types.h>
#include <thread>
#include <vector>

namespace lanvoss::wpa {

// Whether there is a program of this name.
bool IsInstalled(const std::string& program);

// A file that is open and has no name. The program that receives it has it at Path().
class NamelessFile {
 public:
  // Raises platform::Error when there can be none.
  explicit NamelessFile(const std::string& content);
  ~NamelessFile();
  NamelessFile(const NamelessFile&) = delete;
  NamelessFile& operator=(const NamelessFile&) = delete;

  int Descriptor() const { return descriptor_; }
  static std::string Path();

 private:
  const int descriptor_;
};

class ChildProcess {
 public:
  struct Settings {
    std::vector<std::string> arguments;  // the program, found by its name, comes first
    std::vector<unsigned> capabilities;  // what it may do
    const NamelessFile* file = nullptr;  // what it receives; lives as long as this object
  };

  // Raises platform::Error when there is no such program, or it cannot be started.
  explicit ChildProcess(const Settings& settings);
  // Ends it and waits for the end.
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  // The next line that it prints, on either stream. None: the time is up. Raises platform::Error,
  // with its last line, when it has ended. For one thread at a time.
  std::optional<std::string> NextLine(std::chrono::steady_clock::time_point deadline);

 private:
  class Output;

  std::optional<std::string> TakeLine();

  const std::string name_;
  int output_ = -1;       // what it prints; a full pipe does not stop it
  std::string printed_;   // and was not taken so far
  std::string lastLine_;  // taken
  std::promise<void> end_;
  // The program ends with the thread that has started it, so this thread lives as long as the
  // object.
  std::thread owner_;
};

}  // namespace lanvoss::wpa
