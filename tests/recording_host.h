// The host of a test, a search or a benchmark.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace lanvoss::test {

// Records its notifications, then calls its listeners, on the library's thread. The library's
// callback has no context, so there is one host at a time.
class RecordingHost {
 public:
  using Listener = std::function<void(const std::string& kind, const std::string& message)>;
  enum class Records { kAll, kNothing };

  // `first` is called before a later listener.
  explicit RecordingHost(Listener first = nullptr, Records records = Records::kAll);
  RecordingHost(const RecordingHost&) = delete;
  RecordingHost& operator=(const RecordingHost&) = delete;
  ~RecordingHost();

  // The NotifyCallback to make objects with.
  static void OnNotify(std::string kind, std::string message);

  // Replaces the later listener, or removes it. An exception of it goes to the library.
  void Listen(Listener listener);

  // The "info" messages from number `from` on.
  std::vector<std::string> Log(std::size_t from = 0) const;
  std::size_t LogLength() const;
  // "kind message" of all others.
  std::vector<std::string> Others(std::size_t from = 0) const;

 private:
  const Listener first_;
  const Records records_;
  mutable std::mutex mutex_;  // guards everything below
  std::shared_ptr<const Listener> later_;
  std::vector<std::string> log_;
  std::vector<std::string> others_;
};

}  // namespace lanvoss::test
