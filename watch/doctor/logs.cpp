#include "doctor/logs.h"

#include "doctor/checks.h"
#include "evidence/log_directory.h"
#include "run_limits.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fmt/format.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace watch {

namespace {

namespace fs = std::filesystem;

constexpr char kSubject[] = "logs";

/// A year of hourly runs takes about 20 MB, and a run has to have room for its reports at least.
constexpr std::uint64_t kLittleRoom = 50'000'000;
constexpr std::uint64_t kNoRoom = 1'000'000;

Finding toMend(const std::string& text, const std::string& remedy = {}) {
  return {Level::mend, kSubject, text, remedy};
}

/// Returns the first of `path` and its parents that is there.
fs::path existing(fs::path path) {
  std::error_code error;
  while (!fs::exists(path, error) && path != path.root_path()) {
    path = path.parent_path();
  }
  return path;
}

std::optional<std::uint64_t> roomIn(const fs::path& path) {
  struct statvfs room = {};
  if (statvfs(path.c_str(), &room) != 0) {
    return std::nullopt;
  }
  return static_cast<std::uint64_t>(room.f_bavail) * room.f_frsize;
}

/// "412 MB", "77 GB".
std::string sizeText(std::uint64_t bytes) {
  constexpr std::uint64_t kMega = 1'000'000;
  const std::uint64_t megabytes = bytes / kMega;
  return megabytes < 10'000 ? fmt::format("{} MB", megabytes)
                            : fmt::format("{} GB", megabytes / 1000);
}

bool isOthers(const fs::path& path) {
  struct stat status = {};
  return lstat(path.c_str(), &status) == 0 && status.st_uid != geteuid();
}

/// Finds what the start command refuses: files of others, FIFOs and devices.
void checkFiles(const Workstation& workstation, Findings& findings) {
  std::error_code error;
  for (const fs::directory_entry& entry : fs::directory_iterator(workstation.logs, error)) {
    const std::string name = entry.path().filename().string();
    const bool isRead = name == "archive" || name == "connTester.lock" || name == "nul" ||
                        name == kResultLatest || name.ends_with(".log");
    std::error_code none;
    if (!isRead) {
      continue;
    }
    if (fs::exists(entry.path(), none) && !fs::is_regular_file(entry.path(), none) &&
        !fs::is_directory(entry.path(), none)) {
      findings.push_back(
          toMend(fmt::format("{} is neither a file nor a directory: no run begins. "
                             "Remove it",
                             shortened(workstation, entry.path()))));
    } else if (isOthers(entry.path())) {
      findings.push_back(
          toMend(fmt::format("{} is not yours: no run begins. Remove it, or make it "
                             "yours",
                             shortened(workstation, entry.path()))));
    }
  }
  if (error) {
    findings.push_back(
        {Level::unknown, kSubject, fmt::format("its files cannot be listed: {}", error.message())});
  }
}

/// Why full histories would not move there, and "" when they would.
std::string whyNoArchive(const fs::path& archive) {
  std::error_code error;
  if (!fs::exists(archive, error)) {
    return fs::is_symlink(archive, error) ? "is a link to nowhere" : "";
  }
  if (!fs::is_directory(archive, error)) {
    return "is no directory";
  }
  return access(archive.c_str(), W_OK | X_OK) != 0
             ? std::string("cannot be written: ") + std::strerror(errno)
             : "";
}

/// A history moves as soon as it is full, so that one which is still there could not.
void checkHistories(const Workstation& workstation, Findings& findings) {
  for (const History& history : kHistories) {
    unsigned lines = 0;
    Troubles troubles;
    LogDirectory(workstation.logs)
        .readLines(history.live, troubles,
                   [&lines](std::string_view, std::uint32_t number) { lines = number; });
    for (const Trouble& trouble : troubles) {
      findings.push_back(toMend(
          fmt::format("{} cannot be read ({}): no run archives it", trouble.file, trouble.what)));
    }
    if (lines >= kFullHistoryLines) {
      findings.push_back({Level::look, kSubject,
                          fmt::format("{} has {} lines and has not moved to the archive at {}. The "
                                      "next run tries again",
                                      history.live, lines, kFullHistoryLines)});
    }
  }
}

/// The directory itself, or the first of its parents that is there: whether a run can write in it.
Finding checkDirectory(const Workstation& workstation) {
  const fs::path place = existing(workstation.logs);
  const std::string name = shortened(workstation, place);
  std::error_code error;
  if (!fs::is_directory(place, error)) {
    return toMend(fmt::format("{} is no directory. Remove it", name));
  }
  if (isOthers(place) && place == workstation.logs) {
    return toMend(fmt::format("{} is not yours: no run begins. Remove it, or make it yours", name));
  }
  if (access(place.c_str(), W_OK | X_OK) != 0) {
    return toMend(fmt::format("{} cannot be written: {}", name, std::strerror(errno)));
  }
  Finding room = judgeRoom(name, roomIn(place));
  if (room.level == Level::well && place != workstation.logs) {
    room.text += fmt::format("; the first run makes {}", shortened(workstation, workstation.logs));
  }
  return room;
}

/// The start command closes it to others.
void checkMode(const Workstation& workstation, Findings& findings) {
  struct stat status = {};
  if (stat(workstation.logs.c_str(), &status) == 0 && (status.st_mode & 077U) != 0) {
    findings.push_back({Level::look, kSubject,
                        fmt::format("{} is open to others until the next run of connTester. Close "
                                    "it:",
                                    shortened(workstation, workstation.logs)),
                        "chmod 700 ~/Library/Logs/Qelmora"});
  }
}

void checkArchive(const Workstation& workstation, Findings& findings) {
  const fs::path archive = workstation.logs / kArchiveDirectory;
  if (const std::string reason = whyNoArchive(archive.parent_path()); !reason.empty()) {
    findings.push_back(
        toMend(fmt::format("{} {}: full histories stay. Remove it, or make it a "
                           "directory of yours",
                           shortened(workstation, archive.parent_path()), reason)));
  }
}

}  // namespace

Finding judgeRoom(const std::string& name, std::optional<std::uint64_t> bytes) {
  if (!bytes) {
    return {Level::unknown, kSubject, fmt::format("how much room is in {} is not known", name)};
  }
  if (*bytes < kNoRoom) {
    return toMend(
        fmt::format("{} has less than a megabyte free: lines will be cut. Make room", name));
  }
  return *bytes < kLittleRoom
             ? Finding{Level::look, kSubject,
                       fmt::format("{} has {} free. Make room", name, sizeText(*bytes))}
             : Finding{Level::well, kSubject,
                       fmt::format("{}: writable, {} free", name, sizeText(*bytes))};
}

Findings checkLogs(const Workstation& workstation) {
  if (!canUseHome(workstation)) {
    return {{Level::unknown, kSubject, "not known before HOME is mended"}};
  }
  Findings findings = {checkDirectory(workstation)};
  std::error_code error;
  if (fs::is_directory(workstation.logs, error)) {
    checkMode(workstation, findings);
    checkArchive(workstation, findings);
    checkFiles(workstation, findings);
    checkHistories(workstation, findings);
  }
  return findings;
}

}  // namespace watch
