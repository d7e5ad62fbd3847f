// The latency of the run, as every ping parser records it.
//
// Writes `latencyValid`, `latencyMs` and `dateTime` of `outputResults`.
#pragma once

/// Records `averageMs` as the run's latency, measured now: cut to whole milliseconds, of which the
/// low 32 bits are kept. A value that 64 bits cannot hold, or that is not a number, counts as 0.
void recordLatency(double averageMs);
