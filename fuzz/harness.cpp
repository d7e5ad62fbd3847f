#include "harness.h"

#include "log_files.h"
#include "run_state.h"
#include "text_buffer.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>

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
  ConfigurationParameters = {};
  turnTracesOn();
  outputResults = {};
  std::filesystem::remove_all(kLogDirectory);
  std::filesystem::create_directories(kLogDirectory);
  formatInto(LOG_PATH, "%s", kLogDirectory);
  formatInto(LOG_PATH_ARCHIVE, "%sarchive/", kLogDirectory);
}

void writeFile(const std::string& path, const std::string& text) {
  std::ofstream file(path, std::ios::binary);
  file << text;
  require(file.good(), "the input can be written");
}

std::string readFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::string logFile(const std::string& name) {
  return LOG_PATH + name;
}

void require(bool kept, const char* promise) {
  if (!kept) {
    std::fprintf(stderr, "broken promise: %s\n", promise);
    std::abort();
  }
}

void requireDocumented(const std::string& message, std::initializer_list<const char*> documented) {
  const bool isDocumented =
      std::any_of(documented.begin(), documented.end(),
                  [&message](const char* start) { return message.starts_with(start); });
  require(isDocumented, message.c_str());
}

void requireSoundPingHistory(std::size_t otherCommands) {
  const std::string history = readFile(logFile("ping_history.log"));
  const auto lines = static_cast<std::size_t>(std::count(history.begin(), history.end(), '\n'));
  require(history.empty() || history.back() == '\n', "the history is whole lines");
  require(outputResults.latencyValid == (lines > 0), "a latency has its line in the history");
  const std::size_t moves = lines < kFullHistoryLines ? 0 : lines - kFullHistoryLines + 1;
  require(commandCount == otherCommands + moves, "a full history is moved");
}

// The linker hands the calls of system() and nanosleep() to these; their names are its own.
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming)
extern "C" int __wrap_system(const char* /*command*/) {
  ++commandCount;
  return 0;
}

extern "C" int __wrap_nanosleep(const std::timespec* /*request*/, std::timespec* /*remainder*/) {
  return 0;
}
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)

// NOLINTNEXTLINE(readability-identifier-naming)
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  startRun();
  readInput({reinterpret_cast<const char*>(data), size});
  return 0;
}
