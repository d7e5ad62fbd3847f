#include "evidence/journal_reader.h"

#include "watch/support/log_folder.h"
#include "watch/support/zone.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fmt/format.h>
#include <string>
#include <vector>

namespace watch {
namespace {

using testing::ElementsAre;

std::string line(const std::string& address) {
  return fmt::format("{{\"format\":1,\"address\":\"{}\"}}\n", address);
}

/// Says of each line what and where it is, and then what is wrong.
std::vector<std::string> read(const LogFolder& logs, std::optional<std::size_t> count = {}) {
  std::vector<std::string> files = {"another"};
  Troubles troubles;
  std::vector<std::string> told;
  for (const JournalLine& line : readJournal(logs.directory(), count, files, troubles)) {
    told.push_back(fmt::format("{} {}:{}", line.address, files[line.from.file], line.from.first));
  }
  for (const Trouble& trouble : troubles) {
    told.push_back(fmt::format("{}:{}: {}", trouble.file, trouble.line, trouble.what));
  }
  return told;
}

TEST(Journal, IsReadYearByYear) {
  const LogFolder logs;
  logs.write("runs-2027.jsonl", line("c"));
  logs.write("runs-2026.jsonl", line("a") + line("b"));
  logs.write("runs-latest.jsonl", line("no year"));
  logs.write("runs-2026.jsonl.old", line("a copy"));

  EXPECT_THAT(read(logs),
              ElementsAre("a runs-2026.jsonl:1", "b runs-2026.jsonl:2", "c runs-2027.jsonl:1"));
}

TEST(Journal, IsEmptyWithoutAFile) {
  const LogFolder logs;

  EXPECT_THAT(read(logs), ElementsAre());
  EXPECT_THAT(read(logs, 3), ElementsAre());
}

TEST(Journal, GoesOnBehindALineThatWasTorn) {
  const LogFolder logs;
  logs.write("runs-2026.jsonl", line("a") + "{\"format\":1,\"addr\n" + line("b") + "{\"for");

  EXPECT_THAT(read(logs), ElementsAre("a runs-2026.jsonl:1", "b runs-2026.jsonl:3",
                                      "runs-2026.jsonl:2: it is no whole line of the journal",
                                      "runs-2026.jsonl:4: it is no whole line of the journal"));
}

TEST(Journal, IsReadFromItsEnd) {
  const LogFolder logs;
  const std::string longName(2000, 'x');
  logs.write("runs-2025.jsonl", line("old"));
  logs.write("runs-2026.jsonl", line("a") + line(longName) + line("b") + line("c"));
  logs.write("runs-2027.jsonl", line("d"));

  EXPECT_THAT(read(logs, 2),
              ElementsAre("b runs-2026.jsonl:0", "c runs-2026.jsonl:0", "d runs-2027.jsonl:0"));
  EXPECT_THAT(read(logs, 5),
              ElementsAre("a runs-2026.jsonl:0", longName + " runs-2026.jsonl:0",
                          "b runs-2026.jsonl:0", "c runs-2026.jsonl:0", "d runs-2027.jsonl:0"));
}

/// Two programs may have kept it at once.
TEST(Journal, HasARunOnce) {
  const LogFolder logs;
  const std::string test = R"("write":{"start":7,"client_port":5}})";
  logs.write("runs-2026.jsonl",
             "{\"format\":1,\"address\":\"kept\"," + test + "\n" +
                 R"({"format":1,"start":"2026-11-21T05:01:12+01:00","address":"guarded",)" + test +
                 "\n{\"format\":1,\"address\":\"kept again\"," + test + "\n");

  EXPECT_THAT(read(logs), ElementsAre("guarded runs-2026.jsonl:2"));
}

}  // namespace
}  // namespace watch
