#include "figures/metric.h"

#include <cmath>

namespace watch {

namespace {

std::optional<double> measured(bool isMeasured, double value) {
  return isMeasured && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

}  // namespace

const Metric kRead = {
    "read", "Mbit/s",
    [](const Run& run) { return measured(run.read.isMeasured(), run.read.bps / kMegabit); }, true};
const Metric kWrite = {
    "write", "Mbit/s",
    [](const Run& run) { return measured(run.write.isMeasured(), run.write.bps / kMegabit); },
    true};
const Metric kLatency = {
    "latency", "ms", [](const Run& run) { return measured(run.ping.isMeasured(), run.ping.avg); },
    false};
const Metric kLoss = {"loss", "%", [](const Run& run) { return measured(true, run.ping.loss()); },
                      false};

}  // namespace watch
