#if defined(__linux__)

#include "guard/bound_child.h"

#include <csignal>
#include <cstdlib>
#include <sys/prctl.h>
#include <unistd.h>

namespace watch {

void bindToParent(pid_t parent) {
  prctl(PR_SET_PDEATHSIG, SIGTERM);
  if (getppid() != parent) {
    std::_Exit(EXIT_FAILURE);
  }
}

}  // namespace watch

#endif
