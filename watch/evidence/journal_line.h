// A line of the journal, runs-YYYY.jsonl: of one run, what the next one overwrites, and what no
// file tells. docs/files.md says what each member is.
#pragma once

#include "evidence/iperf3_report.h"
#include "evidence/ping_output.h"
#include "evidence/source.h"
#include "local_time.h"
#include "run_state.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace watch {

struct JournalPing {
  /// That of its line in ping_history.log. Nothing where it has none.
  std::optional<LocalTime> start;
  PingOutput output;
  /// The line of ping's summary, as it stands there.
  std::string summary;
  /// What ping, or its adapter, has complained of.
  std::string said;
};

struct JournalTest {
  Iperf3Report report;
  /// What iperf3, or its adapter, has complained of.
  std::string said;
};

/// What is not there is not known.
struct JournalLine {
  // Of a guarded run.
  std::optional<EpochSeconds> start;
  std::optional<EpochSeconds> end;
  /// "finished", or how else: "ended by ^C in read test".
  std::string ended;
  /// As it was given.
  std::string address;
  std::optional<Configuration> settings;

  // Of any run.
  std::optional<JournalPing> ping;
  std::optional<JournalTest> write;
  std::optional<JournalTest> read;
  /// What the tester has printed at its end.
  std::string result;
  Source from;

  /// connWatch has seen the run from its start to its end: what is not there was not.
  bool isGuarded() const { return start.has_value(); }
};

/// A second, and for a test the ports of its connection: no other run has it.
using RunKey = std::pair<std::int64_t, std::uint32_t>;

/// Returns nothing for a test that did not begin.
std::optional<RunKey> keyOfTest(std::optional<EpochSeconds> start, std::uint16_t clientPort,
                                std::uint16_t serverPort);

/// By what a line tells its run.
struct RunKeys {
  std::optional<RunKey> start;
  std::optional<RunKey> ping;
  std::optional<RunKey> write;
  std::optional<RunKey> read;
};
RunKeys keysOf(const JournalLine& line);

/// Returns whether both are of one run: they have a key in common, and none that differs.
bool isSameRun(const JournalLine& one, const JournalLine& other);

/// Returns the line with its newline.
std::string journalText(const JournalLine& line);

/// Reads a line without its newline. Returns nothing for one that is not whole, or of a format that
/// is not known.
std::optional<JournalLine> parseJournalLine(std::string_view text);

}  // namespace watch
