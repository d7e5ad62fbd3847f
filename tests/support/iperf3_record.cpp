#include "support/iperf3_record.h"

#include "text_buffer.h"

#include <cstring>

namespace {

/// The text of a field, which a full one holds without a terminator; "-" for an empty one.
template <std::size_t N>
std::string fieldText(const char (&field)[N]) {
  const std::string text(field, strnlen(field, N));
  return text.empty() ? "-" : text;
}

std::string exact(double value) {
  char text[32];
  formatInto(text, "%.17g", value);
  return text;
}

}  // namespace

std::string recordText(const iperf3_status& status) {
  return fieldText(status.date) + " " + fieldText(status.clientIp) + " " +
         std::to_string(status.clientPort) + " " + fieldText(status.serverIp) + " " +
         std::to_string(status.serverPort) + " " + fieldText(status.testTime) + " " +
         fieldText(status.reverse) + " " + std::to_string(status.transferId) + " " +
         std::to_string(status.lengthSent) + " " + exact(status.bpsSent) + " " +
         std::to_string(status.lengthRcvd) + " " + exact(status.bpsRcvd);
}
