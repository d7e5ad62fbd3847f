// A clock in a file, preloaded under the program: takes the place of time(), clock_gettime() and
// nanosleep().
//
// Files, in the directory that FAKE_DIR names: "clock" (seconds since the epoch; sleeping moves it
// on), "events" (appended: one line for each sleep).
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <string>

namespace {

/// The tools that the program starts keep the real clock.
[[gnu::constructor]] void stayWithTheProgram() {
  unsetenv("LD_PRELOAD");
}

std::string fakeFile(const char* name) {
  const char* const directory = std::getenv("FAKE_DIR");
  if (directory == nullptr) {
    std::fputs("fake_clock: FAKE_DIR is not set\n", stderr);
    std::abort();
  }
  return std::string(directory) + '/' + name;
}

std::time_t readClock() {
  std::time_t now = 0;
  if (!(std::ifstream(fakeFile("clock")) >> now)) {
    std::fputs("fake_clock: the file \"clock\" holds no time\n", stderr);
    std::abort();
  }
  return now;
}

/// In one step: another program may read it at any moment.
void setClock(std::time_t now) {
  const std::string path = fakeFile("clock");
  std::ofstream(path + ".new") << now << '\n';
  std::rename((path + ".new").c_str(), path.c_str());
}

}  // namespace

// The C library's names for the parameters are reserved.
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name)
extern "C" {

std::time_t time(std::time_t* t) noexcept {
  const std::time_t now = readClock();
  if (t != nullptr) {
    *t = now;
  }
  return now;
}

int clock_gettime(clockid_t /*clock*/, std::timespec* now) noexcept {
  *now = {readClock(), 0};
  return 0;
}

int nanosleep(const std::timespec* request, std::timespec* /*remainder*/) {
  setClock(readClock() + request->tv_sec);
  std::ofstream(fakeFile("events"), std::ios::app)
      << "sleep " << request->tv_sec << " s " << request->tv_nsec << " ns\n";
  return 0;
}

}  // extern "C"
// NOLINTEND(readability-inconsistent-declaration-parameter-name)
