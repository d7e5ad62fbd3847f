// Runs as joinRuns makes them, for tests.
#pragma once

#include "runs/run.h"

/// 2026-11-21T10:00:00+01:00, a Saturday.
inline constexpr watch::EpochSeconds kNow = 1'795'251'600;
inline constexpr watch::EpochSeconds kHour = 3600;
inline constexpr watch::EpochSeconds kDay = 24 * kHour;

/// 13.0 ms of 10 pings, write 41.0 and read 244.0 Mbit/s.
watch::Run okRun(watch::EpochSeconds time);
/// The read test was cut after 3.1 s.
watch::Run cutRun(watch::EpochSeconds time);
/// Nothing came back: no ping, no test.
watch::Run failedRun(std::optional<watch::EpochSeconds> time);
/// It was ended in its read test.
watch::Run endedRun(watch::EpochSeconds time);
/// Ping was switched off, or there was none: nothing tells which.
watch::Run unsureRun(watch::EpochSeconds time);
/// Only the output of a ping.
watch::Run orphan();
/// The lines of its tests could be another's.
watch::Run runOfUnsureRates(watch::EpochSeconds time);
