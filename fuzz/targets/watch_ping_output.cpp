// The log of all ping outputs.
#include "evidence/log_directory.h"
#include "evidence/ping_output.h"
#include "promise.h"

#include <algorithm>

namespace {

void requireSound(const watch::PingOutput& output) {
  require(output.from.first <= output.from.last, "a block has lines");
  require(output.replies.size() <= output.from.last - output.from.first,
          "a reply has a line of its own");
  require(std::ranges::all_of(output.replies, [](double ms) { return ms >= 0; }),
          "no reply comes before it is asked for");
  require(!output.sent || output.received, "what was sent was received");
  require(!output.summaryIsWhole || (output.summaryIsRead && output.summary),
          "a whole summary is there");
}

}  // namespace

void readInput(const std::string& input) {
  std::vector<watch::PingOutput> outputs;
  watch::PingOutputReader reader(outputs);
  std::uint32_t lines = 0;
  std::size_t headers = 0;
  watch::eachLine(input, [&](std::string_view line, std::uint32_t number) {
    lines = number;
    for (std::size_t place = 0; (place = line.find("PING ", place)) != std::string_view::npos;
         ++place) {
      ++headers;
    }
    reader.take(line, 0, number);
  });
  require(outputs.size() <= headers, "each block has a header");
  std::uint32_t last = 0;
  for (const watch::PingOutput& output : outputs) {
    requireSound(output);
    require(output.from.first >= last, "blocks are in order");
    last = output.from.last;
  }
  require(outputs.empty() ? reader.linesBefore() == lines : last == lines,
          "the last block goes on to the end");
}
