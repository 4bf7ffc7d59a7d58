#include <thread>
#include <utility>

#include "backends/events/threads.h"

namespace lanvoss::events {
namespace {

class RealThread final : public Thread {
 public:
  explicit RealThread(std::function<void()> body) : thread_(std::move(body)) {}
  ~RealThread() override {
    if (thread_.get_id() == std::this_thread::get_id()) {
      thread_.detach();
    } else {
      thread_.join();
    }
  }

 private:
  std::thread thread_;
};

class RealThreadsImpl final : public Threads {
 public:
  std::unique_ptr<Thread> Start(std::string /*name*/, std::function<void()> body) override {
    return std::make_unique<RealThread>(std::move(body));
  }
};

}  // namespace

std::shared_ptr<Threads> RealThreads() { return std::make_shared<RealThreadsImpl>(); }

}  // namespace lanvoss::events
