#include "ping/ping_history.h"

#include "run_state.h"
#include "support/run_fixture.h"
#include "text_buffer.h"

#include <gmock/gmock.h>

#include <cstdio>
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

  static std::string moveCommand(const std::string& stamp) {
    return "(mv  \"" + historyPath() + "\" \"" + archiveFile("ping_history_" + stamp + ".log") +
           "\") 2>nul\n";
  }

  static std::string writeOne() {
    return console([] { write_ping_history_log_file(kStatus); });
  }
};

TEST_F(PingHistory, GrowsByOneLineASummary) {
  writeFile(historyPath(), "earlier\n");

  EXPECT_EQ(writeOne(), "");
  EXPECT_EQ(writeOne(), "");

  EXPECT_EQ(readFile(historyPath()), std::string("earlier\n") + kLine + kLine);
  EXPECT_THAT(fakeHost.commands, IsEmpty());
}

TEST_F(PingHistory, RoundsToThreeDecimals) {
  const struct {
    ping_status status;
    const char* numbers;
  } cases[] = {
      {{0, 14.1236, 14.1234, 14.0625, 0.9996}, "14.124,14.123,14.062,1.000"},
      {{0, 0.0, 0.0, 0.0, 0.0}, "0.000,0.000,0.000,0.000"},
      {{0, -1.5, -0.0004, 1e6, 1e-9}, "-1.500,-0.000,1000000.000,0.000"},
      {{0, std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
        -std::numeric_limits<double>::infinity(), 1.0},
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

TEST_F(PingHistory, CountsCutLinesAsLines) {
  for (int i = 0; i < 10; ++i) {
    EXPECT_THAT(fakeHost.commands, IsEmpty());
    console([] { write_ping_history_log_file({0, 1e300, 1e300, 1e300, 1e300}); });
  }

  EXPECT_THAT(fakeHost.commands, ElementsAre(moveCommand(kStartStamp)));
  EXPECT_EQ(readFile(historyPath()).size(), 10U * 127U);
}

TEST_F(PingHistory, StaysAtNineLines) {
  writeFile(historyPath(), repeated("x\n", 8));

  EXPECT_EQ(writeOne(), "");

  EXPECT_EQ(readFile(historyPath()), repeated("x\n", 8) + kLine);
  EXPECT_THAT(fakeHost.commands, IsEmpty());
  EXPECT_STREQ(currentTimeStamp, kStartStamp);
}

TEST_F(PingHistory, MovesWithItsTenthLineAndStartsAfresh) {
  fakeHost.runsCommands = true;
  writeFile(historyPath(), repeated("x\n", 9));

  EXPECT_EQ(writeOne(), moveCommand(kStartStamp) + "\n");

  EXPECT_FALSE(fileExists(historyPath()));
  EXPECT_EQ(readFile(archiveFile("ping_history_20261116T054000.log")), repeated("x\n", 9) + kLine);
  EXPECT_EQ(readFile("nul"), "");

  EXPECT_EQ(writeOne(), "");
  EXPECT_EQ(readFile(historyPath()), kLine);
}

TEST_F(PingHistory, MovesWholeHoweverLongItIs) {
  fakeHost.runsCommands = true;
  writeFile(historyPath(), repeated("x\n", 25));

  EXPECT_EQ(writeOne(), moveCommand(kStartStamp) + "\n");

  EXPECT_FALSE(fileExists(historyPath()));
  EXPECT_EQ(readFile(archiveFile("ping_history_20261116T054000.log")), repeated("x\n", 25) + kLine);
}

TEST_F(PingHistory, MovesUnderTheStampFromBeforeAndThenTakesTheCurrentOne) {
  writeFile(historyPath(), repeated("x\n", 9));
  fakeHost.now += 300;
  std::string stampDuringTheMove;
  fakeHost.onCommand = [&stampDuringTheMove](const std::string&) {
    stampDuringTheMove = currentTimeStamp;
    fakeHost.now += 300;
  };

  writeOne();

  EXPECT_THAT(fakeHost.commands, ElementsAre(moveCommand("20261116T054000")));
  EXPECT_EQ(stampDuringTheMove, "20261116T054500");
  EXPECT_STREQ(currentTimeStamp, "20261116T054500");
}

TEST_F(PingHistory, StaysWhenItsMoveFailsAndMovesLater) {
  fakeHost.runsCommands = true;
  std::filesystem::remove(LOG_PATH_ARCHIVE);
  writeFile(historyPath(), repeated("x\n", 9));

  EXPECT_EQ(writeOne(), moveCommand(kStartStamp) + "\n");

  EXPECT_EQ(readFile(historyPath()), repeated("x\n", 9) + kLine);
  EXPECT_THAT(readFile("nul"), testing::HasSubstr(historyPath()));

  std::filesystem::create_directory(LOG_PATH_ARCHIVE);
  formatInto(currentTimeStamp, "20261117T000000");
  EXPECT_EQ(writeOne(), moveCommand("20261117T000000") + "\n");

  EXPECT_FALSE(fileExists(historyPath()));
  EXPECT_EQ(readFile(archiveFile("ping_history_20261117T000000.log")),
            repeated("x\n", 9) + kLine + kLine);
  EXPECT_EQ(readFile("nul"), "");
}

TEST_F(PingHistory, PrintsItsMoveAfterIt) {
  writeFile(historyPath(), repeated("x\n", 9));
  fakeHost.onCommand = [](const std::string&) { std::puts("(shell)"); };

  EXPECT_EQ(writeOne(), "(shell)\n" + moveCommand(kStartStamp) + "\n");
}

TEST_F(PingHistory, CountsEmptyLines) {
  writeFile(historyPath(), repeated("\n", 9));

  EXPECT_EQ(writeOne(), moveCommand(kStartStamp) + "\n");
}

TEST_F(PingHistory, CountsALineThatAnEarlierWriteHasCut) {
  writeFile(historyPath(), repeated("x\n", 8) + "cut");

  EXPECT_EQ(writeOne(), "");

  EXPECT_EQ(readFile(historyPath()), repeated("x\n", 8) + "cut" + kLine);
}

TEST_F(PingHistory, ThatCannotBeOpenedStaysSilentlyAsItIs) {
  std::filesystem::create_directory(historyPath());

  EXPECT_EQ(writeOne(), "");

  EXPECT_THAT(fakeHost.commands, IsEmpty());
  EXPECT_TRUE(std::filesystem::is_empty(historyPath()));
}

TEST_F(PingHistory, ThatCannotBeAppendedToIsNotCounted) {
  writeFile(historyPath(), "1\n2\n3\n4\n5\n6\n7\n8\n9\n10\n");
  std::filesystem::permissions(historyPath(), std::filesystem::perms::owner_read);

  EXPECT_EQ(writeOne(), "");

  EXPECT_THAT(fakeHost.commands, IsEmpty());
}

TEST_F(PingHistory, ThatReadsBackNothingStays) {
  std::filesystem::create_symlink("/dev/null", historyPath());

  for (int i = 0; i < 11; ++i) {
    EXPECT_EQ(writeOne(), "");
  }

  EXPECT_THAT(fakeHost.commands, IsEmpty());
}

TEST_F(PingHistory, TracesItsLineWhenAskedTo) {
  ConfigurationParameters.debugPrintPing = true;

  EXPECT_EQ(writeOne(),
            "ping start time 20261116T054400 min 14.123000 avg 15.456000 max 17.789000 stddev "
            "1.234000\n");
}

TEST_F(PingHistory, TracesItsLineAlsoWhenItCannotBeOpened) {
  ConfigurationParameters.debugPrintPing = true;
  std::filesystem::create_directory(historyPath());

  EXPECT_EQ(writeOne(),
            "ping start time 20261116T054400 min 14.123000 avg 15.456000 max 17.789000 stddev "
            "1.234000\n");
}

}  // namespace
