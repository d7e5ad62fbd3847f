#include "figures/counts.h"

namespace watch {

Counts countRuns(std::span<const Run> runs) {
  Counts counts;
  for (const Run& run : runs) {
    if (run.orphan || run.ongoing) {
      counts.orphans += run.orphan ? 1 : 0;
      continue;
    }
    ++(run.runClass == Class::ok        ? counts.ok
       : run.runClass == Class::partial ? counts.partial
                                        : counts.failed);
    counts.unsure += run.unsure.empty() ? 0 : 1;
  }
  return counts;
}

}  // namespace watch
