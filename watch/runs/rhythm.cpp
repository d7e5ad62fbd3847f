#include "runs/rhythm.h"

#include <algorithm>

namespace watch {

std::size_t Rhythm::missedBetween(EpochSeconds one, EpochSeconds next) const {
  if (seconds == 0 || next <= one) {
    return 0;
  }
  const std::int64_t steps = (next - one + seconds / 2) / seconds;
  return steps > 1 ? static_cast<std::size_t>(steps - 1) : 0;
}

Rhythm rhythmOf(const std::vector<EpochSeconds>& times) {
  std::vector<std::int64_t> gaps;
  for (std::size_t i = 1; i < times.size(); ++i) {
    if (times[i] > times[i - 1]) {
      gaps.push_back(times[i] - times[i - 1]);
    }
  }
  if (gaps.size() < 2) {
    return {};
  }
  const auto middle = gaps.begin() + static_cast<std::ptrdiff_t>(gaps.size() / 2);
  std::ranges::nth_element(gaps, middle);
  return {*middle};
}

Rhythm rhythmOf(const std::vector<RunTime>& times) {
  std::vector<EpochSeconds> known;
  for (const RunTime& time : times) {
    if (time.start) {
      known.push_back(*time.start);
    }
  }
  return rhythmOf(known);
}

}  // namespace watch
