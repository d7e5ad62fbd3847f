#include "figures/counts.h"

#include "watch/support/made_runs.h"

#include <gtest/gtest.h>

namespace watch {
namespace {

TEST(Counts, TellEachClassAndLeaveOutWhatIsNoRun) {
  watch::Run ongoing = endedRun(kNow);
  ongoing.ongoing = true;
  const watch::Run runs[] = {okRun(1),      okRun(2),     cutRun(3), endedRun(4),
                             failedRun({}), unsureRun(5), orphan(),  ongoing};

  const Counts counts = countRuns(runs);

  EXPECT_EQ(counts.ok, 2U);
  EXPECT_EQ(counts.partial, 3U);
  EXPECT_EQ(counts.failed, 1U);
  EXPECT_EQ(counts.unsure, 1U);
  EXPECT_EQ(counts.orphans, 1U);
  EXPECT_EQ(counts.all(), 6U);
}

}  // namespace
}  // namespace watch
