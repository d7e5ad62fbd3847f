// The record of an iperf3 run, as a text that a test compares whole.
#pragma once

#include "iperf3/iperf3_status.h"

#include <string>

/// The twelve fields in their order, "-" for an empty text:
/// "1605505183 192.168.1.20 54012 192.168.1.10 5201 10 0 0 1180000000 943718400 0 0".
std::string recordText(const iperf3_status& status);
