#include "harness.h"

#include "log_files.h"
#include "run_state.h"
#include "support/fake_shell.h"
#include "text_buffer.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>

namespace {

constexpr char kLogDirectory[] = "/tmp/fuzz/";

void turnTracesOn() {
  ConfigurationParameters.debugPrintPing = true;
  ConfigurationParameters.debugConfFile = true;
  ConfigurationParameters.debugPrintLast = true;
  ConfigurationParameters.debugPrintHistory = true;
}

}  // namespace

std::size_t commandCount = 0;

void startRun() {
  commandCount = 0;
  fakeShell = [](const char* /*command*/) {
    ++commandCount;
    return 0;
  };
  ConfigurationParameters = {};
  turnTracesOn();
  outputResults = {};
  std::filesystem::remove_all(kLogDirectory);
  std::filesystem::create_directories(kLogDirectory);
  formatInto(LOG_PATH, "%s", kLogDirectory);
  formatInto(LOG_PATH_ARCHIVE, "%sarchive/", kLogDirectory);
}

void requireDocumented(const std::string& message, std::initializer_list<const char*> documented) {
  const bool isDocumented =
      std::any_of(documented.begin(), documented.end(),
                  [&message](const char* start) { return message.starts_with(start); });
  require(isDocumented, message.c_str());
}

void requireSoundPingHistory(std::size_t otherCommands) {
  const std::string path = logFile("ping_history.log");
  const std::string history = fileExists(path) ? readFile(path) : "";
  const auto lines = static_cast<std::size_t>(std::count(history.begin(), history.end(), '\n'));
  require(history.empty() || history.back() == '\n', "the history is whole lines");
  require(outputResults.latencyValid == (lines > 0), "a latency has its line in the history");
  const std::size_t moves = lines < kFullHistoryLines ? 0 : lines - kFullHistoryLines + 1;
  require(commandCount == otherCommands + moves, "a full history is moved");
}

// The linker hands the calls of nanosleep() to this; the name is its own.
// NOLINTNEXTLINE(bugprone-reserved-identifier,readability-identifier-naming)
extern "C" int __wrap_nanosleep(const std::timespec* /*request*/, std::timespec* /*remainder*/) {
  return 0;
}

// NOLINTNEXTLINE(readability-identifier-naming)
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  startRun();
  readInput({reinterpret_cast<const char*>(data), size});
  return 0;
}
