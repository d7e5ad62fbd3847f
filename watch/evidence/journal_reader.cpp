#include "evidence/journal_reader.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace watch {

namespace {

class JournalReader {
 public:
  JournalReader(const LogDirectory& directory, std::vector<std::string>& files, Troubles& troubles)
      : directory_(directory), files_(files), troubles_(troubles) {}

  std::vector<JournalLine> readAll(const std::string& name) {
    begin(name);
    directory_.readLines(name, troubles_,
                         [&](std::string_view text, std::uint32_t number) { take(text, number); });
    return std::move(lines_);
  }

  /// Reads at least `count` lines from the end, if there are so many.
  std::vector<JournalLine> readLast(const std::string& name, std::size_t count) {
    constexpr std::size_t kUsualBytes = 1024;
    begin(name);
    const Troubles before = troubles_;
    for (std::size_t bytes = (count + 1) * kUsualBytes;; bytes *= 4) {
      const bool isWhole = takeEnd(name, bytes);
      if (isWhole || lines_.size() >= count) {
        return std::move(lines_);
      }
      lines_.clear();
      troubles_ = before;
    }
  }

 private:
  void begin(const std::string& name) {
    file_ = static_cast<std::uint32_t>(files_.size());
    files_.push_back(name);
    lines_ = {};
  }

  /// Takes the lines of the last `bytes`, but for a first one that is not whole. Returns whether
  /// these are all.
  bool takeEnd(const std::string& name, std::size_t bytes) {
    bool isWhole = true;
    const std::string text = directory_.readEnd(name, bytes, isWhole, troubles_).value_or("");
    eachLine(text, [&](std::string_view line, std::uint32_t number) {
      if (isWhole || number > 1) {
        take(line, 0);
      }
    });
    return isWhole;
  }

  void take(std::string_view text, std::uint32_t number) {
    if (std::optional<JournalLine> line = parseJournalLine(text)) {
      line->from = {file_, number, number};
      lines_.push_back(std::move(*line));
    } else {
      troubles_.push_back({files_[file_], number, "it is no whole line of the journal"});
    }
  }

  const LogDirectory& directory_;
  std::vector<std::string>& files_;
  Troubles& troubles_;
  std::uint32_t file_ = 0;
  std::vector<JournalLine> lines_;
};

/// Two programs may have kept the same run at once. The guard of a run has seen more of it.
void leaveOutRepeated(std::vector<JournalLine>& lines) {
  constexpr std::ptrdiff_t kNear = 4;
  std::vector<JournalLine> once;
  for (JournalLine& line : lines) {
    const auto near = once.end() - std::min<std::ptrdiff_t>(kNear, std::ssize(once));
    const auto same = std::find_if(
        near, once.end(), [&](const JournalLine& other) { return isSameRun(line, other); });
    if (same == once.end()) {
      once.push_back(std::move(line));
    } else if (line.isGuarded() && !same->isGuarded()) {
      *same = std::move(line);
    }
  }
  lines = std::move(once);
}

void append(std::vector<JournalLine>& lines, std::vector<JournalLine> more) {
  lines.insert(lines.end(), std::make_move_iterator(more.begin()),
               std::make_move_iterator(more.end()));
}

}  // namespace

std::vector<JournalLine> readJournal(const LogDirectory& directory,
                                     std::optional<std::size_t> count,
                                     std::vector<std::string>& files, Troubles& troubles) {
  JournalReader reader(directory, files, troubles);
  std::vector<std::string> names = directory.journals();
  std::vector<JournalLine> lines;
  if (!count) {
    for (const std::string& name : names) {
      append(lines, reader.readAll(name));
    }
  }
  for (; count && !names.empty() && lines.size() < *count; names.pop_back()) {
    std::vector<JournalLine> last = reader.readLast(names.back(), *count - lines.size());
    append(last, std::move(lines));
    lines = std::move(last);
  }
  leaveOutRepeated(lines);
  return lines;
}

}  // namespace watch
