#include "support/results_text.h"

#include "run_state.h"

namespace {

std::string valueText(bool valid, unsigned long long value) {
  return valid ? std::to_string(value) : "(" + std::to_string(value) + ")";
}

}  // namespace

std::string resultsText() {
  return std::string("date ") + outputResults.dateTime + ", latency " +
         valueText(outputResults.latencyValid, outputResults.latencyMs) + ", write " +
         valueText(outputResults.writeRateValid, outputResults.writeRateBps) + ", read " +
         valueText(outputResults.readRateValid, outputResults.readRateBps);
}
