#include "runs/no_test.h"

#include <algorithm>
#include <iterator>

namespace watch {

namespace {

// The words of iperf3 3.0 to 3.21, of the C library of Linux and macOS, and of the adapter.
constexpr struct {
  const char* words;
  const char* why;
} kCauses[] = {{"server is busy", "busy"},
               {"Connection refused", "refused"},
               {"unreachable", "unreachable"},
               {"No route to host", "unreachable"},
               {"Name or service not known", "unknown name"},
               {"name resolution", "unknown name"},
               {"nodename nor servname", "unknown name"},
               {"No address associated", "unknown name"},
               {"timed out", "no answer"},
               {"had not ended after", "ended by its limit"},
               {"no other iperf3", "iperf3 missing"},
               {"not found", "iperf3 missing"}};

}  // namespace

std::string whyNoTest(const std::string& complaint) {
  const auto* const cause = std::ranges::find_if(
      kCauses, [&](const auto& known) { return complaint.find(known.words) != std::string::npos; });
  return cause == std::end(kCauses) ? complaint : cause->why;
}

}  // namespace watch
