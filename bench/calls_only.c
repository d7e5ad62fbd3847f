// The least that a run can cost: hands the command lines of a run to the shell and does no more.
//
// Usage: calls_only ADDRESS [WAIT_MS]    (WAIT_MS: sleep after each iperf3 run, as the program
// does)
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <time.h>

__attribute__((format(printf, 1, 2))) static void run(const char* format, ...) {
  char commandLine[512];
  va_list values;
  va_start(values, format);
  vsnprintf(commandLine, sizeof commandLine, format, values);
  va_end(values);
  (void)!system(commandLine);
}

static void waitMs(long ms) {
  const struct timespec length = {0, ms * 1000000};
  if (ms > 0) {
    nanosleep(&length, NULL);
  }
}

int main(int argc, char** argv) {
  const char* const address = argc > 1 ? argv[1] : "";
  const long ms = argc > 2 ? atol(argv[2]) : 0;
  char logs[256];
  snprintf(logs, sizeof logs, "%s/Library/Logs/Qelmora/", getenv("HOME"));
  run("mkdir -p %sarchive/\n", logs);
  run("ping -c 10 %s  | tee  %sping_latest.log\n", address, logs);
  run("cat %sping_latest.log >> %s/ping_history_verbose.log\n", logs, logs);
  run("/usr/local/bin/Qelmora/iperf3 -c %s -t -1 -J    > %siperf3_latest.log\n", address, logs);
  waitMs(ms);
  run("cat %siperf3_latest_forward_csv.log >> %siperf3_history_forward_csv.log\n", logs, logs);
  run("/usr/local/bin/Qelmora/iperf3 -c %s -t -1 -J  -R > %siperf3_latest-R.log\n", address, logs);
  waitMs(ms);
  run("cat %siperf3_latest_reverse_csv.log >> %siperf3_history_reverse_csv.log\n", logs, logs);
  return 0;
}
