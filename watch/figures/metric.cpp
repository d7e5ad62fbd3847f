#include "figures/metric.h"

#include <cmath>

namespace watch {

namespace {

constexpr double kMega = 1e6;

/// Only the lines of a ping can be another run's.
bool isCertain(const Run& run) {
  return run.unsure.empty();
}

std::optional<double> measured(bool isMeasured, double value) {
  return isMeasured && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

}  // namespace

const Metric kRead = {
    "read", "Mbit/s",
    [](const Run& run) { return measured(run.read.isMeasured(), run.read.bps / kMega); }, true};
const Metric kWrite = {
    "write", "Mbit/s",
    [](const Run& run) { return measured(run.write.isMeasured(), run.write.bps / kMega); }, true};
const Metric kLatency = {
    "latency", "ms",
    [](const Run& run) { return measured(isCertain(run) && run.ping.isMeasured(), run.ping.avg); },
    false};
const Metric kLoss = {
    "loss", "%", [](const Run& run) { return measured(isCertain(run), run.ping.loss()); }, false};

}  // namespace watch
