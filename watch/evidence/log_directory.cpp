#include "evidence/log_directory.h"

#include "evidence/text.h"
#include "files.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace watch {

namespace {

constexpr char kLogDirectory[] = "Library/Logs/Qelmora";
constexpr char kArchive[] = "archive/";
constexpr std::string_view kEnding = ".log";
constexpr std::size_t kChunk = std::size_t{256} * 1024;

constexpr int kToRead = O_RDONLY | O_CLOEXEC | O_NONBLOCK;

/// An open file. A FIFO or a device, which could block or never end, is refused.
class OpenFile {
 public:
  /// Takes over what open() has returned, with errno. `isFile` says that it is known to be one.
  OpenFile(int descriptor, const std::string& name, Troubles& troubles, bool isFile = false)
      : descriptor_(descriptor), name_(name), troubles_(troubles) {
    if (descriptor_ < 0) {
      if (errno != ENOENT) {
        fail(std::strerror(errno));
      }
    } else if (!isFile && (fstat(descriptor_, &status_) != 0 || !S_ISREG(status_.st_mode))) {
      fail("it is no file");
      close(descriptor_);
      descriptor_ = -1;
    }
  }
  ~OpenFile() {
    if (descriptor_ >= 0) {
      close(descriptor_);
    }
  }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;

  bool isOpen() const { return descriptor_ >= 0; }
  /// 0 of what was known to be a file.
  std::size_t size() const { return static_cast<std::size_t>(status_.st_size); }
  void goTo(std::size_t place) const { lseek(descriptor_, static_cast<off_t>(place), SEEK_SET); }

  /// Returns how many bytes it has put to `buffer`: 0 at the end, and where reading fails.
  std::size_t read(char* buffer, std::size_t capacity) {
    const ssize_t count = ::read(descriptor_, buffer, capacity);
    if (count < 0) {
      fail(std::strerror(errno));
    }
    return count < 0 ? 0 : static_cast<std::size_t>(count);
  }

  /// Reads up to the end, at which a read has less than it asked for, into `text`.
  void readRest(std::size_t expected, std::string& text) {
    text.resize(std::max(expected + 1, kLeast));
    std::size_t length = read(text.data(), text.size());
    while (length == text.size()) {
      text.resize(2 * length);
      length += read(text.data() + length, length);
    }
    text.resize(length);
  }

 private:
  static constexpr std::size_t kLeast = 4096;

  void fail(const char* why) { troubles_.push_back({name_, 0, why}); }

  int descriptor_;
  struct stat status_ {};
  const std::string& name_;
  Troubles& troubles_;
};

using Take = std::function<void(std::string_view, std::uint32_t)>;

/// Gives the whole lines of `text` to `take`, and returns what is behind the last one.
std::string_view takeWholeLines(std::string_view text, std::uint32_t& number, const Take& take) {
  for (std::size_t end = text.find('\n'); end != std::string_view::npos; end = text.find('\n')) {
    take(withoutCarriageReturn(text.substr(0, end)), ++number);
    text.remove_prefix(end + 1);
  }
  return text;
}

/// Returns the history of which `name` is an archived file, or nothing.
std::optional<std::size_t> historyOf(std::string_view name) {
  constexpr std::string_view kOutputs = "ping_history_verbose";
  if (name.starts_with(kOutputs)) {
    return std::nullopt;
  }
  for (std::size_t kind = 0; kind < std::size(kHistories); ++kind) {
    const std::string_view begin = kHistories[kind].archived;
    if (name.starts_with(begin) && name.substr(begin.size()).starts_with('_') &&
        name.ends_with(kEnding)) {
      return kind;
    }
  }
  return std::nullopt;
}

/// Returns what stands in place of the stamp in the name of an archived file.
std::string_view stampTextOf(std::string_view name, std::size_t kind) {
  name.remove_prefix(std::strlen(kHistories[kind].archived) + 1);
  name.remove_suffix(kEnding.size());
  return name;
}

/// Whether `name` is "runs-YYYY.jsonl".
bool isJournal(std::string_view name) {
  constexpr std::size_t kYearDigits = 4;
  if (!name.starts_with(kJournalBegin) || !name.ends_with(kJournalEnd) ||
      name.size() != kJournalBegin.size() + kYearDigits + kJournalEnd.size()) {
    return false;
  }
  const std::string_view year = name.substr(kJournalBegin.size(), kYearDigits);
  return year.find_first_not_of("0123456789") == std::string_view::npos;
}

/// The name of an archived file, and whether the folder tells that it is a regular one.
struct Name {
  std::string text;
  bool isFile;
};

/// The names of a history's archived files. Of those that were full before `since`, the newest two
/// alone: what is wanted may begin in the middle of one, and a wrong clock may have misnamed
/// another.
class Names {
 public:
  void add(std::string_view name, bool isFile, std::string_view stamp, std::string_view since) {
    if (stamp >= since || stamp.size() != since.size()) {
      names_.push_back({std::string(name), isFile});
    } else if (older_.size() < kNeighbours) {
      older_.push_back({std::string(name), isFile});
    } else if (const auto oldest = std::ranges::min_element(older_, {}, &Name::text);
               oldest->text < name) {
      *oldest = {std::string(name), isFile};
    }
  }

