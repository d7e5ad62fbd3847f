// The end of a child whose parent is killed.
#pragma once

#include <sys/types.h>

namespace watch {

/// In a child: has the system ask it to end, by a termination signal, when its `parent` has gone.
/// Ends it at once when that has gone already. Where a system can't do that, the child ends when it
/// writes to its parent next.
void bindToParent(pid_t parent);

}  // namespace watch
