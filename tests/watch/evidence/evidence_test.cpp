#include "evidence/evidence.h"

#include "watch/support/log_folder.h"
#include "watch/support/zone.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fmt/format.h>
#include <string>
#include <sys/stat.h>
#include <utility>

namespace watch {
namespace {

namespace fs = std::filesystem;

constexpr char kNothing[] = ",,0,,0,0,,0,0,0,0\n";
constexpr char kNoResult[] =
    "Date = , Latency = n/a ms, Write Transfer Rate = n/a bps, Read Transfer Rate = n/a bps \n";

/// The lines of a run that began `minutes` after 2026-11-16T05:00:00 UTC; `minutes` are its
/// measurements, too.
std::string pingLine(int minutes) {
  return fmt::format("20261116T{:02}{:02}00,1.000,{}.000,99.000,0.500\n", 5 + minutes / 60,
                     minutes % 60, minutes);
}
std::string forwardLine(int minutes) {
  return fmt::format("{},a,1,b,2,0,10,1000,{},0,0\n", 1'794'805'200 + minutes * 60, minutes);
}
std::string reverseLine(int minutes) {
  return fmt::format("{},a,1,b,2,0,10,0,0,1000,{}\n", 1'794'805'220 + minutes * 60, minutes);
}
std::string resultLine(int minutes) {
  return fmt::format(
      "Date = 20261116T{:02}{:02}10, Latency = {} ms, Write Transfer Rate = {} bps, "
      "Read Transfer Rate = {} bps \n",
      5 + minutes / 60, minutes % 60, minutes, minutes, minutes);
}

/// Lines of the runs from `first` to `last`.
template <class MakeLine>
std::string lines(MakeLine line, int first, int last) {
  std::string text;
  for (int i = first; i <= last; ++i) {
    text += line(i);
  }
  return text;
}

std::string withoutNewline(std::string line) {
  line.pop_back();
  return line;
}

std::string place(const Evidence& evidence, const Source& source) {
  return fmt::format("{}:{}{}", evidence.files.at(source.file), source.first,
                     source.last == source.first ? "" : fmt::format("-{}", source.last));
}

template <class Line, class Measured>
std::string toldOf(const char* kind, const Evidence& evidence, const Lines<Line>& lines,
                   Measured measured) {
  std::string text;
  for (const Line& line : lines.all) {
    text += fmt::format("{} {} {}\n", kind, measured(line), place(evidence, line.from));
  }
  for (const auto& [line, stamp] : lines.filled) {
    text += fmt::format("{} {} filled {}\n", kind, measured(lines.all.at(line)),
                        stamp.seconds - 1'794'805'200);
  }
  return text;
}

/// All that `evidence` holds, a line for each thing: what was measured, and where it stands.
std::string told(const Evidence& evidence) {
  const auto bps = [](const Iperf3Line& line) { return line.bps; };
  std::string text =
      toldOf("ping", evidence, evidence.pings, [](const PingLine& line) { return line.avg; }) +
      toldOf("forward", evidence, evidence.forward, bps) +
      toldOf("reverse", evidence, evidence.reverse, bps) +
      toldOf("result", evidence, evidence.results,
             [](const ResultLine& line) { return line.write ? std::to_string(*line.write) : "-"; });
  for (const PingOutput& output : evidence.outputs) {
    text += fmt::format("output {} {}\n", output.target, place(evidence, output.from));
  }
  text += evidence.forwardReport ? "forward report\n" : "";
  text += evidence.reverseReport ? "reverse report\n" : "";
  for (const Trouble& trouble : evidence.troubles) {
    text += fmt::format("trouble {}:{} {}\n", trouble.file, trouble.line, trouble.what);
  }
  return text;
}

class EvidenceOf : public testing::Test {
 protected:
  ~EvidenceOf() override { beforeListing = nullptr; }

  std::string read() const { return told(readEvidence(folder_.directory())); }
  std::string readSince(const char* stamp) const {
    return told(readEvidenceSince(folder_.directory(), *parseStamp(stamp)));
  }
  void write(const std::string& name, const std::string& text) const { folder_.write(name, text); }
  fs::path at(const std::string& name) const { return folder_.path() / name; }

 private:
  Zone zone_{"UTC"};
  LogFolder folder_;
};

TEST_F(EvidenceOf, AFolderThatIsEmptyOrMissingIsNothing) {
  EXPECT_EQ(read(), "");

  EXPECT_EQ(told(readEvidence(LogDirectory(at("missing")))), "");
}

TEST_F(EvidenceOf, AFileInPlaceOfTheFolderIsATrouble) {
  write("file", "text");

  EXPECT_EQ(told(readEvidence(LogDirectory(at("file")))),
            "trouble connection_test_results_history.log:0 Not a directory\n"
            "trouble iperf3_history_reverse_csv.log:0 Not a directory\n"
            "trouble iperf3_history_forward_csv.log:0 Not a directory\n"
            "trouble ping_history.log:0 Not a directory\n"
            "trouble ping_history_verbose.log:0 Not a directory\n"
            "trouble iperf3_latest.log:0 Not a directory\n"
            "trouble iperf3_latest-R.log:0 Not a directory\n"
            "trouble archive/:0 Not a directory\n");
}

TEST_F(EvidenceOf, ARunHasALineInEachHistory) {
  write("ping_history.log", pingLine(1));
  write("iperf3_history_forward_csv.log", forwardLine(2));
  write("iperf3_history_reverse_csv.log", reverseLine(3));
  write("connection_test_results_history.log", resultLine(4));
  write("ping_history_verbose.log", "PING b (b)\n\n--- b ping statistics ---\nPING c (c)\n");
  write("iperf3_latest.log", "{}");
  write("iperf3_latest-R.log", "{}");

  EXPECT_EQ(read(),
            "ping 1 ping_history.log:1\n"
            "forward 2 iperf3_history_forward_csv.log:1\n"
            "reverse 3 iperf3_history_reverse_csv.log:1\n"
            "result 4 connection_test_results_history.log:1\n"
            "output b ping_history_verbose.log:1-3\n"
            "output c ping_history_verbose.log:4\n"
            "forward report\n"
            "reverse report\n");
}

TEST_F(EvidenceOf, ArchivesComeBeforeTheLiveFileAndTellWhoFilledThem) {
  write("archive/ping_history_20261116T050200.log", lines(pingLine, 1, 2));
  write("archive/ping_history_20261116T050400.log", lines(pingLine, 3, 4));
  write("ping_history.log", pingLine(5));

  EXPECT_EQ(read(),
            "ping 1 archive/ping_history_20261116T050200.log:1\n"
            "ping 2 archive/ping_history_20261116T050200.log:2\n"
            "ping 3 archive/ping_history_20261116T050400.log:1\n"
            "ping 4 archive/ping_history_20261116T050400.log:2\n"
            "ping 5 ping_history.log:1\n"
            "ping 2 filled 120\n"
            "ping 4 filled 240\n");
}

TEST_F(EvidenceOf, EachHistoryHasItsArchives) {
  write("archive/iperf3_history_forward_20261116T050200.log", forwardLine(1));
  write("archive/iperf3_history_reverse_20261116T050200.log", reverseLine(2));
  write("archive/connection_test_results_history_20261116T050200.log", resultLine(3));

  EXPECT_EQ(read(),
            "forward 1 archive/iperf3_history_forward_20261116T050200.log:1\n"
            "forward 1 filled 120\n"
            "reverse 2 archive/iperf3_history_reverse_20261116T050200.log:1\n"
            "reverse 2 filled 120\n"
            "result 3 archive/connection_test_results_history_20261116T050200.log:1\n"
            "result 3 filled 120\n");
}

TEST_F(EvidenceOf, ArchivesAreInTheOrderOfTheirLinesNotOfTheirNames) {
  write("archive/ping_history_19700101T000000.log", lines(pingLine, 3, 5));
  write("archive/ping_history_20261116T050200.log", lines(pingLine, 0, 2));
  write("archive/ping_history_20991231T235959.log", lines(pingLine, 6, 6));
  write("archive/ping_history_without_a_stamp.log", lines(pingLine, 7, 7));

  EXPECT_EQ(read(),
            "ping 0 archive/ping_history_20261116T050200.log:1\n"
            "ping 1 archive/ping_history_20261116T050200.log:2\n"
            "ping 2 archive/ping_history_20261116T050200.log:3\n"
            "ping 3 archive/ping_history_19700101T000000.log:1\n"
            "ping 4 archive/ping_history_19700101T000000.log:2\n"
            "ping 5 archive/ping_history_19700101T000000.log:3\n"
            "ping 6 archive/ping_history_20991231T235959.log:1\n"
            "ping 7 archive/ping_history_without_a_stamp.log:1\n"
            "ping 2 filled 120\n"
            "ping 5 filled -1794805200\n"
            "ping 6 filled 2307639599\n");
}

TEST_F(EvidenceOf, AnArchiveWithoutATimeIsWhereItsNameSaysOrTheFirst) {
  write("archive/iperf3_history_forward_.log", kNothing);
  write("archive/iperf3_history_forward_20261116T050130.log", kNothing);
  write("archive/iperf3_history_forward_20261116T050200.log", forwardLine(2));
  write("archive/iperf3_history_forward_20261116T050100.log", forwardLine(1));

  EXPECT_EQ(read(),
            "forward 0 archive/iperf3_history_forward_.log:1\n"
            "forward 1 archive/iperf3_history_forward_20261116T050100.log:1\n"
            "forward 0 archive/iperf3_history_forward_20261116T050130.log:1\n"
            "forward 2 archive/iperf3_history_forward_20261116T050200.log:1\n"
            "forward 1 filled 60\n"
            "forward 0 filled 90\n"
            "forward 2 filled 120\n");
}

TEST_F(EvidenceOf, ForeignFilesInTheArchiveAreLeftAlone) {
  for (const char* const name :
       {"archive/ping_history.log", "archive/ping_history_20261116T050200.log.gz",
        "archive/ping_history_verbose.log", "archive/ping_history_verbose_20261116T050200.log",
        "archive/ping_history20261116T050200.log", "archive/iperf2_history_20261116T050200.log",
        "archive/a/ping_history_20261116T050200.log", "archive/notes.txt", "notes.txt"}) {
    write(name, lines(pingLine, 1, 2));
  }

  EXPECT_EQ(read(), "");
}

TEST_F(EvidenceOf, ACopiedArchiveCountsOnce) {
  write("archive/ping_history_20261116T050200 (copy).log", lines(pingLine, 1, 2));
  write("archive/ping_history_20261116T050200.log", lines(pingLine, 1, 2));
  write("archive/ping_history_20261116T050200_copy.log", lines(pingLine, 1, 2));
  write("archive/ping_history_20261116T050400.log", lines(pingLine, 3, 4));

  EXPECT_EQ(read(),
            "ping 1 archive/ping_history_20261116T050200.log:1\n"
            "ping 2 archive/ping_history_20261116T050200.log:2\n"
            "ping 3 archive/ping_history_20261116T050400.log:1\n"
            "ping 4 archive/ping_history_20261116T050400.log:2\n"
            "ping 2 filled 120\n"
            "ping 4 filled 240\n"
            "trouble archive/ping_history_20261116T050200 (copy).log:0 all that it holds is in "
            "archive/ping_history_20261116T050200_copy.log\n"
            "trouble archive/ping_history_20261116T050200_copy.log:0 all that it holds is in "
            "archive/ping_history_20261116T050200.log\n");
}

TEST_F(EvidenceOf, TenRunsThatFailedAreNoCopyOfTenOthers) {
  for (const char* const stamp : {"20261116T050100", "20261116T050200"}) {
    write(fmt::format("archive/iperf3_history_forward_{}.log", stamp), kNothing);
    write(fmt::format("archive/connection_test_results_history_{}.log", stamp), kNoResult);
  }
  write("iperf3_history_forward_csv.log", kNothing);

  EXPECT_EQ(read(),
            "forward 0 archive/iperf3_history_forward_20261116T050100.log:1\n"
            "forward 0 archive/iperf3_history_forward_20261116T050200.log:1\n"
            "forward 0 iperf3_history_forward_csv.log:1\n"
            "forward 0 filled 60\n"
            "forward 0 filled 120\n"
            "result - archive/connection_test_results_history_20261116T050100.log:1\n"
            "result - archive/connection_test_results_history_20261116T050200.log:1\n"
            "result - filled 60\n"
            "result - filled 120\n");
}

TEST_F(EvidenceOf, TheRestOfAKilledMoveCountsOnce) {
  const std::string whole = lines(pingLine, 1, 4);
  write("archive/ping_history_20261116T050200.log", whole.substr(0, 50));
  write("archive/ping_history_20261116T050300.log", lines(pingLine, 1, 3));
  write("archive/ping_history_20261116T050400.log", whole);

  EXPECT_EQ(read(),
            "ping 1 archive/ping_history_20261116T050400.log:1\n"
            "ping 2 archive/ping_history_20261116T050400.log:2\n"
            "ping 3 archive/ping_history_20261116T050400.log:3\n"
            "ping 4 archive/ping_history_20261116T050400.log:4\n"
            "ping 4 filled 240\n"
            "trouble archive/ping_history_20261116T050200.log:2 it is no line of this history\n"
            "trouble archive/ping_history_20261116T050200.log:0 all that it holds is in "
            "archive/ping_history_20261116T050300.log\n"
            "trouble archive/ping_history_20261116T050300.log:0 all that it holds is in "
            "archive/ping_history_20261116T050400.log\n");
}

TEST_F(EvidenceOf, TheRestOfAKilledMoveMayStandBehindTheWhole) {
  write("archive/ping_history_.log", lines(pingLine, 1, 3));
  write("archive/ping_history_20261116T050200.log", lines(pingLine, 1, 2));

  EXPECT_EQ(read(),
            "ping 1 archive/ping_history_.log:1\n"
            "ping 2 archive/ping_history_.log:2\n"
            "ping 3 archive/ping_history_.log:3\n"
            "trouble archive/ping_history_20261116T050200.log:0 all that it holds is in "
            "archive/ping_history_.log\n");
}

TEST_F(EvidenceOf, TheRestOfAKilledMoveIsInTheLiveFile) {
  write("archive/ping_history_20261116T050200.log", lines(pingLine, 1, 2));
  write("ping_history.log", lines(pingLine, 1, 3));

  EXPECT_EQ(read(),
            "ping 1 ping_history.log:1\n"
            "ping 2 ping_history.log:2\n"
            "ping 3 ping_history.log:3\n"
            "trouble archive/ping_history_20261116T050200.log:0 all that it holds is in "
            "ping_history.log\n");
}

TEST_F(EvidenceOf, AnEmptyArchiveIsNothing) {
  write("archive/ping_history_20261116T050200.log", "");
  write("archive/ping_history_20261116T050400.log", pingLine(1));

  EXPECT_EQ(read(),
            "ping 1 archive/ping_history_20261116T050400.log:1\n"
            "ping 1 filled 240\n");
}

TEST_F(EvidenceOf, LinesAreReadInEveryStateOfAFile) {
  const std::string one = pingLine(1);
  const std::string two = pingLine(2);
  const std::string three = pingLine(3);
  const struct {
    std::string text;
    const char* told;
  } cases[] = {
      {"", ""},
      {"\n\n\r\n", ""},
      {one + "\n" + two, "ping 1 ping_history.log:1\nping 2 ping_history.log:3\n"},
      {one + one, "ping 1 ping_history.log:1\nping 1 ping_history.log:2\n"},
      {withoutNewline(one), "ping 1 ping_history.log:1\n"},
      {withoutNewline(one) + "\r\n" + two,
       "ping 1 ping_history.log:1\nping 2 ping_history.log:2\n"},
      {withoutNewline(one) + two, "ping 1 ping_history.log:1\nping 2 ping_history.log:1\n"},
      {withoutNewline(one) + withoutNewline(two) + three,
       "ping 1 ping_history.log:1\nping 2 ping_history.log:1\nping 3 ping_history.log:1\n"},
      {one + two.substr(0, 20) + three,
       "ping 1 ping_history.log:1\nping 3 ping_history.log:2\n"
       "trouble ping_history.log:2 it begins with a line that was cut\n"},
      {one.substr(0, 20) + withoutNewline(two) + three,
       "ping 2 ping_history.log:1\nping 3 ping_history.log:1\n"
       "trouble ping_history.log:1 it begins with a line that was cut\n"},
      {one + two.substr(0, 20),
       "ping 1 ping_history.log:1\n"
       "trouble ping_history.log:2 it is no line of this history\n"},
      {"\xef\xbb\xbf" + one + two,
       "ping 1 ping_history.log:1\nping 2 ping_history.log:2\n"
       "trouble ping_history.log:1 it begins with a line that was cut\n"},
      {std::string(4096, '\0') + one,
       "ping 1 ping_history.log:1\n"
       "trouble ping_history.log:1 it begins with a line that was cut\n"},
      {one + std::string(1'000'000, ',') + "\n" + two,
       "ping 1 ping_history.log:1\nping 2 ping_history.log:3\n"
       "trouble ping_history.log:2 it is no line of this history\n"},
      {std::string(1'000'000, '1') + one + two,
       "ping 1 ping_history.log:1\nping 2 ping_history.log:2\n"
       "trouble ping_history.log:1 it begins with a line that was cut\n"},
      {"a\nb\n" + one,
       "ping 1 ping_history.log:3\n"
       "trouble ping_history.log:1 it is no line of this history\n"
       "trouble ping_history.log:2 it is no line of this history\n"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text.substr(0, 100));
    write("ping_history.log", c.text);

    EXPECT_EQ(read(), c.told);
  }
}

TEST_F(EvidenceOf, JoinedLinesOfEachHistoryAreRead) {
  write("iperf3_history_forward_csv.log", withoutNewline(forwardLine(1)) +
                                              withoutNewline(kNothing) +
                                              forwardLine(2).substr(0, 12) + kNothing);
  write("iperf3_history_reverse_csv.log", withoutNewline(reverseLine(3)) + reverseLine(4));
  write("connection_test_results_history.log",
        withoutNewline(resultLine(5)) + resultLine(6).substr(0, 30) + resultLine(7));

  EXPECT_EQ(read(),
            "forward 0 iperf3_history_forward_csv.log:1\n"
            "reverse 3 iperf3_history_reverse_csv.log:1\n"
            "reverse 4 iperf3_history_reverse_csv.log:1\n"
            "result 7 connection_test_results_history.log:1\n"
            "trouble connection_test_results_history.log:1 it begins with a line that was cut\n"
            "trouble iperf3_history_forward_csv.log:1 it begins with a line that was cut\n");
}

TEST_F(EvidenceOf, WhatIsNoFileIsATroubleAndBlocksNothing) {
  ASSERT_EQ(mkfifo(at("ping_history.log").c_str(), 0600), 0);
  fs::create_directory(at("ping_history_verbose.log"));
  fs::create_symlink("/dev/zero", at("iperf3_latest.log"));
  fs::create_symlink("iperf3_latest-R.log", at("iperf3_latest-R.log"));
  fs::create_symlink("missing", at("iperf3_history_forward_csv.log"));
  fs::create_directories(at("archive/connection_test_results_history_20261116T050200.log"));
  fs::create_symlink("/dev/zero", at("archive/iperf3_history_forward_20261116T050200.log"));
  ASSERT_EQ(mkfifo(at("archive/ping_history_20261116T050200.log").c_str(), 0600), 0);

  EXPECT_EQ(read(),
            "trouble archive/connection_test_results_history_20261116T050200.log:0 it is no file\n"
            "trouble archive/iperf3_history_forward_20261116T050200.log:0 it is no file\n"
            "trouble ping_history.log:0 it is no file\n"
            "trouble archive/ping_history_20261116T050200.log:0 it is no file\n"
            "trouble ping_history_verbose.log:0 it is no file\n"
            "trouble iperf3_latest.log:0 it is no file\n"
            "trouble iperf3_latest-R.log:0 Too many levels of symbolic links\n");
}

TEST_F(EvidenceOf, WhatMayNotBeReadIsATrouble) {
  write("ping_history.log", pingLine(1));
  write("iperf3_history_forward_csv.log", forwardLine(2));
  write("archive/iperf3_history_forward_20261116T050200.log", forwardLine(1));
  fs::permissions(at("ping_history.log"), fs::perms::none);
  fs::permissions(at("archive"), fs::perms::none);

  const std::string read = this->read();
  fs::permissions(at("archive"), fs::perms::owner_all);

  EXPECT_EQ(read,
            "forward 2 iperf3_history_forward_csv.log:1\n"
            "trouble ping_history.log:0 Permission denied\n"
            "trouble archive/:0 Permission denied\n");
}

TEST_F(EvidenceOf, AReportThatWasCutIsATroubleAndAnEmptyOneIsNone) {
  write("iperf3_latest.log", "{\"start\":");
  write("iperf3_latest-R.log", "");

  EXPECT_EQ(read(), "trouble iperf3_latest.log:0 it is no whole report\n");
}

TEST_F(EvidenceOf, OutputsWithoutABeginningAreATrouble) {
  write("ping_history_verbose.log",
        "64 bytes from b: icmp_seq=1 ttl=64 time=10.3 ms\nPING b (b)\n");

  EXPECT_EQ(read(),
            "output b ping_history_verbose.log:2\n"
            "trouble ping_history_verbose.log:1 the output that it belongs to has no beginning\n");
}

TEST_F(EvidenceOf, TheLogOfOutputsMayBeEmptyOrMissing) {
  EXPECT_FALSE(readEvidence(LogDirectory(at(""))).keepsOutputs);

  write("ping_history_verbose.log", "");

  EXPECT_TRUE(readEvidence(LogDirectory(at(""))).keepsOutputs);
}

TEST_F(EvidenceOf, AHistoryThatMovesWhileItIsReadIsReadAgain) {
  fs::create_directory(at("archive"));
  write("ping_history.log", lines(pingLine, 1, 2));
  int listings = 0;
  beforeListing = [&] {
    if (++listings == 2) {
      fs::rename(at("ping_history.log"), at("archive/ping_history_20261116T050200.log"));
      write("ping_history.log", pingLine(3));
    }
  };

  EXPECT_EQ(read(),
            "ping 1 archive/ping_history_20261116T050200.log:1\n"
            "ping 2 archive/ping_history_20261116T050200.log:2\n"
            "ping 3 ping_history.log:1\n"
            "ping 2 filled 120\n");
  EXPECT_EQ(listings, 3);
}

TEST_F(EvidenceOf, AnArchiveThatChangesAllTheTimeIsATrouble) {
  write("ping_history.log", "no line\n");
  int listings = 0;
  beforeListing = [&] { write(fmt::format("archive/ping_history_{}.log", ++listings), ""); };

  EXPECT_EQ(read(),
            "trouble ping_history.log:1 it is no line of this history\n"
            "trouble archive/:0 it changed all the time while it was read\n");
  EXPECT_EQ(listings, 6);
}

TEST_F(EvidenceOf, AnArchiveThatRestsIsListedOnce) {
  write("archive/ping_history_20261116T050100.log", pingLine(1));
  const auto then = std::filesystem::file_time_type::clock::now() - std::chrono::seconds(2);
  std::filesystem::last_write_time(at("archive"), then);
  int listings = 0;
  beforeListing = [&] { ++listings; };

  EXPECT_EQ(read(),
            "ping 1 archive/ping_history_20261116T050100.log:1\n"
            "ping 1 filled 60\n");
  EXPECT_EQ(listings, 1);
}

TEST_F(EvidenceOf, WhatIsRecentLeavesOldArchivesOutButForTwo) {
  write("archive/ping_history_20261116T050001.log", pingLine(1));
  write("archive/ping_history_20261116T050002.log", pingLine(2));
  write("archive/ping_history_20261116T050003.log", pingLine(3));
  write("archive/ping_history_20261116T054400.log", pingLine(4));
  write("archive/ping_history_.log", pingLine(5));
  write("ping_history.log", pingLine(6));

  EXPECT_EQ(readSince("20261116T054400"),
            "ping 2 archive/ping_history_20261116T050002.log:1\n"
            "ping 3 archive/ping_history_20261116T050003.log:1\n"
            "ping 4 archive/ping_history_20261116T054400.log:1\n"
            "ping 5 archive/ping_history_.log:1\n"
            "ping 6 ping_history.log:1\n"
            "ping 2 filled 2\n"
            "ping 3 filled 3\n"
            "ping 4 filled 2640\n");
}

TEST_F(EvidenceOf, WhatIsRecentHasTheLastOutputs) {
  std::string outputs;
  for (int i = 0; i < 10; ++i) {
    outputs += fmt::format("PING {} (b)\n{}\n", i, std::string(2000, '.'));
  }
  write("ping_history_verbose.log", outputs);
  write("ping_history.log", pingLine(4));
  write("connection_test_results_history.log", resultLine(4));

  EXPECT_EQ(readSince("20261116T054400"),
            "ping 4 ping_history.log:1\n"
            "result 4 connection_test_results_history.log:1\n"
            "output 4 ping_history_verbose.log:0\n"
            "output 5 ping_history_verbose.log:0\n"
            "output 6 ping_history_verbose.log:0\n"
            "output 7 ping_history_verbose.log:0\n"
            "output 8 ping_history_verbose.log:0\n"
            "output 9 ping_history_verbose.log:0\n");
}

TEST_F(EvidenceOf, WhatIsRecentHasAllOutputsWhenThereAreFew) {
  write("ping_history_verbose.log", "PING b (b)\n" + std::string(100'000, '.') + "\n");
  write("ping_history.log", pingLine(4));

  const Evidence evidence = readEvidenceSince(LogDirectory(at("")), *parseStamp("20261116T054400"));

  EXPECT_EQ(told(evidence),
            "ping 4 ping_history.log:1\n"
            "output b ping_history_verbose.log:0\n");
  EXPECT_EQ(evidence.files,
            (std::vector<std::string>{"ping_history.log", "ping_history_verbose.log"}));
}

}  // namespace
}  // namespace watch
