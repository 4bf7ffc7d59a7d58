#pragma once

#include <filesystem>

namespace lanvoss::test {

// A folder that nobody else uses. It is removed with the object; on Linux also when the process
// ends in any other way, killed ones included.
class OwnFolder {
 public:
  explicit OwnFolder(const std::filesystem::path& parent = std::filesystem::temp_directory_path());
  ~OwnFolder();
  OwnFolder(const OwnFolder&) = delete;
  OwnFolder& operator=(const OwnFolder&) = delete;

  const std::filesystem::path path;

 private:
  // The writing end of a pipe whose reader removes the folder when nobody holds this end any more.
  const int alive_;
};

}  // namespace lanvoss::test
