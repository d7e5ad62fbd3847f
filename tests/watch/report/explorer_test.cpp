#include "report/explorer.h"

#include "watch/support/made_runs.h"
#include "watch/support/zone.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace watch {
namespace {

Station stationOf(std::vector<watch::Run> runs, const Contract& contract = {}) {
  return lookAt({"atlas", "/logs", {}, std::move(runs)}, contract);
}

TEST(Explorer, KnowsTimesFiguresAndTroublesOfTheRuns) {
  const Zone berlin("Europe/Berlin");
  std::vector<watch::Run> runs = {okRun(kNow), cutRun(kNow + kHour), failedRun(kNow + 2 * kHour),
                                  okRun(kNow + 4 * kHour)};
  runs[3].read.bps = 9'650'000;

  EXPECT_EQ(explorerData(stationOf(runs, {250, {}})),
            R"({"rhythm":3600,"offsets":[[1795251600,3600]],"times":[1795251600,3600,3600,7200],)"
            R"("read":[244,null,null,9.65],"write":[41,41,null,41],"latency":[13,13,null,13],)"
            R"("troubles":[[1,"part","read cut, 3.1 of 10 s"],[2,"lost","no reply, no test"]],)"
            R"("promisedRead":250.0,"promisedWrite":null})");
}

TEST(Explorer, KnowsWhenTheClockWasSet) {
  const Zone berlin("Europe/Berlin");
  constexpr EpochSeconds kEndOfSummerTime = 1'792'890'000;

  const std::string data = explorerData(
      stationOf({okRun(kEndOfSummerTime - kHour), okRun(kEndOfSummerTime), okRun(kNow)}));

  EXPECT_NE(data.find(R"("offsets":[[1792886400,7200],[1792890000,3600]])"), std::string::npos)
      << data;
}

TEST(Explorer, HoldsHostileTextInItsElement) {
  watch::Run run = cutRun(kNow);
  run.read.reason = "</script><img>\"";

  const std::string element = jsonData(explorerData(stationOf({run}))).source();

  EXPECT_NE(element.find(R"(read cut, \u003c/script>\u003cimg>\")"), std::string::npos) << element;
  EXPECT_EQ(element.find("</script>"), element.size() - 9);
}

}  // namespace
}  // namespace watch
