#include "support/run_fixture.h"

#include "config/config_file.h"
#include "run_state.h"
#include "support/fake_shell.h"
#include "text_buffer.h"
#include "time_services.h"

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <stdexcept>

namespace {

template <std::size_t N>
void clear(char (&buffer)[N]) {
  std::fill(std::begin(buffer), std::end(buffer), '\0');
}

void resetGlobals() {
  ConfigurationParameters = {};
  outputResults = {};
  clear(LOG_PATH);
  clear(LOG_PATH_ARCHIVE);
  clear(currentTimeStamp);
  clear(pingStartTimeStamp);
  clear(iperfStartTimeStamp);
  clear(cmd);
  clear(ipaddr);
  clear(filepath);
  myName = "";
  arg_count = 0;
  iperf2_prog = "iperf2-win-2.1.7.exe";
  iperf3_prog = "iperf3.exe";
  tzsetDone = false;
}

}  // namespace

void RunFixture::SetUp() {
  resetGlobals();
  setenv("TZ", "UTC", 1);
  tzset();
  fakeHost = {};
  fakeHost.now = kStartTime;
  fakeTimebase = kTimebaseAtStart;
  fakeShell = [](const char* command) { return fakeHost.run(command); };
  std::cout.precision(6);

  char directory[] = "/tmp/run.XXXXXX";
  ASSERT_NE(mkdtemp(directory), nullptr);
  std::filesystem::current_path(directory);
  std::filesystem::create_directories("logs/archive");
  setenv("HOME", directory, 1);
  formatInto(LOG_PATH, "%s/logs/", directory);
  formatInto(LOG_PATH_ARCHIVE, "%s/logs/archive/", directory);
  formatInto(currentTimeStamp, "%s", kStartStamp);
}

void RunFixture::TearDown() {
  const std::filesystem::path directory = std::filesystem::current_path();
  std::filesystem::current_path("/");
  std::filesystem::remove_all(directory);
  if (configured_) {
    std::filesystem::remove_all(kConfigPath);
  }
}

std::string RunFixture::endingOf(const std::function<void()>& step) {
  try {
    step();
    return "returns";
  } catch (const std::invalid_argument&) {
    return "invalid_argument";
  } catch (const std::out_of_range&) {
    return "out_of_range";
  }
}

void RunFixture::configure(const std::string& text) {
  ASSERT_FALSE(fileExists(kConfigPath)) << "a configuration of the machine's own";
  configured_ = true;
  writeFile(kConfigPath, text);
}

void RunFixture::flipPrintsBut(bool Configuration::*own) {
  for (bool Configuration::*print :
       {&Configuration::debugPrintPing, &Configuration::debugConfFile,
        &Configuration::debugPrintIperf, &Configuration::debugPrintLast,
        &Configuration::debugPrintHistory}) {
    if (print != own) {
      ConfigurationParameters.*print = !(ConfigurationParameters.*print);
    }
  }
}

void RunFixture::useLongestLogDirectory() {
  std::string directory = std::filesystem::current_path().string() + "/";
  directory.resize(204, 'd');
  formatInto(LOG_PATH, "%s/", directory.c_str());
  formatInto(LOG_PATH_ARCHIVE, "%s/archive/", directory.c_str());
  std::filesystem::create_directories(LOG_PATH_ARCHIVE);
}

std::string testData(const std::string& name) {
  return TEST_DATA_DIR "/" + name;
}

std::string repeated(const std::string& text, int count) {
  std::string all;
  for (int i = 0; i < count; ++i) {
    all += text;
  }
  return all;
}
