#include "doctor/checks.h"
#include "doctor/tool.h"
#include "views/words.h"

#include <chrono>
#include <fmt/format.h>
#include <sstream>

namespace watch {

namespace {

constexpr char kSubject[] = "timer";

Finding describe(const Timer& timer, EpochSeconds now) {
  const std::string last = timer.last ? "last " + ago(*timer.last, now) : "no run yet";
  if (!timer.next) {
    return {Level::look, kSubject,
            fmt::format("{}: no next run is due, {}. Switch it on again:", timer.unit, last),
            "systemctl --user restart " + timer.unit};
  }
  return {Level::well, kSubject,
          fmt::format("{}: next run {}, {}", timer.unit,
                      *timer.next > now ? ago(*timer.next, now) : "now", last)};
}

/// When cron starts runs: the five fields of each line that does, or why that is not known.
struct Cron {
  std::vector<std::string> schedules;
  std::string trouble;
};

/// Returns the first five words of a line that is no comment.
std::optional<std::string> scheduleOf(const std::string& line) {
  std::istringstream words(line);
  std::string schedule;
  std::string word;
  for (int count = 0; count < 5 && words >> word; ++count) {
    if (word.starts_with('#')) {
      return std::nullopt;
    }
    schedule += (count > 0 ? " " : "") + word;
    if (word.starts_with('@')) {
      break;
    }
  }
  return schedule;
}

bool startsRuns(const std::string& line) {
  return line.find("connTester") != std::string::npos ||
         line.find("connWatch run") != std::string::npos;
}

Cron askCron(const std::string& searchPath) {
  constexpr std::chrono::seconds kLimit{3};
  const auto crontab = findProgram("crontab", searchPath);
  if (!crontab) {
    return {};
  }
  const Answer answer = ask({*crontab, "-l"}, searchPath, kLimit);
  if (!answer.succeeded()) {
    const bool isEmpty = answer.text.find("no crontab for") != std::string::npos;
    return {{}, isEmpty ? "" : failure(answer)};
  }
  Cron cron;
  std::istringstream lines(answer.text);
  for (std::string line; std::getline(lines, line);) {
    const auto schedule = startsRuns(line) ? scheduleOf(line) : std::nullopt;
    if (schedule) {
      cron.schedules.push_back(firstLine(*schedule));
    }
  }
  return cron;
}

Finding describeNone(const Workstation& workstation, const std::string& cronTrouble) {
  if (!workstation.timers.trouble.empty()) {
    return {Level::unknown, kSubject,
            fmt::format("systemd does not tell whether runs are started every hour: {}{}",
                        workstation.timers.trouble,
                        cronTrouble.empty() ? "; your crontab starts none" : "")};
  }
  if (!cronTrouble.empty()) {
    return {Level::unknown, kSubject,
            fmt::format("systemd starts no runs; whether cron does is not known: {}", cronTrouble)};
  }
  return {Level::look, kSubject,
          "nothing starts a run every hour, neither systemd nor your crontab. Switch it on:",
          fmt::format("systemctl --user enable --now connTester@{}.timer",
                      workstation.address.empty() ? "ADDRESS" : workstation.address)};
}

}  // namespace

Findings checkTimer(const Workstation& workstation) {
  Findings findings;
  for (const Timer& timer : workstation.timers.all) {
    findings.push_back(describe(timer, workstation.now));
  }
  const Cron cron = askCron(workstation.path);
  for (const std::string& schedule : cron.schedules) {
    findings.push_back(
        {Level::well, kSubject, fmt::format("your crontab starts runs at {}", schedule)});
  }
  if (findings.empty()) {
    findings.push_back(describeNone(workstation, cron.trouble));
  }
  return findings;
}

}  // namespace watch
