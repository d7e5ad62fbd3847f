#include "system_ping.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr char kOwnFile[] = "/proc/self/exe";
constexpr char kComplaint[] = "ping adapter: cannot %s: %s\n";

/// The exit status by which a shell, too, says that a program was found and could not be run.
constexpr int kCannotRunStatus = 126;

constexpr int kPassedOnSignals[] = {SIGHUP, SIGINT, SIGQUIT, SIGTERM};

/// The process that the signals are passed on to; set before they can arrive.
volatile std::sig_atomic_t signalledProcess = 0;

bool isExecutableFile(const std::string& path) {
  std::error_code error;
  return std::filesystem::is_regular_file(path, error) && access(path.c_str(), X_OK) == 0;
}

bool isOwnFile(const std::string& path) {
  std::error_code error;
  return std::filesystem::equivalent(path, kOwnFile, error);
}

void complain(const std::string& task, int error) {
  std::fprintf(stderr, kComplaint, task.c_str(), std::strerror(error));
}

[[noreturn]] void giveUp(const std::string& task) {
  complain(task, errno);
  std::_Exit(kCannotRunStatus);
}

void passSignalOn(int signal, siginfo_t* info, void* /*context*/) {
  // A signal from the kernel is a key at the terminal: it has reached the ping, too.
  if (info->si_code == SI_USER || info->si_code == SI_QUEUE) {
    kill(signalledProcess, signal);
  }
}

void passSignalsOnTo(pid_t process) {
  signalledProcess = process;
  struct sigaction action = {};
  action.sa_sigaction = passSignalOn;
  action.sa_flags = SA_SIGINFO | SA_RESTART;
  for (const int signal : kPassedOnSignals) {
    sigaction(signal, &action, nullptr);
  }
}

/// Holds back the signals that are to be passed on, and returns the mask before.
sigset_t holdSignals() {
  sigset_t held;
  sigemptyset(&held);
  for (const int signal : kPassedOnSignals) {
    sigaddset(&held, signal);
  }
  sigset_t before;
  sigprocmask(SIG_BLOCK, &held, &before);
  return before;
}

[[noreturn]] void dieBy(int signal) {
  std::signal(signal, SIG_DFL);
  std::raise(signal);
  // A signal that the caller blocks does not kill: the status is the shell's for it.
  std::_Exit(128 + signal);
}

/// Turns this process, a child, into the ping that writes to the pipe between `ends`.
[[noreturn]] void becomePing(const std::string& path, char** arguments, const int (&ends)[2]) {
  close(ends[0]);
  if (ends[1] != STDOUT_FILENO) {
    dup2(ends[1], STDOUT_FILENO);
    close(ends[1]);
  }
  setenv("LC_ALL", "C.UTF-8", 1);
  execv(path.c_str(), arguments);
  giveUp("run " + path);
}

}  // namespace

std::string findSystemPing() {
  if (access(kOwnFile, F_OK) != 0) {
    giveUp(std::string("tell which file it is itself from ") + kOwnFile);
  }
  const char* const variable = std::getenv("PATH");
  const std::string path = variable != nullptr ? variable : "";
  std::string found;
  for (std::size_t start = 0, end = 0; end != std::string::npos; start = end + 1) {
    end = path.find(':', start);
    const std::string directory = path.substr(start, end - start);
    // An empty name is the working directory.
    const std::string candidate = (directory.empty() ? "." : directory) + "/ping";
    if (isOwnFile(candidate)) {
      // Only what stands behind counts: two adapters that found each other would never end.
      found.clear();
    } else if (found.empty() && isExecutableFile(candidate)) {
      found = candidate;
    }
  }
  return found;
}

SystemPing startSystemPing(const std::string& path, char** arguments) {
  // Where the end of a child is ignored, its status is lost.
  std::signal(SIGCHLD, SIG_DFL);
  const sigset_t mask = holdSignals();
  int ends[2];
  const pid_t process = pipe(ends) == 0 ? fork() : -1;
  if (process == -1) {
    giveUp("run " + path);
  }
  if (process == 0) {
    sigprocmask(SIG_SETMASK, &mask, nullptr);
    becomePing(path, arguments, ends);
  }
  close(ends[1]);
  passSignalsOnTo(process);
  sigprocmask(SIG_SETMASK, &mask, nullptr);
  // A write that nobody reads is to return, so that the ping can be ended, too.
  std::signal(SIGPIPE, SIG_IGN);
  return {process, fdopen(ends[0], "r")};
}

int endLike(const SystemPing& ping) {
  siginfo_t end = {};
  // The process is not reaped, so that a late signal finds it and no other of the same number.
  waitid(P_PID, static_cast<id_t>(ping.process), &end, WEXITED | WNOWAIT);
  if (end.si_code != CLD_EXITED) {
    dieBy(end.si_status);
  }
  return end.si_status;
}

int endWithoutOutput(const SystemPing& ping, int writeError) {
  kill(ping.process, SIGKILL);
  if (writeError == EPIPE) {
    dieBy(SIGPIPE);
  }
  complain("write the output of ping", writeError);
  return EXIT_FAILURE;
}
