#include "guard/tester_process.h"

#include "guard/bound_child.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fmt/format.h>
#include <stdexcept>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace watch {

namespace {

constexpr char kStartCommand[] = "connTester";
constexpr int kCannotRunStatus = 126;
constexpr int kDiedBySignal = 128;

std::string failure(const std::filesystem::path& command) {
  return fmt::format("cannot run {}: {}", command.string(), std::strerror(errno));
}

[[noreturn]] void fail(const std::filesystem::path& command) {
  throw std::runtime_error(failure(command));
}

/// Turns this process, a child, into the start command. Its signals are as a shell would have them:
/// this program may ignore some of its own accord.
[[noreturn]] void become(const std::filesystem::path& command,
                         const std::optional<std::string>& address, int output, pid_t parent) {
  setsid();
  std::signal(SIGPIPE, SIG_DFL);
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
  bindToParent(parent);
  dup2(open("/dev/null", O_RDONLY | O_CLOEXEC), STDIN_FILENO);
  dup2(output, STDOUT_FILENO);
  dup2(output, STDERR_FILENO);
  execlp(command.c_str(), kStartCommand, address ? address->c_str() : nullptr, nullptr);
  std::fputs(fmt::format("connWatch: {}\n", failure(command)).c_str(), stderr);
  std::_Exit(kCannotRunStatus);
}

}  // namespace

std::filesystem::path startCommand() {
  std::error_code unknown;
  const std::filesystem::path own = std::filesystem::read_symlink("/proc/self/exe", unknown);
  return unknown ? std::filesystem::path(kStartCommand) : own.parent_path() / kStartCommand;
}

TesterProcess::TesterProcess(const std::filesystem::path& command,
                             const std::optional<std::string>& address) {
  std::array<int, 2> ends{};
  if ((command.has_parent_path() && access(command.c_str(), X_OK) != 0) || pipe(ends.data()) != 0) {
    fail(command);
  }
  for (const int end : ends) {
    fcntl(end, F_SETFD, FD_CLOEXEC);
  }
  const pid_t parent = getpid();
  process_ = fork();
  if (process_ == 0) {
    become(command, address, ends[1], parent);
  }
  close(ends[1]);
  output_ = ends[0];
  fcntl(output_, F_SETFL, O_NONBLOCK);
  if (process_ == -1) {
    close(output_);
    fail(command);
  }
}

TesterProcess::~TesterProcess() {
  if (!status()) {
    end();
    waitpid(process_, nullptr, 0);
  }
  if (output_ >= 0) {
    close(output_);
  }
}

std::string TesterProcess::read() {
  constexpr std::size_t kMostText = 65536;
  std::string text;
  std::array<char, 4096> part{};
  ssize_t count = -1;
  while (output_ >= 0 && text.size() < kMostText &&
         (count = ::read(output_, part.data(), part.size())) > 0) {
    text.append(part.data(), static_cast<std::size_t>(count));
  }
  if (count == 0) {
    close(output_);
    output_ = -1;
  }
  return text;
}

std::optional<int> TesterProcess::status() {
  int end = 0;
  if (!status_ && waitpid(process_, &end, WNOHANG) == process_) {
    status_ = WIFEXITED(end) ? WEXITSTATUS(end) : kDiedBySignal + WTERMSIG(end);
  }
  return status_;
}

void TesterProcess::end() const {
  kill(process_, SIGTERM);
}

}  // namespace watch
