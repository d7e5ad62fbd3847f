// Runs a command and kills it at the start of one of its system calls, which is not made any more.
//
//   kill_at CALL COMMAND [ARGUMENT...]
//
// CALL counts from 1, after the command has been loaded. The processes that the command starts are
// left alone. Ends with 137 when the command was killed; else as the command, which made fewer
// calls.
//
// It is linked statically, so that what is preloaded reaches the command only.
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int kSystemCallStop = SIGTRAP | 0x80;

void startTraced(char** command) {
  ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
  execvp(command[0], command);
  std::perror(command[0]);
  std::_Exit(127);
}

/// Lets `child` run to its next system call stop, passing its signals on. Returns its wait status.
int runToNextStop(pid_t child) {
  long signal = 0;
  int status = 0;
  do {
    ptrace(PTRACE_SYSCALL, child, nullptr, signal);
    waitpid(child, &status, 0);
    signal = WIFSTOPPED(status) ? WSTOPSIG(status) : 0;
  } while (WIFSTOPPED(status) && signal != kSystemCallStop);
  return status;
}

int killAt(long call, pid_t child) {
  int status = 0;
  waitpid(child, &status, 0);
  ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
  // Each call stops the command twice, at its start and at its end.
  for (long stops = 2 * call - 1; stops > 0 && WIFSTOPPED(status); --stops) {
    status = runToNextStop(child);
  }
  if (WIFSTOPPED(status)) {
    kill(child, SIGKILL);
    waitpid(child, &status, 0);
  }
  return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    std::fputs("usage: kill_at CALL COMMAND [ARGUMENT...]\n", stderr);
    return 2;
  }
  const pid_t child = fork();
  if (child == 0) {
    startTraced(argv + 2);
  }
  return killAt(std::strtol(argv[1], nullptr, 10), child);
}
