// A program of the system that runs beside this process, and ends with its object.
#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

namespace lanvoss::wpa {

// Whether there is a program of this name.
bool IsInstalled(const std::string& program);

class ChildProcess {
 public:
  // `arguments`: the program, found by its name, and what it is given. Its output goes nowhere.
  // Raises platform::Error when there is no such program.
  explicit ChildProcess(const std::vector<std::string>& arguments);
  // Ends it and waits for the end.
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

 private:
  pid_t process_ = -1;
};

}  // namespace lanvoss::wpa
