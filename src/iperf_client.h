// What the iperf2 and iperf3 steps share: running the client, printing a connection.
#pragma once

#include <cstdio>

/// Runs the client's command line in `cmd`, printed first when `debugConfFile` is set, then sleeps
/// a second longer than `iperfTestTime`.
void runIperfClient();

/// Prints the seven lines that the print of each iperf record starts with.
template <typename Status>
void printConnection(const Status& status) {
  std::printf("date %s\n", status.date);
  std::printf("client ip %s\n", status.clientIp);
  std::printf("server ip %s\n", status.serverIp);
  std::printf("client tcp port %d\n", status.clientPort);
  std::printf("server tcp port %d\n", status.serverPort);
  std::printf("transfer ID %d\n", status.transferId);
  std::printf("test time %s\n", status.testTime);
}
