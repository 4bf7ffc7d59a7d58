#pragma once

#include <filesystem>

namespace lanvoss::test {

// A folder for this object alone. It is removed with the object; on Linux also when the process
// ends in any other way, for example when it is killed.
class OwnFolder {
 public:
  explicit OwnFolder(const std::filesystem::path& parent = std::filesystem::temp_directory_path());
  ~OwnFolder();
  OwnFolder(const OwnFolder&) = delete;
  OwnFolder& operator=(const OwnFolder&) = delete;

  const std::filesystem::path path;

 private:
  // The writing end of a pipe. Its reader removes the folder when no process holds this end any
  // more.
  const int alive_;
};

}  // namespace lanvoss::test
