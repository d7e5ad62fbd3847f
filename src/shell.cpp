#include "shell.h"

#include "run_state.h"

#include <cstdio>
#include <cstdlib>

int runCommand() {
  std::fflush(stdout);
  return std::system(cmd);
}
