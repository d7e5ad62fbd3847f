// The summary line of `ping` in the form that connTester recognises:
//
//   round-trip min/avg/max/stddev = 0.010/0.027/0.038/0.012 ms
#pragma once

#include <string>

/// The round-trip times of the replies so far.
struct ReplyTimes {
  unsigned long long count = 0;
  unsigned long long expectedCount = 0;  // as the statistics say
  double meanMs = 0.0;
  double squaredDeviations = 0.0;  // the sum of the squared deviations from the mean, in ms^2
};

/// Returns `line`, with or without its newline, as the tester is to see it: a summary of iputils or
/// of three numbers in the recognised form, any other line unchanged. The time of a reply is added
/// to `times`; a summary of three numbers gets its standard deviation from there, and stays as it
/// is when not all replies have shown their times.
std::string adaptLine(std::string line, ReplyTimes& times);
