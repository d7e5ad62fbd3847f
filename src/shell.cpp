#include "shell.h"

#include "run_state.h"

#include <cstdlib>

int runCommand() {
  return std::system(cmd);
}
