#include "input.h"

#include <mutex>
#include <thread>
#include <utility>

#include "system.h"

namespace lanvoss::program {

struct Input::Shared {
  std::mutex mutex;  // guards the piece and the end
  std::string piece;
  bool isAtEnd = false;
  WakeUp taken;  // ends the reader's wait
};

Input::Input(int file, std::shared_ptr<WakeUp> arrived) : shared_(std::make_shared<Shared>()) {
  std::thread([file, arrived = std::move(arrived), shared = shared_] {
    bool hasMore = true;
    while (hasMore) {
      std::string piece;
      hasMore = ReadPiece(file, piece);
      {
        const std::lock_guard lock(shared->mutex);
        shared->piece = std::move(piece);
        shared->isAtEnd = !hasMore;
      }
      arrived->Wake();
      shared->taken.Wait();
    }
  }).detach();
}

Input::State Input::Take(std::string& text) {
  {
    const std::lock_guard lock(shared_->mutex);
    if (shared_->isAtEnd || shared_->piece.empty()) {
      return shared_->isAtEnd ? State::kEnd : State::kNoneYet;
    }
    text += std::exchange(shared_->piece, {});
  }
  shared_->taken.Wake();
  return State::kMore;
}

}  // namespace lanvoss::program
