#include "ping/latency.h"

#include "run_state.h"
#include "support/results_text.h"
#include "support/run_fixture.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

namespace {

class Latency : public RunFixture {};

TEST_F(Latency, IsCutToTheLow32BitsOfItsWholeMilliseconds) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  const double twoTo63 = std::ldexp(1.0, 63);
  const struct {
    double averageMs;
    std::uint32_t latencyMs;
  } cases[] = {{0.0, 0},
               {0.999, 0},
               {1.0, 1},
               {15.9, 15},
               {-0.9, 0},
               {-1.0, 4'294'967'295},
               {-1.9, 4'294'967'295},
               {2147483648.5, 2'147'483'648},
               {4294967295.9, 4'294'967'295},
               {4294967296.0, 0},
               {4294967297.9, 1},
               {-4294967297.9, 4'294'967'295},
               // The outermost numbers of 64 bits that a double holds.
               {twoTo63 - 1024, 4'294'966'272},
               {-twoTo63 + 1024, 1024},
               {-twoTo63, 0},
               // What 64 bits do not hold counts as 0.
               {twoTo63, 0},
               {-twoTo63 - 2048, 0},
               {1e300, 0},
               {kInfinity, 0},
               {-kInfinity, 0},
               {std::numeric_limits<double>::quiet_NaN(), 0}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.averageMs);
    outputResults.latencyMs = 77;

    recordLatency(c.averageMs);

    EXPECT_EQ(outputResults.latencyMs, c.latencyMs);
  }
}

TEST_F(Latency, IsValidAndStampedNowWhileTheRatesStay) {
  outputResults = {"20201231T235959", false, 77, true, 78, false, 79};
  fakeHost.now += 60;

  recordLatency(15.9);

  EXPECT_EQ(resultsText(), "date 20261116T054100, latency 15, write 78, read (79)");
}

}  // namespace
