#if !defined(__linux__)

#include "guard/bound_child.h"

namespace watch {

void bindToParent(pid_t /*parent*/) {}

}  // namespace watch

#endif
