#include "guard/signals.h"

#include <csignal>
#include <cstdlib>
#include <sys/resource.h>
#include <sys/select.h>

namespace watch {

namespace {

constexpr struct {
  int signal;
  const char* description;
} kSignals[] = {{SIGINT, "^C"},
                {SIGTERM, "a termination signal"},
                {SIGHUP, "the end of its terminal"},
                {SIGQUIT, "^\\"},
                {SIGALRM, "an alarm"}};

volatile std::sig_atomic_t firstSignal = 0;
/// What is blocked while this waits: nothing of the above.
sigset_t whileWaiting;

void note(int signal) {
  if (signal != SIGCHLD && firstSignal == 0) {
    firstSignal = signal;
  }
}

void take(int signal, sigset_t& held) {
  struct sigaction action = {};
  sigaction(signal, nullptr, &action);
  if (action.sa_handler == SIG_IGN && signal != SIGCHLD) {
    return;
  }
  action = {};
  action.sa_handler = note;
  sigaction(signal, &action, nullptr);
  sigaddset(&held, signal);
}

}  // namespace

void holdBackSignals() {
  std::signal(SIGPIPE, SIG_IGN);
  sigset_t held;
  sigemptyset(&held);
  take(SIGCHLD, held);
  for (const auto& [signal, description] : kSignals) {
    take(signal, held);
  }
  sigprocmask(SIG_BLOCK, &held, &whileWaiting);
}

void waitForSomething(int descriptor, std::chrono::milliseconds time) {
  fd_set readable;
  FD_ZERO(&readable);
  // Higher ones it does not know: then time alone ends the wait.
  const bool isWatched = descriptor >= 0 && descriptor < FD_SETSIZE;
  if (isWatched) {
    FD_SET(descriptor, &readable);
  }
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time);
  const std::chrono::nanoseconds rest = time - seconds;
  const timespec timeout = {seconds.count(), rest.count()};
  pselect(isWatched ? descriptor + 1 : 0, &readable, nullptr, nullptr, &timeout, &whileWaiting);
  // It lets no signal in when there is something to read at once.
  sigset_t held;
  sigprocmask(SIG_SETMASK, &whileWaiting, &held);
  sigprocmask(SIG_SETMASK, &held, nullptr);
}

int signalThatCame() {
  return firstSignal;
}

const char* describeSignal(int signal) {
  for (const auto& [known, description] : kSignals) {
    if (known == signal) {
      return description;
    }
  }
  return "a signal";
}

void dieBy(int signal) {
  const rlimit noCore = {0, 0};
  setrlimit(RLIMIT_CORE, &noCore);
  std::signal(signal, SIG_DFL);
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, signal);
  sigprocmask(SIG_UNBLOCK, &signals, nullptr);
  std::raise(signal);
  // The first process of a container is not killed so: the status is the shell's for the signal.
  std::_Exit(128 + signal);
}

}  // namespace watch
