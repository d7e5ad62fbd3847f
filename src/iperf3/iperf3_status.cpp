#include "iperf3/iperf3_status.h"

#include "iperf_client.h"

#include <cstdio>

void printIperf3Status(const iperf3_status& status) {
  printConnection(status);
  std::printf("reverse %.32s\n", status.reverse);
  std::printf("length sent %llu \n", status.lengthSent);
  std::printf("Bps sent %.0f\n", status.bpsSent);
  std::printf("length rcvd %llu \n", status.lengthRcvd);
  std::printf("Bps rcvd %.0f\n", status.bpsRcvd);
}
