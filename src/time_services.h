// Clock and calendar: stamps, texts of time and date, clocks in seconds, the sleep.
#pragma once

#include <cstdint>
#include <ctime>

/// Ticks of the monotonic clock a second; set before main() starts.
extern const double frequency;

/// Whether getServerTimeInSeconds() has loaded the time zone.
inline bool tzsetDone = false;

/// Writes the local time of `t` (seconds since the epoch) as YYYYMMDDTHHMMSS.
/// `dst` holds 16 characters; a stamp of a year past 9999 is cut. Returns the uncut length (15).
int getDateTimeString(char* dst, long t);

/// The same for the current time.
int getDateTimeString(char* dst);

/// Writes the current local time as HH:MM:SS; `dst` holds 9 characters.
void getTimeString(char* dst);

/// Writes the current local date as MM/DD/YY; `dst` holds 9 characters.
void getDateString(char* dst);

/// Returns the `ctime` text of `*t` (seconds since the epoch), of time 0 if that fails, "" if both
/// do. The text lies in the C library's static buffer.
const char* dateTimeToString(const unsigned* t);

/// Writes the `ctime_r` text of `*t` (seconds since the epoch) and returns what `ctime_r` returns.
char* dateTimeToString(const unsigned* t, char (*buf)[26]);

/// Ticks of the monotonic clock a microsecond, asked for anew in each call.
double cpuSpeedMhz();

/// The monotonic clock in seconds.
double getFPTimeInSeconds();

/// The monotonic clock in whole microseconds.
std::uint64_t getFPTimeInuSeconds();

/// Seconds since the epoch. The first call loads the time zone and sets `tzsetDone`.
std::time_t getServerTimeInSeconds();

/// Sleeps `ms` milliseconds, at least 3, and returns what `nanosleep` returned.
/// A sleep that a signal ends is not resumed.
int Delay(int ms);
