// A run, put together from the lines that it left, and what can be said of it.
#pragma once

#include "evidence/iperf3_report.h"
#include "evidence/source.h"
#include "local_time.h"

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace watch {

inline constexpr double kNotMeasured = std::numeric_limits<double>::quiet_NaN();

enum class RateState : std::uint8_t {
  /// Cannot be told.
  unknown,
  /// Measured for the time that it was to take.
  full,
  /// Bytes were moved, for another time or with an error: the rate is none of the line.
  cut,
  /// A connection stood, and no byte was moved.
  nothingMoved,
  /// No connection.
  noTest,
  /// The measurement of the run before once more.
  stale,
  /// Switched off, or the run was ended before.
  off,
};

enum class PingState : std::uint8_t {
  unknown,
  /// The tester has read a summary of four numbers.
  replied,
  /// It has recorded zeros, though there were replies.
  falseZero,
  /// There were replies, and it has read no summary.
  unread,
  /// Nothing came back.
  noReply,
  /// No ping ran.
  noOutput,
  stale,
  off,
};

enum class Class : std::uint8_t { ok, partial, failed };

/// What tells the time of a run.
enum class TimeSource : std::uint8_t { none, journal, ping, forward, reverse, archiveStamp };

/// The names of exports and views.
const char* name(RateState state);
const char* name(PingState state);
const char* name(Class runClass);
const char* name(TimeSource source);

/// Times are milliseconds. What is not known is kNotMeasured, or nothing.
struct Ping {
  PingState state = PingState::unknown;
  double min = kNotMeasured;
  double avg = kNotMeasured;
  double max = kNotMeasured;
  double stddev = kNotMeasured;
  std::optional<std::uint32_t> sent;
  std::optional<std::uint32_t> received;
  /// Why it is not `replied`, in the words of ping, where they are known.
  std::string reason = {};

  /// Percent, or kNotMeasured.
  double loss() const;
  bool isMeasured() const;
};

struct Rate {
  RateState state = RateState::unknown;
  double bps = kNotMeasured;
  std::optional<std::uint64_t> bytes;
  /// For how long it was measured, and how long that was to take.
  double seconds = kNotMeasured;
  std::optional<std::uint32_t> duration;
  /// Why it is not `full`, where that is known.
  std::string reason;
  /// What iperf3 reports of the packets that it sent once more, and of the round trips while it
  /// sent; where its report was kept.
  std::optional<std::uint64_t> retransmits = {};
  std::optional<LoadedRoundTrips> roundTrips = {};
  /// How long no byte came through. Part of `seconds`.
  double emptySeconds = kNotMeasured;

  /// Only such a rate is a figure of the line.
  bool isMeasured() const { return state == RateState::full; }
};

struct Run {
  /// Nothing where it is only known between which others the run was.
  std::optional<EpochSeconds> time;
  TimeSource timeSource = TimeSource::none;
  /// The local time of the run comes twice, and nothing tells which one it was.
  bool foldUnresolved = false;
  Class runClass = Class::failed;
  /// It has come to its result line.
  bool finished = false;
  /// How it ended, and in what, where that was seen: "ended by ^C in read test". Else empty.
  std::string ended;
  /// It has not yet, and may still do so. What it has not measured up to now says nothing.
  bool ongoing = false;
  /// Only the output of a ping, of which no run can be named.
  bool orphan = false;
  /// What else its lines could belong to, in words. Empty when nothing.
  std::string unsure;
  /// Of which figures that may be.
  bool pingUnsure = false;
  bool ratesUnsure = false;
  Ping ping;
  Rate write;
  Rate read;
  std::string client;
  std::string server;
  /// The unit of the result line, in bits per second.
  std::uint64_t unitBps = 1;
  Source result;
  Source forward;
  Source reverse;
  std::vector<Source> pings;
  std::vector<Source> outputs;
  Source journal;
};

/// Says in a few words what is wrong with a run that is not ok: "read cut, 3 of 10 s".
std::string reason(const Run& run);

}  // namespace watch