  std::vector<Archived> sorted(std::size_t kind) && {
    names_.insert(names_.end(), older_.begin(), older_.end());
    std::ranges::sort(names_, {}, &Name::text);
    std::vector<Archived> files;
    files.reserve(names_.size());
    for (const Name& name : names_) {
      files.push_back(
          {kArchive + name.text, parseStamp(stampTextOf(name.text, kind)), name.isFile});
    }
    return files;
  }

 private:
  static constexpr std::size_t kNeighbours = 2;

  std::vector<Name> names_;
  std::vector<Name> older_;
};

}  // namespace

Listing LogDirectory::list(std::optional<LocalTime> since, Troubles& troubles) const {
  Listing listing;
  const std::unique_ptr<DIR, int (*)(DIR*)> folder(
      opendir((path_.native() + '/' + kArchive).c_str()), closedir);
  if (folder == nullptr) {
    if (errno != ENOENT) {
      troubles.push_back({kArchive, 0, std::strerror(errno)});
    }
    return listing;
  }
  const std::string sinceStamp = since ? formatStamp(*since) : "";
  Names names[std::size(kHistories)];
  while (const dirent* const entry = readdir(folder.get())) {
    const std::string_view name = entry->d_name;
    if (const auto kind = historyOf(name)) {
      names[*kind].add(name, entry->d_type == DT_REG, stampTextOf(name, *kind), sinceStamp);
    }
  }
  for (std::size_t kind = 0; kind < std::size(kHistories); ++kind) {
    listing.of[kind] = std::move(names[kind]).sorted(kind);
  }
  return listing;
}

std::vector<std::string> LogDirectory::journals() const {
  std::vector<std::string> names;
  std::error_code unreadable;
  for (const auto& entry : std::filesystem::directory_iterator(path_, unreadable)) {
    if (std::string name = entry.path().filename().string(); isJournal(name)) {
      names.push_back(std::move(name));
    }
  }
  std::ranges::sort(names);
  return names;
}

bool LogDirectory::archiveRestsSince(std::filesystem::file_time_type moment) const {
  std::error_code failed;
  const auto changed = std::filesystem::last_write_time(path_ / kArchive, failed);
  // A change in the same moment as another one may leave no trace in the time.
  return !failed && changed < moment - std::chrono::seconds(1);
}

int LogDirectory::open(const std::string& name) const {
  return ::open((path_.native() + '/' + name).c_str(), kToRead);
}

std::optional<std::string> LogDirectory::read(const std::string& name, Troubles& troubles) const {
  FileReader file(*this);
  const auto text = file.read({name, std::nullopt}, troubles);
  return text ? std::optional(std::string(*text)) : std::nullopt;
}

std::optional<std::string> LogDirectory::readEnd(const std::string& name, std::size_t bytes,
                                                 bool& isWhole, Troubles& troubles) const {
  OpenFile file(open(name), name, troubles);
  isWhole = !file.isOpen() || file.size() <= bytes;
  if (!file.isOpen()) {
    return std::nullopt;
  }
  if (!isWhole) {
    file.goTo(file.size() - bytes);
  }
  std::string text;
  file.readRest(std::min(bytes, file.size()), text);
  return text;
}

bool LogDirectory::readLines(const std::string& name, Troubles& troubles, const Take& take) const {
  OpenFile file(open(name), name, troubles);
  if (!file.isOpen()) {
    return false;
  }
  std::string buffer;
  std::size_t kept = 0;
  std::uint32_t number = 0;
  while (true) {
    buffer.resize(kept + kChunk);
    const std::size_t count = file.read(buffer.data() + kept, kChunk);
    buffer.resize(kept + count);
    if (count == 0) {
      break;
    }
    // What was kept holds no end of a line, and isn't looked through again.
    if (buffer.find('\n', kept) != std::string::npos) {
      const std::size_t rest = takeWholeLines(buffer, number, take).size();
      buffer.erase(0, buffer.size() - rest);
    }
    kept = buffer.size();
  }
  if (!buffer.empty()) {
    take(withoutCarriageReturn(buffer), ++number);
  }
  return true;
}

FileReader::FileReader(const LogDirectory& directory)
    : folder_(::open(directory.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)),
      failure_(folder_ < 0 ? errno : 0) {}

FileReader::~FileReader() {
  if (folder_ >= 0) {
    close(folder_);
  }
}

int FileReader::open(const std::string& name) const {
  errno = failure_;
  return folder_ < 0 ? -1 : openat(folder_, name.c_str(), kToRead);
}

std::optional<std::string_view> FileReader::read(const Archived& file, Troubles& troubles) {
  OpenFile opened(open(file.name), file.name, troubles, file.isFile);
  if (!opened.isOpen()) {
    return std::nullopt;
  }
  opened.readRest(opened.size(), text_);
  return text_;
}

std::optional<LogDirectory> ownDirectory() {
  const char* const home = std::getenv("HOME");
  return home != nullptr && *home != '\0'
             ? std::optional<LogDirectory>(std::filesystem::path(home) / kLogDirectory)
             : std::nullopt;
}

void eachLine(std::string_view text, const Take& take) {
  std::uint32_t number = 0;
  const std::string_view rest = takeWholeLines(text, number, take);
  if (!rest.empty()) {
    take(withoutCarriageReturn(rest), ++number);
  }
}

}  // namespace watch
