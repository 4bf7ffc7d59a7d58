#include "timeline/time_scale.h"

#include <algorithm>
#include <cstddef>

#include "timeline/duration.h"

namespace lanvoss::timeline {
namespace {

// A log no longer than this is shown as it was. In a longer one every long silence is cut short,
// and cut shorter if there are many.
constexpr std::int64_t kShortLogUs = 20 * kUsPerSecond;
constexpr std::int64_t kLongSilenceUs = 5 * kUsPerSecond;
constexpr std::int64_t kCutUs = 1'500 * kUsPerMs;
constexpr std::int64_t kShortCutUs = 400 * kUsPerMs;
constexpr int kFewCuts = 20;

// The times at which something happened, in their order.
std::vector<std::int64_t> Moments(const Timeline& timeline) {
  std::vector<std::int64_t> moments{timeline.endUs};
  for (const Event& event : timeline.events) {
    moments.push_back(event.timeUs);
  }
  for (const Span& span : timeline.spans) {
    moments.push_back(span.beginUs);
    moments.push_back(span.endUs);
  }
  std::ranges::sort(moments);
  return moments;
}

}  // namespace

TimeScale::TimeScale(const Timeline& timeline) : stretches_(1) {
  const std::vector<std::int64_t> moments = Moments(timeline);
  const bool isShort = moments.back() <= kShortLogUs;
  int cuts = 0;
  for (std::size_t i = 1; i < moments.size(); ++i) {
    cuts += moments[i] - moments[i - 1] > kLongSilenceUs ? 1 : 0;
  }
  const std::int64_t cutUs = cuts > kFewCuts ? kShortCutUs : kCutUs;
  for (const std::int64_t moment : moments) {
    const std::int64_t passed = moment - stretches_.back().endUs;
    const bool cut = !isShort && passed > kLongSilenceUs;
    Add(moment, cut ? cutUs : passed, cut);
  }
}

void TimeScale::Add(std::int64_t endUs, std::int64_t length, bool cut) {
  const Stretch last = stretches_.back();
  if (cut || last.cut) {
    stretches_.push_back({last.endUs, last.endUs, last.endPlace, last.endPlace, cut});
  }
  stretches_.back().endPlace += length;
  stretches_.back().endUs = endUs;
}

std::int64_t TimeScale::PlaceOf(std::int64_t timeUs) const {
  const auto stretch = std::ranges::lower_bound(stretches_, timeUs, {}, &Stretch::endUs);
  if (stretch == stretches_.end()) {
    return Length();
  }
  const std::int64_t passed = timeUs - stretch->beginUs;
  if (!stretch->cut) {
    return stretch->beginPlace + passed;
  }
  const double share =
      static_cast<double>(passed) / static_cast<double>(stretch->endUs - stretch->beginUs);
  const auto length = static_cast<double>(stretch->endPlace - stretch->beginPlace);
  return stretch->beginPlace + static_cast<std::int64_t>(share * length);
}

std::int64_t TimeScale::TimeAt(std::int64_t place) const {
  const auto stretch = std::ranges::lower_bound(stretches_, place, {}, &Stretch::endPlace);
  if (stretch == stretches_.end()) {
    return stretches_.back().endUs;
  }
  return stretch->cut ? stretch->endUs : stretch->beginUs + place - stretch->beginPlace;
}

}  // namespace lanvoss::timeline
