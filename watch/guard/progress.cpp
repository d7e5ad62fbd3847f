#include "guard/progress.h"

#include "evidence/text.h"
#include "log_files.h"

#include <algorithm>

namespace watch {

namespace {

constexpr std::string_view kBanner = "current time ";
constexpr std::string_view kPingBegins = "ping cmd: ";
constexpr std::string_view kReportIsRead = " read latest file is ";
constexpr std::string_view kHistoryIsCounted = "history file line count ";
constexpr std::string_view kResult = "Date = ";

/// How the words of a tool begin. The adapters have names of their own.
constexpr struct {
  std::string_view beginning;
  bool isPing;
} kComplaints[] = {
    {"ping: ", true}, {"ping adapter: ", true}, {"iperf3: ", false}, {"iperf3 adapter: ", false}};

bool isReadingOf(const DirectionFiles& files, std::string_view line) {
  return line.starts_with(kReportIsRead) && line.ends_with(files.report);
}

}  // namespace

void Progress::advance(Step step) {
  step_ = std::max(step_, step);
}

/// The write test may have begun unseen: what iperf3 says before the read test is of that.
void Progress::takeComplaint(std::string_view line) {
  for (const auto& [beginning, isPing] : kComplaints) {
    if (line.starts_with(beginning)) {
      const Step step = isPing ? Step::ping : std::clamp(step_, Step::write, Step::read);
      std::string& complaint = complaints_.at(static_cast<std::size_t>(step));
      complaint = complaint.empty() ? printable(line.substr(beginning.size())) : complaint;
    }
  }
}

void Progress::take(std::string_view line) {
  hasStarted_ = hasStarted_ || line.starts_with(kBanner);
  if (line.starts_with(kPingBegins)) {
    advance(Step::ping);
  } else if (step_ == Step::ping && !line.starts_with(kReportIsRead)) {
    reader_.take(line, kNoFile, 0);
  }
  takeComplaint(line);
  // The tester prints the count when the line of the write test is in its history, and what it has
  // printed appears when it starts the read test.
  writeReportIsRead_ = writeReportIsRead_ || isReadingOf(kForwardFiles, line);
  if (writeReportIsRead_ && line.starts_with(kHistoryIsCounted)) {
    advance(Step::read);
  }
  if (line.starts_with(kResult)) {
    advance(Step::end);
  }
}

}  // namespace watch
