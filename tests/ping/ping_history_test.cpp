#include "ping/ping_history.h"

#include "run_state.h"
#include "support/run_fixture.h"
#include "text_buffer.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <limits>
#include <string>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr ping_status kStatus = {0, 14.123, 15.456, 17.789, 1.234};
constexpr char kLine[] = "20261116T054400,14.123,15.456,17.789,1.234\n";

class PingHistory : public RunFixture {
 protected:
  void SetUp() override {
    RunFixture::SetUp();
    formatInto(pingStartTimeStamp, "20261116T054400");
  }

  static std::string historyPath() { return logFile("ping_history.log"); }

  static std::string writeOne() {
    return console([] { write_ping_history_log_file(kStatus); });
  }
};

TEST_F(PingHistory, RoundsToThreeDecimals) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  const struct {
    ping_status status;
    const char* numbers;
  } cases[] = {
      {{0, 14.1236, 14.1234, 14.0625, 0.9996}, "14.124,14.123,14.062,1.000"},
      {{0, 0.0, 0.0, 0.0, 0.0}, "0.000,0.000,0.000,0.000"},
      {{0, -1.5, -0.0004, 1e6, 1e-9}, "-1.500,-0.000,1000000.000,0.000"},
      {{0, std::numeric_limits<double>::quiet_NaN(), kInfinity, -kInfinity, 1.0},
       "nan,inf,-inf,1.000"},
      {{99, 1.0, 2.0, 3.0, 4.0}, "1.000,2.000,3.000,4.000"}};  // the reserved field is not read
  for (const auto& c : cases) {
    SCOPED_TRACE(c.numbers);
    std::filesystem::remove(historyPath());

    write_ping_history_log_file(c.status);

    EXPECT_EQ(readFile(historyPath()), std::string("20261116T054400,") + c.numbers + "\n");
  }
}

TEST_F(PingHistory, CutsALineAt127CharactersBeforeItsNewline) {
  // 1e22 takes 27 characters, and 1e21 one less.
  const std::string e22 = ",10000000000000000000000.000";
  const std::string e21 = ",1000000000000000000000.000";

  write_ping_history_log_file({0, 1e22, 1e22, 1e22, 1e21});
  write_ping_history_log_file({0, 1e22, 1e22, 1e22, 1e22});

  const std::string start = "20261116T054400" + e22 + e22 + e22;
  const std::string cut = e22.substr(0, e22.size() - 1);
  EXPECT_EQ(readFile(historyPath()), start + e21 + "\n" + start + cut + "\n");
}

TEST_F(PingHistory, MovesWithItsTenthLine) {
  const std::string move = "(mv  \"" + historyPath() + "\" \"" +
                           archiveFile("ping_history_20261116T054000.log") + "\") 2>nul\n";
  const struct {
    std::string history;
    bool moves;
  } cases[] = {{"", false},
               {repeated("x\n", 8), false},
               {repeated("x\n", 8) + "cut", false},  // which the line continues
               {repeated("x\n", 9), true},
               {repeated("\n", 9), true},
               {repeated("x\n", 25), true}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.history);
    writeFile(historyPath(), c.history);
    formatInto(currentTimeStamp, "%s", kStartStamp);

    EXPECT_EQ(writeOne(), c.moves ? move + "\n" : "");

    EXPECT_EQ(readFile(historyPath()), c.history + kLine);
  }
  EXPECT_THAT(fakeHost.commands, ElementsAre(move, move, move));
}

TEST_F(PingHistory, ThatCannotBeAppendedToIsNotCounted) {
  writeFile(historyPath(), repeated("x\n", 10));
  std::filesystem::permissions(historyPath(), std::filesystem::perms::owner_read);

  EXPECT_EQ(writeOne(), "");

  EXPECT_THAT(fakeHost.commands, IsEmpty());
  EXPECT_EQ(readFile(historyPath()), repeated("x\n", 10));
}

TEST_F(PingHistory, TracesItsLineAlsoWhenItCannotBeOpened) {
  ConfigurationParameters.debugPrintPing = true;
  std::filesystem::create_directory(historyPath());

  EXPECT_EQ(writeOne(),
            "ping start time 20261116T054400 min 14.123000 avg 15.456000 max 17.789000 stddev "
            "1.234000\n");

  EXPECT_TRUE(std::filesystem::is_empty(historyPath()));
}

}  // namespace
