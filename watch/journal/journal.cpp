#include "journal/journal.h"

#include "files.h"
#include "journal/latest_reports.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <filesystem>
#include <fmt/format.h>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace watch {

namespace {

class JournalFile {
 public:
  explicit JournalFile(std::filesystem::path path)
      : path_(std::move(path)),
        descriptor_(open(path_.c_str(), O_RDWR | O_APPEND | O_CREAT | O_CLOEXEC | O_NOFOLLOW,
                         S_IRUSR | S_IWUSR)) {
    // Until it is closed, so that nobody sees half a line.
    if (descriptor_ < 0 || flock(descriptor_, LOCK_EX) != 0) {
      fail(errno);
    }
  }
  ~JournalFile() { close(descriptor_); }
  JournalFile(const JournalFile&) = delete;
  JournalFile& operator=(const JournalFile&) = delete;

  bool endsTorn() const {
    struct stat status {};
    char last = '\n';
    return fstat(descriptor_, &status) == 0 && status.st_size > 0 &&
           pread(descriptor_, &last, 1, status.st_size - 1) == 1 && last != '\n';
  }

  void append(const std::string& text) {
    const ssize_t written = write(descriptor_, text.data(), text.size());
    if (written < 0) {
      fail(errno);
    } else if (std::cmp_less(written, text.size())) {
      fail(ENOSPC);
    }
  }

 private:
  [[noreturn]] void fail(int why) const {
    throw std::system_error(why, std::generic_category(), "cannot write " + path_.string());
  }

  std::filesystem::path path_;
  int descriptor_;
};

/// A file is of a finished run when it was written between its start and its result: the next run
/// writes it behind that.
LatestOfRun filesOf(const Run& run, const LatestTimes& written) {
  using std::chrono::floor;
  using std::chrono::seconds;
  LatestOfRun isOfRun{};
  const auto& result = written.back();
  for (std::size_t i = 0; run.finished && result && i < written.size(); ++i) {
    if (written[i]) {
      const auto time = floor<seconds>(std::chrono::file_clock::to_sys(*written[i]));
      isOfRun[i] = *written[i] <= *result && time.time_since_epoch().count() >= *run.time;
    }
  }
  return isOfRun;
}

/// A report tells by the start and the port of its test which line it has led to; without a test,
/// only the time of its file can tell.
std::optional<JournalTest> testOf(const std::optional<Iperf3Report>& report,
                                  const std::vector<Iperf3Line>& history, const Source& line,
                                  bool isInTime) {
  if (!report) {
    return std::nullopt;
  }
  const bool isLast = line.isThere() && line.file == history.back().from.file &&
                      line.first == history.back().from.first;
  const bool isOfRun = report->start ? isLast && report->start == history.back().start &&
                                           report->clientPort == history.back().clientPort
                                     : isLast && isInTime;
  return isOfRun ? std::optional(JournalTest{*report, ""}) : std::nullopt;
}

/// A line without a key would lead to no run, and so be added again by each command.
bool isNew(const JournalLine& line, const std::vector<JournalLine>& journal) {
  const RunKeys keys = keysOf(line);
  return (keys.ping || keys.write || keys.read) &&
         std::ranges::none_of(journal,
                              [&](const JournalLine& other) { return isSameRun(line, other); });
}

}  // namespace

void appendToJournal(const LogDirectory& directory, const JournalLine& line, EpochSeconds time) {
  const int year = calendar(localTime(time)).year;
  JournalFile file(directory.path() / fmt::format("{}{:04}{}", kJournalBegin, year, kJournalEnd));
  std::string text = journalText(line);
  if (file.endsTorn()) {
    text.insert(text.begin(), '\n');
  }
  file.append(text);
}

bool keepLatestReports(const LogDirectory& directory, const Evidence& evidence,
                       const std::vector<Run>& runs) {
  const auto last =
      std::ranges::find_if(runs.rbegin(), runs.rend(), [](const Run& run) { return !run.orphan; });
  if (last == runs.rend() || last->ongoing || !last->time || last->journal.isThere()) {
    return false;
  }
  const auto [hasPing, hasForward, hasReverse, hasResult] =
      filesOf(*last, timesOfLatest(directory));
  JournalLine line = readLatestReports(directory, {hasPing, false, false, hasResult});
  line.write = testOf(evidence.forwardReport, evidence.forward.all, last->forward, hasForward);
  line.read = testOf(evidence.reverseReport, evidence.reverse.all, last->reverse, hasReverse);
  if (line.ping && last->timeSource == TimeSource::ping) {
    line.ping->start = localTime(*last->time);
  }
  if (!isNew(line, evidence.journal)) {
    return false;
  }
  try {
    appendToJournal(directory, line, *last->time);
    return true;
  } catch (const std::system_error&) {
    return false;
  }
}

}  // namespace watch
