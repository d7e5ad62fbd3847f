// The log directory: which files it holds, and their lines. Only reads.
#pragma once

#include "evidence/trouble.h"
#include "local_time.h"
#include "log_files.h"

#include <array>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace watch {

/// The histories that hold runs, in the order in which a run's lines are read: last written first,
/// so that a run that goes on while they are read has no line without those before it.
inline constexpr History kHistories[] = {kResultHistory, kReverseFiles.history,
                                         kForwardFiles.history, kPingHistory};

/// An archived file of a history.
struct Archived {
  /// Below the log directory: "archive/ping_history_20261121T050112.log".
  std::string name;
  /// What its name tells: the start of the run that filled it, or the moment of the move before in
  /// that run. Nothing where it is no stamp.
  std::optional<LocalTime> stamp;
  /// The folder tells that it is a regular file, so that it need not be asked itself.
  bool isFile = false;

  bool operator==(const Archived&) const = default;
};

/// The archived files of each of kHistories, ordered by name.
struct Listing {
  std::array<std::vector<Archived>, std::size(kHistories)> of;

  bool operator==(const Listing&) const = default;
};

class LogDirectory {
 public:
  explicit LogDirectory(std::filesystem::path path) : path_(std::move(path)) {}

  const std::filesystem::path& path() const { return path_; }

  /// Lists the archive. With `since`, leaves out those whose name tells that they were full before,
  /// but for the newest two of each history.
  Listing list(std::optional<LocalTime> since, Troubles& troubles) const;

  /// The files of the journal, in the order of their years.
  std::vector<std::string> journals() const;

  /// Whether nothing has moved to the archive in the second before `moment` nor since.
  bool archiveRestsSince(std::filesystem::file_time_type moment) const;

  /// Returns the file `name` as a whole. A file that is missing is nothing; one that can't be read
  /// is a trouble.
  std::optional<std::string> read(const std::string& name, Troubles& troubles) const;

  /// Gives each line of the file `name` to `take`, without its end, from line 1 on. Returns whether
  /// the file is there. Holds no more of it than the longest line.
  bool readLines(const std::string& name, Troubles& troubles,
                 const std::function<void(std::string_view, std::uint32_t)>& take) const;

  /// Returns the last `bytes` of the file `name`, or all of a shorter one, which `isWhole` tells.
  std::optional<std::string> readEnd(const std::string& name, std::size_t bytes, bool& isWhole,
                                     Troubles& troubles) const;

 private:
  int open(const std::string& name) const;

  std::filesystem::path path_;
};

/// Reads whole files of a log directory, one after the other, into the same memory.
class FileReader {
 public:
  explicit FileReader(const LogDirectory& directory);
  FileReader(const FileReader&) = delete;
  FileReader& operator=(const FileReader&) = delete;
  ~FileReader();

  /// As LogDirectory::read() does. What is returned holds until the next call.
  std::optional<std::string_view> read(const Archived& file, Troubles& troubles);

 private:
  int open(const std::string& name) const;

  int folder_;
  /// Why the folder is not open, as an errno.
  int failure_;
  std::string text_;
};

/// The user's own, which need not be there; nothing without HOME.
std::optional<LogDirectory> ownDirectory();

/// Gives each line of `text` to `take`, without its end, from line 1 on.
void eachLine(std::string_view text,
              const std::function<void(std::string_view, std::uint32_t)>& take);

}  // namespace watch
