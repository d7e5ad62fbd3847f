#include "report/page.h"

#include "report/resources.h"
#include "support/files.h"
#include "watch/support/made_runs.h"
#include "watch/support/zone.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <regex>
#include <string>
#include <vector>

namespace watch {
namespace {

const std::vector<std::string> kFiles = {
    "connection_test_results_history.log", "ping_history.log", "ping_history_verbose.log",
    "iperf3_history_forward_csv.log", "iperf3_history_reverse_csv.log"};

std::string without(const std::string& text, const char* pattern) {
  return std::regex_replace(text, std::regex(pattern), "");
}

/// The page without the version, the style and the explorer, which not every build has; an element
/// on each line.
std::string elementsOf(const std::string& page) {
  const std::size_t style = page.find("<style>");
  const std::size_t endOfStyle = page.find("</style>") + 8;
  const std::size_t scripts = page.find("</main>") + 8;
  std::string text = page.substr(0, style) + page.substr(endOfStyle, scripts - endOfStyle) +
                     page.substr(page.rfind("</body>"));
  text = without(text, " script-src [^;]*;");
  text = without(text, "<div class=\"explorer\"[^<]*<script[^<]*</script></div>");
  text = std::regex_replace(text, std::regex("sha256-[A-Za-z0-9+/]{43}="), "sha256-…");
  text = std::regex_replace(text, std::regex("by connWatch [0-9.]+"), "by connWatch");
  return std::regex_replace(text, std::regex("><"), ">\n<");
}

class Page : public testing::Test {
 protected:
  static Station station(std::vector<watch::Run> runs, const Contract& contract = {}) {
    return lookAt({"atlas", "/home/me/Library/Logs/Qelmora", kFiles, std::move(runs)}, contract);
  }

  /// Compares the page with the file that has the name of the test. UPDATE=1 writes it.
  static void expectRecorded(std::vector<Station> stations) {
    const std::string name = testing::UnitTest::GetInstance()->current_test_info()->name();
    const std::string path = TEST_DIR "/report/expected/" + name + ".html";
    const std::string elements = elementsOf(reportPage(std::move(stations), kNow + kDay));
    const char* const update = std::getenv("UPDATE");
    if (update != nullptr && std::string(update) == "1") {
      writeFile(path, elements);
    }
    EXPECT_EQ(elements, readFile(path));
  }

  Zone berlin{"Europe/Berlin"};
};

TEST_F(Page, TellsOneRun) {
  expectRecorded({station({okRun(kNow)})});
}

TEST_F(Page, TellsTwoDaysWithAllThatMayHappen) {
  std::vector<watch::Run> runs;
  for (int hour = 0; hour < 30; ++hour) {
    const EpochSeconds time = kNow + hour * kHour;
    runs.push_back(hour == 3                ? cutRun(time)
                   : hour == 5 || hour == 6 ? failedRun(time)
                   : hour == 7              ? failedRun({})
                   : hour == 12             ? unsureRun(time)
                   : hour == 13             ? endedRun(time)
                                            : okRun(time));
    runs.back().read.bps *= hour % 24 > 10 && hour % 24 < 14 ? 0.6 : 1;
  }
  runs.erase(runs.begin() + 20, runs.begin() + 23);
  runs.push_back(orphan());

  expectRecorded({station(std::move(runs), {250, 40})});
}

TEST_F(Page, HasAColumnForEachDayOfMoreThanAMonth) {
  constexpr EpochSeconds kBeforeSummerTime = kNow + 110 * kDay;
  std::vector<watch::Run> runs;
  for (int run = 0; run < 45 * 4; ++run) {
    const EpochSeconds time = kBeforeSummerTime + run * 6 * kHour;
    runs.push_back(run == 50 ? failedRun(time) : run == 90 ? cutRun(time) : okRun(time));
    runs.back().read.bps *= run >= 100 && run < 120 ? 0.4 : 1;
  }
  runs.erase(runs.begin() + 20, runs.begin() + 30);

  expectRecorded({station(std::move(runs))});
}

TEST_F(Page, HasAPictureForEachOfThreeYears) {
  std::vector<watch::Run> runs;
  for (int week = 0; week < 130; ++week) {
    runs.push_back(week % 40 == 7 ? failedRun(kNow + week * 7 * kDay)
                                  : okRun(kNow + week * 7 * kDay));
  }

  expectRecorded({station(std::move(runs))});
}

TEST_F(Page, TellsRunsOfWhichNoTimeIsKnown) {
  expectRecorded({station({failedRun({}), failedRun({})})});
}

TEST_F(Page, PutsWorkstationsSideBySide) {
  Station other = station({failedRun(kNow), failedRun(kNow + kHour)});
  other.name = "castor";

  expectRecorded({station({okRun(kNow)}), other});
}

TEST_F(Page, ShowsHostileTextAsText) {
  watch::Run run = cutRun(kNow);
  run.server = "<script>alert(1)</script>\"'&";
  run.read.reason = "</td><img src=x onerror=\"alert(2)\">" + std::string(1'000'000, 'x');
  Station hostile = station({run});
  hostile.name = "\"><script>";
  hostile.folder = "/tmp/<b>&amp;";

  expectRecorded({hostile});
}

TEST_F(Page, HasAYearInAFewHundredKilobytes) {
  std::vector<watch::Run> runs;
  for (int hour = 0; hour < 365 * 24; ++hour) {
    const EpochSeconds time = kNow + hour * kHour;
    runs.push_back(hour % 50 == 0 ? failedRun(time) : hour % 70 == 0 ? cutRun(time) : okRun(time));
    runs.back().read.bps -= hour % 97 * 1e6;
  }

  const std::string page = reportPage({station(std::move(runs), {250, 40})}, kNow);

  EXPECT_GT(page.size(), 50'000U);
  EXPECT_LT(page.size(), kLibrary.size() + 400'000U);
}

}  // namespace
}  // namespace watch
