#include "evidence/log_directory.h"

#include "support/files.h"
#include "watch/support/log_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fmt/format.h>
#include <string>
#include <vector>

namespace watch {
namespace {

using testing::IsEmpty;

constexpr std::size_t kChunk = 256 * 1024;

std::string numbered(std::string_view line, std::uint32_t number) {
  return fmt::format("{} {}", number, line);
}

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  eachLine(text, [&](std::string_view line, std::uint32_t number) {
    lines.push_back(numbered(line, number));
  });
  return lines;
}

std::vector<std::string> linesOfFile(const LogFolder& folder, const std::string& text) {
  folder.write("file.log", text);
  std::vector<std::string> lines;
  Troubles troubles;
  EXPECT_TRUE(folder.directory().readLines("file.log", troubles,
                                           [&](std::string_view line, std::uint32_t number) {
                                             lines.push_back(numbered(line, number));
                                           }));
  EXPECT_THAT(troubles, IsEmpty());
  return lines;
}

TEST(TextLines, EndInANewlineOrACarriageReturnAndOneOrTheEnd) {
  const struct {
    std::string text;
    std::vector<std::string> lines;
  } cases[] = {{"", {}},
               {"\n", {"1 "}},
               {"a", {"1 a"}},
               {"a\n", {"1 a"}},
               {"a\r\nb\r", {"1 a", "2 b"}},
               {"a\r\r\nb\rc", {"1 a\r", "2 b\rc"}},
               {"\n\na", {"1 ", "2 ", "3 a"}},
               {std::string("a\0b\n\0", 5), {std::string("1 a\0b", 5), std::string("2 \0", 3)}}};
  const LogFolder folder;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);

    EXPECT_EQ(linesOf(c.text), c.lines);
    EXPECT_EQ(linesOfFile(folder, c.text), c.lines);
  }
}

TEST(TextLines, AreTheSameInAFileOfManyChunks) {
  const LogFolder folder;
  std::string many;
  for (int i = 0; i < 60'000; ++i) {
    many += std::to_string(i) + "\r\n";
  }
  const std::string longest(3 * kChunk, 'x');
  const std::string texts[] = {many,
                               longest,
                               longest + "\n" + many + longest,
                               std::string(kChunk - 1, 'x') + "\n" + many,
                               std::string(kChunk - 1, 'x') + "\r\n" + many,
                               std::string(kChunk, 'x') + "\n",
                               std::string(2 * kChunk, '\n')};
  for (const std::string& text : texts) {
    SCOPED_TRACE(text.size());

    EXPECT_TRUE(linesOfFile(folder, text) == linesOf(text));
  }
}

TEST(LogDirectoryFile, IsReadWholeOrItsEnd) {
  const LogFolder folder;
  Troubles troubles;
  for (const std::size_t size : {0U, 1U, 511U, 512U, 513U, 100'000U}) {
    SCOPED_TRACE(size);
    std::string text(size, 'x');
    text += "end";
    folder.write("file.log", text);
    bool isWhole = false;

    EXPECT_EQ(folder.directory().read("file.log", troubles), text);
    EXPECT_EQ(folder.directory().readEnd("file.log", 3, isWhole, troubles), "end");
    EXPECT_EQ(isWhole, size == 0);
    EXPECT_EQ(folder.directory().readEnd("file.log", size + 3, isWhole, troubles), text);
    EXPECT_TRUE(isWhole);
  }
  EXPECT_THAT(troubles, IsEmpty());
}

TEST(LogDirectoryFile, MayHoldMoreThanItsSizeSays) {
  const LogFolder folder;
  std::filesystem::create_symlink("/proc/self/limits", folder.path() / "file.log");
  Troubles troubles;

  EXPECT_EQ(folder.directory().read("file.log", troubles), readFile("/proc/self/limits"));
}

TEST(LogDirectoryFile, ThatIsMissingIsNothing) {
  const LogFolder folder;
  Troubles troubles;
  bool isWhole = false;

  EXPECT_FALSE(folder.directory().read("file.log", troubles));
  EXPECT_FALSE(folder.directory().readEnd("file.log", 3, isWhole, troubles));
  EXPECT_FALSE(folder.directory().readLines(
      "file.log", troubles, [](std::string_view, std::uint32_t) { FAIL() << "there is no line"; }));
  EXPECT_THAT(troubles, IsEmpty());
}

TEST(LogDirectoryListing, HoldsTheArchivesOfEachHistoryByName) {
  const LogFolder folder;
  for (const char* const name :
       {"ping_history_20261116T050200.log", "ping_history_20261015T050200.log",
        "ping_history_20261013T050200.log", "ping_history_20261014T050200.log",
        "iperf3_history_forward_x.log", "connection_test_results_history_.log"}) {
    folder.write(std::string("archive/") + name, "");
  }
  Troubles troubles;

  const Listing all = folder.directory().list(std::nullopt, troubles);
  const Listing recent = folder.directory().list(parseStamp("20261116T050200"), troubles);

  const Archived results = {"archive/connection_test_results_history_.log", std::nullopt, true};
  const Archived forward = {"archive/iperf3_history_forward_x.log", std::nullopt, true};
  const auto pings = [](const char* text) {
    return Archived{std::string("archive/ping_history_") + text + ".log", parseStamp(text), true};
  };
  const Archived oldest = pings("20261013T050200");
  const Archived older = pings("20261014T050200");
  const Archived old = pings("20261015T050200");
  const Archived recentOnes = pings("20261116T050200");
  EXPECT_EQ(all, (Listing{{{{results}, {}, {forward}, {oldest, older, old, recentOnes}}}}));
  EXPECT_EQ(recent, (Listing{{{{results}, {}, {forward}, {older, old, recentOnes}}}}));
  EXPECT_THAT(troubles, IsEmpty());
}

}  // namespace
}  // namespace watch
