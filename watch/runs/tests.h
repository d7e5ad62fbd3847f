// The iperf3 tests of the histories: a forward line, a reverse line, or both.
#pragma once

#include "evidence/evidence.h"
#include "runs/alignment.h"

#include <cstddef>
#include <vector>

namespace watch {

/// Places in `Evidence::forward` and `Evidence::reverse`, of which one may be kAlone.
struct Test {
  std::size_t forward = kAlone;
  std::size_t reverse = kAlone;
};

/// Pairs the lines of both directions, in their order.
std::vector<Test> pairTests(const Evidence& evidence);

}  // namespace watch
