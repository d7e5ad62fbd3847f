// The iperf3 adapter: leaves the output of the system's iperf3 alone. To stand where connTester
// looks for iperf3.

#include "adapter.h"

int main(int /*argc*/, char** argv) {
  return standInFor({"iperf3", "iperf3", "-t", "--time", 60}, argv);
}
