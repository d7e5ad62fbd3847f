// What the iperf2 and iperf3 steps share: running the client, printing a connection.
#pragma once

#include <cstdio>

/// Runs the client's command line in `cmd`, printed first when `debugConfFile` is set, then sleeps
/// a second longer than `iperfTestTime`, in milliseconds that wrap at 32 bits: 3 ms when that comes
/// to less, as it does for -1.
void runIperfClient();

/// Prints the seven lines that the print of each iperf record starts with. A text may fill its 32
/// characters without a terminator.
template <typename Status>
void printConnection(const Status& status) {
  std::printf("date %.32s\n", status.date);
  std::printf("client ip %.32s\n", status.clientIp);
  std::printf("server ip %.32s\n", status.serverIp);
  std::printf("client tcp port %d\n", status.clientPort);
  std::printf("server tcp port %d\n", status.serverPort);
  std::printf("transfer ID %d\n", status.transferId);
  std::printf("test time %.32s\n", status.testTime);
}
