#include "doctor/tool.h"

#include "evidence/text.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <poll.h>
#include <spawn.h>
#include <string_view>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace watch {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr std::size_t kMostText = 65536;
constexpr milliseconds kPatience{1000};
constexpr milliseconds kPause{5};

/// Both ends of a pipe, which no other tool inherits.
struct Pipe {
  Pipe() {
    if (pipe(ends) != 0) {
      throw std::system_error(errno, std::generic_category(), "pipe");
    }
    for (const int end : ends) {
      fcntl(end, F_SETFD, FD_CLOEXEC);
    }
  }
  ~Pipe() {
    closeWriting();
    close(ends[0]);
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;
  void closeWriting() {
    if (ends[1] >= 0) {
      close(ends[1]);
      ends[1] = -1;
    }
  }
  int ends[2] = {-1, -1};
};

int millisecondsUntil(Clock::time_point end) {
  const auto left = std::chrono::ceil<milliseconds>(end - Clock::now());
  return static_cast<int>(std::max(left, milliseconds(0)).count());
}

/// Adds what can be read until `end` to `text`. Returns whether there will be no more.
bool readUntil(int file, Clock::time_point end, std::string& text) {
  pollfd wanted = {file, POLLIN, 0};
  while (poll(&wanted, 1, millisecondsUntil(end)) > 0) {
    char bytes[4096];
    const ssize_t count = read(file, bytes, sizeof(bytes));
    if (count <= 0) {
      return true;
    }
    const auto room = kMostText - std::min(kMostText, text.size());
    text.append(bytes, std::min(room, static_cast<std::size_t>(count)));
  }
  return false;
}

/// Reads what the process writes, and waits for its end. Returns false when it is still there.
bool follow(pid_t process, int file, Clock::time_point end, Answer& answer) {
  bool isRead = false;
  do {
    // What it has started may hold its output open for longer.
    isRead = isRead || readUntil(file, std::min(end, Clock::now() + kPause), answer.text);
    int status = 0;
    if (waitpid(process, &status, WNOHANG) == process) {
      readUntil(file, Clock::now(), answer.text);
      answer.status = WIFEXITED(status) ? std::optional(WEXITSTATUS(status)) : std::nullopt;
      return true;
    }
    if (isRead) {
      std::this_thread::sleep_for(kPause);
    }
  } while (Clock::now() < end);
  return false;
}

Answer listen(pid_t process, Pipe& output, milliseconds limit) {
  output.closeWriting();
  Answer answer;
  if (follow(process, output.ends[0], Clock::now() + limit, answer)) {
    return answer;
  }
  kill(process, SIGINT);
  if (!follow(process, output.ends[0], Clock::now() + kPatience, answer)) {
    kill(process, SIGKILL);
    waitpid(process, nullptr, 0);
  }
  answer.status = std::nullopt;
  answer.timedOut = true;
  return answer;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& text : texts) {
    pointers.push_back(text.data());
  }
  pointers.push_back(nullptr);
  return pointers;
}

std::vector<std::string> environmentWith(const std::string& searchPath) {
  std::vector<std::string> variables = {"PATH=" + searchPath, "LC_ALL=C"};
  for (char** next = environ; *next != nullptr; ++next) {
    const std::string_view variable = *next;
    if (!variable.starts_with("PATH=") && !variable.starts_with("LC_ALL=")) {
      variables.emplace_back(variable);
    }
  }
  return variables;
}

/// Starts it with the output `output`, nothing to read, and the signals as a login shell has them.
int spawn(const std::vector<std::string>& command, const std::string& searchPath,
          const Pipe& output, pid_t& process) {
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_adddup2(&files, output.ends[1], STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&files, output.ends[1], STDERR_FILENO);
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGPIPE);
  posix_spawnattr_setsigdefault(&attributes, &signals);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);

  std::vector<std::string> arguments = command;
  std::vector<std::string> variables = environmentWith(searchPath);
  const int error = posix_spawn(&process, command.front().c_str(), &files, &attributes,
                                pointersTo(arguments).data(), pointersTo(variables).data());
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&files);
  return error;
}

/// Removes the blanks and line ends around `text`.
std::string_view trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\n";
  const std::size_t begin = text.find_first_not_of(kBlanks);
  return begin == std::string_view::npos
             ? std::string_view()
             : text.substr(begin, text.find_last_not_of(kBlanks) + 1 - begin);
}

}  // namespace

std::optional<std::string> findProgram(const std::string& name, const std::string& searchPath) {
  for (std::size_t start = 0, end = 0; end != std::string::npos; start = end + 1) {
    end = searchPath.find(':', start);
    const std::string folder = searchPath.substr(start, end - start);
    // An empty name is the working directory.
    const std::string place = (folder.empty() ? "." : folder) + "/" + name;
    std::error_code error;
    if (std::filesystem::is_regular_file(place, error) && access(place.c_str(), X_OK) == 0) {
      return place;
    }
  }
  return std::nullopt;
}

Answer ask(const std::vector<std::string>& command, const std::string& searchPath,
           milliseconds limit) {
  Pipe output;
  pid_t process = 0;
  if (const int error = spawn(command, searchPath, output, process); error != 0) {
    return {std::nullopt, false, std::strerror(error)};
  }
  return listen(process, output, limit);
}

Answer askFunction(const std::function<int()>& function, milliseconds limit) {
  Pipe output;
  std::fflush(nullptr);
  const pid_t process = fork();
  if (process < 0) {
    return {std::nullopt, false, std::strerror(errno)};
  }
  if (process == 0) {
    dup2(output.ends[1], STDOUT_FILENO);
    const int status = function();
    std::fflush(stdout);
    std::_Exit(status);
  }
  return listen(process, output, limit);
}

std::string firstLine(const std::string& text) {
  const std::string_view all = trimmed(text);
  return printable(trimmed(all.substr(0, all.find('\n'))));
}

std::string lastLine(const std::string& text) {
  const std::string_view all = trimmed(text);
  const std::size_t end = all.rfind('\n');
  return printable(trimmed(end == std::string_view::npos ? all : all.substr(end + 1)));
}

std::string failure(const Answer& answer) {
  if (answer.timedOut) {
    return "it has not ended in time";
  }
  if (const std::string said = lastLine(answer.text); !said.empty()) {
    return "it says \"" + said + "\"";
  }
  return answer.status ? "it ends with status " + std::to_string(*answer.status)
                       : "it was killed by a signal";
}

}  // namespace watch
