// Where a time stands in the picture. Long stretches in which nothing happened are cut short.
#pragma once

#include <cstdint>
#include <vector>

#include "timeline/timeline.h"

namespace lanvoss::timeline {

class TimeScale {
 public:
  // A stretch of time and its place. Places are in microseconds too, but without the cut time.
  struct Stretch {
    std::int64_t beginUs = 0;
    std::int64_t endUs = 0;
    std::int64_t beginPlace = 0;
    std::int64_t endPlace = 0;
    bool cut = false;
  };

  explicit TimeScale(const Timeline& timeline);

  std::int64_t PlaceOf(std::int64_t timeUs) const;
  std::int64_t TimeAt(std::int64_t place) const;
  std::int64_t Length() const { return stretches_.back().endPlace; }
  const std::vector<Stretch>& Stretches() const { return stretches_; }

 private:
  void Add(std::int64_t endUs, std::int64_t length, bool cut);

  std::vector<Stretch> stretches_;
};

}  // namespace lanvoss::timeline
