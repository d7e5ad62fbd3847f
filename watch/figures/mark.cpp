#include "figures/mark.h"

namespace watch {

double Reference::share(double figure) const {
  return metric->moreIsBetter ? figure / value : value / figure;
}

double Reference::figure(double share) const {
  return metric->moreIsBetter ? value * share : value / share;
}

Mark markOf(double figure, const Reference& reference) {
  const double share = reference.share(figure);
  std::size_t place = 0;
  while (place < kShares.size() && !(share >= kShares.at(place))) {
    ++place;
  }
  return static_cast<Mark>(place);
}

Mark markOf(const Run& run, Outcome outcome, const std::optional<Reference>& reference) {
  const auto figure = reference ? reference->metric->of(run) : std::nullopt;
  if (figure) {
    return markOf(*figure, *reference);
  }
  switch (outcome) {
    case Outcome::noServer:
      return Mark::noServer;
    case Outcome::noConnection:
      return Mark::noConnection;
    case Outcome::measured:
    case Outcome::partly:
    case Outcome::nothing:
      break;
  }
  return Mark::partly;
}

}  // namespace watch
