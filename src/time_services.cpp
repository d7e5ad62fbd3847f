#include "time_services.h"

#include "monotonic_clock.h"

#include <algorithm>
#include <cstdio>

namespace {

constexpr char kStampFormat[] = "%04d%02d%02dT%02d%02d%02d";
constexpr std::size_t kStampSize = sizeof("YYYYMMDDTHHMMSS");

constexpr int kShortestDelayMs = 3;

double ticksPerSecond() {
  const ClockTimebase timebase = monotonicTimebase();
  return static_cast<double>(timebase.denom) / static_cast<double>(timebase.numer) * 1000.0 *
         1000.0 * 1000.0;
}

std::tm localTime(std::time_t t) {
  std::tm local = {};
  localtime_r(&t, &local);
  return local;
}

void writeTwoDigits(char* dst, int number) {
  dst[0] = static_cast<char>('0' + number / 10 % 10);
  dst[1] = static_cast<char>('0' + number % 10);
}

void writeThreeFields(char* dst, char separator, int first, int second, int third) {
  writeTwoDigits(dst, first);
  dst[2] = separator;
  writeTwoDigits(dst + 3, second);
  dst[5] = separator;
  writeTwoDigits(dst + 6, third);
  dst[8] = '\0';
}

}  // namespace

const double frequency = ticksPerSecond();

int getDateTimeString(char* dst, long t) {
  const std::tm local = localTime(t);
  return std::snprintf(dst, kStampSize, kStampFormat, local.tm_year + 1900, local.tm_mon + 1,
                       local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec);
}

int getDateTimeString(char* dst) {
  return getDateTimeString(dst, std::time(nullptr));
}

void getTimeString(char* dst) {
  const std::tm local = localTime(std::time(nullptr));
  writeThreeFields(dst, ':', local.tm_hour, local.tm_min, local.tm_sec);
}

void getDateString(char* dst) {
  const std::tm local = localTime(std::time(nullptr));
  writeThreeFields(dst, '/', local.tm_mon + 1, local.tm_mday, (local.tm_year + 1900) % 100);
}

const char* dateTimeToString(const unsigned* t) {
  const std::time_t widened = *t;
  if (const char* text = std::ctime(&widened); text != nullptr) {
    return text;
  }
  const std::time_t epoch = 0;
  const char* text = std::ctime(&epoch);
  return text != nullptr ? text : "";
}

char* dateTimeToString(const unsigned* t, char (*buf)[26]) {
  const std::time_t widened = *t;
  return ctime_r(&widened, *buf);
}

double cpuSpeedMhz() {
  const ClockTimebase timebase = monotonicTimebase();
  return static_cast<double>(timebase.denom) / static_cast<double>(timebase.numer) * 1000.0;
}

double getFPTimeInSeconds() {
  return static_cast<double>(monotonicTicks()) / frequency;
}

std::uint64_t getFPTimeInuSeconds() {
  return static_cast<std::uint64_t>(static_cast<double>(monotonicTicks()) / cpuSpeedMhz());
}

std::time_t getServerTimeInSeconds() {
  if (!tzsetDone) {
    tzset();
    tzsetDone = true;
  }
  return std::time(nullptr);
}

int Delay(int ms) {
  const int length = std::max(ms, kShortestDelayMs);
  const std::timespec request = {length / 1000, length % 1000 * 1'000'000L};
  return nanosleep(&request, nullptr);
}
